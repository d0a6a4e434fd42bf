// What the operating system does for platform/child.h. Two files implement it (POSIX, Win32).
#ifndef PLATFORM_CHILD_PROCESS_H
#define PLATFORM_CHILD_PROCESS_H

#include <cstddef>
#include <string>
#include <vector>

struct PLT_Process; // owns the process and this end of its pipes

extern const char PLT_PROGRAM_ENDING[]; // of a program's file name
PLT_Process *
PLT_SpawnProcess(const std::vector<std::string> &words); // null when it cannot be started
size_t PLT_ReadProcess(PLT_Process *process, char *bytes,
                       size_t capacity); // waits; 0 = it has closed
int PLT_WriteProcess(PLT_Process *process, const char *bytes,
                     size_t count); // never waits. 0, or -1
void PLT_CloseProcessInput(PLT_Process *process);
void PLT_WaitForProcess(
    PLT_Process *process);                  // the process can still be named until PLT_FreeProcess
void PLT_KillProcess(PLT_Process *process); // one that has ended already: nothing
void PLT_FreeProcess(PLT_Process *process); // after PLT_WaitForProcess

#endif
