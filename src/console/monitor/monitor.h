// The monitor console: line entry with history, the C166 and TMS line interpreters,
// value entry and help. Prints to the console panel's text box. Owns the console's
// mode, its history and the current address.
#ifndef CONSOLE_MONITOR_MONITOR_H
#define CONSOLE_MONITOR_MONITOR_H

#include <array>
#include <cstdint>
#include <string>

enum { CMD_C166 = 0, CMD_TMS = 1, CMD_MAP_NAME = 3, CMD_WRITE_C166 = 5, CMD_WRITE_TMS = 6 };

constexpr int HISTORY_LINES = 10;
constexpr size_t HISTORY_CHARS = 119;   // a longer line is kept cut
constexpr size_t LINE_CHARS_MAX = 500;  // of a typed line and of a script line
constexpr int CONSOLE_LINES_MAX = 5000; // the oldest lines of the text box go first

extern int32_t command;           // CMD_...
extern int32_t nASC_Opened;       // command lines that hold the link open
extern uint32_t dwAddr;           // current address of the monitor
extern std::string szScrFnErrMsg; // error text of the last script command

// The history: a ring. iOldCmd is the next slot to write, iOldCmd2 the one shown.
extern std::array<std::string, HISTORY_LINES> aOldCommand;
extern int iOldCmd;
extern int iOldCmd2;

// --- line entry ----------------------------------------------------------------------
// The input field: Enter runs the line, Escape clears it, Down and Up walk the
// history (Down to the older line), Tab completes, F6 runs a script, F7 saves and F8
// copies the console's text. 1 for a key that is swallowed.
int StrinCB(int panel, int control, int event, int data);
// The command `exit` was given at the prompt (not in a script). StrinCB leaves it set
// for a face without a watch view to leave to.
extern bool CON_isExit;

// --- line interpreters: 0, or negative ---------------------------------------------------
extern int CON_nRefused; // lines the gate refused since the last line was entered or script begun
extern int CON_nUnknown; // those of them that the full command set does not know either
extern int CON_nFailed;  // lines entered at the prompt that were refused or failed
int RunMonitor(int panel, const char *line);
int RunTMSMonitor(int panel, const char *line);
bool CON_IsGateWord(const char *line);   // its first word passes without the full command set
int WriteD(int panel, const char *text); // value entry, C166
int WriteT(int panel, const char *text); // value entry, TMS
int LoadMapFile(int panel, const char *name);
int RdMapFile(int panel, const char *text); // text: what follows the letter "m"

// --- output ------------------------------------------------------------------------------
void PrintMonStr(
    const std::string &text); // appends a line to the console; "\n" inside starts another
void PrintCmdHelp(int panel);
void PrintTmsCmdHelp(int panel);
const char *VR1_GetCpuPrompt();

#endif
