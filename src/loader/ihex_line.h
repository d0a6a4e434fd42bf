// One line of an Intel HEX file, and the block of bytes that is the unit in which the
// flash loader reads and writes. Owns nothing: the base address that later lines build on
// belongs to the caller. Used by the file checker, the loader and `hexload`.
#ifndef LOADER_IHEX_LINE_H
#define LOADER_IHEX_LINE_H

#include <cstddef>
#include <cstdint>

constexpr uint16_t IHEX167_DATA_MAX = 255;          // bytes of a block
constexpr uint32_t IHEX167_ADDRESS_END = 0x1000000; // addresses have 24 bits

struct IHEX167_Block {
    uint32_t address = 0; // of the first byte
    uint16_t length = 0;  // valid from 1 to IHEX167_DATA_MAX
    uint8_t data[258] = {};
};

enum IHEX167_Result {
    IHEX_DATA = 0,       // the block holds data
    IHEX_BASE = 1,       // a base address record: only the base has changed
    IHEX_FILE_END = 998, // the file ended without an end record
    IHEX_END = 999,      // end record
    IHEX_ERR_LINE = -1,  // empty, too long, or without ':' in front
    IHEX_ERR_COUNT = -2,
    IHEX_ERR_LENGTH = -3, // the line's length is not what the count asks for
    IHEX_ERR_OFFSET = -4,
    IHEX_ERR_TYPE = -5,
    IHEX_ERR_DIGIT = -7,
    IHEX_ERR_SUM = -8,       // check sum; also a base address record whose count is not 2
    IHEX_ERR_END = -11,      // end record with data
    IHEX_ERR_UNKNOWN = -111, // another type of record, start addresses among them
};

// `n` hexadecimal digits. 0; -1 not a digit; -2 a lower-case letter (GetUHEXN only).
// *result is set on success only.
int IHEX167_GetUHEXN(const char *text, int n, uint32_t *result);  // upper case
int IHEX167_GetUHEXNi(const char *text, int n, uint32_t *result); // both cases

int IHEX167_Is_block_ok(const IHEX167_Block *block);                     // 1 valid, else 0
int IHEX167_Is_block_eq(const IHEX167_Block *a, const IHEX167_Block *b); // 1 equal, else 0
// Appends a block that begins where the destination ends; an empty destination becomes a
// copy. 0, or -1 with the destination as it was.
int IHEX167_Join_block(IHEX167_Block *destination, const IHEX167_Block *source);

// Reads the next line of an open text file (a TXFR handle) and parses it. *base is kept
// from line to line and begins with 0. An IHEX167_Result; lines of up to 254 characters.
int IHEX167_Parse_line(IHEX167_Block *block, int textFile, uint32_t *base);
// The same for a line at hand.
int IHEX167_Parse_text(IHEX167_Block *block, const char *line, size_t length, uint32_t *base);

#endif
