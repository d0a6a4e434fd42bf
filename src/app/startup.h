// The program from its first line to the event loop, and its orderly end. The two mains
// call VR_Main; what ends the program from inside calls ExitApplication.
#ifndef APP_STARTUP_H
#define APP_STARTUP_H

#include <string>
#include <vector>

// Everything up to the event loop. 0, or -1 when the run-time or a panel fails.
int VR_StartUp(int argc, char **argv);
// VR_StartUp, then the event loop. The program's exit code.
int VR_Main(int argc, char **argv);
// A script named on the command line: whether one was run, and its result.
extern bool VR_isScriptRun;
extern int VR_nScriptResult;

int GetCmdLineOptions(int argc, char **argv); // index of the first non-option
// What the command line holds without effect, or what is taken otherwise than typed: a
// sentence each, to be read once the settings have been read.
std::vector<std::string> VR_GetCmdLineRemarks(int argc, char **argv);

// A type map named on the command line, "" for none; read behind the settings. One that
// cannot be read is said and no script runs, because values would have wrong types.
extern std::string VR_szTypesOption;
extern bool VR_isTypesFailed;
// Takes "--types FILE" and "--types=FILE" out of the arguments. 0, or -1 without a file.
int VR_RemoveTypesOption(int *argc, char **argv);

int ExitApplication(int panel); // 0; -1 when the user cancelled
void ExitCB(int menuBar, int item);

#endif
