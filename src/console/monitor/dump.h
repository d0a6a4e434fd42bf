// Memory dumps on the console, one format a command. The link is held by the caller.
// 0, or -1 after a failure that was printed.
#ifndef CONSOLE_MONITOR_DUMP_H
#define CONSOLE_MONITOR_DUMP_H

#include <cstdint>
#include <string>

int dump(int panel, uint32_t address);       // raw bytes
int dump_compl(int panel, uint32_t address); // eight bytes, each as hex, signed and unsigned
int dump_Naddr(int panel, uint32_t address, uint32_t count); // TMS words
int dump_node(int panel, const std::string &name);           // the bytes of a variable of the map

// Shared with the other memory commands: the message and the prompt after it.
int MEM_Fail(const std::string &message); // always -1

#endif
