// Script files and the command table they share with the console.
#ifndef CONSOLE_SCRIPT_H
#define CONSOLE_SCRIPT_H

// 0 at the end of the file; -1 cannot be opened; -2 - k for an error on line k.
int ExecMonScript(const char *fileName, int panel);

#endif
