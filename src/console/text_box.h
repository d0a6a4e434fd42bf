// The console's text: formatted lines, its bound, and what a user does with it as a
// whole (copy, save to a file). The text box of the console panel holds it.
#ifndef CONSOLE_TEXT_BOX_H
#define CONSOLE_TEXT_BOX_H

#include <string>

std::string CON_Format(const char *format, ...) __attribute__((format(printf, 1, 2)));
void CON_Print(const char *format, ...) __attribute__((format(printf, 1, 2)));
void CON_ScrollToEnd();
void CON_SetPrompt(const std::string &prompt); // in front of the input field
void CON_ShowModePrompt();                     // the prompt of the current mode 0 or 1

std::string CON_GetText();                 // all lines, separated by "\n"
int CON_SaveText(const std::string &path); // 0, or -1: the file that was there is untouched

// For buttons and keys of the console panel; each asks what it needs to know.
int CON_CopyTextCB(int panel, int control, int event, int data);
int CON_SaveTextCB(int panel, int control, int event, int data);
int CON_RunScriptCB(int panel, int control, int event, int data);

#endif
