// The watch list: its items, the debug file they come from and the question whether
// to save changes. Owns aLItems.
#ifndef WATCH_LIST_LITEM_H
#define WATCH_LIST_LITEM_H

#include <cstddef>
#include <cstdint>
#include <string>

constexpr int LITEMS_MAX = 500;
constexpr uint32_t LITEM_NO_ADDRESS = 0xFFFFFFFFu;
constexpr size_t LITEM_FIELD_MAX = 120; // characters of one field of a line
constexpr int LITEM_LINE_MAX = 511;     // characters; a longer line goes on as the next one

struct LItem {
    std::string name;              // "&name" for a TMS320 item; "" or "&" for an address only
    uint32_t address = 0xFFFFFFFF; // 0xFFFFFFFF = not resolved
    int32_t explicitAddress = 0;   // the line gave a name and an address
    uint32_t value = 0;            // low 32 bits of the last value read
    uint32_t valueHigh = 0;        // high 32 bits of an 8-byte value
    int32_t readError = 0;         // the last read failed
    int32_t size = 2;              // 1, 2, 4 or 8 bytes
    char type = 'i';               // b f t i u x p
    uint32_t previousValue = 0;
    uint16_t readTick = 0; // low 16 bits of the millisecond tick
    uint16_t previousReadTick = 0;
    int32_t station = -1; // from the line's prefix, or -1

    // The address given by the file or the user, until a name resolves: it survives
    // forgetting the resolved addresses when another map is loaded.
    uint32_t givenAddress = 0xFFFFFFFF;
    bool isValueGood = false; // `value` is from a good read
    uint32_t lastReadMs = 0;  // readTick with its high bits: it comes round every 65 s
    std::string reason;       // why the last read failed, "" when it did not
};

extern LItem aLItems[LITEMS_MAX];
extern int nLItems;
extern int openLItems; // a debug file has been loaded
extern int readLItems; // a value has been read since

// Loads a debug file in place of the list and resolves its names. 0, also when the file
// holds more than LITEMS_MAX items (message box; the first ones stay, unresolved);
// -2: cannot be opened, list unchanged.
int dat2litems(const char *path);
// Splits at commas into at most maxFields trimmed fields of at most 120 characters.
// 1 and the count, or 0 when there are more (count untouched).
int parseLine(const char *line, int maxFields, int *count, std::string *fields);
// Type and size of the item being built, aLItems[nLItems]; `count` is not used.
void getTypeLItem(int count, const char *typeField);
// The same for any item.
void LIT_SetType(LItem *item, const char *typeField);
// Strips "3:" and returns the station (0..15), or returns -1 and leaves the text alone.
int parseStationModifier(char *text);
// Resolves the C166 (TMS320) items against a table; the rest stays as it is.
void completeLItems(const struct VarNode *nodes, int count);
void completeTMSLItems(const struct VarNode *nodes, int count);
// Resolves one item against every table that is loaded and meant for it.
void LIT_Resolve(LItem *item);
// Looks up every C166 (or every TMS320) item as if its list had just been loaded: a name
// that the tables no longer know loses the address it had from them.
void LIT_ResolveAll(bool isTMS);
void CleanLItems(); // forgets every resolved address

bool LIT_IsTMS(const LItem &item);
// The item can be read at all: resolved, and below the limit of target addresses.
bool LIT_HasAddress(const LItem &item);
std::string LIT_Label(const LItem &item);    // its name, or "[0x1F00]" without one
std::string LIT_FileLine(const LItem &item); // the item's line of the debug file, no line end

int LoadDbgFile(int panel); // 0 loaded, -1 cancelled, -2 cannot be opened
int IsDbgFileChanged();     // 1 when the file's time differs from the one last seen
int SaveDbg(int panel);     // 1 saved, 0 cancelled, -1 not saved (reported)
int SaveDbgAs(int panel);   // 1 a name was chosen, 0 cancelled, -1 nothing to save
int DbgChngSafety();        // 0 go on, -1 stop
void VR_FillDebugItems();   // only once a debug file has been loaded
void ResetLItemsDisplay();

// For the main panel when its window is activated: asks whether to load the debug file
// again when it has changed on disk. 1 loaded, 0 not changed or not wanted, -2 failed.
int DBG_CheckReload(int panel);

// Menu and button callbacks.
void OpenDatCB(int menuBar, int item);
void SaveDbgCB(int menuBar, int item);
void SaveDbgAsCB(int menuBar, int item);
void ReloadDbgCB(int menuBar, int item);
void EditDbgCB(int menuBar, int item);
void MenuReopenFileCB(int menuBar, int item);
int RldDbgBtnCB(int panel, int control, int event, int data);
int DbgFileBtnCB(int panel, int control, int event, int data);
int SaveDbgBtnCB(int panel, int control, int event, int data);
// The ids of the recent-file menu items, set by the main panel's refresh; 0 = none.
extern int anRecentItems[9];

#endif
