// The monitor console: line entry with history, the C166 and TMS line interpreters,
// value entry and help. Prints to the console panel's text box.
#ifndef CONSOLE_MONITOR_H
#define CONSOLE_MONITOR_H

#include <cstdint>
#include <string>

enum { CMD_C166 = 0, CMD_TMS = 1, CMD_MAP_NAME = 3, CMD_WRITE_C166 = 5, CMD_WRITE_TMS = 6 };

extern int32_t command;    // CMD_...
extern int32_t nASC_Opened; // command lines that hold the link open
extern uint32_t dwAddr;    // current address of the monitor
extern std::string szScrFnErrMsg; // error text of the last script command

int StrinCB(int panel, int control, int event, int data);
int RunMonitor(int panel, const char *line);    // 0, or negative
int RunTMSMonitor(int panel, const char *line);
void PrintMonStr(const std::string &text); // appends a line to the console
void PrintCmdHelp(int panel);
void PrintTmsCmdHelp(int panel);
const char *VR1_GetCpuPrompt();
int WriteD(int panel, const char *text);
int WriteT(int panel, const char *text);
int LoadMapFile(int panel, const char *name);
int RdMapFile(int panel, const char *text);

#endif
