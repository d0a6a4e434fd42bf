#include "frame.h"

#include <cstring>

namespace {

constexpr uint8_t START_SHORT = 0x02;
constexpr uint8_t START_LONG = 0x1A;
constexpr uint8_t START_ANSWER = 0x06;
constexpr uint8_t END = 0x03;
constexpr uint8_t PADDING = 0xA5;
constexpr size_t SHORT_FRAME = 18;
constexpr size_t CHECK_CHARS = 5; // check value and end character
constexpr size_t WRITE_MAX = 16;

bool IsStart(uint8_t c)
{
    return c == START_SHORT || c == START_LONG;
}

bool IsHexDigit(uint8_t c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

uint8_t NibbleOf(uint8_t c)
{
    return static_cast<uint8_t>(c <= '9' ? c - '0' : c - 'A' + 10);
}

// Two characters a byte, the least significant byte first.
uint32_t DecodeBytes(const uint8_t *text, size_t bytes)
{
    uint32_t value = 0;
    for (size_t i = bytes; i-- > 0;) {
        const int byte = NibbleOf(text[2 * i]) * 16 + NibbleOf(text[2 * i + 1]);
        value = value << 8 | static_cast<uint32_t>(byte);
    }
    return value;
}

uint8_t *EncodeBytes(uint8_t *out, uint32_t value, size_t bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    for (size_t i = 0; i < bytes; i++, value >>= 8) {
        *out++ = static_cast<uint8_t>(digits[value >> 4 & 0xF]);
        *out++ = static_cast<uint8_t>(digits[value & 0xF]);
    }
    return out;
}

// A write carries its bytes and fills the rest of the sixteen with the padding. A count
// outside 1..16 is passed on: the station refuses it by an error answer.
bool DecodeWrite(const uint8_t *frame, SIM_Request *request)
{
    request->word = static_cast<uint16_t>(DecodeBytes(frame + 9, 1));
    for (size_t i = 0; i < WRITE_MAX; i++)
        request->data[i] = static_cast<uint8_t>(DecodeBytes(frame + 11 + 2 * i, 1));
    for (size_t i = request->word; i < WRITE_MAX && request->word > 0; i++)
        if (request->data[i] != PADDING)
            return false;
    return true;
}

bool DecodeFrame(const uint8_t *frame, size_t length, SIM_Request *request)
{
    if (DecodeBytes(frame + length - CHECK_CHARS, 2) != SIM_CheckValue(frame, length - CHECK_CHARS))
        return false;
    *request = SIM_Request{};
    const uint32_t head = DecodeBytes(frame + 1, 1);
    request->station = static_cast<int>(head >> 4);
    request->command = static_cast<int>(head & 0xF);
    request->address = DecodeBytes(frame + 3, 3);
    const bool isLong = frame[0] == START_LONG;
    if (isLong != (request->command == SIM_WRITE_COMMAND))
        return false;
    if (isLong)
        return DecodeWrite(frame, request);
    request->word = static_cast<uint16_t>(DecodeBytes(frame + 9, 2));
    return true;
}

} // namespace

uint16_t SIM_CheckValue(const uint8_t *bytes, size_t count)
{
    uint32_t value = 1;
    for (size_t i = 0; i < count; i++) {
        for (int bit = 0; bit < 8; bit++) {
            value = value << 1 | (bytes[i] >> bit & 1U);
            if (value & 0x10000U)
                value ^= 0x11083U;
        }
    }
    return static_cast<uint16_t>(value);
}

SIM_Received SIM_ReceiveByte(SIM_Receiver *receiver, uint8_t byte, SIM_Request *request)
{
    // Start characters never occur inside a frame, so they always begin a new one.
    if (IsStart(byte)) {
        const bool cut = receiver->length > 0;
        receiver->frame[0] = byte;
        receiver->length = 1;
        return cut ? SIM_RX_MALFORMED : SIM_RX_NOTHING;
    }
    if (receiver->length == 0)
        return SIM_RX_NOTHING;
    const size_t full = receiver->frame[0] == START_LONG ? SIM_LONG_FRAME : SHORT_FRAME;
    const bool last = receiver->length == full - 1;
    receiver->frame[receiver->length++] = byte;
    if (last ? byte != END : !IsHexDigit(byte)) {
        receiver->length = 0;
        return SIM_RX_MALFORMED;
    }
    if (!last)
        return SIM_RX_NOTHING;
    receiver->length = 0;
    return DecodeFrame(receiver->frame, full, request) ? SIM_RX_REQUEST : SIM_RX_MALFORMED;
}

size_t SIM_BuildAnswer(const SIM_Request &request, int errorCode, const uint8_t *data, size_t count,
                       uint8_t frame[SIM_ANSWER_MAX])
{
    uint8_t *out = frame;
    *out++ = START_ANSWER;
    out = EncodeBytes(out, static_cast<uint32_t>(request.station << 4 | request.command), 1);
    if (errorCode != 0)
        count = 0;
    out = EncodeBytes(
        out, errorCode != 0 ? static_cast<uint32_t>(errorCode) : static_cast<uint32_t>(count), 1);
    for (size_t i = 0; i < count; i++)
        out = EncodeBytes(out, data[i], 1);
    out = EncodeBytes(out, SIM_CheckValue(frame, static_cast<size_t>(out - frame)), 2);
    *out++ = END;
    return static_cast<size_t>(out - frame);
}
