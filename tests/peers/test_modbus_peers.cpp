// The Modbus master and the memory tunnel against foreign slaves: one on libmodbus, one on
// pymodbus. Both hold the same tables and the same memory.
#include "peers/pty_pair.h"
#include "support/modbus_fixture.h"

#include <csignal>
#include <cstring>
#include <modbus/modbus.h>
#include <numeric>
#include <sys/wait.h>

namespace {

constexpr int SLAVE = 17;
constexpr uint32_t MEMORY_BYTES = 0x10000, SIZE_MAX_TESTED = 433;

uint8_t MemoryAt(uint32_t address)
{
    return static_cast<uint8_t>(address * 7 + (address >> 8));
}

// --- libmodbus
// ------------------------------------------------------------------------------------

constexpr int TUNNEL_EVEN = 0xFFFD, TUNNEL_ODD = 0xFFFB, TUNNEL_DATA = 0xFF00;

// Serves until it is told to end. The reserved registers are registers like others to the
// library, whose table is long enough; memory is moved before and after its reply.
class LibmodbusSlave {
public:
    explicit LibmodbusSlave(const std::string &path)
        : context(modbus_new_rtu(path.c_str(), MODBUS_BAUD, 'N', 8, 1)),
          map(modbus_mapping_new(0x2000, 0x2000, 0x10200, 0x1000)), memory(MEMORY_BYTES)
    {
        for (uint32_t a = 0; a < MEMORY_BYTES; a++)
            memory[a] = MemoryAt(a);
        for (int n = 0; n < 0x2000; n++) {
            map->tab_bits[n] = n % 3 == 0;
            map->tab_input_bits[n] = n % 5 == 0;
        }
        for (int n = 0; n < 0x1000; n++) {
            map->tab_registers[n] = static_cast<uint16_t>(n * 3);
            map->tab_input_registers[n] = static_cast<uint16_t>(n * 5);
        }
        modbus_set_slave(context, SLAVE);
        isConnected = modbus_connect(context) == 0;
        modbus_set_indication_timeout(context, 0, 100000);
        server = std::thread([this] { Serve(); });
    }
    ~LibmodbusSlave()
    {
        isEnding = true;
        server.join();
        modbus_close(context);
        modbus_free(context);
        modbus_mapping_free(map);
    }
    bool isConnected = false;

private:
    static int Word(const uint8_t *bytes)
    {
        return bytes[0] << 8 | bytes[1];
    }
    void Serve()
    {
        uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
        while (!isEnding) {
            const int length = modbus_receive(context, query);
            if (length <= 0)
                continue;
            const int function = query[1], to = function == 23 ? Word(query + 6) : Word(query + 2);
            const bool isTunnel = to == TUNNEL_EVEN || to == TUNNEL_ODD;
            if (isTunnel && function == 23)
                FillData(static_cast<uint32_t>(Word(query + 11) << 16 | Word(query + 13)),
                         2 * Word(query + 4) - (to == TUNNEL_ODD));
            modbus_reply(context, query, length, map);
            if (isTunnel && function == 16)
                StoreData(to, 2 * (Word(query + 4) - 2) - (to == TUNNEL_ODD));
        }
    }
    void FillData(uint32_t address, int count)
    {
        std::fill_n(map->tab_registers + TUNNEL_DATA, MODBUS_MAX_READ_REGISTERS, uint16_t{0});
        for (int i = 0; i < count; i++)
            map->tab_registers[TUNNEL_DATA + i / 2] |= static_cast<uint16_t>(
                memory[address + static_cast<uint32_t>(i)] << (i % 2 ? 8 : 0));
    }
    void StoreData(int tunnel, int count)
    {
        const uint16_t *registers = map->tab_registers + tunnel;
        const auto address = static_cast<uint32_t>(registers[0] << 16 | registers[1]);
        for (int i = 0; i < count; i++)
            memory[address + static_cast<uint32_t>(i)] =
                static_cast<uint8_t>(registers[2 + i / 2] >> (i % 2 ? 8 : 0));
    }
    modbus_t *context;
    modbus_mapping_t *map;
    std::vector<uint8_t> memory;
    std::atomic<bool> isEnding{false};
    std::thread server;
};

// --- pymodbus
// -------------------------------------------------------------------------------------

class PymodbusSlave {
public:
    explicit PymodbusSlave(const std::string &path)
    {
        int out[2];
        if (pipe2(out, O_CLOEXEC) != 0)
            return;
        const std::string slave = std::to_string(SLAVE);
        child = fork();
        if (child == 0) {
            dup2(out[1], STDOUT_FILENO);
            execl("/usr/bin/python3", "python3", PEERS_DIR "/pymodbus_slave.py", path.c_str(),
                  slave.c_str(), nullptr);
            _exit(127);
        }
        close(out[1]);
        char line[16] = {};
        isConnected = read(out[0], line, sizeof line - 1) > 0 && strncmp(line, "ready", 5) == 0;
        pipe = out[0]; // stays open: its writer must not fail
    }
    ~PymodbusSlave()
    {
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
        close(pipe);
    }
    bool isConnected = false;

private:
    pid_t child = -1;
    int pipe = -1;
};

// --- what both must bear
// ----------------------------------------------------------------------------

struct ModbusPeers : ModbusTest {
    void connect(const std::string &path)
    {
        setenv("VIREO2_COM62", path.c_str(), 1);
        ASSERT_EQ(UCM_Open(2, MODBUS_PORT, MODBUS_BAUD), 0);
        ASSERT_EQ(SER_SetTimeouts(MBM_hCom, 5000, 5000), SER_OK);
    }
    ~ModbusPeers() override
    {
        UCM_Close();
        unsetenv("VIREO2_COM62");
    }
};

void CheckMemory()
{
    std::vector<uint8_t> memory(MEMORY_BYTES), got(SIZE_MAX_TESTED + 1), out(SIZE_MAX_TESTED);
    for (uint32_t a = 0; a < MEMORY_BYTES; a++)
        memory[a] = MemoryAt(a);
    for (uint32_t size = 1; size <= SIZE_MAX_TESTED; size++) {
        const uint32_t from = size * 131 % 30000, to = 30000 + size * 77 % 30000;
        got[size] = 0xEE;
        ASSERT_GE(UCM_Read(SLAVE, from, size, got.data()), 0) << size << UCM_LastErrorText();
        ASSERT_EQ(memcmp(got.data(), memory.data() + from, size), 0) << size;
        ASSERT_EQ(got[size], 0xEE) << size;
        std::iota(out.begin(), out.end(), static_cast<uint8_t>(size));
        ASSERT_GE(UCM_Write(SLAVE, to, size, out.data()), 0) << size << UCM_LastErrorText();
        memcpy(memory.data() + to, out.data(), size);
    }
    // The whole of it: nothing was written beside its place.
    std::vector<uint8_t> all(MEMORY_BYTES);
    ASSERT_GE(UCM_Read(SLAVE, 0, MEMORY_BYTES, all.data()), 0);
    EXPECT_EQ(all, memory);
}

void CheckFunctions()
{
    uint16_t got[MBM_READ_MAX];
    const auto ask = [&got](int function, int start, int quantity) {
        const MBM_Part from = {static_cast<uint16_t>(start), static_cast<uint16_t>(quantity), got};
        return MBM_MasterFN(function, SLAVE, &from, nullptr);
    };
    for (const int function : {1, 2})
        for (const int quantity : {1, 8, 9, 248}) {
            ASSERT_EQ(ask(function, 11, quantity), quantity);
            for (int i = 0; i < quantity; i++) {
                const unsigned byte = i / 8 % 2 == 0 ? got[i / 16] >> 8 : got[i / 16] & 0xFFu;
                ASSERT_EQ(byte >> i % 8 & 1u, (11 + i) % (function == 1 ? 3 : 5) == 0 ? 1u : 0u);
            }
        }
    for (const int function : {3, 4})
        for (const int quantity : {1, 2, 125}) {
            ASSERT_EQ(ask(function, 300, quantity), quantity);
            for (int i = 0; i < quantity; i++)
                ASSERT_EQ(got[i], (300 + i) * (function == 3 ? 3 : 5));
        }
    uint16_t values[MBM_WRITE_MAX];
    std::iota(values, values + MBM_WRITE_MAX, uint16_t{0xFFC0});
    const MBM_Part one = {500, 1, values}, many = {501, MBM_WRITE_MAX, values};
    EXPECT_EQ(MBM_MasterFN(6, SLAVE, nullptr, &one), 0);
    EXPECT_EQ(MBM_MasterFN(16, SLAVE, nullptr, &many), 0);
    const MBM_Part last = {502, 121, values + 1}, from = {500, 125, got};
    EXPECT_EQ(MBM_MasterFN(23, SLAVE, &from, &last), 125);
    EXPECT_EQ(got[0], values[0]);
    EXPECT_EQ(memcmp(got + 1, values, 2 * MBM_WRITE_MAX), 0);
    EXPECT_EQ(got[124], 624 * 3);
    EXPECT_EQ(ask(1, 0x2000, 1), -1); // no such coil
    EXPECT_EQ(MBM_byExCode, 2);
}

template <typename Slave> void CheckPeer(ModbusPeers *test)
{
    const PtyPair cable;
    const Slave slave(cable.Path(1));
    ASSERT_TRUE(slave.isConnected);
    test->connect(cable.Path(0));
    CheckMemory();
    CheckFunctions();
}

TEST_F(ModbusPeers, Libmodbus)
{
    CheckPeer<LibmodbusSlave>(this);
}

TEST_F(ModbusPeers, Pymodbus)
{
    CheckPeer<PymodbusSlave>(this);
}

} // namespace
