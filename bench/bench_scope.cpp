// The data scope: an upload of its largest buffer against the time the characters take on the
// wire, over both protocols; sorting and sharing out its 8,000 words against copying them;
// a spectrum and a saved recording against the bare file.
#include "bench.h"
#include "comm/sysaddr.h"
#include "scope/capture.h"
#include "scope/measure.h"
#include "scope/scope_v3.h"
#include "scope/session.h"
#include "symbols/addr_name.h"
#include "symbols/varnode.h"

namespace {

constexpr int ROUNDS = 200;
constexpr uint32_t BLOCK = 0x5000, RING = 0x24000;
constexpr int CHANNELS = 8, VALUES = 1000;
constexpr uint32_t BYTES = 2 * CHANNELS * VALUES;

void Poke(SIM_Target *target, uint32_t address, uint32_t value, size_t bytes)
{
    SIM_Poke(target, STATION, address, &value, bytes); // this machine is little-endian
}

SIM_Target *StartScope(int protocol, int baud)
{
    UCM_Init();
    UCM_UseWin32(1);
    SIM_Target *target = BEN_StartLine(protocol, baud);
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
        BEN_Fail("the scope is not found");
    return target;
}

void MeasureUpload(const char *name, int protocol, uint32_t blockBytes, double requestChars,
                   double answerChars, double charsAByte)
{
    SIM_Target *target = StartScope(protocol, BEN_BAUD);
    const double seconds = BEN_BestSeconds(1, [] {
        if (S3_ReadData(nullptr) != 0)
            BEN_Fail("the upload failed");
    });
    if (SX_awData[0] != 100)
        BEN_Fail("the upload is not the buffer");
    const double blocks = (BYTES + blockBytes - 1) / blockBytes;
    const double chars = blocks * (requestChars + answerChars) + BYTES * charsAByte;
    BEN_PrintWire(name, BEN_WireSeconds(chars), seconds);
    BEN_StopLine(target);
}

// What an upload does with the words once they are here.
void MeasureDemux()
{
    SIM_Target *target = StartScope(PROTOCOL_MR166, 0);
    if (S3_ReadData(nullptr) != 0)
        BEN_Fail("the upload failed");
    SCP_Setup setup;
    for (size_t i = 0; i < CHANNELS; i++)
        setup.channels[i] = {true, "x" + std::to_string(i), SX_I2, "", 0.5, 1};
    SCP_Capture capture;
    const double demux = BEN_BestSeconds(ROUNDS, [&] { capture = SCP_MakeCapture(setup); });
    std::vector<double> copy(BYTES / 2);
    const double floor = BEN_BestSeconds(ROUNDS, [&] {
        for (size_t i = 0; i < copy.size(); i++)
            copy[i] = SX_awData[i];
    });
    SCP_Spectrum spectrum;
    const double transform = BEN_BestSeconds(
        ROUNDS, [&] { SCP_MakeSpectrum(capture.traces[0].samples, capture.rate, &spectrum); });
    if (copy[7] != SX_awData[7] || capture.traces.size() != CHANNELS)
        BEN_Fail("the words are not shared out");
    std::printf("8,000 words as 8 curves        %8.3f ms   %5.1f x a plain copy\n", demux * 1e3,
                demux / floor);
    std::printf("spectrum of 1,000 samples      %8.3f ms   %5.1f x a plain copy\n", transform * 1e3,
                transform / floor);
    BEN_StopLine(target);
}

} // namespace

int main()
{
    STATION = 1;
    COM_SetNameResolver(SYM_ResolveName);
    SYM_AddNode(aVarNode, &nNodes, BLOCK, "scope", nullptr);
    openStruct = OPEN_MAP_FILE;
    // A byte is two characters of hexadecimal; a Modbus request carries the address.
    BEN_PrintWireHead("upload of 8,000 words");
    MeasureUpload("mr166", PROTOCOL_MR166, 64, 18, 10, 2);
    MeasureUpload("Modbus", PROTOCOL_MODBUS, 216, 17, 5, 1);
    MeasureDemux();
    return 0;
}
