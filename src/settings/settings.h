// The process-wide settings and their enumerations: data only, read by every room above.
// The menus, the console, the command line and the settings file change them; the room
// that changes one tells whom it concerns.
#ifndef SETTINGS_SETTINGS_H
#define SETTINGS_SETTINGS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

enum { CPU_C166 = 0, CPU_C167 = 1, CPU_F283XX = 10, CPU_F2803X = 11 };
enum { PROTOCOL_MR166 = 1, PROTOCOL_MODBUS = 2 };
enum { LANGUAGE_CZ = 0, LANGUAGE_EN = 1, LANGUAGE_RU = 2 };
enum { MODE_NORMAL = 0, MODE_CONFIGURATION = 1 };

constexpr size_t PATH_MAX_CHARS = 260; // a path must be shorter
constexpr int RECENT_MAX = 9;

// --- the target and the line to it ---------------------------------------------------
extern int32_t Procesor;          // CPU_...
extern int16_t VR_nProtocol;      // PROTOCOL_...
extern int32_t ncom;              // serial port number
extern int32_t bRate;             // baud
extern int32_t STATION;           // 0..15 (mr166), slave address (Modbus)
extern int32_t Option_AutoOff;    // switch communication off after repeated errors
extern int32_t Option_ComWin32;   // 1 = Win32 driver, 0 = the run-time's RS-232 library
extern int32_t Option_Echo;       // Modbus: the two-wire line echoes what is sent
extern bool VR_isEchoOnce;        // ... by an option of this run: not kept in the settings
extern int32_t Option_nSweepRate; // sweeps of the watch list a second; 0 = as the line allows
extern int32_t Option_nLanguage;  // of listings: LANGUAGE_...
extern int32_t isTimer;           // communication switched on

// --- the program ---------------------------------------------------------------------
extern int32_t VR_enAppMode; // MODE_...
extern std::string VR_szVersion;
extern int32_t oldTimer;         // isTimer to restore when the console view is left
extern bool VR_isWatchView;      // the watch view is shown, not the console; kept in the settings
extern int32_t oldHeight;        // last accepted height of the main panel, pixels
extern bool VR_isFullCommandSet; // every console command is admitted, not only the short list
extern bool VR_isFullOnce;       // ... by an option of this run: not kept in the settings
extern int mainPanel, consolePanel; // handles, 0 before start-up

// --- files ---------------------------------------------------------------------------
extern int32_t IsDBGChange; // the watch list has unsaved changes
extern std::string szDebugFileName;
extern std::array<std::string, RECENT_MAX> szaDebugFileNames; // newest first
extern int32_t nDebugFileNames;
extern std::string szMapFileName;

// Whether a processor counts addresses in 16-bit words (the TMS320 family).
constexpr bool IsWordAddressing(int processor)
{
    return processor == CPU_F283XX || processor == CPU_F2803X;
}

#endif
