// The chief header: process-wide settings that every module reads, and the spine
// of the program (start-up, communication on and off, the main panel, shutdown).
#ifndef APP_VR_H
#define APP_VR_H

#include <string>

#include "settings/settings.h"

// --- start and end ---------------------------------------------------------------
// Everything up to the event loop. 0, or -1 when the run-time or a panel fails.
int VR_StartUp(int argc, char **argv);
// VR_StartUp, then the event loop. The program's exit code.
int VR_Main(int argc, char **argv);
// A script named on the command line: whether one was run, and its result.
extern bool VR_isScriptRun;
extern int VR_nScriptResult;

int GetCmdLineOptions(int argc, char **argv); // index of the first non-option
// Fills VR_szVersion; "" when the version block cannot be read. The path is not used.
void GetVRVersion(const char *programPath);
const char *VR_GetBuildVersion(); // of this program: "1.2.3"

struct VR_DllFn {
    const char *name;
    void *address;
};
// 0 all resolved; -1 no such library; -2 no entry, or not every entry resolved.
int VR_LoadDllFnTable(const char *dllName, int count, VR_DllFn *table);
void *VR_GetDllFn(const char *name, int count, const VR_DllFn *table); // null when absent

int ExitApplication(int panel); // 0; -1 when the user cancelled
void DisplayHelp();
std::string VR_FindHelpFile(); // path of the help text, "" when it is not installed

// --- communication -----------------------------------------------------------------
void Error(const std::string &message); // communication off, then a pop-up "Error"
void VR_ComRequest();
bool VR_EnsureCom(); // the same; whether communication is on then
void VIR2_StartPeriodicASC();
void VIR2_StopPeriodicASC();
int Check_ASC_Open(int result);
// Opens the link as the settings say, without a word to the user. 0 or negative.
int VR_OpenLink();
// Takes an unplugged port again once it is back, and says both in the message area.
void VR_FollowPort();
void VR_AutoOff(const std::string &why); // communication off after failed reads, and says so
void VIR2_SetStation(int station);
// Makes switch, indicator and menu show whether communication is on and the port open.
void VR_ShowComState();
// Brings open statistics and trace windows up to date where their timers do not run: when
// communication was switched or a console line has used the link.
void VR_ShowDiagnostics();
// After a change of port, baud rate or the like: opens the link anew if communication is on.
void VR_Reopen();

// --- main panel ----------------------------------------------------------------------
void SetMainPanelTitle();
void SetMainPanelStateLine();
void SetMainPanelAttributes();
void AddDebugFileName(const std::string &path);
void VR_ShowMessage(const std::string &text); // message area of the main panel
// Enables what has something to act on (items, a debug file, a map) and dims the rest.
void VR_EnableControls();
// After another processor was selected: looks up the C166 items' names again and places
// the members of structures as that processor does. A register that it does not have is
// not resolved any more.
void VR_ResolveWatchList();
// Brings console panel, text box and input line to the main panel's height.
void VR_SizeConsole(int height);

// --- settings file -------------------------------------------------------------------
int OpenIniFile(int panel); // 0, or -2 when there is none
int SaveIniFile();          // 0, or -1: the file that was there is untouched

// --- callbacks -----------------------------------------------------------------------
int PanelCB(int panel, int event, int data);
int ConfigPanelCB(int panel, int event,
                  int data); // in configuration mode its close ends the program
int CommSwitchCB(int panel, int control, int event, int data);
void WindowCB(int menuBar, int item);
void ExitCB(int menuBar, int item);
void HelpCB(int menuBar, int item);
void AboutCB(int menuBar, int item);
void ConnectCB(int menuBar, int item);
void BRateCB(int menuBar, int item);
void PortCB(int menuBar, int item);
void StationCB(int menuBar, int item);
void ProcesorCB(int menuBar, int item);
void ProtocolCB(int menuBar, int item);
void ComWin32CB(int menuBar, int item);
void AutoOffCB(int menuBar, int item);
void ClosePortCB(int menuBar, int item);
void FullCommandsCB(int menuBar, int item);

#endif
