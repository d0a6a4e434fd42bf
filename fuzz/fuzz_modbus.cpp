// Answers of a Modbus slave, every function, in step and out of it: the first byte chooses the
// function, the second whether the line echoes, the rest is what the line brings, cut into
// pieces that come one behind another.
#include "comm/modbus.h"
#include "comm/modbus_line.h"
#include "comm/modbus_step.h"
#include "comm/ucm.h"
#include "fuzz_check.h"

#include <algorithm>
#include <cstring>

namespace {

const uint8_t *input = nullptr;
size_t left = 0;
uint32_t nowMs = 0;

size_t HearPiece(void *buffer, size_t count, unsigned waitMs)
{
    constexpr size_t PIECE = 48; // so that answers also arrive in parts
    const size_t got = std::min({count, left, PIECE});
    std::memcpy(buffer, input, got);
    input += got;
    left -= got;
    nowMs += got == 0 ? waitMs : 1;
    return got;
}

const MBM_Line FUZZ_LINE = {
    [](const void *, size_t count) { return static_cast<int>(count); },
    [](void *buffer, size_t count) {
        size_t got = 0;
        while (got < count) {
            const size_t piece = HearPiece(static_cast<char *>(buffer) + got, count - got, 400);
            if (piece == 0)
                break;
            got += piece;
        }
        return static_cast<int>(got);
    },
    [](void *buffer, size_t capacity, unsigned waitMs) {
        return static_cast<int>(HearPiece(buffer, capacity, waitMs));
    },
    [] { return 0; },
    [] { return 0; },
    [] { return nowMs; },
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    constexpr int FUNCTIONS[] = {1, 2, 3, 4, 6, 16, 23};
    const int function = FUNCTIONS[data[0] % 7];
    MBM_line = &FUZZ_LINE;
    MBM_isOpen = 1;
    MBM_isEcho = data[1] & 1;
    UCM_recS.protocol = 2;
    input = data + 2;
    left = size - 2;
    MBM_NoteOpened();
    uint16_t registers[MBM_READ_MAX] = {}, values[MBM_READ_MAX] = {0, 0x100};
    const auto quantity = static_cast<uint16_t>(1 + data[1] % 120);
    const MBM_Part from = {0xFF00, quantity, registers};
    const MBM_Part to = {0xFFFD, function == 23 ? uint16_t{2} : quantity, values};
    for (int i = 0; i < 3; ++i) // the later ones meet what the earlier ones left
        FUZ_Check(MBM_MasterFN(function, 1, &from, &to) >= 0 || MBM_nFault != 0);
    uint8_t bytes[300];
    FUZ_Check(UCM_Read(1, 0x100, 1 + data[1], bytes) >= 0 || !UCM_LastErrorText().empty());
    MBM_isOpen = 0;
    return 0;
}
