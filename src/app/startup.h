// The program from its first line to the event loop, and its orderly end. The two mains
// call VR_Main; what ends the program from inside calls ExitApplication.
#ifndef APP_STARTUP_H
#define APP_STARTUP_H

// Everything up to the event loop. 0, or -1 when the run-time or a panel fails.
int VR_StartUp(int argc, char **argv);
// VR_StartUp, then the event loop. The program's exit code.
int VR_Main(int argc, char **argv);
// A script named on the command line: whether one was run, and its result.
extern bool VR_isScriptRun;
extern int VR_nScriptResult;

int GetCmdLineOptions(int argc, char **argv); // index of the first non-option

int ExitApplication(int panel); // 0; -1 when the user cancelled
void ExitCB(int menuBar, int item);

#endif
