// Modbus over bad lines, in virtual time: whatever happens to requests and answers, no wrong
// value is read, no write is reported that did not happen, and every failure is counted.
#include "support/modbus_fixture.h"
#include "support/modbus_virtual_line.h"

namespace {

constexpr uint32_t MEMORY_BYTES = 4096;

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
        MBMSTEP_Opened();
        UCM_recS.protocol = 2;
        UCM_recS.opened = 1;
        UCM_ResetStatistics();
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
        UCM_recS.opened = 0;
        MBM_line = &MBM_SERIAL_LINE;
        virtualLine.reset();
    }
    uint32_t Draw(uint32_t count)
    {
        return static_cast<uint32_t>(order() % count);
    }
    // One read or write somewhere. 1 it was right, 0 it failed; a wrong value fails the test.
    int Exchange()
    {
        constexpr uint32_t SIZES[] = {1, 2, 2, 4, 4, 8, 64, 200, 216};
        const int slave = static_cast<int>(Draw(3)) + 1;
        const uint32_t size = SIZES[Draw(9)], address = 256 + Draw(MEMORY_BYTES - 256 - size);
        uint8_t bytes[216];
        if (Draw(4) != 0) {
            if (UCM_Read(slave, address, size, bytes) < 0)
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
            uint8_t values[ITEMS][2];
            uint32_t places[ITEMS];
            bool isRead[ITEMS];
            for (int i = 0; i < ITEMS; i++) {
                places[i] = 256 + Draw(MEMORY_BYTES - 258);
                isRead[i] = UCM_Read(1, places[i], 2, values[i]) >= 0;
            }
            if (UCM_Prove() != UCM_PROVEN)
                continue;
            for (int i = 0; i < ITEMS; i++) {
                EXPECT_TRUE(!isRead[i] || memcmp(values[i], shadow[1] + places[i], 2) == 0);
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
    };
    constexpr int SEEDS = 5;
    for (const auto &item : cases) {
        int good = 0;
        for (uint32_t seed = 1; seed <= uint32_t{SEEDS} && !HasFailure(); seed++) {
            SCOPED_TRACE(item.name + std::string(", seed ") + std::to_string(seed));
            order.seed(seed);
            Start(item.faults, seed);
            good += Run(item.goodOf1000 > 0 ? 1000 : 20);
        }
        EXPECT_GE(good / SEEDS, item.goodOf1000) << item.name;
    }
}

TEST_F(ModbusBadLine, ARepeatedAnswerIsNeverShown)
{
    VirtualFaults faults;
    faults.doubled = 0.05;
    int shown = 0;
    for (uint32_t seed = 1; seed <= 20 && !HasFailure(); seed++) {
        order.seed(seed);
        Start(faults, seed);
        shown += RunSweeps(100);
    }
    EXPECT_GT(shown, 20 * 100 * 13 / 5);
}

} // namespace
