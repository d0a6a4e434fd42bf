// The blocks in a target's memory through which its program talks with the terminals, as
// docs/manual/reference/formats.md describes them for firmware authors. Only what the bytes mean
// and whether they can be meant so: nothing here touches the line or keeps anything.
#ifndef TERMINAL_BLOCK_H
#define TERMINAL_BLOCK_H

#include <cstdint>
#include <string>

// A ring of characters: empty when both indices are the same, one place always stays free.
struct TRM_Ring {
    uint32_t address = 0;      // of its first character
    uint32_t indexAddress = 0; // of the index that the program writes, its session behind it
    uint32_t size = 0, write = 0, read = 0;
};
// The program's index counts with the session it was written for only, else it is 0: one that
// comes when the target has just started anew means nothing to it.
constexpr uint16_t TRM_INDEX_BYTES = 4;
void TRM_PutIndex(uint8_t bytes[TRM_INDEX_BYTES], uint32_t index, uint16_t session);
uint32_t TRM_CountPending(const TRM_Ring &ring); // characters in it
uint32_t TRM_CountRoom(const TRM_Ring &ring);    // characters that still fit

constexpr uint16_t TRM_SERVICE_ID = 0x7166, TRM_LCD_ID = 0x71CD;
constexpr uint32_t TRM_BLOCK_VERSION = 1; // the high byte of the version word; the low one may grow
constexpr uint32_t TRM_RING_MIN = 2, TRM_RING_MAX = 4096;
constexpr uint32_t TRM_LCD_ROWS_MAX = 16, TRM_LCD_COLUMNS_MAX = 80;
constexpr uint32_t TRM_LCD_GLYPHS = 8, TRM_LCD_GLYPH_LINES = 8; // user-defined characters
constexpr uint32_t TRM_LCD_KEY_COUNT = 32;

struct TRM_ServiceBlock {
    uint16_t session = 0; // another one after each start of the target's program
    TRM_Ring output;      // from the target: the program writes its read index
    TRM_Ring input;       // to the target: the program writes its write index
    uint16_t lost = 0;    // characters the target could not put into its output ring
};
constexpr uint32_t TRM_SERVICE_HEAD = 24; // bytes; the rings lie behind them, output first

enum { TRM_DISPLAY_ON = 1, TRM_CURSOR_ON = 2, TRM_CURSOR_BLINKS = 4, TRM_LIGHT_ON = 8 };
struct TRM_LcdBlock {
    uint16_t session = 0;
    uint16_t changes = 0; // odd: the target is just changing the picture
    uint32_t rows = 0, columns = 0;
    uint32_t cursorRow = 0, cursorColumn = 0; // may lie outside: the cursor is not seen then
    uint32_t flags = 0;                       // TRM_DISPLAY_ON, ...
    uint32_t codePage = 0;
    uint32_t keyMask = 0; // bit n: the target knows key n
    TRM_Ring keys;        // to the target
    uint32_t screen = 0;  // address of the characters, row after row
};
constexpr uint32_t TRM_LCD_HEAD = 28;                  // bytes
constexpr uint32_t TRM_LCD_FLAG_GLYPHS = TRM_LCD_HEAD; // offset
constexpr uint32_t TRM_LCD_FLAG_KEYS =
    TRM_LCD_FLAG_GLYPHS + TRM_LCD_GLYPHS * TRM_LCD_GLYPH_LINES; // offset

enum {
    TRM_BLOCK_ERR_ID = -1,
    TRM_BLOCK_ERR_VERSION = -2,
    TRM_BLOCK_ERR_SIZE = -3,  // of a ring or of the display
    TRM_BLOCK_ERR_INDEX = -4, // outside of its ring
    TRM_BLOCK_ERR_PLACE = -5, // the block reaches beyond the memory
};
// Reads the head of a block that lies at `address`. 0 with all of it checked, or a code; *block
// is then as it was.
int TRM_ParseServiceBlock(uint32_t address, const uint8_t *head, TRM_ServiceBlock *block);
int TRM_ParseLcdBlock(uint32_t address, const uint8_t *head, TRM_LcdBlock *block);
// What is wrong, for "There is no terminal at ...: ".
std::string TRM_BlockErrorText(int result);

// Where a block is looked for.
struct TRM_BlockPlace {
    uint32_t address = 0;
    int station = 0;
};
// `text`: a name or an address, perhaps with a station in front of it, which then counts instead
// of `station`. 0, or -1 with the reason in *cause.
int TRM_FindBlockPlace(const std::string &text, int station, TRM_BlockPlace *place,
                       std::string *cause);

#endif
