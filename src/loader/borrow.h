// The serial port for the flash loader. Its protocol needs the Win32 driver's port whatever
// the settings say; communication is put back as it was afterwards.
#ifndef LOADER_BORROW_H
#define LOADER_BORROW_H

#include <cstdint>

struct LDR_Loan {
    int port = 0, baud = 0;
    bool isSwitched = false; // the link was closed for a port of our own
    int32_t driver = 0;      // to be put back when isSwitched
    int16_t protocol = 0;    // to be opened again; 0 = it was closed
};

// The port and speed that a loan would use in place of these.
void LDR_FindPort(int *port, int *baud);
// Uses the link's port when the Win32 driver has it open, else opens number `port` with it.
// 0, or the link's code (MrASC_ErrorText says it in words) with everything as before. A
// caller within the program's event loop must have the timers suspended: nobody else may
// talk on the port meanwhile.
int LDR_BorrowPort(int port, int baud, LDR_Loan *loan);
// Puts time-outs, driver and link back. 0, or the code of a link that could not be reopened.
int LDR_ReturnPort(const LDR_Loan &loan);

#endif
