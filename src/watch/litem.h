// The watch list: its items, the debug file they come from and the question whether
// to save changes. Owns aLItems.
#ifndef WATCH_LITEM_H
#define WATCH_LITEM_H

#include <cstdint>
#include <string>

constexpr int LITEMS_MAX = 500;

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
    uint16_t readTick = 0;         // low 16 bits of the millisecond tick
    uint16_t previousReadTick = 0;
    int32_t station = -1;          // from the line's prefix, or -1
};

extern LItem aLItems[LITEMS_MAX];
extern int nLItems;
extern int openLItems; // a debug file has been loaded
extern int readLItems; // a value has been read since

int dat2litems(const char *path); // 0, or -2: cannot be opened, list unchanged
// Splits at commas into at most maxFields trimmed fields of at most 120 characters.
// 1 and the count, or 0 when there are more (count untouched).
int parseLine(const char *line, int maxFields, int *count, std::string *fields);
void getTypeLItem(int count, const char *typeField);
int parseStationModifier(char *text);
void completeLItems(const struct VarNode *nodes, int count);
void completeTMSLItems(const struct VarNode *nodes, int count);
void CleanLItems();

int LoadDbgFile(int panel);
int IsDbgFileChanged();
int SaveDbg(int panel);
int SaveDbgAs(int panel);
int DbgChngSafety(); // 0 go on, -1 stop
void VR_FillDebugItems();
void ResetLItemsDisplay();

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
