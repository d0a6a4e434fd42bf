// Value entry: after a write command each line typed is a value for the current
// address, which then advances; an empty line ends it.
#ifndef CONSOLE_MONITOR_VALUE_ENTRY_H
#define CONSOLE_MONITOR_VALUE_ENTRY_H

#include <cstdint>

// "i 8100", what stands behind the letter of the write command: a kind ('i' signed, 'u'
// unsigned, 'x' hexadecimal, 'f' float) and an address. False, *address perhaps set, for
// anything else.
bool CON_ParseStart(const char *text, uint32_t *address);

// Enter the mode. Always 0.
int write_DPM(int panel, uint32_t address, char kind);  // C166
int write_addr(int panel, uint32_t address, char kind); // TMS

// Write one typed value at dwAddr and show the prompt of the next. 0, or -1 after a
// message; the mode has then ended. The link is held by the caller.
int write_DPM2(int panel, const char *text);
int write_addr2(int panel, const char *text);

// One 32-bit word, proven, into the mailbox's TMS320 with the messages of a failure. 0 or -1.
int write_addrTMS(int panel, uint32_t address, uint32_t value);

#endif
