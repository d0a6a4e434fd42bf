// The keys of the settings file and what each does, one row a key. Owns what is known of the
// file while it is read and what must be kept for writing it again. Only ini_file.cpp calls
// this.
#ifndef APP_INI_KEYS_H
#define APP_INI_KEYS_H

#include <cstdint>
#include <string>
#include <vector>

constexpr char INI_RATE_FAST[] = "fast"; // sweeps a second: as the line allows

// Files that could not be opened, as their lines had them: written again unless another
// file has taken the place.
struct INI_KeptFiles {
    std::string map, tmsMap, types, debugFile;
};

// A number and the line that gave it; the menus may have changed it since.
struct INI_NumberLine {
    int line = 0; // 0: no line
    int32_t value = 0;
};

struct INI_Reading {
    int lineNumber = 0;
    std::string lineValue; // all that stands behind the key, as it stands
    std::vector<std::string> problems;
    INI_KeptFiles kept;
    INI_NumberLine baud, port, station;
};
extern INI_Reading INI_reading;

struct INI_Key {
    const char *key; // '#' stands for a digit from 1
    bool isPath;
    void (*read)(const std::string &key, const std::string &value);
};
const INI_Key *INI_FindKey(const std::string &text); // null: no such key

// The words of the file for a setting; null when it has none.
const char *INI_ProcessorWord(int processor);
const char *INI_ProtocolWord(int protocol);

#endif
