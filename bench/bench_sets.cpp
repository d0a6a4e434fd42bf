// Variable sets: the values of 2,000 parameters against the time that the characters of the
// cheapest blocks take on the wire, and twenty data files compared against reading their
// numbers with the C library alone.
#include "app/rooms.h"
#include "comm/grouping.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/headless/headless.h"
#include "sets/data.h"
#include "sets/device.h"
#include "sets/header.h"
#include "sets/listing.h"
#include "settings/settings.h"
#include "sim/sim.h"
#include "symbols/varnode.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

namespace {

constexpr int PORT = 9;
constexpr int BAUD = 115200;
constexpr double BITS_PER_CHAR = 11;
constexpr uint32_t PARAMETERS = 2000, NEIGHBOURHOODS = 20, SPACING = 0x400;
constexpr size_t FILES = 20;
constexpr int ROUNDS = 5; // the best counts: what else the machine does is not measured

[[noreturn]] void Fail(const std::string &what)
{
    std::fprintf(stderr, "bench_sets: %s\n", what.c_str());
    std::exit(1);
}

// Of the wall clock, or of the processor's time where nothing is waited for.
template <typename Work> double BestSeconds(bool isWaiting, Work work)
{
    double best = 1e9;
    for (int round = 0; round < ROUNDS; ++round) {
        const uint64_t start = PLT_TickUs();
        const std::clock_t cpu = std::clock();
        work();
        const double used = static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
        const double passed = static_cast<double>(PLT_TickUs() - start) / 1e6;
        best = std::min(best, isWaiting ? passed : used);
    }
    return best;
}

PST_Set MakeSet()
{
    std::vector<VRN_Symbol> symbols;
    std::ofstream header("bench_sets.ulh");
    for (uint32_t i = 0; i < PARAMETERS; ++i) {
        const uint32_t each = PARAMETERS / NEIGHBOURHOODS;
        const std::string name = "wParameter" + std::to_string(i);
        symbols.push_back({0x8000 + i / each * SPACING + i % each * 2, name});
        header << name << ", unit \"A\", factor 0.1, min 0, max 60000, text \"Parameter\"\n";
    }
    header.close();
    int refused = 0;
    VRN_ReplaceNodes(aVarNode, &nNodes, symbols, &refused);
    openStruct = OPEN_MAP_FILE;
    PST_Set set;
    PST_Problems problems;
    if (PST_ReadHeader("bench_sets.ulh", &set, &problems) != 0)
        Fail(PST_FormatProblems(problems));
    return set;
}

PST_Image ReadOverTheWire(const PST_Set &set)
{
    PST_Image image;
    const double seconds = BestSeconds(true, [&] {
        std::string why;
        if (PST_ReadDevice(set, &image, {}, &why) != PST_OK)
            Fail(why);
    });
    std::vector<GRP_Item> items;
    for (const PST_Place &place : set.places)
        items.push_back({STATION, place.address, set.entries[place.entry].size});
    const GRP_Wire wire = GRP_ReadWire(VR_nProtocol);
    const double limit =
        static_cast<double>(GRP_CountPlan(GRP_Plan(items, wire, {}), wire)) * BITS_PER_CHAR / BAUD;
    std::printf("2,000 parameters at 115200: wire %.3f s, taken %.3f s, %.1f %% of the wire\n",
                limit, seconds, 100 * limit / seconds);
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
            Fail("a data file could not be written");
    }
    std::vector<PST_File> files(FILES);
    PST_Problems problems;
    const double read = BestSeconds(false, [&] {
        for (size_t i = 0; i < FILES; ++i)
            if (PST_ReadData(FileName(i), &files[i], &problems) != 0)
                Fail(PST_FormatProblems(problems));
    });
    size_t differences = 0;
    const double compare = BestSeconds(false, [&] {
        const std::vector<PST_Row> rows = PST_CompareFiles(files);
        differences = static_cast<size_t>(std::count_if(
            rows.begin(), rows.end(), [](const PST_Row &row) { return row.differs; }));
    });
    if (differences != FILES - 1)
        Fail("the comparison is wrong: " + std::to_string(differences));
    volatile double sum = 0;
    const double floor = BestSeconds(false, [&] { sum = ReadNumbers(); });
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
    SIM_Options options;
    options.baud = BAUD;
    options.demo = false;
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        Fail(error);
    setenv(("VIREO2_COM" + std::to_string(PORT)).c_str(), SIM_DevicePath(target), 1);
    VR_ConnectRooms();
    HL_Reset();
    UCM_Init();
    UCM_UseWin32(1);
    ncom = PORT;
    bRate = BAUD;
    STATION = 1;
    if (UCM_Open(VR_nProtocol, ncom, bRate) < 0)
        Fail("the port cannot be opened");
    const PST_Set set = MakeSet();
    const PST_Image image = ReadOverTheWire(set);
    CompareFiles(set, image);
    UCM_Close();
    SIM_Stop(target);
    return 0;
}
