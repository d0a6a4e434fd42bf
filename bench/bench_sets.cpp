// Variable sets: the values of 2,000 parameters against the time that the characters of the
// cheapest blocks take on the wire, and twenty data files compared against reading their
// numbers with the C library alone.
#include "app/rooms.h"
#include "bench.h"
#include "comm/grouping.h"
#include "runtime/headless/headless.h"
#include "sets/data.h"
#include "sets/device.h"
#include "sets/listing.h"
#include "sets/set.h"
#include "symbols/varnode.h"

#include <ctime>
#include <fstream>

namespace {

constexpr uint32_t PARAMETERS = 2000, NEIGHBOURHOODS = 20, SPACING = 0x400;
constexpr size_t FILES = 20;
constexpr int ROUNDS = 5; // the best counts: what else the machine does is not measured

// Of the processor's time: nothing is waited for.
template <typename Work> double BestCpuSeconds(Work work)
{
    double best = 1e9;
    for (int round = 0; round < ROUNDS; ++round) {
        const std::clock_t start = std::clock();
        work();
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

PST_Set MakeSet()
{
    std::vector<SYM_Symbol> symbols;
    std::ofstream header("bench_sets.ulh");
    for (uint32_t i = 0; i < PARAMETERS; ++i) {
        const uint32_t each = PARAMETERS / NEIGHBOURHOODS;
        const std::string name = "wParameter" + std::to_string(i);
        symbols.push_back({0x8000 + i / each * SPACING + i % each * 2, name});
        header << name << ", unit \"A\", factor 0.1, min 0, max 60000, text \"Parameter\"\n";
    }
    header.close();
    int refused = 0;
    SYM_ReplaceNodes(aVarNode, &nNodes, symbols, &refused);
    openStruct = OPEN_MAP_FILE;
    PST_Set set;
    PST_Problems problems;
    if (PST_ReadHeader("bench_sets.ulh", &set, &problems) != 0)
        BEN_Fail(PST_FormatProblems(problems));
    return set;
}

PST_Image ReadOverTheWire(const PST_Set &set)
{
    PST_Image image;
    const double seconds = BEN_BestSeconds(ROUNDS, [&] {
        std::string why;
        if (PST_ReadDevice(set, &image, {}, &why) != PST_OK)
            BEN_Fail(why);
    });
    std::vector<UCM_BlockItem> items;
    for (const PST_Place &place : set.places)
        items.push_back({STATION, place.address, set.entries[place.entry].size});
    const UCM_WireCosts wire = UCM_ReadWire(VR_nProtocol);
    const auto chars =
        static_cast<double>(UCM_CountPlanChars(UCM_PlanBlocks(items, wire, {}), wire));
    BEN_PrintWireHead("variable sets at 115200 baud");
    BEN_PrintWire("2,000 parameters", BEN_WireSeconds(chars), seconds);
    return image;
}

std::string FileName(size_t i)
{
    return "bench_sets_" + std::to_string(i) + ".ldx";
}

// Lines and numbers, without names, types, checks or a page made of them.
double ReadNumbers()
{
    double sum = 0;
    for (size_t i = 0; i < FILES; ++i) {
        std::ifstream file(FileName(i));
        for (std::string line; std::getline(file, line);) {
            const size_t equals = line.find(" = ");
            sum +=
                equals == std::string::npos ? 0 : std::strtod(line.c_str() + equals + 3, nullptr);
        }
    }
    return sum;
}

void CompareFiles(const PST_Set &set, PST_Image image)
{
    for (size_t i = 0; i < FILES; ++i) {
        image[i * 7].bytes[0] ^= 1;
        if (PST_WriteData(FileName(i), set, image, {}) != 0)
            BEN_Fail("a data file could not be written");
    }
    std::vector<PST_File> files(FILES);
    PST_Problems problems;
    const double read = BestCpuSeconds([&] {
        for (size_t i = 0; i < FILES; ++i)
            if (PST_ReadData(FileName(i), &files[i], &problems) != 0)
                BEN_Fail(PST_FormatProblems(problems));
    });
    size_t differences = 0;
    const double compare = BestCpuSeconds([&] {
        const std::vector<PST_Row> rows = PST_CompareFiles(files);
        differences = static_cast<size_t>(std::count_if(
            rows.begin(), rows.end(), [](const PST_Row &row) { return row.differs; }));
    });
    if (differences != FILES - 1)
        BEN_Fail("the comparison is wrong: " + std::to_string(differences));
    volatile double sum = 0;
    const double floor = BestCpuSeconds([&] { sum = ReadNumbers(); });
    std::printf("20 files of 2,000 values: read %.1f ms, compared %.1f ms, together %.1f times "
                "reading the bare numbers (%.1f ms)\n",
                read * 1e3, compare * 1e3, (read + compare) / floor, floor * 1e3);
    for (size_t i = 0; i < FILES; ++i)
        std::remove(FileName(i).c_str());
    std::remove("bench_sets.ulh");
}

} // namespace

int main()
{
    VR_ConnectRooms();
    HL_Reset();
    UCM_Init();
    UCM_UseWin32(1);
    STATION = 1;
    SIM_Target *target = BEN_StartLine(PROTOCOL_MR166, BEN_BAUD);
    const PST_Set set = MakeSet();
    const PST_Image image = ReadOverTheWire(set);
    CompareFiles(set, image);
    BEN_StopLine(target);
    return 0;
}
