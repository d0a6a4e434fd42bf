// What Modbus costs beyond the wire: a 64-byte read of target memory through the unified
// layer, against the same bytes by bare write and read and against libmodbus asking for as
// many registers by the same function, all on one pseudo terminal in alternating short
// rounds; then a large read at a paced baud rate against the limit of the wire.
#include "comm/modbus.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "sim/sim.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <modbus/modbus.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int PORT = 9, BAUD = 115200, SLAVE = 1;
constexpr uint32_t BYTES = 64, ADDRESS = 0x100;
constexpr size_t REQUEST_CHARS = 17, ANSWER_CHARS = 3 + BYTES + 2, BITS_PER_CHAR = 11;
constexpr int ROUNDS = 600, EXCHANGES_PER_ROUND = 20;
constexpr uint32_t LARGE_BYTES = 64 * 1024, BLOCK_BYTES = 216;

[[noreturn]] void Fail(const char *what)
{
    std::fprintf(stderr, "bench_modbus: %s\n", what);
    std::exit(1);
}

SIM_Target *StartTarget(int baud)
{
    SIM_Options options;
    options.modbus = true;
    options.demo = false;
    options.baud = baud;
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        Fail(error.c_str());
    setenv(("VIREO2_COM" + std::to_string(PORT)).c_str(), SIM_DevicePath(target), 1);
    if (UCM_Open(2, PORT, BAUD) != 0)
        Fail("the port could not be opened");
    return target;
}

int bareFd = -1;
uint8_t bareRequest[REQUEST_CHARS];
modbus_t *peer = nullptr;

void ReadThroughLayer()
{
    uint8_t bytes[BYTES];
    if (UCM_Read(SLAVE, ADDRESS, BYTES, bytes) < 0)
        Fail("a read failed");
}

void ReadBare()
{
    char answer[ANSWER_CHARS];
    if (write(bareFd, bareRequest, REQUEST_CHARS) != static_cast<ssize_t>(REQUEST_CHARS))
        Fail("a bare write failed");
    for (size_t got = 0; got < sizeof answer;) {
        const ssize_t count = read(bareFd, answer + got, sizeof answer - got);
        if (count <= 0)
            Fail("a bare read failed");
        got += static_cast<size_t>(count);
    }
}

void ReadThroughPeer()
{
    const uint16_t target[] = {ADDRESS >> 16, ADDRESS & 0xFFFF};
    uint16_t registers[BYTES / 2];
    if (modbus_write_and_read_registers(peer, 0xFFFD, 2, target, 0xFF00, BYTES / 2, registers) < 0)
        Fail("libmodbus failed");
}

double MicrosecondsEach(void (*exchange)())
{
    const uint64_t start = PLT_TickUs();
    for (int i = 0; i < EXCHANGES_PER_ROUND; ++i)
        exchange();
    return static_cast<double>(PLT_TickUs() - start) / EXCHANGES_PER_ROUND;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void CompareExchanges()
{
    SIM_Target *target = StartTarget(0);
    ReadThroughLayer();
    std::memcpy(bareRequest, MBM_abySnd, REQUEST_CHARS);
    peer = modbus_new_rtu(SIM_DevicePath(target), BAUD, 'N', 8, 1);
    modbus_set_slave(peer, SLAVE);
    bareFd = open(SIM_DevicePath(target), O_RDWR | O_NOCTTY);
    if (bareFd < 0 || modbus_connect(peer) != 0)
        Fail("the device could not be opened again");
    // The peer waits by itself; the other two let the terminal wait, which it has switched off.
    if (UCM_Open(2, PORT, BAUD) != 0)
        Fail("the port could not be opened again");
    std::vector<double> bare, layer, foreign;
    for (int round = 0; round < ROUNDS; ++round) {
        layer.push_back(MicrosecondsEach(ReadThroughLayer));
        bare.push_back(MicrosecondsEach(ReadBare));
        foreign.push_back(MicrosecondsEach(ReadThroughPeer));
    }
    std::printf("%-28s %10s %10s\n", "64-byte read, fast line", "us", "x bare");
    const struct {
        const char *name;
        const std::vector<double> &each;
    } rows[] = {{"bare port", bare}, {"unified layer", layer}, {"libmodbus", foreign}};
    for (const auto &row : rows)
        std::printf("%-28s %10.1f %10.3f\n", row.name, Median(row.each),
                    Median(row.each) / Median(bare));
    modbus_close(peer);
    modbus_free(peer);
    close(bareFd);
    UCM_Close();
    SIM_Stop(target);
}

void CompareWithWire()
{
    SIM_Target *target = StartTarget(BAUD);
    std::vector<uint8_t> bytes(LARGE_BYTES);
    const uint64_t start = PLT_TickUs();
    if (UCM_Read(SLAVE, 0, LARGE_BYTES, bytes.data()) < 0)
        Fail("the large read failed");
    const double seconds = static_cast<double>(PLT_TickUs() - start) / 1e6;
    const uint32_t blocks = (LARGE_BYTES + BLOCK_BYTES - 1) / BLOCK_BYTES;
    const double chars = blocks * (REQUEST_CHARS + 5.0) + LARGE_BYTES;
    const double limit = chars * BITS_PER_CHAR / BAUD;
    std::printf("\n%-28s %10s %10s %10s\n", "64 KiB read at 115200 baud", "wire s", "taken s",
                "% of wire");
    std::printf("%-28s %10.3f %10.3f %10.2f\n", "blocks of 216 bytes", limit, seconds,
                100 * limit / seconds);
    UCM_Close();
    SIM_Stop(target);
}

} // namespace

int main(int argc, char **argv)
{
    UCM_Init();
    CompareExchanges();
    // The paced part takes seven seconds.
    if (argc < 2 || std::strcmp(argv[1], "--quick") != 0)
        CompareWithWire();
    return 0;
}
