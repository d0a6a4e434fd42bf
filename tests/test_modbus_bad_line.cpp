// Modbus over bad lines, in virtual time: whatever happens to requests and answers, no wrong
// value is read, no write is reported that did not happen, and every failure is counted.
#include "support/modbus_fixture.h"
#include "support/modbus_virtual_line.h"

namespace {

constexpr uint32_t MEMORY_BYTES = 4096;

// Few enough for every day; the variable asks for more.
uint32_t CountSeeds(uint32_t usual)
{
    const char *count = std::getenv("VIREO2_STEP_SEEDS");
    return count != nullptr ? static_cast<uint32_t>(std::atol(count)) : usual;
}

struct ModbusBadLine : ModbusTest {
    void Start(const VirtualFaults &faults, uint32_t seed)
    {
        virtualLine = std::make_unique<VirtualLine>();
        virtualLine->target.options.demo = false;
        virtualLine->random.seed(seed);
        virtualLine->faults = faults;
        MBM_line = &VIRTUAL_LINE;
        MBM_nTimeoutMs = 400;
        MBM_isEcho = faults.isEcho;
        MBM_isOpen = 1;
        MBM_NoteOpened();
        UCM_recS.protocol = 2;
        UCM_recS.opened = 1;
        UCM_ResetStatistics();
        (void)UCM_Prove(); // settles what was counted on the line of another test
        // Every byte tells its address and its station: a neighbour's value is seen as such.
        for (int slave = 1; slave <= 3; slave++)
            for (uint32_t a = 0; a < MEMORY_BYTES; a++) {
                shadow[slave][a] = static_cast<uint8_t>(a * 13 + (a >> 8) * 7 + 31u * slave);
                SIM_SetValue(&virtualLine->target.stations[slave], a, 1, shadow[slave][a]);
            }
    }
    ~ModbusBadLine() override
    {
        MBM_isOpen = 0;
        UCM_SetListener(UCM_Listener());
        UCM_recS.opened = 0;
        MBM_line = &MBM_SERIAL_LINE;
        virtualLine.reset();
    }
    // Every other read is its own proof where that can be had.
    decltype(&UCM_Read) PickRead(uint32_t address) const
    {
        return isProving && address % 2 == 0 ? UCM_ReadProving : UCM_Read;
    }
    uint32_t Draw(uint32_t count)
    {
        return static_cast<uint32_t>(order() % count);
    }
    // One read or write somewhere. 1 it was right, 0 it failed; a wrong value fails the test.
    int Exchange()
    {
        constexpr uint32_t SIZES[] = {1, 2, 2, 4, 4, 8, 64, 200, 216, 500};
        const int slave = static_cast<int>(Draw(3)) + 1;
        const uint32_t size = SIZES[Draw(isProving ? 10 : 9)],
                       address = 256 + Draw(MEMORY_BYTES - 256 - size);
        uint8_t bytes[500];
        if (Draw(4) != 0) {
            if (PickRead(address)(slave, address, size, bytes) < 0)
                return 0;
            EXPECT_EQ(memcmp(bytes, shadow[slave] + address, size), 0)
                << "slave " << slave << " address " << address << " size " << size;
            return 1;
        }
        for (uint32_t i = 0; i < size; i++)
            bytes[i] = static_cast<uint8_t>(order());
        const bool isDone = UCM_Write(slave, address, size, bytes) >= 0;
        std::vector<uint8_t> stored(size);
        SIM_ReadMemory(virtualLine->target.stations[slave], address, stored.data(), size);
        const bool isStored = memcmp(stored.data(), bytes, size) == 0;
        EXPECT_TRUE(isStored || !isDone) << "a write that did not happen";
        memcpy(shadow[slave] + address, stored.data(), size);
        return isDone ? 1 : 0;
    }
    // Sweeps of single values as a watch list reads them: shown when they are proven.
    int RunSweeps(int sweeps)
    {
        constexpr int ITEMS = 13;
        int shown = 0;
        for (int sweep = 0; sweep < sweeps; sweep++) {
            uint8_t values[ITEMS][6]; // of a size that a proof can have
            uint32_t places[ITEMS];
            bool isRead[ITEMS];
            for (int i = 0; i < ITEMS; i++) {
                places[i] = 256 + Draw(MEMORY_BYTES - 256 - sizeof values[i]);
                isRead[i] = PickRead(places[i])(1, places[i], sizeof values[i], values[i]) >= 0;
            }
            if (UCM_Prove() != UCM_PROVEN)
                continue;
            for (int i = 0; i < ITEMS; i++) {
                EXPECT_TRUE(!isRead[i] ||
                            memcmp(values[i], shadow[1] + places[i], sizeof values[i]) == 0);
                shown += isRead[i];
            }
        }
        return shown;
    }
    int Run(int exchanges)
    {
        int good = 0;
        for (int i = 0; i < exchanges && !HasFailure(); i++)
            good += Exchange();
        return good;
    }

    std::mt19937 order{5};
    bool isProving = false;
    uint8_t shadow[4][MEMORY_BYTES];
};

TEST_F(ModbusBadLine, EveryValueIsRightAndEveryFailureCounted)
{
    VirtualFaults faults;
    faults.loss = faults.damage = faults.refusal = 0.05;
    Start(faults, 1);
    const int good = Run(10000);
    EXPECT_GT(good, 9900);
    UCM_Statistics seen;
    UCM_GetStatistics(&seen);
    const VirtualLine &line = *virtualLine;
    EXPECT_GE(seen.timeouts + seen.damaged, line.lost + line.damaged + line.refused);
    EXPECT_EQ(seen.timeouts + seen.damaged, seen.repeated); // once each
    EXPECT_GE(seen.errors[1], seen.repeated);               // and proofs that failed
}

TEST_F(ModbusBadLine, NoScheduleBringsAWrongValue)
{
    const struct {
        const char *name;
        VirtualFaults faults;
        int goodOf1000; // at least
    } cases[] = {
        {"healthy", {0, 0, 0, 0, 0, 0, 1, 2, false}, 1000},
        {"lost and damaged", {.1, .1, 0, 0, 0, 0, 1, 2, false}, 980},
        {"late now and then", {0, 0, 0, 0, 0, 0, 1, 450, false}, 990},
        {"always late", {0, 0, 0, 0, 0, 0, 450, 400, false}, 950},
        {"very late", {0, 0, 0, 0, 0, 0, 0, 1200, false}, 900},
        {"late, lost and damaged", {.05, .2, .02, 0, 0, 0, 0, 700, false}, 800},
        {"stray bytes", {0, 0, 0, 0, .1, 0, 1, 2, false}, 980},
        {"stray bytes at every answer", {0, 0, 0, 0, 1, 0, 1, 2, false}, 0},
        {"other slaves talk", {0, 0, 0, 0, 0, .1, 1, 2, false}, 990},
        {"echo", {.05, .05, 0, 0, 0, 0, 1, 2, true}, 990},
        {"refused, late and lost", {.05, 0, .2, 0, 0, 0, 0, 700, false}, 700},
        {"nothing at address 0", {.02, .02, .02, 0, 0, 0, 1, 450, false, 256}, 950},
    };
    const uint32_t seeds = CountSeeds(4);
    for (const auto &item : cases) {
        int good = 0;
        for (uint32_t seed = 1; seed <= seeds && !HasFailure(); seed++) {
            SCOPED_TRACE(item.name + std::string(", seed ") + std::to_string(seed));
            order.seed(seed);
            isProving = seed % 2 != 0;
            Start(item.faults, seed);
            good += Run(item.goodOf1000 > 0 ? 1000 : 20);
        }
        EXPECT_GE(good / static_cast<int>(seeds), item.goodOf1000) << item.name;
    }
}

TEST_F(ModbusBadLine, ARepeatedAnswerIsNeverShown)
{
    const struct {
        const char *name;
        VirtualFaults faults;
        uint32_t shownOf100; // at least
    } cases[] = {
        {"answers", {0, 0, 0, .05, 0, 0, 1, 2, false}, 20},
        {"exceptions as well", {0, 0, .1, .1, 0, 0, 1, 2, false}, 4},
        {"of a slave without address 0", {0, 0, .1, .1, 0, 0, 1, 2, false, 256}, 4},
        {"of a slow slave", {0, 0, .1, .1, 0, 0, 0, 700, false, 256}, 1},
    };
    const uint32_t seeds = CountSeeds(10);
    for (const auto &item : cases) {
        uint32_t shown = 0;
        for (uint32_t seed = 1; seed <= seeds && !HasFailure(); seed++) {
            SCOPED_TRACE(item.name + std::string(", seed ") + std::to_string(seed));
            order.seed(seed);
            isProving = seed % 2 != 0;
            Start(item.faults, seed);
            shown += static_cast<uint32_t>(RunSweeps(100));
        }
        EXPECT_GT(shown, seeds * 13 * item.shownOf100) << item.name;
    }
}

// A program that was killed had asked for what its slave refused, and for a value of the size
// that is asked for next.
TEST_F(ModbusBadLine, ExceptionsOfAnEarlierTimeProveNothing)
{
    Start(VirtualFaults(), 1);
    uint8_t answer[] = {1, 23 | 0x80, 2, 0, 0}, value[] = {1, 23, 2, 0x11, 0x22, 0, 0};
    (void)SIM_CloseRtu(answer, 3);
    (void)SIM_CloseRtu(value, 5);
    for (int i = 0; i < 3; i++)
        virtualLine->Queue(30.0 * (i + 1), answer, sizeof answer);
    virtualLine->Queue(120, value, sizeof value);
    uint8_t bytes[2];
    ASSERT_GE(UCM_Read(1, 0x300, sizeof bytes, bytes), 0);
    EXPECT_EQ(memcmp(bytes, shadow[1] + 0x300, sizeof bytes), 0);
}

// The second request of the same bytes is no repetition: a late probe has its length.
TEST_F(ModbusBadLine, AnAnsweredRequestIsAskedAnew)
{
    Start(VirtualFaults(), 1);
    uint8_t bytes[40];
    ASSERT_GE(UCM_Read(1, 0x300, sizeof bytes, bytes), 0);
    ASSERT_EQ(UCM_Prove(), UCM_PROVEN);
    virtualLine->faults.delayMs = 450;
    ASSERT_NE(MBM_ReadProving(1, 0x500, sizeof bytes, bytes), 0);
    virtualLine->faults.delayMs = 1;
    ASSERT_GE(UCM_Read(1, 0x300, sizeof bytes, bytes), 0);
    EXPECT_EQ(memcmp(bytes, shadow[1] + 0x300, sizeof bytes), 0);
}

int askedBreak = 0;
std::string waitedFor;

TEST_F(ModbusBadLine, BreaksOffAtTheNextTryAndSaysForWhomItWaits)
{
    Start(VirtualFaults(), 1);
    askedBreak = 0;
    waitedFor.clear();
    UCM_Listener breaking;
    breaking.isBreak = [] { return ++askedBreak > 7; };
    breaking.waiting = [](int station) { waitedFor += std::to_string(station) + " "; };
    UCM_SetListener(breaking);
    uint8_t bytes[2];
    ASSERT_GE(UCM_Read(1, 0x300, sizeof bytes, bytes), 0); // three probes before it
    ASSERT_GE(UCM_Read(1, 0x300, sizeof bytes, bytes), 0);
    EXPECT_EQ(waitedFor, "1 ");
    virtualLine->faults.loss = 2;
    const double before = virtualLine->nowMs;
    EXPECT_LT(UCM_Read(1, 0x300, sizeof bytes, bytes), 0);
    EXPECT_EQ(UCM_LastErrorText(), "cancelled");
    EXPECT_LT(virtualLine->nowMs - before, 3 * 400);
    EXPECT_EQ(waitedFor, "1 1 ") << "not before a first try that nothing failed before";
}

} // namespace
