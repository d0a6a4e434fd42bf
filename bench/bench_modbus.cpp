// What Modbus costs beyond the wire: a 64-byte read of target memory through the unified
// layer, against the same bytes by bare write and read and against libmodbus asking for as
// many registers by the same function, all on one pseudo terminal in alternating short
// rounds; then a large read at a paced baud rate against the limit of the wire.
#include "bench.h"
#include "comm/modbus.h"

#include <cstring>
#include <fcntl.h>
#include <modbus/modbus.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int SLAVE = 1;
constexpr uint32_t BYTES = 64, ADDRESS = 0x100;
constexpr size_t REQUEST_CHARS = 17, ANSWER_CHARS = 3 + BYTES + 2;
constexpr int ROUNDS = 600, EXCHANGES_PER_ROUND = 20;
constexpr uint32_t LARGE_BYTES = 64 * 1024, BLOCK_BYTES = 216;

int bareFd = -1;
uint8_t bareRequest[REQUEST_CHARS];
modbus_t *peer = nullptr;

void ReadThroughLayer()
{
    uint8_t bytes[BYTES];
    if (UCM_Read(SLAVE, ADDRESS, BYTES, bytes) < 0)
        BEN_Fail("a read failed");
}

void ReadBare()
{
    char answer[ANSWER_CHARS];
    if (write(bareFd, bareRequest, REQUEST_CHARS) != static_cast<ssize_t>(REQUEST_CHARS))
        BEN_Fail("a bare write failed");
    for (size_t got = 0; got < sizeof answer;) {
        const ssize_t count = read(bareFd, answer + got, sizeof answer - got);
        if (count <= 0)
            BEN_Fail("a bare read failed");
        got += static_cast<size_t>(count);
    }
}

void ReadThroughPeer()
{
    const uint16_t target[] = {ADDRESS >> 16, ADDRESS & 0xFFFF};
    uint16_t registers[BYTES / 2];
    if (modbus_write_and_read_registers(peer, 0xFFFD, 2, target, 0xFF00, BYTES / 2, registers) < 0)
        BEN_Fail("libmodbus failed");
}

double MicrosecondsEach(void (*exchange)())
{
    const uint64_t start = PLT_TickUs();
    for (int i = 0; i < EXCHANGES_PER_ROUND; ++i)
        exchange();
    return static_cast<double>(PLT_TickUs() - start) / EXCHANGES_PER_ROUND;
}

void CompareExchanges()
{
    SIM_Target *target = BEN_StartLine(PROTOCOL_MODBUS, 0);
    ReadThroughLayer();
    std::memcpy(bareRequest, MBM_abySnd, REQUEST_CHARS);
    peer = modbus_new_rtu(SIM_DevicePath(target), BEN_BAUD, 'N', 8, 1);
    modbus_set_slave(peer, SLAVE);
    bareFd = open(SIM_DevicePath(target), O_RDWR | O_NOCTTY);
    if (bareFd < 0 || modbus_connect(peer) != 0)
        BEN_Fail("the device could not be opened again");
    // The peer waits by itself; the other two let the terminal wait, which it has switched off.
    BEN_OpenLine(PROTOCOL_MODBUS);
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
        std::printf("%-28s %10.1f %10.3f\n", row.name, BEN_Median(row.each),
                    BEN_Median(row.each) / BEN_Median(bare));
    modbus_close(peer);
    modbus_free(peer);
    close(bareFd);
    BEN_StopLine(target);
}

void CompareWithWire()
{
    SIM_Target *target = BEN_StartLine(PROTOCOL_MODBUS, BEN_BAUD);
    std::vector<uint8_t> bytes(LARGE_BYTES);
    const double seconds = BEN_Seconds([&] {
        if (UCM_Read(SLAVE, 0, LARGE_BYTES, bytes.data()) < 0)
            BEN_Fail("the large read failed");
    });
    const uint32_t blocks = (LARGE_BYTES + BLOCK_BYTES - 1) / BLOCK_BYTES;
    const double chars = blocks * (REQUEST_CHARS + 5.0) + LARGE_BYTES;
    std::printf("\n");
    BEN_PrintWireHead("64 KiB read at 115200 baud");
    BEN_PrintWire("blocks of 216 bytes", BEN_WireSeconds(chars), seconds);
    BEN_StopLine(target);
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
