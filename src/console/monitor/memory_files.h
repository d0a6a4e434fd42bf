// The monitor's own text files of memory: a first line "int" or "float", then a number
// a line. The link is held by the caller.
#ifndef CONSOLE_MONITOR_MEMORY_FILES_H
#define CONSOLE_MONITOR_MEMORY_FILES_H

enum CON_FileResult {
    CON_FILE_ERR_LINK = -1,
    CON_FILE_ERR_OPEN = -2,
    CON_ERR_ARGUMENTS = -2, // by the same number: the help was printed
    CON_FILE_ERR_FORMAT = -4
};

// `text` is what follows the command's letter: "i3C000, file, 10" of a store (kind, address,
// file, items), "3C000, file" of a load. The address becomes the monitor's. 0, or an MFL_ code
// whose message was printed.
int store(int panel, const char *text);      // C166
int store_addr(int panel, const char *text); // TMS
int load(int panel, const char *text);       // C166
int load_addr(int panel, const char *text);  // TMS

#endif
