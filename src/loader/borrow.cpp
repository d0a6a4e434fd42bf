// Two cases: the link has the Win32 driver's port open, and the loader talks on it; or the link is
// closed for a port of the loader's own, and what was open is opened again afterwards.
#include "loader/borrow.h"

#include "comm/mr166_link.h"
#include "comm/ucm.h"

void LDR_FindPort(int *port, int *baud)
{
    if (!wMrOpenFlag || !MR166_isWin32)
        return;
    *port = MrASC_nCom;
    *baud = MrASC_nBaudRate;
}

int LDR_BorrowPort(int port, int baud, LDR_Loan *loan)
{
    *loan = LDR_Loan();
    if (wMrOpenFlag && MR166_isWin32) {
        // An unplugged port is opened anew: what is plugged in again has another device behind it.
        if (SER_BytesWaiting(MR166_hCom) >= 0)
            return 0;
        return MrASC_Open(MrASC_nCom, MrASC_nBaudRate);
    }
    loan->port = port;
    loan->baud = baud;
    loan->isSwitched = true;
    loan->driver = MR166_isWin32;
    loan->protocol = UCM_IsOpened() ? UCM_recS.protocol : int16_t{0};
    // Closed before the driver changes: a handle belongs to the driver that has opened it.
    UCM_Close();
    MrASC_UseWin32(1);
    const int result = MrASC_Open(port, baud);
    if (result < 0)
        LDR_ReturnPort(*loan);
    return result;
}

int LDR_ReturnPort(const LDR_Loan &loan)
{
    if (!loan.isSwitched) {
        // The loader's second is far too patient for the link's tries.
        SER_SetTimeouts(MR166_hCom, Mr166_nTimeoutMs, Mr166_nTimeoutMs);
        return 0;
    }
    MrASC_Close();
    MrASC_UseWin32(loan.driver);
    return loan.protocol != 0 ? UCM_Open(loan.protocol, loan.port, loan.baud) : 0;
}
