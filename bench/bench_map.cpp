// Loading a map of 5,000 symbols against reading the same file line by line, and
// look-ups by name and by address in it.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/mapfile.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/txfr.h"

static const char MAP_PATH[] = "bench_map.tmp";

// Symbols in address order, as a linker lists them: names come in no order.
static void WriteMap()
{
    std::FILE *file = std::fopen(MAP_PATH, "wb");
    for (unsigned i = 0; i < NODES_MAX; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "var_%05u_of_module", i * 2654435761u % 99991u);
        std::fprintf(file, "%05XH   %-37sNDATA        ?ND0?MODULE\r\n", 0x8000u + 2 * i, name);
    }
    std::fclose(file);
}

static void ReadLinesOnly(benchmark::State &state)
{
    char line[512];
    for (auto _ : state) {
        const int handle = TXFR_Open(MAP_PATH);
        size_t characters = 0;
        int length = 0;
        while ((length = TXFR_RdLine(handle, line, sizeof line)) >= 0)
            characters += static_cast<size_t>(length);
        benchmark::DoNotOptimize(characters);
    }
}
BENCHMARK(ReadLinesOnly)->Unit(benchmark::kMicrosecond);

static void LoadC166Map(benchmark::State &state)
{
    for (auto _ : state)
        ReadMap(MAP_PATH);
    if (nNodes != NODES_MAX)
        state.SkipWithError("the map was not read whole");
}
BENCHMARK(LoadC166Map)->Unit(benchmark::kMicrosecond);

static void LookUpNames(benchmark::State &state)
{
    ReadMap(MAP_PATH);
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inStruct(aVarNode[i].name, aVarNode, nNodes));
        i = (i + 997) % nNodes;
    }
}
BENCHMARK(LookUpNames);

static void LookUpAddresses(benchmark::State &state)
{
    ReadMap(MAP_PATH);
    std::string name;
    uint32_t address = 0;
    for (auto _ : state) {
        address = 0x8000u + (address * 17u + 5u) % 10000u;
        MapAddrToId(&name, &address);
    }
}
BENCHMARK(LookUpAddresses);

int main(int argc, char **argv)
{
    Procesor = CPU_C167;
    WriteMap();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::remove(MAP_PATH);
    return 0;
}
