// RTU frames as a slave sees them: requests are cut out of the byte stream by their length
// and CRC, answers are closed with theirs. Owns no state but the receiver of the caller.
#ifndef SIM_MODBUS_FRAME_H
#define SIM_MODBUS_FRAME_H

#include <cstddef>
#include <cstdint>

constexpr size_t SIM_RTU_MAX = 256;

struct SIM_RtuReceiver {
    uint8_t bytes[SIM_RTU_MAX];
    size_t length = 0;
};

// Takes one byte. The length of the frame that it completes, CRC included (the frame then
// stands at the beginning of `bytes` until the next call), or 0. Bytes that begin no frame
// are given up one by one; *malformed grows by one for each frame that had a wrong CRC.
size_t SIM_ReceiveRtu(SIM_RtuReceiver *receiver, uint8_t byte, uint64_t *malformed);

uint16_t SIM_RtuCrc(const uint8_t *bytes, size_t count);
// Appends the CRC; the new length.
size_t SIM_CloseRtu(uint8_t *frame, size_t count);

#endif
