// Where the settings files stand: in the folder the program was started in, so that a folder a
// machine keeps everything apart; where nothing can be written there (a program folder, a CD), in
// the user's own. For whoever reads or writes a settings file, at the start.
#ifndef PLATFORM_SETTINGS_PLACE_H
#define PLATFORM_SETTINGS_PLACE_H

#include <string>

struct PLT_SettingsPlace {
    std::string write;  // path of the file at the program's end
    std::string read;   // the same, or the started-in folder's while the user has none of his own
    bool isUsersFolder; // then what the file names must be named by whole paths
};

// The place of a settings file by its bare name. Tries to write, for permissions alone do not
// tell; leaves nothing behind. With neither folder to be written, the first one is answered.
PLT_SettingsPlace PLT_FindSettingsPlace(const std::string &name);

#endif
