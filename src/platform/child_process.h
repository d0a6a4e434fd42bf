// What the operating system does for platform/child.h. Two files implement it (POSIX, Win32).
#ifndef PLATFORM_CHILD_PROCESS_H
#define PLATFORM_CHILD_PROCESS_H

#include <cstddef>
#include <string>
#include <vector>

struct CHP_Process; // owns the process and this end of its pipes

extern const char CHP_PROGRAM_ENDING[];                        // of a program's file name
CHP_Process *CHP_Spawn(const std::vector<std::string> &words); // null when it cannot be started
size_t CHP_Read(CHP_Process *process, char *bytes, size_t capacity);  // waits; 0 = it has closed
int CHP_Write(CHP_Process *process, const char *bytes, size_t count); // never waits. 0, or -1
void CHP_CloseInput(CHP_Process *process);
void CHP_WaitForEnd(CHP_Process *process); // the process can still be named until CHP_Free
void CHP_Kill(CHP_Process *process);       // one that has ended already: nothing
void CHP_Free(CHP_Process *process);       // after CHP_WaitForEnd

#endif
