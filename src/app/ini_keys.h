// The keys of the settings file and what each does, one row a key. Owns what is known of the
// file while it is read and what must be kept for writing it again. Only ini_file.cpp calls
// this.
#ifndef APP_INI_KEYS_H
#define APP_INI_KEYS_H

#include <cstdint>
#include <string>
#include <vector>

constexpr char APP_RATE_FAST[] = "fast"; // sweeps a second: as the line allows

// Files that could not be opened, as their lines had them: written again unless another
// file has taken the place.
struct APP_KeptFiles {
    std::string map, tmsMap, types, debugFile;
};

// A number and the line that gave it; the menus may have changed it since.
struct APP_NumberLine {
    int line = 0; // 0: no line
    int32_t value = 0;
};

struct APP_SettingReading {
    int lineNumber = 0;
    std::string lineValue; // all that stands behind the key, as it stands
    std::vector<std::string> problems;
    APP_KeptFiles kept;
    APP_NumberLine baud, port, station;
};
extern APP_SettingReading APP_settingReading;

struct APP_SettingKey {
    const char *key; // '#' stands for a digit from 1
    bool isPath;
    void (*read)(const std::string &key, const std::string &value);
};
const APP_SettingKey *APP_FindKey(const std::string &text); // null: no such key

// The words of the file for a setting; null when it has none.
const char *APP_ProcessorWord(int processor);
const char *APP_ProtocolWord(int protocol);

#endif
