// The sampler on a line of its own in virtual time: what it asks for, when, and what it makes
// of lines that fail, are silent or answer twice; and what is kept of it.
#include "comm/ucm.h"
#include "sampler/record_job.h"
#include "sampler/recording.h"
#include "sampler/sampler.h"
#include "support/program_state.h"
#include "text/bytes.h"

#include <cmath>
#include <map>
#include <set>

namespace {

struct FakeLine {
    uint64_t nowUs = 5000000;
    uint64_t exchangeUs = 10000;
    std::map<uint32_t, uint64_t> moreUs; // of addresses
    std::vector<uint32_t> asked;         // addresses
    std::set<int> silent;                // stations
    UCM_Range refused = {1, 0};          // nobody may read here
    int proof = UCM_PROVEN;
    uint32_t doubts = 0;
    int proofs = 0;
    UCM_Cause cause = UCM_CAUSE_OTHER;
};
FakeLine wire;

// Memory holds, byte by byte, the low bits of its address.
int FakeRead(int station, uint32_t address, uint32_t count, void *buffer)
{
    wire.asked.push_back(address);
    const bool isSilent = wire.silent.count(station) != 0;
    wire.nowUs += isSilent ? 1600000 : wire.exchangeUs + wire.moreUs[address];
    wire.cause = isSilent ? UCM_CAUSE_SILENT : UCM_CAUSE_REFUSED;
    if (isSilent || (address <= wire.refused.last && address + count > wire.refused.first))
        return -1;
    for (uint32_t i = 0; i < count; ++i)
        static_cast<uint8_t *>(buffer)[i] = static_cast<uint8_t>(address + i);
    return 0;
}

int FakeReadTMS(int, uint32_t address, uint32_t *value)
{
    wire.asked.push_back(address);
    wire.nowUs += wire.exchangeUs;
    *value = address * 3;
    return 0;
}

int FakeProve()
{
    ++wire.proofs;
    const int result = wire.proof;
    wire.proof = UCM_PROVEN;
    return result;
}

const SMP_Line LINE = {FakeRead,
                       FakeReadTMS,
                       FakeProve,
                       [] { return wire.doubts; },
                       [] { return std::string("no answer"); },
                       [] { return wire.cause; },
                       [] { return wire.nowUs; }};

struct Told {
    std::vector<int64_t> timesUs;
    std::vector<std::vector<SMP_Sample>> rows;
    std::vector<std::string> messages;
};

SMP_Item Word(uint32_t address, int station = 1)
{
    SMP_Item item;
    item.name = "w" + std::to_string(address);
    item.address = address;
    item.station = station;
    item.size = 2;
    item.type = 'u';
    return item;
}

struct Sampler : ProgramTest {
    SMP_Sampler sampler;
    Told told;
    SMP_Listener listener;
    Sampler()
    {
        wire = FakeLine();
        Procesor = CPU_C167;
        bRate = 115200;
        listener.context = &told;
        listener.row = [](void *context, const SMP_Sampler &, const SMP_Row &row) {
            Told *t = static_cast<Told *>(context);
            t->timesUs.push_back(row.timeUs);
            t->rows.emplace_back(row.samples, row.samples + row.count);
        };
        listener.message = [](void *context, const std::string &text) {
            static_cast<Told *>(context)->messages.push_back(text);
        };
    }
    void Start(const std::vector<SMP_Item> &items, int periodMs)
    {
        ASSERT_EQ(SMP_Start(&sampler, items, periodMs, listener, 1000, &LINE), 0);
    }
    // Steps until so many rows have been given out; the time in between goes by.
    void RunRows(size_t rows)
    {
        for (int i = 0; i < 10000 && told.rows.size() < rows; ++i)
            wire.nowUs += static_cast<uint64_t>(std::max<int64_t>(SMP_Step(&sampler), 0));
        ASSERT_GE(told.rows.size(), rows);
    }
    std::string ReasonOf(size_t row, size_t item)
    {
        return SMP_ReasonText(sampler.store, told.rows[row][item].state);
    }
};

} // namespace

TEST_F(Sampler, neighboursAreOneRequestAndTimesAreTheMiddle)
{
    wire.moreUs[0x800] = 20000;
    Start({Word(0x100), Word(0x104), Word(0x800)}, 100);
    const uint64_t begin = wire.nowUs;
    RunRows(3);
    const std::vector<uint32_t> first(wire.asked.begin(), wire.asked.begin() + 4);
    EXPECT_EQ(first, (std::vector<uint32_t>{0x100, 0x800, 0x100, 0x800}));
    for (size_t row = 0; row < 3; ++row) {
        const int64_t due = static_cast<int64_t>(begin + 100000 * row);
        EXPECT_EQ(told.rows[row][0].timeUs, due + 5000) << row;
        EXPECT_EQ(told.rows[row][2].timeUs, due + 25000) << row;
        EXPECT_EQ(told.timesUs[row], due + 15000) << row << ": as its samples say";
        EXPECT_EQ(told.rows[row][1].bits, 0x0504u);
    }
    EXPECT_EQ(sampler.totals.chars / sampler.totals.rows, 28u + 2 * 6 + 28 + 2 * 2);
}

TEST_F(Sampler, registersAreNotReadBecauseTheyLieBetween)
{
    Start({Word(0xFE10), Word(0xFE12), Word(0xFE16)}, 0);
    RunRows(1);
    EXPECT_EQ(sampler.plan.size(), 2u);
    EXPECT_EQ(sampler.plan[0].size, 4u);
}

TEST_F(Sampler, nothingIsGivenOutBeforeItsProofAndThatComesInASecond)
{
    Start({Word(0x100)}, 0);
    uint64_t oldest = 0;
    for (int i = 0; i < 500; ++i) {
        const size_t before = told.rows.size();
        const int proofs = wire.proofs;
        SMP_Step(&sampler);
        ASSERT_TRUE(told.rows.size() == before || wire.proofs == proofs + 1);
        for (size_t row = before; row < told.rows.size(); ++row)
            oldest = std::max(oldest, wire.nowUs - static_cast<uint64_t>(told.timesUs[row]));
    }
    EXPECT_GT(told.rows.size(), 400u);
    EXPECT_LT(oldest, 1000000u);
}

// The last block of a row may be the proof of all; when it is, the rows need not wait longer.
TEST_F(Sampler, aBlockThatProvesSavesTheProof)
{
    static int provingReads, given;
    SMP_Line line = LINE;
    line.readProving = [](int station, uint32_t address, uint32_t count, void *buffer) {
        ++provingReads;
        return FakeRead(station, address, count, buffer) < 0 ? -1 : given;
    };
    const std::vector<SMP_Item> items = {Word(0x100), Word(0x900)};
    for (given = 0; given <= 1; ++given) {
        provingReads = wire.proofs = 0;
        told.rows.clear();
        ASSERT_EQ(SMP_Start(&sampler, items, 0, listener, 1000, &line), 0);
        RunRows(200);
        EXPECT_GT(provingReads, 0);
        EXPECT_EQ(wire.asked.back(), 0x900u);
        if (given == 1)
            EXPECT_EQ(wire.proofs, provingReads) << "each is asked what it was worth, at once";
        else
            EXPECT_GT(provingReads, wire.proofs) << "read only: the proof comes at its time";
        SMP_Stop(&sampler);
    }
}

TEST_F(Sampler, whatIsOnTheDiskIsNeverASecondOld)
{
    const ScratchFolder folder{true};
    for (const int periodMs : {0, 50, 700}) {
        REC_Job job;
        REC_Options options;
        options.path = "r.csv";
        options.mayReplace = true;
        options.utcMs = [] { return static_cast<int64_t>(wire.nowUs / 1000); };
        std::string problem;
        ASSERT_EQ(REC_StartJob(&job, {Word(0x100), Word(0x900)}, periodMs, options, {},
                               REC_JobListener(), &problem, &LINE),
                  0);
        const uint64_t begin = wire.nowUs;
        for (int i = 0; i < 400; ++i) {
            wire.nowUs += static_cast<uint64_t>(std::min<int64_t>(REC_StepJob(&job), 100000));
            REC_Recording onDisk;
            ASSERT_EQ(REC_OpenRecording("r.csv", &onDisk, &problem), 0) << problem;
            const double now = static_cast<double>(wire.nowUs - begin) / 1e6;
            const double allowed = std::max(periodMs / 1000.0, 0.2) + 0.8;
            ASSERT_LT(now - onDisk.timeMax, allowed) << periodMs;
        }
        EXPECT_EQ(REC_StopJob(&job), 0);
    }
}

TEST_F(Sampler, whatIsInDoubtHasFailed)
{
    struct Case {
        int proof;
        uint32_t doubts; // that others were told of
        const char *reason;
    };
    const Case cases[] = {{UCM_READ_AGAIN, 0, "answers come more than once"},
                          {UCM_NOT_PROVEN, 0, "no answer"},
                          {UCM_PROVEN, 1, "answers come more than once"}};
    for (const Case &row : cases) {
        told = Told();
        wire = FakeLine();
        Start({Word(0x100)}, 1000);
        SMP_Step(&sampler);
        wire.proof = row.proof;
        wire.doubts += row.doubts;
        RunRows(2);
        EXPECT_TRUE(Has(ReasonOf(0, 0), row.reason));
        EXPECT_EQ(told.rows[1][0].state, SMP_GOOD) << row.reason;
        EXPECT_EQ(sampler.totals.failed, 1u);
    }
}

TEST_F(Sampler, aSilentStationHoldsUpNobody)
{
    wire.silent = {2};
    Start({Word(0x100), Word(0x100, 2), Word(0x900, 2)}, 100);
    RunRows(100);
    const size_t asked = static_cast<size_t>(wire.nowUs - 5000000) / 100000;
    EXPECT_GT(told.rows.size() * 10, asked * 7); // rows that came of those that were due
    EXPECT_EQ(ReasonOf(50, 1), "no answer");
    EXPECT_EQ(ReasonOf(50, 2), "no answer");
    EXPECT_EQ(told.rows[50][0].state, SMP_GOOD);
    EXPECT_EQ(told.messages, std::vector<std::string>{"Station 2: no answer."});
    wire.silent.clear();
    RunRows(told.rows.size() + 100);
    EXPECT_EQ(told.rows.back()[2].state, SMP_GOOD);
    EXPECT_EQ(told.messages.back(), "Station 2 answers again.");
    // Nobody answers at all: no row after row without an exchange.
    wire.silent = {1, 2};
    told = Told();
    const uint64_t begin = wire.nowUs;
    sampler.periodMs = SMP_FAST;
    RunRows(20);
    EXPECT_GT(wire.nowUs - begin, 3000000u);
}

TEST_F(Sampler, aByteThatCannotBeReadCostsItsNeighboursNothing)
{
    wire.refused = {0x102, 0x103};
    Start({Word(0x100), Word(0x102), Word(0x104)}, 100);
    RunRows(20);
    for (size_t row = 0; row < 20; ++row) {
        EXPECT_EQ(told.rows[row][0].bits, 0x0100u) << row;
        EXPECT_EQ(told.rows[row][1].state == SMP_GOOD, false) << row;
        EXPECT_EQ(told.rows[row][2].bits, 0x0504u) << row;
    }
    wire.refused = {1, 0};
    wire.nowUs += 60000000;
    RunRows(told.rows.size() + 20);
    EXPECT_EQ(sampler.plan.size(), 1u); // and in time they are together again
}

TEST_F(Sampler, aChangedListKeepsWhatStays)
{
    Start({Word(0x100), Word(0x200)}, 100);
    RunRows(5);
    SMP_Item lost = Word(0x300);
    lost.address = SMP_NO_ADDRESS;
    ASSERT_EQ(SMP_Change(&sampler, {Word(0x200), lost}), 0);
    const uint64_t had = sampler.store.rings[0].end;
    EXPECT_GE(had, 5u);
    EXPECT_EQ(sampler.store.rings[1].end, 0u);
    RunRows(told.rows.size() + 2);
    EXPECT_GT(sampler.store.rings[0].end, had);
    EXPECT_EQ(told.rows.back()[0].bits, 0x0100u);
    EXPECT_TRUE(Has(ReasonOf(told.rows.size() - 1, 1), "not resolved"));
    EXPECT_EQ(SMP_Change(&sampler, {}), SMP_ERR_ITEMS);
    SMP_Stop(&sampler);
    EXPECT_EQ(SMP_Step(&sampler), SMP_IDLE);
}

TEST_F(Sampler, valuesAreWhatTheBitsSay)
{
    struct Case {
        char type;
        int size;
        bool isTMS;
        uint64_t bits;
        const char *text;
    };
    const Case cases[] = {
        {'i', 2, false, 0xFFFE, "-2"},
        {'u', 2, false, 0xFFFE, "65534"},
        {'i', 8, false, 0x8000000000000001, "-9223372036854775807"},
        {'u', 8, false, 0xFFFFFFFFFFFFFFFF, "18446744073709551615"},
        {'x', 4, false, 0x80000000, "2147483648"},
        {'f', 4, false, 0x3DCCCCCD, "0.1"},
        {'f', 4, false, 0x7FC00000, "nan"},
        {'f', 4, true, 0x01400000, "3"},
        {'b', 1, false, 0x81, "129"},
        {'t', 4, false, 1440, "1440"},
    };
    for (const Case &row : cases) {
        SMP_Item item;
        item.type = row.type;
        item.size = row.size;
        item.isTMS = row.isTMS;
        EXPECT_EQ(SMP_NumberText(item, row.bits), row.text) << row.type;
        const double number = SMP_Number(item, row.bits), wanted = std::atof(row.text);
        EXPECT_TRUE(std::isnan(wanted)
                        ? std::isnan(number)
                        : std::fabs(number - wanted) < 1e-6 * std::fabs(wanted) + 1e-12);
    }
}

TEST_F(Sampler, aRateIsTheChangeASecondAndWrapsWithItsSize)
{
    SMP_Item rate = Word(0xFE); // FFFEh, then another address takes its place in the fake
    rate.type = 'p';
    Start({rate}, 100);
    sampler.previous[0] = {static_cast<int64_t>(wire.nowUs) + 5000 - 100000, 0xFF00, SMP_GOOD};
    RunRows(2);
    // FFFE is read as bytes FE FF: (FFFE - FF00) in 100 ms, then no change.
    EXPECT_DOUBLE_EQ(SMP_Number(rate, told.rows[0][0].bits), 2540);
    EXPECT_DOUBLE_EQ(SMP_Number(rate, told.rows[1][0].bits), 0);
    Start({rate}, 100);
    told = Told();
    RunRows(2);
    EXPECT_EQ(ReasonOf(0, 0), "a rate needs two values");
    EXPECT_EQ(told.rows[1][0].state, SMP_GOOD);
}

TEST(SampleStore, keepsTheNewestAndFindsTimes)
{
    SMP_Store store;
    SMP_SetStoreItems(&store, {Word(0)}, 100);
    for (int i = 0; i < 250; ++i)
        SMP_AddRow(&store, 0,
                   {i * 1000, static_cast<uint64_t>(i),
                    i % 10 == 3 ? SMP_StateOf(&store, "no answer") : SMP_GOOD});
    EXPECT_EQ(store.rings[0].first, 150u);
    EXPECT_EQ(store.rings[0].end, 250u);
    for (uint64_t number = 150; number < 250; ++number)
        ASSERT_EQ(SMP_GetSample(store, 0, number).timeUs, static_cast<int64_t>(number) * 1000);
    EXPECT_EQ(SMP_FindTime(store, 0, 0), 150u);
    EXPECT_EQ(SMP_FindTime(store, 0, 200001), 201u);
    EXPECT_EQ(SMP_FindTime(store, 0, 250000), 250u);
    std::vector<double> seconds, values;
    SMP_CopySamples(store, 0, 0, 999, 100000, &seconds, &values);
    ASSERT_EQ(values.size(), 100u);
    EXPECT_DOUBLE_EQ(seconds[0], 0.05);
    EXPECT_TRUE(std::isnan(values[3]));
    EXPECT_DOUBLE_EQ(values[99], 249);
    for (int i = 0; i < 400; ++i)
        SMP_StateOf(&store, "reason " + std::to_string(i));
    EXPECT_EQ(SMP_ReasonText(store, SMP_StateOf(&store, "one more")), "failed for another reason");
    EXPECT_EQ(SMP_ReasonText(store, SMP_StateOf(&store, "no answer")), "no answer");
}
