// What the link costs beyond the wire: a 64-byte read through the unified layer against
// the same bytes by bare write and read on the same pseudo terminal, and a large read at
// a paced baud rate against the limit of the wire. The two sides of the first comparison
// alternate in short rounds, so that a busy machine disturbs both alike; medians count.
#include "bench.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"

#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr uint32_t ADDRESS = 0x100;
constexpr uint32_t BLOCK_BYTES = 64;
constexpr size_t REQUEST_CHARS = 18, ANSWER_CHARS = 138;
constexpr int ROUNDS = 600, EXCHANGES_PER_ROUND = 20;
constexpr uint32_t LARGE_BYTES = 64 * 1024;

void ReadThroughLayer(int)
{
    uint8_t bytes[BLOCK_BYTES];
    if (UCM_Read(1, ADDRESS, BLOCK_BYTES, bytes) < 0)
        BEN_Fail("a read failed");
}

void ReadBare(int fd)
{
    char answer[ANSWER_CHARS];
    // The layer's last request may have been a proof of its own.
    makeSFrm(1, MR166_CMD_READ, ADDRESS, BLOCK_BYTES);
    if (write(fd, Mr166_abySnd, REQUEST_CHARS) != static_cast<ssize_t>(REQUEST_CHARS))
        BEN_Fail("a bare write failed");
    for (size_t got = 0; got < sizeof answer;) {
        const ssize_t count = read(fd, answer + got, sizeof answer - got);
        if (count <= 0)
            BEN_Fail("a bare read failed");
        got += static_cast<size_t>(count);
    }
}

double MicrosecondsEach(void (*exchange)(int), int fd)
{
    const uint64_t start = PLT_TickUs();
    for (int i = 0; i < EXCHANGES_PER_ROUND; ++i)
        exchange(fd);
    return static_cast<double>(PLT_TickUs() - start) / EXCHANGES_PER_ROUND;
}

void CompareExchanges(const char *name, const char *device)
{
    const int fd = open(device, O_RDWR | O_NOCTTY);
    if (fd < 0)
        BEN_Fail("the device could not be opened twice");
    std::vector<double> bare, layer;
    for (int round = 0; round < ROUNDS; ++round) {
        layer.push_back(MicrosecondsEach(ReadThroughLayer, fd));
        bare.push_back(MicrosecondsEach(ReadBare, fd));
    }
    close(fd);
    std::printf("%-34s %10.1f %10.1f %10.3f\n", name, BEN_Median(bare), BEN_Median(layer),
                BEN_Median(layer) / BEN_Median(bare));
}

void CompareWithWire()
{
    SIM_Target *target = BEN_StartLine(PROTOCOL_MR166, BEN_BAUD);
    std::vector<uint8_t> bytes(LARGE_BYTES);
    const double seconds = BEN_Seconds([&] {
        if (UCM_Read(1, 0, LARGE_BYTES, bytes.data()) < 0)
            BEN_Fail("the large read failed");
    });
    const double blocks = LARGE_BYTES / BLOCK_BYTES;
    std::printf("\n");
    BEN_PrintWireHead("64 KiB read at 115200 baud");
    BEN_PrintWire("Win32 driver", BEN_WireSeconds(blocks * (REQUEST_CHARS + ANSWER_CHARS)),
                  seconds);
    BEN_StopLine(target);
}

} // namespace

int main(int argc, char **argv)
{
    UCM_Init();
    std::printf("%-34s %10s %10s %10s\n", "64-byte read, fast line", "bare us", "layer us",
                "ratio");
    SIM_Target *target = BEN_StartLine(PROTOCOL_MR166, 0);
    UCM_UseWin32(1);
    CompareExchanges("Win32 driver", SIM_DevicePath(target));
    TRC_Enable(1000);
    CompareExchanges("Win32 driver, trace on", SIM_DevicePath(target));
    TRC_Enable(0);
    UCM_UseWin32(0);
    CompareExchanges("run-time driver", SIM_DevicePath(target));
    UCM_UseWin32(1);
    BEN_StopLine(target);
    // The paced part takes a quarter of a minute.
    if (argc < 2 || std::strcmp(argv[1], "--quick") != 0)
        CompareWithWire();
    return 0;
}
