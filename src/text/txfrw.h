// Whole text files in memory as lines, addressed by small handles (0 to 9): read,
// edit, append formatted output, compare with the disk, save. -1 for a bad handle.
// A line read from disk holds at most 998 characters (a longer one makes the opening
// fail), one taken from memory 999; a NUL ends its line's text.
#ifndef TEXT_TXFRW_H
#define TEXT_TXFRW_H

#include <cstddef>

constexpr int TXFRW_MAX = 10;
constexpr int TXFRW_LINES_MAX = 9999;

// `mode`: "r", "w", "rw" or "wr" in either case. In read mode the file is loaded.
int TXFRW_Open(const char *fileName, const char *mode);
int TXFRW_Create(const char *fileName, const char *mode, const char *buffer, size_t length);
int TXFRW_SetFileMode(int handle, const char *mode); // the new mode bits, or -1
int TXFRW_SetFileName(int handle, const char *fileName);
const char *TXFRW_GetFileNamePtr(int handle); // null for a bad handle
int TXFRW_GetCnLines(int handle);
int TXFRW_IsOpened(int handle); // 1 or 0
// Null outside the table; good until that line is changed or deleted.
const char *TXFRW_GetLinePtr(int handle, int line);
int TXFRW_SetLine(int handle, int line, const char *text);
int TXFRW_AppendLine(int handle, const char *text);
// Before `line`; a negative one inserts at the working line number and advances it.
int TXFRW_InsertLine(int handle, int line, const char *text);
int TXFRW_DeleteLine(int handle, int line);
int TXFRW_SetWrkLineNo(int handle, int line);
int TXFRW_GetWrkLineNo(int handle);
int TXFRW_ReadLine(int handle, char *buffer, int size); // length, or -1 at the end
// Adds to the working line; each CR, LF or CR LF in the text starts a new one. At most 999
// characters a call. The number added, or -1 with nothing changed when the lines run out.
int TXFRW_printf(int handle, const char *format, ...) __attribute__((format(printf, 2, 3)));
int TXFRW_IsCtsOnDisk(int handle); // 1 same, 0 different, -1 unreadable
int TXFRW_Save(int handle);        // 0, or -1: the old file is untouched
int TXFRW_Close(int handle);

#endif
