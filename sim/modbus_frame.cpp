#include "modbus_frame.h"

#include <cstring>

namespace {

constexpr size_t CRC_SIZE = 2;

// RTU marks the end of a frame by a pause, which a pseudo terminal does not keep: here the
// function tells how long a request is.
// Length without the CRC of the request that begins here; 0 = not known yet, and
// SIM_RTU_MAX + 1 = no request that a frame could hold.
size_t RequestLength(const uint8_t *bytes, size_t count)
{
    constexpr size_t FIXED = 6, NONE = SIM_RTU_MAX + 1;
    constexpr size_t COUNT_OF_WRITE = 6, COUNT_OF_READ_WRITE = 10;
    if (count < 2)
        return 0;
    // Functions 5, 7, 15 and the like are not served, but their frames are recognised, so that
    // they can be refused.
    // Fixed is 6: slave, function and two words. The others say their count of bytes themselves.
    switch (bytes[1]) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
        return FIXED;
    case 7:
        return 2;
    case 15:
    case 16:
        return count > COUNT_OF_WRITE ? COUNT_OF_WRITE + 1 + bytes[COUNT_OF_WRITE] : 0;
    case 23:
        return count > COUNT_OF_READ_WRITE ? COUNT_OF_READ_WRITE + 1 + bytes[COUNT_OF_READ_WRITE]
                                           : 0;
    default:
        return NONE;
    }
}

} // namespace

uint16_t SIM_RtuCrc(const uint8_t *bytes, size_t count)
{
    unsigned crc = 0xFFFF;
    for (size_t i = 0; i < count; i++) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; bit++)
            crc = crc >> 1 ^ ((crc & 1) ? 0xA001U : 0U);
    }
    return static_cast<uint16_t>(crc);
}

size_t SIM_CloseRtu(uint8_t *frame, size_t count)
{
    const uint16_t crc = SIM_RtuCrc(frame, count);
    frame[count] = static_cast<uint8_t>(crc & 0xFF);
    frame[count + 1] = static_cast<uint8_t>(crc >> 8);
    return count + CRC_SIZE;
}

size_t SIM_ReceiveRtu(SIM_RtuReceiver *receiver, uint8_t byte, uint64_t *malformed)
{
    receiver->bytes[receiver->length++] = byte;
    for (;;) {
        const size_t body = RequestLength(receiver->bytes, receiver->length);
        const bool tooLong = body + CRC_SIZE > SIM_RTU_MAX;
        if (!tooLong && (body == 0 || receiver->length < body + CRC_SIZE))
            return 0;
        if (!tooLong) {
            const size_t whole = body + CRC_SIZE;
            // Over its own CRC a sound frame leaves nothing.
            if (SIM_RtuCrc(receiver->bytes, whole) == 0)
                return whole;
            ++*malformed;
        }
        // No request begins here; one may begin at the next byte.
        receiver->length--;
        memmove(receiver->bytes, receiver->bytes + 1, receiver->length);
        if (receiver->length == 0)
            return 0;
    }
}
