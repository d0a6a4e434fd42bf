// Single values by name or address: the commands `write` and `writeNA`.
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/words.h"

namespace {

// A value may be meant signed or unsigned: it fits when either range holds it.
bool IsInRange(const ScrPar &par, uint32_t size)
{
    if (size == 4) // the parser has checked 32 bits
        return true;
    const int64_t span = int64_t{1} << (8 * size);
    const bool isNegative = (par.flags & PAR_SIGNED) != 0;
    const int64_t value = isNegative ? static_cast<int32_t>(par.value) : int64_t{par.value};
    return value >= -span / 2 && value < span;
}

int WriteValue(ScrPar *par, const char *label)
{
    const uint32_t size = par[0].value;
    if (size != 1 && size != 2 && size != 4)
        return SCR_Fail(TXT_Format("%s: Lze zapisovat pouze 1, 2 nebo 4 bytove promenne.", label));
    if (!IsInRange(par[1], size)) {
        const int span = 1 << (8 * size);
        return SCR_Fail(TXT_Format("%s: hodnota ma byt od %d do %d.", label, -span / 2, span - 1));
    }
    if (par[2].value > ADDR_LIMIT - size)
        return SCR_Fail(
            TXT_Format("%s: posledni byte lezi za adresou %06X.", label, ADDR_LIMIT - 1));
    uint8_t bytes[4];
    TXT_PutLittle(bytes, sizeof bytes, par[1].value);
    if (UCM_WriteProven(STATION, par[2].value, static_cast<uint16_t>(size), bytes) < 0)
        return SCR_FailLink(TXT_Format("%s: Selhani komunikace.", label));
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
    // "NA" stands for a numeric address: the map shall have no part in it.
    if ((par[2].flags & PAR_NAME) || !ExecPar(par, 3))
        return SCR_Fail("writeNA: Neplatne parametry skriptu.");
    return WriteValue(par, "writeNA");
}
