// What a user types into value and address fields. The first two bytes choose processor,
// type and size: a value that is taken fits the type and is taken again as it is shown, and
// an address that is taken lies in the target's memory.
#include "app/rooms.h"
#include "comm/sysaddr.h"
#include "console/commands/set_command.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/value/value_types.h"
#include "watch/value/write_value.h"

namespace {

void Prepare()
{
    VR_ConnectRooms();
    FUZ_Check(HL_LoadAllPanels() == 0);
    mainPanel = PANEL_MAIN;
    for (const char *name : {"nCount", "fLimit", "stMotor", "awTable", "abyText"})
        SYM_AddNode(aVarNode, &nNodes, static_cast<uint32_t>(0x8000 + 0x100 * nNodes), name,
                    nullptr);
    SYM_SortByName(aVarNode, nNodes);
    openStruct = OPEN_MAP_FILE;
    FUZ_WriteFile("t.tmf", "## 2 VARS\n1: 'awTable' _@0x20000002_@0x20000008_@0x142\n"
                           "2: 'stMotor' _@0x38000001\n## 0 TYPES\n## 1 STRUCTS\n# 1 / 2:\n"
                           "  'nSpeed' _@0x20000003_@0x122\n  'fLimit' _@0x204\n");
    FUZ_Check(TMF_OpenMap((FUZ_Folder() + "/t.tmf").c_str()) == 0);
    initRgMap(CPU_C166);
}

void CheckValue(LItem item, const std::string &text)
{
    uint64_t bits = 0x5EED;
    std::string message;
    const int result = VAL_ParseFor(item, text, &bits, &message);
    FUZ_Check((result == VAL_WRITE_OK) == message.empty());
    if (result != VAL_WRITE_OK) {
        FUZ_Check(bits == 0x5EED);
        return;
    }
    const int width = item.type == 't' ? 24 : 8 * item.size;
    FUZ_Check(width == 64 || bits >> width == 0);
    item.value = static_cast<uint32_t>(bits);
    item.valueHigh = static_cast<uint32_t>(bits >> 32);
    uint64_t again = 0;
    FUZ_Check(VAL_ParseFor(item, VAL_GetValueText(item), &again, &message) == VAL_WRITE_OK);
    FUZ_Check(item.type == 'f' || again == bits); // a float is shown with six digits
}

void CheckAddress(const std::string &text)
{
    int station = -2;
    const uint32_t address = GetSysAddrM(text.c_str(), &station);
    FUZ_Check(station >= -1 && (address == ADDR_NONE || address < ADDR_LIMIT));
    LItem item;
    const int edited = EDT_Parse(text, "", &item);
    FUZ_Check(edited != 0 || VAL_IsTypeField(VAL_TypeField(item)));
    SCR_SetRequest request;
    std::string problem;
    if (SCR_ParseSet(text, &request, &problem) < 0) {
        FUZ_Check(!problem.empty());
        return;
    }
    FUZ_Check(problem.empty() && request.item.address < ADDR_LIMIT);
    FUZ_Check(VAL_IsTypeField(VAL_TypeField(request.item)) && request.item.station <= STATION_MAX);
    FUZ_Check(request.isWrite != request.value.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const bool isReady = (Prepare(), true);
    FUZ_Check(isReady);
    if (size < 2 || size > 600)
        return 0;
    constexpr int CPUS[] = {CPU_C166, CPU_F2803X};
    Procesor = CPUS[data[0] / 128];
    LItem item;
    const VAL_TypeRow &row = VAL_aTypeRows[data[0] % VAL_cnTypeRows];
    item.type = row.letter;
    item.size = row.onlySize != 0 ? row.onlySize : 1 << data[1] % 4;
    item.name = row.isForTMS && item.size == 4 && data[1] >= 128 ? "&" : "";
    const std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);
    CheckValue(item, text.c_str());
    CheckAddress(text.c_str());
    return 0;
}
