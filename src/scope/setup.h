// What the user sets of the scope, as plain data, and its text file: the settings beside
// the program ("DtaScope.ini") and those saved by name have the same form, which
// docs/manual/reference/formats.md describes.
#ifndef SCOPE_SETUP_H
#define SCOPE_SETUP_H

#include "scope/scope.h"

#include <array>
#include <string>
#include <vector>

constexpr int SCP_LINES_MAX = 1000; // of a settings file

struct SCP_ChannelSetup {
    bool isOn = false;
    std::string place; // variable, address text or "[hex]"
    int type = SX_I2;
    std::string unit;
    double factor = 1, offset = 0; // shown value = sample * factor + offset
};

struct SCP_Setup {
    std::string id; // prefix of the scope; "" = the processor's default
    int subPd = 1;  // 1 keeps every sample
    int mode = 0;   // 0 rising, 1 falling, 2 free run
    int slope = 1;  // as SetTriggerMode takes it
    double level = 0;
    double position = 50; // percent of the record that lies before the trigger
    std::array<SCP_ChannelSetup, SX_CHANNELS_MAX> channels;
    std::vector<std::string> lines; // of the file as read: comments and unknown ones survive
};

// 0, or -1 when the file cannot be read (the setup is as it was). Lines with a known key and
// a bad value are named in *problems ("line 3: ..."), and the value stays the default.
int SCP_LoadSetup(const std::string &path, SCP_Setup *setup, std::vector<std::string> *problems);
// Known lines are replaced where they stand, new ones follow. 0, or -1: the old file is
// untouched.
int SCP_SaveSetup(const std::string &path, const SCP_Setup &setup);
// One line into the setup: 1 taken, 0 no line of ours, -1 a bad value.
int SCP_ParseSetupLine(const std::string &line, SCP_Setup *setup);

// The shortest text that reads back to the same number; "" when it is none. With a point
// everywhere.
std::string SCP_NumberText(double value);

// Byte address of a channel's place, or 0xFFFFFFFF.
uint32_t SCP_ResolvePlace(const std::string &place);

#endif
