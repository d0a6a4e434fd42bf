// The settings file: read once at start-up, written whole at the end.
#ifndef APP_INI_FILE_H
#define APP_INI_FILE_H

int OpenIniFile(int panel); // 0, or -2 when there is none
int SaveIniFile();          // 0, or -1: the file that was there is untouched

#endif
