// The type map reader over a text of arbitrary bytes, then sizes, members, lists and
// expressions of whatever was loaded. The first byte chooses the processor.
#include <cstdint>
#include <string>

#include "fuzz_check.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/txfrw.h"

static void UseTables()
{
    FreeNodes(aVarNode, &nNodes);
    for (int i = 0; i < TMF_cnDefVars && i < 8; ++i) {
        const TMF_Decl &decl = TMF_paDefVars[i];
        uint32_t kind = 0;
        int32_t size = 0, count = 0, alignment = 0;
        AddMapVar(0x1000u * static_cast<uint32_t>(i), decl.name);
        if (TMF_GetTypeInfo(decl.chain, &kind, &size, &count, &alignment, 0) == 0)
            FUZ_Check(size >= 0 && count >= 0 && alignment >= 1);
        TMF_FormatDecl(decl.name, decl.chain);
        for (const TMF_ListRow &row : TMF_ListParts(decl.name))
            FUZ_Check(inStruct(row.expression.c_str(), aVarNode, nNodes) != 0xFFFFFFFFu);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    Procesor = (data[0] & 1) != 0 ? CPU_F283XX : CPU_C167;
    const int text =
        TXFRW_Create("fuzz.tmf", "r", reinterpret_cast<const char *>(data + 1), size - 1);
    if (text < 0)
        return 0;
    const int result = TMF_LoadMapFrw(text);
    TXFRW_Close(text);
    FUZ_Check(result == 0 ? TMF_cnDefVars > 0 : TMF_cnDefVars == 0 && TMF_cnDefStructCts == 0);
    UseTables();
    TMF_CleanTables();
    return 0;
}
