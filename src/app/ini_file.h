// The settings file: read once at start-up, written whole at the end.
#ifndef APP_INI_FILE_H
#define APP_INI_FILE_H

#include <string>

// Applies every line. What cannot be read or meant is said once, in the message area: all of
// it together. 0, or -2 when there is no file; the register names are known either way.
int OpenIniFile(int panel);
// 0, also when the file says all that already; or -1: it is untouched, and a message says so.
int SaveIniFile();
bool APP_IsSettingsMissing(); // there was no settings file at start
// Baud rate, port or station that the file gave, that are still in force and that cannot be
// meant, with their lines; "" when all is well.
std::string APP_GetRangeProblem();

#endif
