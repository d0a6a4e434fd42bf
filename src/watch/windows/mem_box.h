// The memory box under the watch list as a table for other programs.
#ifndef WATCH_WINDOWS_MEM_BOX_H
#define WATCH_WINDOWS_MEM_BOX_H

#include <string>

// What the box shows, a line a row, its cells separated by tabs: of raw memory every byte
// and the characters, of typed or TMS320 memory every column.
std::string MBX_TabbedText();

#endif
