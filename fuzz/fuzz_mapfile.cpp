// Both map readers over a file of arbitrary bytes, then look-ups in what they read. The
// first byte chooses the processor.
#include "scratch_folder.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/mapfile.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    Procesor = (data[0] & 1) != 0 ? CPU_F283XX : CPU_C167;
    const std::string path = FUZ_Folder() + "/map";
    FUZ_WriteFile("map", std::string(reinterpret_cast<const char *>(data) + 1, size - 1));
    const int result = Procesor == CPU_C167 ? ReadMap(path.c_str()) : Read_TMS_Map(path.c_str());
    FUZ_Check(result <= 0 && nNodes >= 0 && nNodes <= NODES_MAX);
    for (int i = 0; i < nNodes; ++i) {
        uint32_t address = aVarNode[i].addr;
        std::string name;
        FUZ_Check(MapAddrToId(&name, &address) == 0 && address == aVarNode[i].addr);
        FUZ_Check(SYM_FindName(aVarNode, nNodes, aVarNode[i].name) <= i);
    }
    const std::string expression(reinterpret_cast<const char *>(data + 1), size - 1);
    inStruct(expression.c_str(), aVarNode, nNodes);
    return 0;
}
