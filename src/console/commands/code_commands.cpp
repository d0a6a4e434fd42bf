// Commands that tell what lies at an address: code, names.
#include "code/listing.h"
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"

int SCR_Dis(ScrPar *par)
{
    if (Procesor != CPU_C166 && Procesor != CPU_C167)
        return SCR_Fail("dis: only the code of a C166 or C167 can be listed.");
    if (!ExecPar(par, 1))
        return SCR_Fail("dis: no such address.");
    const uint32_t address = par[0].value, count = par[1].value;
    if (count == 0)
        return SCR_Fail("dis: the number of instructions must be 1 to 255.");
    std::vector<CODE_Instruction> code;
    std::string cause;
    // They complete the 16-bit addresses of operands, and change while the target runs.
    const CODE_Pages pages = CODE_ReadPages();
    if (CODE_Read(STATION, address, static_cast<int>(count), pages, &code, &cause) != 0)
        return SCR_Fail("dis: " + cause + ".");
    for (const CODE_Instruction &instruction : code)
        CON_Print("%s", CODE_FormatLine(instruction).c_str());
    return 0;
}

int SCR_Addr2Name(ScrPar *par)
{
    if (!ExecPar(par, 1))
        return SCR_Fail("addr2name: no such address.");
    const uint32_t address = par[0].value;
    std::string name = SYM_AddressToName(address);
    // Nothing is near: the last variable in front of it, and how far it is.
    if (name.empty())
        VarAddrToName(address, &name);
    if (name.empty())
        return SCR_Fail("addr2name: no name lies at this address or below it.");
    CON_Print(" %06x  %s", address, name.c_str());
    return 0;
}
