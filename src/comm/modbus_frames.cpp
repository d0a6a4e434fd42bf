// What frames of the master look like: their length, their soundness, and the shape by which the
// book of open answers tells them apart.
#include "comm/modbus_frames.h"

#include "comm/modbus.h"

namespace {

constexpr size_t EXCEPTION_BYTES = 5, CONFIRMATION_BYTES = 8;

// Functions whose answer repeats the head of the request.
bool IsConfirmed(int function)
{
    return function == MBM_FN_WRITE_ONE || function == MBM_FN_WRITE;
}

// The answer to a read names neither place nor station memory: function and length are all.
STEP_Shape ReadShape(int function, size_t dataBytes)
{
    return static_cast<STEP_Shape>(function) << MBF_FUNCTION_SHIFT |
           static_cast<STEP_Shape>(dataBytes);
}

// Place and low byte of the quantity or value, which the answer repeats.
STEP_Shape WriteShape(const uint8_t *frame)
{
    return static_cast<STEP_Shape>(frame[1]) << MBF_FUNCTION_SHIFT | MBF_WordAt(frame + 2) << 8 |
           frame[5];
}

constexpr STEP_Shape ProbeShape(unsigned registers)
{
    return static_cast<STEP_Shape>(MBM_FN_READ_WRITE) << MBF_FUNCTION_SHIFT | 2 * registers;
}

} // namespace

unsigned MBF_WordAt(const uint8_t *bytes)
{
    return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}

// Counts of registers that no variable has: neither 1, 2, 4 nor another power of two.
const STEP_Shape MBF_aProbeShapes[] = {
    ProbeShape(3),  ProbeShape(5),  ProbeShape(6),  ProbeShape(7),  ProbeShape(9),  ProbeShape(10),
    ProbeShape(11), ProbeShape(12), ProbeShape(13), ProbeShape(14), ProbeShape(15), ProbeShape(17),
    ProbeShape(18), ProbeShape(19), ProbeShape(20), ProbeShape(21), ProbeShape(22), ProbeShape(23),
    ProbeShape(24), ProbeShape(25), ProbeShape(26), ProbeShape(27), ProbeShape(28), ProbeShape(29),
    ProbeShape(30), ProbeShape(31), ProbeShape(33), ProbeShape(34), ProbeShape(35), ProbeShape(36)};
const size_t MBF_cnProbeShapes = sizeof MBF_aProbeShapes / sizeof *MBF_aProbeShapes;

STEP_Shape MBF_ShapeOfRequest(const uint8_t *frame)
{
    const int function = frame[1];
    const size_t quantity = MBF_WordAt(frame + 4);
    if (IsConfirmed(function))
        return WriteShape(frame);
    const bool isBits = function == MBM_FN_COILS || function == MBM_FN_INPUTS;
    return ReadShape(function, isBits ? (quantity + 7) / 8 : 2 * quantity);
}

STEP_Shape MBF_ShapeOfAnswer(const uint8_t *frame)
{
    return IsConfirmed(frame[1]) ? WriteShape(frame) : ReadShape(frame[1], frame[2]);
}

size_t MBF_AnswerLength(const uint8_t *bytes, size_t count)
{
    if (count < 2)
        return SIZE_MAX;
    if ((bytes[1] & MBF_EXCEPTION_BIT) != 0)
        return EXCEPTION_BYTES;
    if (IsConfirmed(bytes[1]))
        return CONFIRMATION_BYTES;
    const bool isRead = (bytes[1] >= MBM_FN_COILS && bytes[1] <= MBM_FN_INPUT_REGISTERS) ||
                        bytes[1] == MBM_FN_READ_WRITE;
    if (!isRead)
        return 0;
    return count < 3 ? SIZE_MAX : 3u + bytes[2] + MBF_CRC_BYTES;
}

bool MBF_IsSound(const uint8_t *frame, size_t length)
{
    const uint8_t *crc = frame + length - MBF_CRC_BYTES;
    return MBM_GetCRC(frame, length - MBF_CRC_BYTES) ==
           (crc[0] | static_cast<unsigned>(crc[1]) << 8);
}

bool MBF_IsTunnel(const uint8_t *frame)
{
    const unsigned start = MBF_WordAt(frame + (frame[1] == MBM_FN_READ_WRITE ? 6 : 2));
    return (frame[1] == MBM_FN_WRITE || frame[1] == MBM_FN_READ_WRITE) &&
           (start == MBF_TUNNEL_EVEN || start == MBF_TUNNEL_ODD);
}

uint32_t MBF_TunnelAddress(const uint8_t *frame)
{
    constexpr size_t ADDRESS_AT = 11; // the two registers that function 23 writes
    return static_cast<uint32_t>(MBF_WordAt(frame + ADDRESS_AT)) << 16 |
           MBF_WordAt(frame + ADDRESS_AT + 2);
}

STEP_Shape MBF_ProbeShape(uint32_t bytes)
{
    return ProbeShape(bytes / 2);
}

uint32_t MBF_DataBytes(STEP_Shape shape)
{
    return shape & 0xFFFF;
}

std::vector<uint8_t> MBF_BuildProbe(int slave, STEP_Shape shape, uint32_t address)
{
    std::vector<uint8_t> frame = {static_cast<uint8_t>(slave), MBM_FN_READ_WRITE};
    const auto addWord = [&frame](uint32_t word) {
        frame.push_back(static_cast<uint8_t>(word >> 8));
        frame.push_back(static_cast<uint8_t>(word));
    };
    addWord(MBF_TUNNEL_DATA);
    addWord(MBF_DataBytes(shape) / 2);
    // What is written is the address only: memory stays as it is.
    addWord(MBF_TUNNEL_EVEN);
    addWord(2);
    frame.push_back(4);
    addWord(address >> 16);
    addWord(address);
    const uint16_t crc = MBM_GetCRC(frame.data(), frame.size());
    frame.push_back(static_cast<uint8_t>(crc));
    frame.push_back(static_cast<uint8_t>(crc >> 8));
    return frame;
}
