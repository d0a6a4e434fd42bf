// Memory dumps on the console, one format a command: what is printed was proven to be the
// target's answer to this very reading. The link is held by the caller.
// 0, or -1 after a failure that was printed.
#ifndef CONSOLE_MONITOR_DUMP_H
#define CONSOLE_MONITOR_DUMP_H

#include <cstdint>
#include <string>

int dump(int panel, uint32_t address);       // raw bytes
int dump_compl(int panel, uint32_t address); // eight bytes, each as hex, signed and unsigned
int dump_Naddr(int panel, uint32_t address, uint32_t count); // TMS words
int dump_node(int panel, const std::string &name);           // the bytes of a variable of the map

// Shared with the other memory commands: the message and the prompt after it. Always -1.
int CON_FailMemory(const std::string &message);
// What the line refused: the cause follows on a line of its own. After Ctrl-C or Cancel only
// that is said.
int CON_FailLink(const std::string &message, const std::string &cause);
// The same for one message that failed at a byte or word address.
int CON_FailMemoryAt(uint32_t address, const std::string &cause);
constexpr char CON_NO_ANSWER[] = "\nMessage not succesful."; // begins a new line
// The same for a TMS_ result of the mailbox, TMS_OK meaning that only its proof failed.
int CON_FailTms(int result, const std::string &cause);
// Whether `count` units from the address on, `unitAddresses` each, lie in the target's
// memory; false after a message.
bool CON_IsInside(uint32_t address, uint64_t count, uint32_t unitAddresses);

#endif
