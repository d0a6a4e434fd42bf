// The data scope: an upload of its largest buffer against the time the characters take on the
// wire, over both protocols; sorting and sharing out its 8,000 words against copying them;
// a spectrum and a saved recording against the bare file.
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "scope/capture.h"
#include "scope/scope_v3.h"
#include "scope/session.h"
#include "scope/spectrum.h"
#include "settings/settings.h"
#include "sim/sim.h"
#include "symbols/addr_name.h"
#include "symbols/varnode.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr int PORT = 9, BAUD = 115200, ROUNDS = 200;
constexpr double BITS_PER_CHAR = 11;
constexpr uint32_t BLOCK = 0x5000, RING = 0x24000;
constexpr int CHANNELS = 8, VALUES = 1000;
constexpr uint32_t BYTES = 2 * CHANNELS * VALUES;

[[noreturn]] void Fail(const char *what)
{
    std::fprintf(stderr, "bench_scope: %s\n", what);
    std::exit(1);
}

double TakeBest(int rounds, const std::function<void()> &run)
{
    double best = 1e9;
    for (int i = 0; i < rounds; i++) {
        const uint64_t start = PLT_TickUs();
        run();
        best = std::min(best, static_cast<double>(PLT_TickUs() - start) / 1e6);
    }
    return best;
}

void Poke(SIM_Target *target, uint32_t address, uint32_t value, size_t bytes)
{
    SIM_Poke(target, STATION, address, &value, bytes); // this machine is little-endian
}

SIM_Target *StartTarget(bool isModbus, int baud)
{
    SIM_Options options;
    options.modbus = isModbus;
    options.demo = false;
    options.baud = baud;
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        Fail(error.c_str());
    setenv(("VIREO2_COM" + std::to_string(PORT)).c_str(), SIM_DevicePath(target), 1);
    UCM_Init();
    UCM_UseWin32(1);
    if (UCM_Open(isModbus ? PROTOCOL_MODBUS : PROTOCOL_MR166, PORT, BAUD) < 0)
        Fail("the port cannot be opened");
    Poke(target, BLOCK, 0x20D2, 2); // complete, written up to word 100
    Poke(target, BLOCK + 0x10, VALUES, 2);
    Poke(target, BLOCK + 0x12, CHANNELS, 2);
    Poke(target, BLOCK + 0x18, 5000000, 4);
    Poke(target, BLOCK + 0x22, 100, 2);
    Poke(target, BLOCK + 0x28, (RING & 0x3FFF) | (RING & ~0x3FFFu) << 2, 4);
    for (uint32_t i = 0; i < BYTES / 2; i++)
        Poke(target, RING + 2 * i, i, 2);
    SX_szPrefix = "scope";
    SX_nVer = 3;
    if (S3_Init() != 0)
        Fail("the scope is not found");
    return target;
}

void MeasureUpload(const char *name, bool isModbus, uint32_t blockBytes, double requestChars,
                   double answerChars, double charsAByte)
{
    SIM_Target *target = StartTarget(isModbus, BAUD);
    const double seconds = TakeBest(1, [] {
        if (S3_ReadData(nullptr) != 0)
            Fail("the upload failed");
    });
    if (SX_awData[0] != 100)
        Fail("the upload is not the buffer");
    const double blocks = (BYTES + blockBytes - 1) / blockBytes;
    const double chars = blocks * (requestChars + answerChars) + BYTES * charsAByte;
    const double limit = chars * BITS_PER_CHAR / BAUD;
    std::printf("upload of 8,000 words, %-8s wire %7.3f s   taken %7.3f s   %5.1f %% of the wire\n",
                name, limit, seconds, 100 * limit / seconds);
    UCM_Close();
    SIM_Stop(target);
}

// What an upload does with the words once they are here.
void MeasureDemux()
{
    SIM_Target *target = StartTarget(false, 0);
    if (S3_ReadData(nullptr) != 0)
        Fail("the upload failed");
    SCP_Setup setup;
    for (size_t i = 0; i < CHANNELS; i++)
        setup.channels[i] = {true, "x" + std::to_string(i), SX_I2, "", 0.5, 1};
    SCP_Capture capture;
    const double demux = TakeBest(ROUNDS, [&] { capture = SCP_MakeCapture(setup); });
    std::vector<double> copy(BYTES / 2);
    const double floor = TakeBest(ROUNDS, [&] {
        for (size_t i = 0; i < copy.size(); i++)
            copy[i] = SX_awData[i];
    });
    SPC_Spectrum spectrum;
    const double transform =
        TakeBest(ROUNDS, [&] { SPC_Make(capture.traces[0].samples, capture.rate, &spectrum); });
    if (copy[7] != SX_awData[7] || capture.traces.size() != CHANNELS)
        Fail("the words are not shared out");
    std::printf("8,000 words as 8 curves        %8.3f ms   %5.1f x a plain copy\n", demux * 1e3,
                demux / floor);
    std::printf("spectrum of 1,000 samples      %8.3f ms   %5.1f x a plain copy\n", transform * 1e3,
                transform / floor);
    UCM_Close();
    SIM_Stop(target);
}

} // namespace

int main()
{
    STATION = 1;
    ADR_SetResolver(SYM_ResolveName);
    VRN_AddNode(aVarNode, &nNodes, BLOCK, "scope", nullptr);
    openStruct = OPEN_MAP_FILE;
    // A byte is two characters of hexadecimal; a Modbus request carries the address.
    MeasureUpload("mr166", false, 64, 18, 10, 2);
    MeasureUpload("Modbus", true, 216, 17, 5, 1);
    MeasureDemux();
    return 0;
}
