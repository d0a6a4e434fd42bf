// Script files: monitor lines with comments, labels, jumps and an error label.
#ifndef CONSOLE_SCRIPT_SCRIPT_H
#define CONSOLE_SCRIPT_SCRIPT_H

#include <string>

constexpr int SCRIPT_DEPTH_MAX = 8;           // scripts started by scripts
constexpr int SCRIPT_INNER_LINES_MAX = 10000; // lines of scripts started by one script, in all
constexpr int SCRIPT_NOT_OPENED = -1;

// 0 at the end of the file; -1 cannot be opened; -2 - k for an error on line k.
// ".scr" is appended when the name as given cannot be opened.
int ExecMonScript(const char *fileName, int panel);
// The same for a user: STATION is what it was afterwards, a failure is printed.
int SCR_RunAndReport(const std::string &fileName, int panel);
// Tells the user how the script ended: which line failed, how many the gate refused.
void SCR_ReportResult(const std::string &fileName, int result);
// What the console says about a result of ExecMonScript; "" for 0.
std::string SCR_GetResultText(int result);

// A jump asked for by a command: taken before the next line is read.
extern bool SCR_bGotoCmd;
extern std::string SCR_szGotoLabel;
// The command `exit`: ends the script it stands in.
extern bool SCR_isExit;

#endif
