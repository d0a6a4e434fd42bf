// Both map readers over a file of arbitrary bytes, then look-ups in what they read. The
// first byte chooses the processor.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/mapfile.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

static const std::string &ScratchFile()
{
    static const std::string path = "fuzz_mapfile." + std::to_string(getpid()) + ".tmp";
    return path;
}

static void Check(bool ok)
{
    if (!ok)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    Procesor = (data[0] & 1) != 0 ? CPU_F283XX : CPU_C167;
    std::FILE *file = std::fopen(ScratchFile().c_str(), "wb");
    std::fwrite(data + 1, 1, size - 1, file);
    std::fclose(file);
    const int result =
        Procesor == CPU_C167 ? ReadMap(ScratchFile().c_str()) : Read_TMS_Map(ScratchFile().c_str());
    std::remove(ScratchFile().c_str());
    Check(result <= 0 && nNodes >= 0 && nNodes <= NODES_MAX);
    for (int i = 0; i < nNodes; ++i) {
        uint32_t address = aVarNode[i].addr;
        std::string name;
        Check(MapAddrToId(&name, &address) == 0 && address == aVarNode[i].addr);
        Check(VRN_FindName(aVarNode, nNodes, aVarNode[i].name) <= i);
    }
    const std::string expression(reinterpret_cast<const char *>(data + 1), size - 1);
    inStruct(expression.c_str(), aVarNode, nNodes);
    return 0;
}
