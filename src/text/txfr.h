// Text files as a stream of lines, addressed by small handles (0 to 199). CR, LF,
// CR LF and LF CR each end a line; a NUL ends the text of its line, the rest of which is
// skipped, but counts for the line's length; a byte order mark at the start is no text.
// Every call answers -1 for a bad handle.
#ifndef TEXT_TXFR_H
#define TEXT_TXFR_H

#include <cstddef>
#include <string>

constexpr int TXFR_MAX = 200;

// Handle, or -1: none is free, or no plain file of at most 128 MiB that can be read.
int TXFR_Open(const char *fileName);
// The same over a copy of a text in memory.
int TXFR_OpenMemory(const char *text, size_t length);
// Length of the next line (without its end), or -1 at the end of the file, which
// also closes the handle. A line that does not fit comes in pieces of size - 1; one of
// exactly size - 1 is followed by an empty piece. No buffer, or one below 2 characters,
// closes the handle and answers -1.
int TXFR_RdLine(int handle, char *buffer, int size);
// The next line as a string: at most size - 1 characters, or whole with a negative size.
int TXFR_RdNewLine(int handle, std::string *line, int size);
int TXFR_IsBrokenLine(int handle); // 1: the last line returned goes on
int TXFR_GetLineNo(int handle);    // number of the line last returned, from 1
long TXFR_GetFilePos(int handle);  // characters of the lines returned, their ends included
int TXFR_Close(int handle);

#endif
