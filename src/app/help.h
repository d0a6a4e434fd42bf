// The help text and the about box.
#ifndef APP_HELP_H
#define APP_HELP_H

#include <string>

void DisplayHelp();
std::string VR_FindHelpFile(); // path of the help text, "" when it is not installed

void HelpCB(int menuBar, int item);
void AboutCB(int menuBar, int item);

#endif
