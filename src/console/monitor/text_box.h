// The console's text: printed lines, its bound, and what a user does with it as a
// whole (copy, save to a file). The text box of the console panel holds it.
#ifndef CONSOLE_MONITOR_TEXT_BOX_H
#define CONSOLE_MONITOR_TEXT_BOX_H

#include <string>

void CON_Print(const char *format, ...) __attribute__((format(printf, 1, 2)));
void CON_ScrollToEnd();
void CON_SetPrompt(const std::string &prompt); // in front of the input field
void CON_ShowModePrompt();                     // the prompt of the current mode 0 or 1

void CON_RefuseLongLine();                 // says that a line above LINE_CHARS_MAX was not run
std::string CON_GetText();                 // all lines, separated by "\n"
int CON_SaveText(const std::string &path); // 0, or -1: the file that was there is untouched

// Menu items; each asks what it needs to know.
void CON_RunScriptCB(int menuBar, int item); // shows the console view first
void CON_SaveTextCB(int menuBar, int item);
void CON_CopyTextCB(int menuBar, int item);
void CON_ClearTextCB(int menuBar, int item);

#endif
