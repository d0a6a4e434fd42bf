// What Modbus frames look like: their parts, the shape of what was asked and of what came, the
// length of an answer that has begun, and the probes. No state.
// Only the master's own files call this.
#ifndef COMM_MODBUS_FRAMES_H
#define COMM_MODBUS_FRAMES_H

#include "comm/in_step.h"
#include "comm/modbus.h"

#include <cstdint>
#include <vector>

constexpr size_t MBM_CRC_BYTES = 2;
constexpr uint8_t MBM_EXCEPTION_BIT = 0x80;
// The registers that carry target memory: with an even and an odd number of bytes.
constexpr uint16_t MBM_TUNNEL_EVEN = 0xFFFD, MBM_TUNNEL_ODD = 0xFFFB;
constexpr uint16_t MBM_TUNNEL_DATA = 0xFF00; // where the data of a read begin
constexpr int MBM_FUNCTION_SHIFT = 24;       // of a shape: the function stands above the rest

unsigned MBM_WordAt(const uint8_t *bytes); // the high byte comes first

// A read is known by function and data bytes, a write by function, place and the low byte of
// the quantity or value, which its answer repeats. No exceptions here.
STEP_Shape MBM_ShapeOfRequest(const uint8_t *frame);
STEP_Shape MBM_ShapeOfAnswer(const uint8_t *frame);
// Length of the answer that begins like this; 0 when none does, SIZE_MAX when that cannot be
// told yet.
size_t MBM_AnswerLength(const uint8_t *bytes, size_t count);
bool MBM_IsSoundFrame(const uint8_t *frame, size_t length); // its CRC is good
bool MBM_IsTunnel(const uint8_t *frame);                    // a request that carries target memory
uint32_t MBM_TunnelAddress(const uint8_t *frame); // of the memory that such a read asks for

// Short reads that are not among the usual sizes of variables.
extern const STEP_Shape MBM_aProbeShapes[];
extern const size_t MBM_cnProbeShapes;
// The shape of a read of so many bytes of memory, and the other way round.
constexpr STEP_Shape MBM_ProbeShape(uint32_t bytes)
{
    return static_cast<STEP_Shape>(MBM_FN_READ_WRITE) << MBM_FUNCTION_SHIFT | bytes;
}
constexpr uint32_t MBM_DataBytes(STEP_Shape shape)
{
    return shape & 0xFFFF;
}
// Such a read. Probes that only prove read from address 0, where that does no harm.
std::vector<uint8_t> MBM_BuildProbe(int slave, STEP_Shape shape, uint32_t address = 0);

#endif
