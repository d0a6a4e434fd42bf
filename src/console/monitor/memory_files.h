// The monitor's own text files of memory: a first line "int" or "float", then a number
// a line. The link is held by the caller.
#ifndef CONSOLE_MONITOR_MEMORY_FILES_H
#define CONSOLE_MONITOR_MEMORY_FILES_H

#include <cstdint>
#include <string>

struct MemoryFileRequest {
    bool isFloat = false; // store only
    uint32_t address = 0;
    std::string fileName;
    uint32_t count = 0; // store only
};

enum MFL_Result { MFL_ERR_LINK = -1, MFL_ERR_OPEN = -2, MFL_ERR_FORMAT = -4 };

// "i3C000, file, 10" and "3C000, file"; what follows the command's letter.
bool MFL_ParseStore(const char *text, MemoryFileRequest *request);
bool MFL_ParseLoad(const char *text, MemoryFileRequest *request);

// 0, or an MFL_ code whose message was printed.
int store(int panel, const MemoryFileRequest &request);      // C166
int store_addr(int panel, const MemoryFileRequest &request); // TMS
int load(int panel, const MemoryFileRequest &request);
int load_addr(int panel, const MemoryFileRequest &request);

#endif
