#include "loader/borrow.h"

#include "comm/mr166_link.h"
#include "comm/ucm.h"

namespace {

// An unplugged port is opened anew: what is plugged in again has another device behind it.
int UseLinkPort()
{
    if (SER_BytesWaiting(MR166_hCom) >= 0)
        return 0;
    return MrASC_Open(MrASC_nCom, MrASC_nBaudRate);
}

} // namespace

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
    if (wMrOpenFlag && MR166_isWin32)
        return UseLinkPort();
    loan->port = port;
    loan->baud = baud;
    loan->isSwitched = true;
    loan->driver = MR166_isWin32;
    loan->protocol = UCM_IsOpened() ? UCM_recS.protocol : int16_t{0};
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
        SER_SetTimeouts(MR166_hCom, Mr166_nTimeoutMs, Mr166_nTimeoutMs);
        return 0;
    }
    MrASC_Close();
    MrASC_UseWin32(loan.driver);
    return loan.protocol != 0 ? UCM_Open(loan.protocol, loan.port, loan.baud) : 0;
}
