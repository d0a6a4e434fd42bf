// A type map of 10,000 declarations: loading it, the size of every declaration, and an
// expression with members and indexes.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

static const char TYPES_PATH[] = "bench_typemap.tmp";
static constexpr int DECLARATIONS = 10000;
static constexpr int LEVELS = 15; // structures inside one another
static constexpr int MEMBERS = 20;

static void WriteTypeMap()
{
    std::FILE *file = std::fopen(TYPES_PATH, "wb");
    std::fprintf(file, "## %d VARS\n", DECLARATIONS);
    for (int i = 0; i < DECLARATIONS; ++i)
        std::fprintf(file, "%d: 'var_%05d' _@0x20000010_@0x%X\n", i, i,
                     0x38000001u + static_cast<unsigned>(i % LEVELS));
    std::fprintf(file, "## 0 TYPES\n## %d STRUCTS\n", LEVELS);
    for (int level = 1; level <= LEVELS; ++level) {
        std::fprintf(file, "# %d / %d:\n", level, MEMBERS);
        for (int m = 1; m < MEMBERS; ++m)
            std::fprintf(file, " 'm%d' _@0x%X\n", m, m % 2 ? 0x122u : 0x204u);
        if (level < LEVELS)
            std::fprintf(file, " 'inner' _@0x%X\n", 0x38000001u + static_cast<unsigned>(level));
        else
            std::fprintf(file, " 'last' _@0xC2\n");
    }
    std::fclose(file);
}

static void LoadTypeMap(benchmark::State &state)
{
    for (auto _ : state)
        TMF_LoadMap(TYPES_PATH);
    if (TMF_cnDefVars != DECLARATIONS)
        state.SkipWithError("the type map was not read whole");
}
BENCHMARK(LoadTypeMap)->Unit(benchmark::kMicrosecond);

// Time per declaration.
static void GetTypeInfoOfAll(benchmark::State &state)
{
    TMF_LoadMap(TYPES_PATH);
    uint32_t kind = 0;
    int32_t size = 0, count = 0, alignment = 0;
    for (auto _ : state)
        for (int i = 0; i < TMF_cnDefVars; ++i) {
            TMF_GetTypeInfo(TMF_paDefVars[i].chain, &kind, &size, &count, &alignment, 0);
            benchmark::DoNotOptimize(size);
        }
    state.SetItemsProcessed(state.iterations() * DECLARATIONS);
}
BENCHMARK(GetTypeInfoOfAll)->Unit(benchmark::kMicrosecond);

static void ResolveExpression(benchmark::State &state)
{
    TMF_LoadMap(TYPES_PATH);
    FreeNodes(aVarNode, &nNodes);
    AddMapVar(0x8000, "var_09990");
    SortMapByName();
    for (auto _ : state)
        benchmark::DoNotOptimize(inStruct("var_09990[3].inner.inner.m5 + 2", aVarNode, nNodes));
    if (inStruct("var_09990[3].inner.inner.m5", aVarNode, nNodes) == 0xFFFFFFFFu)
        state.SkipWithError("the expression does not resolve");
}
BENCHMARK(ResolveExpression);

int main(int argc, char **argv)
{
    Procesor = CPU_C167;
    WriteTypeMap();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::remove(TYPES_PATH);
    return 0;
}
