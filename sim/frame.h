// The frames as the target sees them: requests are picked out of the byte stream
// character by character, answers are built into a buffer of the caller. Owns no
// state but the receiver that the caller keeps.
#ifndef SIM_FRAME_H
#define SIM_FRAME_H

#include <cstddef>
#include <cstdint>

constexpr size_t SIM_LONG_FRAME = 48;
constexpr size_t SIM_ANSWER_MAX = 138; // 64 data bytes
constexpr size_t SIM_DATA_MAX = 64;
constexpr int SIM_WRITE_COMMAND = 8;
constexpr int SIM_ERROR_COUNT = 0x41; // more bytes wanted or given than a frame can carry

struct SIM_Request {
    int station = 0;
    int command = 0;
    uint32_t address = 0;
    uint16_t word = 0;      // count wanted or data value; for a write the number of bytes
    uint8_t data[16] = {0}; // bytes of a write
};

struct SIM_Receiver {
    uint8_t frame[SIM_LONG_FRAME];
    size_t length = 0; // 0 = waiting for a start character
};

enum SIM_Received { SIM_RX_NOTHING, SIM_RX_REQUEST, SIM_RX_MALFORMED };

// Takes one character. SIM_RX_REQUEST: *request is filled. SIM_RX_MALFORMED: a frame that
// had begun was given up; the character may already be the start of the next one.
SIM_Received SIM_ReceiveByte(SIM_Receiver *receiver, uint8_t byte, SIM_Request *request);

// Builds the answer to `request` with `count` (0..64) data bytes; errorCode 65..255 builds
// an error answer without data instead, 0 = none. Returns the number of characters.
size_t SIM_BuildAnswer(const SIM_Request &request, int errorCode, const uint8_t *data, size_t count,
                       uint8_t frame[SIM_ANSWER_MAX]);

// Check value over `count` characters.
uint16_t SIM_CheckValue(const uint8_t *bytes, size_t count);

#endif
