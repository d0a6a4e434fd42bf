// How the user opens and reloads maps and type maps: dialogs, the remembered file and its
// time stamp, menu and button callbacks.
#ifndef WATCH_WINDOWS_MAP_LOADING_H
#define WATCH_WINDOWS_MAP_LOADING_H

#include <string>

enum { LOADMAP_C166 = 0, LOADMAP_TMS = 1, LOADMAP_RELOAD = 0x1000 };
int LoadMap(int mode); // 0 loaded, negative not

// "2015-03-07/14:05:09"; 0, or -1 when the file cannot be examined.
int GetFileStamp(std::string *text, const char *fileName);
extern std::string szMapFileStamp; // of the last map file loaded

// After a map was loaded from a file: the settings save its name and the reload key reads it
// again. A TMS320 map beside a C166 map is not that one, and changes nothing.
void WIN_RememberMap(const std::string &path, bool isTMS);
// Loads a type map. 0, or -1 with the loaded one as it was; *message says what happened.
int WIN_OpenTypeMap(const std::string &path, std::string *message);

// Offers to switch communication on, then reads the map from the end of the target's flash.
int LoadFlash();

// Menu and button callbacks.
void OpenMapCB(int menuBar, int item);
void ReloadMapFile(int menuBar, int item);
void OpenTypeMapCB(int menuBar, int item);
int MapBtnCB(int panel, int control, int event, int data);

#endif
