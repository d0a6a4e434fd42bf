// What the link costs beyond the wire: a 64-byte read through the unified layer against
// the same bytes by bare write and read on the same pseudo terminal, and a large read at
// a paced baud rate against the limit of the wire. The two sides of the first comparison
// alternate in short rounds, so that a busy machine disturbs both alike; medians count.
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "sim/sim.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int PORT = 9;
constexpr int BAUD = 115200;
constexpr uint32_t ADDRESS = 0x100;
constexpr uint32_t BLOCK_BYTES = 64;
constexpr size_t REQUEST_CHARS = 18, ANSWER_CHARS = 138, BITS_PER_CHAR = 11;
constexpr int ROUNDS = 600, EXCHANGES_PER_ROUND = 20;
constexpr uint32_t LARGE_BYTES = 64 * 1024;

[[noreturn]] void Fail(const char *what)
{
    std::fprintf(stderr, "bench_link: %s\n", what);
    std::exit(1);
}

SIM_Target *StartTarget(int baud)
{
    SIM_Options options;
    options.baud = baud;
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        Fail(error.c_str());
    setenv(("VIREO2_COM" + std::to_string(PORT)).c_str(), SIM_DevicePath(target), 1);
    if (UCM_Open(1, PORT, BAUD) != 0)
        Fail("the port could not be opened");
    return target;
}

void StopTarget(SIM_Target *target)
{
    UCM_Close();
    SIM_Stop(target);
}

void ReadThroughLayer(int)
{
    uint8_t bytes[BLOCK_BYTES];
    if (UCM_Read(1, ADDRESS, BLOCK_BYTES, bytes) < 0)
        Fail("a read failed");
}

void ReadBare(int fd)
{
    char answer[ANSWER_CHARS];
    // The layer's last request may have been a proof of its own.
    makeSFrm(1, MR166_CMD_READ, ADDRESS, BLOCK_BYTES);
    if (write(fd, Mr166_abySnd, REQUEST_CHARS) != static_cast<ssize_t>(REQUEST_CHARS))
        Fail("a bare write failed");
    for (size_t got = 0; got < sizeof answer;) {
        const ssize_t count = read(fd, answer + got, sizeof answer - got);
        if (count <= 0)
            Fail("a bare read failed");
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

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void CompareExchanges(const char *name, const char *device)
{
    const int fd = open(device, O_RDWR | O_NOCTTY);
    if (fd < 0)
        Fail("the device could not be opened twice");
    std::vector<double> bare, layer;
    for (int round = 0; round < ROUNDS; ++round) {
        layer.push_back(MicrosecondsEach(ReadThroughLayer, fd));
        bare.push_back(MicrosecondsEach(ReadBare, fd));
    }
    close(fd);
    std::printf("%-34s %10.1f %10.1f %10.3f\n", name, Median(bare), Median(layer),
                Median(layer) / Median(bare));
}

void CompareWithWire()
{
    SIM_Target *target = StartTarget(BAUD);
    std::vector<uint8_t> bytes(LARGE_BYTES);
    const uint64_t start = PLT_TickUs();
    if (UCM_Read(1, 0, LARGE_BYTES, bytes.data()) < 0)
        Fail("the large read failed");
    const double seconds = static_cast<double>(PLT_TickUs() - start) / 1e6;
    const double blocks = LARGE_BYTES / BLOCK_BYTES;
    const double limit = blocks * (REQUEST_CHARS + ANSWER_CHARS) * BITS_PER_CHAR / BAUD;
    std::printf("\n%-34s %10s %10s %10s\n", "64 KiB read at 115200 baud", "wire s", "taken s",
                "% of wire");
    std::printf("%-34s %10.3f %10.3f %10.2f\n", "Win32 driver", limit, seconds,
                100 * limit / seconds);
    StopTarget(target);
}

} // namespace

int main(int argc, char **argv)
{
    UCM_Init();
    std::printf("%-34s %10s %10s %10s\n", "64-byte read, fast line", "bare us", "layer us",
                "ratio");
    SIM_Target *target = StartTarget(0);
    UCM_UseWin32(1);
    CompareExchanges("Win32 driver", SIM_DevicePath(target));
    TRC_Enable(1000);
    CompareExchanges("Win32 driver, trace on", SIM_DevicePath(target));
    TRC_Enable(0);
    UCM_UseWin32(0);
    CompareExchanges("run-time driver", SIM_DevicePath(target));
    UCM_UseWin32(1);
    StopTarget(target);
    // The paced part takes a quarter of a minute.
    if (argc < 2 || std::strcmp(argv[1], "--quick") != 0)
        CompareWithWire();
    return 0;
}
