// Linker map files: the C166 format (".m66") and the TMS320C28x format (".m28xt"),
// and how the user loads them.
#ifndef SYMBOLS_MAPFILE_H
#define SYMBOLS_MAPFILE_H

#include <string>

int ReadMap(const char *fileName);      // 0, or -2: cannot be opened
int Read_TMS_Map(const char *fileName); // 0, or -2
int map2node(const char *fileName);     // read, remember the name, resolve the watch list
int TMSmap2node(const char *fileName);

bool IsHexAddr(const char *text);
bool IsTMSHexAddr(const char *text);
bool isID166(const char *text);
bool cmp_sz2szID(const char *text, const char *word);
bool cmp_sz2szID_Start(const char *text, const char *word);
bool cmp_sz2aszKeyword(const char *text, const char *const *table, int count);
bool cmp_sz2aszKwdStart(const char *text, const char *const *table, int count);

enum { LOADMAP_C166 = 0, LOADMAP_TMS = 1, LOADMAP_RELOAD = 0x1000 };
int LoadMap(int mode); // 0 loaded, negative not

// "2015-03-07/14:05:09"; 0, or -1 when the file cannot be examined.
int GetFileStamp(std::string *text, const char *fileName);
extern std::string szMapFileStamp; // of the last map file loaded

// Menu and button callbacks.
void OpenMapCB(int menuBar, int item);
void ReloadMapFile(int menuBar, int item);
void OpenTypeMapCB(int menuBar, int item);
int MapBtnCB(int panel, int control, int event, int data);

#endif
