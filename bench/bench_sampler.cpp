// How much of the wire the sampler uses: rows a second on a line paced at 115200 baud against
// what the characters of its own plan allow, against the same blocks read bare, and against
// one request an item; and what the
// recorder takes of rows from memory, against the time they stand for.
#include "bench.h"
#include "sampler/record_job.h"

#include <cstring>
#include <filesystem>

namespace {

constexpr double SECONDS = 1.6; // two proofs or three
constexpr int ROUNDS = 4;       // of everything by turns; the best counts
constexpr int RECORD_RATE = 10000, RECORD_SECONDS = 60;
constexpr size_t RECORD_ITEMS = 16;

SMP_Item Item(uint32_t address, int size, bool isTMS = false)
{
    SMP_Item item;
    item.name = "item" + std::to_string(address);
    item.address = address;
    item.size = size;
    item.type = 'u';
    item.isTMS = isTMS;
    return item;
}

std::vector<SMP_Item> Words(uint32_t distance)
{
    std::vector<SMP_Item> items;
    for (uint32_t i = 0; i < 16; ++i)
        items.push_back(Item(0x8000 + i * distance, 2));
    return items;
}

// Sizes and places as in the demo's watch list, on one station.
std::vector<SMP_Item> DemoList(bool hasMailbox)
{
    const struct {
        uint32_t address;
        int size;
    } places[] = {{0x8012, 2}, {0x8010, 2}, {0x8018, 4}, {0x8014, 4}, {0x8001, 1}, {0x8000, 1},
                  {0x8002, 2}, {0x8004, 4}, {0x8032, 2}, {0x8008, 8}, {0x8020, 4}, {0x8024, 4},
                  {0x8028, 8}, {0x8030, 1}, {0x8100, 2}, {0x810C, 2}, {0x8034, 2}, {0x8108, 4},
                  {0x801C, 4}, {0x8102, 1}, {0x8110, 4}, {0x8118, 8}, {0x8040, 2}, {0x81C4, 2}};
    std::vector<SMP_Item> items;
    for (const auto &place : places)
        items.push_back(Item(place.address, place.size));
    if (hasMailbox)
        items.push_back(Item(0x400, 4, true));
    return items;
}

// The same blocks read one after the other with nothing else: what machine and line allow at
// this moment, whatever else runs on the machine.
double BareRowsPerSecond(const std::vector<SMP_Item> &items)
{
    SMP_Sampler sampler;
    if (SMP_Start(&sampler, items, SMP_FAST, SMP_Listener(), 1) != 0)
        BEN_Fail("the sampler does not start");
    const uint64_t start = PLT_TickUs();
    uint64_t rows = 0, elapsedUs = 0;
    for (; static_cast<double>(elapsedUs) < SECONDS * 1e6; elapsedUs = PLT_TickUs() - start) {
        for (const UCM_Block &block : sampler.plan) {
            uint8_t bytes[256];
            uint32_t word = 0;
            if (items[block.items[0]].isTMS)
                SMP_LINE.readTMS(1, block.address, &word);
            else
                SMP_LINE.read(1, block.address, block.size, bytes);
        }
        ++rows;
    }
    return static_cast<double>(rows) * 1e6 / static_cast<double>(elapsedUs);
}

// Rows a second, by the sampler's own plan or with every item by itself.
double RowsPerSecond(const std::vector<SMP_Item> &items, bool isGrouped, double *limit,
                     double *failed)
{
    static SMP_Sampler sampler;
    if (SMP_Start(&sampler, items, SMP_FAST, SMP_Listener(), 1000) != 0)
        BEN_Fail("the sampler does not start");
    *limit = SMP_RowsPerSecondMax(sampler, BEN_BAUD);
    if (!isGrouped) {
        sampler.plan.clear();
        for (size_t i = 0; i < items.size(); ++i)
            sampler.plan.push_back(
                {1, items[i].address, static_cast<uint32_t>(items[i].size), {i}});
    }
    while (static_cast<double>(sampler.totals.elapsedUs) < SECONDS * 1e6)
        SMP_Step(&sampler);
    SMP_Stop(&sampler);
    *failed = static_cast<double>(sampler.totals.failed);
    return static_cast<double>(sampler.totals.rows) * 1e6 /
           static_cast<double>(sampler.totals.elapsedUs);
}

void CompareWithWire(int protocol, const char *name)
{
    SIM_Options options;
    options.modbus = protocol == PROTOCOL_MODBUS;
    options.baud = BEN_BAUD;
    SIM_Target *target = BEN_StartTarget(options);
    Procesor = CPU_C167;
    BEN_OpenLine(protocol);
    const struct {
        const char *what;
        std::vector<SMP_Item> items;
    } rows[] = {{"16 neighbouring u2", Words(2)},
                {"16 scattered u2", Words(64)},
                {"the demo's list", DemoList(false)},
                {"... and a TMS320 word", DemoList(true)}};
    for (const auto &row : rows) {
        double limit = 0, single = 0, failed = 0, failedAlone = 0;
        double rate = 0, alone = 0, bare = 0;
        for (int round = 0; round < ROUNDS; ++round) {
            rate = std::max(rate, RowsPerSecond(row.items, true, &limit, &failed));
            bare = std::max(bare, BareRowsPerSecond(row.items));
            if (round == 0)
                alone = RowsPerSecond(row.items, false, &single, &failedAlone);
        }
        std::printf("%-7s %-22s %9.1f %9.1f %9.2f %9.2f %9.2f %8.0f\n", name, row.what, limit, rate,
                    100 * rate / limit, 100 * rate / bare, rate / alone, failed + failedAlone);
    }
    BEN_StopLine(target);
}

void RecordFromMemory()
{
    const std::string path =
        (std::filesystem::temp_directory_path() / "bench_sampler.csv").string();
    std::vector<SMP_Item> items = Words(2);
    items.resize(RECORD_ITEMS);
    REC_Options options;
    options.path = path;
    options.mayReplace = true;
    REC_Recorder recorder;
    SMP_Store store;
    if (REC_Open(&recorder, options, items, 0) != 0)
        BEN_Fail(recorder.problem);
    std::vector<SMP_Sample> row(RECORD_ITEMS);
    const uint64_t start = PLT_TickUs();
    double worstUs = 0;
    for (int64_t i = 0; i < int64_t{RECORD_RATE} * RECORD_SECONDS; ++i) {
        const uint64_t before = PLT_TickUs();
        for (size_t k = 0; k < RECORD_ITEMS; ++k)
            row[k] = {i * 100, static_cast<uint64_t>(i) + k * 1000, SMP_GOOD};
        if (REC_PutRow(&recorder, i * 100, row.data(), store) != 0)
            BEN_Fail(recorder.problem);
        if (i % (RECORD_RATE / 2) == 0 && REC_Flush(&recorder, i * 100) != 0)
            BEN_Fail(recorder.problem);
        worstUs = std::max(worstUs, static_cast<double>(PLT_TickUs() - before));
    }
    if (REC_Close(&recorder) != 0)
        BEN_Fail(recorder.problem);
    const double seconds = static_cast<double>(PLT_TickUs() - start) / 1e6;
    std::printf("\nrecorder: %llu rows of %zu items, %.0f s worth in %.2f s (%.1f %% of the time), "
                "worst row %.1f ms, %.1f MB\n",
                static_cast<unsigned long long>(recorder.rows), RECORD_ITEMS,
                double{RECORD_SECONDS}, seconds, 100 * seconds / RECORD_SECONDS, worstUs / 1000,
                static_cast<double>(recorder.bytes) / 1e6);
    std::filesystem::remove(path);
}

} // namespace

int main()
{
    std::printf("%-30s %9s %9s %9s %9s %9s %8s\n", "rows a second at 115200 baud", "wire", "taken",
                "% of wire", "% of bare", "x single", "failed");
    CompareWithWire(PROTOCOL_MR166, "mr166");
    CompareWithWire(PROTOCOL_MODBUS, "Modbus");
    RecordFromMemory();
    return 0;
}
