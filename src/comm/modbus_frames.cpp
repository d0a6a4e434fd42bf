// RTU frames have neither start nor end character: the function says how long an answer is, and
// two CRC bytes, the low one first, whether it is one.
#include "comm/modbus_frames.h"

namespace {

constexpr size_t EXCEPTION_BYTES = 5, CONFIRMATION_BYTES = 8; // CRC included

// Functions whose answer repeats the head of the request.
bool IsConfirmed(int function)
{
    return function == MBM_FN_WRITE_ONE || function == MBM_FN_WRITE;
}

// The answer to a read names neither place nor station memory: function and length are all.
STEP_Shape ReadShape(int function, size_t dataBytes)
{
    return static_cast<STEP_Shape>(function) << MBM_FUNCTION_SHIFT |
           static_cast<STEP_Shape>(dataBytes);
}

// Place and low byte of the quantity or value, which the answer repeats.
STEP_Shape WriteShape(const uint8_t *frame)
{
    return static_cast<STEP_Shape>(frame[1]) << MBM_FUNCTION_SHIFT | MBM_WordAt(frame + 2) << 8 |
           frame[5];
}

} // namespace

unsigned MBM_WordAt(const uint8_t *bytes)
{
    return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}

// Bytes of registers, 3 to 36 of them but none that variables have: neither 4, 8, 16 nor another
// power of two.
const STEP_Shape MBM_aProbeShapes[] = {
    MBM_ProbeShape(6),  MBM_ProbeShape(10), MBM_ProbeShape(12), MBM_ProbeShape(14),
    MBM_ProbeShape(18), MBM_ProbeShape(20), MBM_ProbeShape(22), MBM_ProbeShape(24),
    MBM_ProbeShape(26), MBM_ProbeShape(28), MBM_ProbeShape(30), MBM_ProbeShape(34),
    MBM_ProbeShape(36), MBM_ProbeShape(38), MBM_ProbeShape(40), MBM_ProbeShape(42),
    MBM_ProbeShape(44), MBM_ProbeShape(46), MBM_ProbeShape(48), MBM_ProbeShape(50),
    MBM_ProbeShape(52), MBM_ProbeShape(54), MBM_ProbeShape(56), MBM_ProbeShape(58),
    MBM_ProbeShape(60), MBM_ProbeShape(62), MBM_ProbeShape(66), MBM_ProbeShape(68),
    MBM_ProbeShape(70), MBM_ProbeShape(72)};
const size_t MBM_cnProbeShapes = sizeof MBM_aProbeShapes / sizeof *MBM_aProbeShapes;

STEP_Shape MBM_ShapeOfRequest(const uint8_t *frame)
{
    const int function = frame[1];
    const size_t quantity = MBM_WordAt(frame + 4); // of what is read; unused for writes
    if (IsConfirmed(function))
        return WriteShape(frame);
    const bool isBits = function == MBM_FN_COILS || function == MBM_FN_INPUTS;
    return ReadShape(function, isBits ? (quantity + 7) / 8 : 2 * quantity);
}

STEP_Shape MBM_ShapeOfAnswer(const uint8_t *frame)
{
    return IsConfirmed(frame[1]) ? WriteShape(frame) : ReadShape(frame[1], frame[2]);
}

size_t MBM_AnswerLength(const uint8_t *bytes, size_t count)
{
    if (count < 2)
        return SIZE_MAX;
    if ((bytes[1] & MBM_EXCEPTION_BIT) != 0)
        return EXCEPTION_BYTES;
    if (IsConfirmed(bytes[1]))
        return CONFIRMATION_BYTES;
    const bool isRead = (bytes[1] >= MBM_FN_COILS && bytes[1] <= MBM_FN_INPUT_REGISTERS) ||
                        bytes[1] == MBM_FN_READ_WRITE;
    if (!isRead)
        return 0;
    return count < 3 ? SIZE_MAX : 3u + bytes[2] + MBM_CRC_BYTES;
}

bool MBM_IsSoundFrame(const uint8_t *frame, size_t length)
{
    const uint8_t *crc = frame + length - MBM_CRC_BYTES;
    return MBM_GetCRC(frame, length - MBM_CRC_BYTES) ==
           (crc[0] | static_cast<unsigned>(crc[1]) << 8);
}

bool MBM_IsTunnel(const uint8_t *frame)
{
    const unsigned start = MBM_WordAt(frame + (frame[1] == MBM_FN_READ_WRITE ? 6 : 2));
    return (frame[1] == MBM_FN_WRITE || frame[1] == MBM_FN_READ_WRITE) &&
           (start == MBM_TUNNEL_EVEN || start == MBM_TUNNEL_ODD);
}

uint32_t MBM_TunnelAddress(const uint8_t *frame)
{
    constexpr size_t ADDRESS_AT = 11; // the two registers that function 23 writes
    return static_cast<uint32_t>(MBM_WordAt(frame + ADDRESS_AT)) << 16 |
           MBM_WordAt(frame + ADDRESS_AT + 2);
}

std::vector<uint8_t> MBM_BuildProbe(int slave, STEP_Shape shape, uint32_t address)
{
    std::vector<uint8_t> frame = {static_cast<uint8_t>(slave), MBM_FN_READ_WRITE};
    const auto addWord = [&frame](uint32_t word) {
        frame.push_back(static_cast<uint8_t>(word >> 8));
        frame.push_back(static_cast<uint8_t>(word));
    };
    addWord(MBM_TUNNEL_DATA);
    addWord(MBM_DataBytes(shape) / 2);
    // What is written is the address only: memory stays as it is.
    addWord(MBM_TUNNEL_EVEN);
    addWord(2);
    frame.push_back(4);
    addWord(address >> 16);
    addWord(address);
    const uint16_t crc = MBM_GetCRC(frame.data(), frame.size());
    frame.push_back(static_cast<uint8_t>(crc));
    frame.push_back(static_cast<uint8_t>(crc >> 8));
    return frame;
}
