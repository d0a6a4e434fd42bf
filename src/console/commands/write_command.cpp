// Single values by name or address: the commands `write` and `writeNA`.
#include "comm/ucm.h"
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/settings.h"

namespace {

constexpr int COMMAND_WRITE = 8; // link command that writes memory

// Cuts a value into bytes, least significant first.
void dw2aby(uint32_t value, uint8_t bytes[4])
{
    for (int i = 0; i < 4; i++)
        bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}

int WriteValue(ScrPar *par, const char *label)
{
    const uint32_t size = par[0].value;
    if (size != 1 && size != 2 && size != 4)
        return SCR_Fail(CON_Format("%s: Lze zapisovat pouze 1, 2 nebo 4 bytove promenne.", label));
    uint8_t bytes[4];
    dw2aby(par[1].value, bytes);
    if (UCM_EmuCom166Msg(STATION, COMMAND_WRITE, par[2].value, static_cast<uint16_t>(size),
                         bytes) <= 0)
        return SCR_Fail(CON_Format("%s: Selhani komunikace.", label));
    return 0;
}

} // namespace

int SCR_Write(ScrPar *par)
{
    if (!ExecPar(par, 3))
        return SCR_Fail("write: Neplatne parametry skriptu.");
    return WriteValue(par, "write");
}

int SCR_WriteNA(ScrPar *par)
{
    if ((par[2].flags & PAR_NAME) || !ExecPar(par, 3))
        return SCR_Fail("writeNA: Neplatne parametry skriptu.");
    return WriteValue(par, "writeNA");
}
