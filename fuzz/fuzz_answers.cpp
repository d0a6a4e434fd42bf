// Answers of a hostile line through both drivers: whatever stands on it, a read ends within
// its tries, and a value that is not the target's needs a sound frame to be taken for it. The
// first byte chooses driver and size, the rest stands on the line in pieces.
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "virtual_line.h"

#include <cstddef>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    if (count < 2)
        return 0;
    VL_Schedule line;
    line.isEcho = (bytes[0] & 2) != 0;
    VL_Start(line, bytes[1]);
    UCM_Init();
    Mr166_nTimeoutMs = VL_TIMEOUT_MS;
    MrASC_UseWin32(bytes[0] & 1);
    if (UCM_Open(1, 1, 19200) != 0)
        std::abort();
    constexpr uint32_t SIZES[] = {1, 2, 4, 8, 64, 200};
    const uint32_t size = SIZES[bytes[0] / 4 % 6];
    const std::string text(reinterpret_cast<const char *>(bytes) + 2, count - 2);
    const size_t half = text.size() / 2;
    VL_Inject(text.substr(0, half), 0);
    VL_Inject(text.substr(half), bytes[1]);
    const uint64_t start = VL_NowUs();
    uint8_t read[200];
    (void)UCM_Read(1, 0x1000, size, read);
    (void)UCM_Write(1, 0x2000, 20, read);
    (void)UCM_EmuCom166Msg(1, 4, 0x3000, 1, nullptr);
    (void)UCM_Prove();
    if (VL_NowUs() - start > 400ull * VL_TIMEOUT_MS * 1000)
        std::abort();
    UCM_Close();
    return 0;
}
