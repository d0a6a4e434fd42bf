// Requests of the Modbus master: one function each builds its frame and sends it. What the
// answer must look like is noted before, so that a request that is refused leaves nothing to
// wait for.
#include "comm/modbus.h"
#include "comm/modbus_line.h"

int32_t MBM_nFnCode = -1;
MBM_Expected MBM_expected = {};

namespace {

// Appends to the send buffer; 16-bit fields go out high byte first.
struct Frame {
    int length = 0;
    void Byte(int value)
    {
        MBM_abySnd[length++] = static_cast<uint8_t>(value);
    }
    void Word(int value)
    {
        Byte(value >> 8);
        Byte(value);
    }
    // With the count of bytes that stands in front of them.
    void Registers(const uint16_t *registers, int quantity)
    {
        Byte(2 * quantity);
        for (int i = 0; i < quantity; ++i)
            Word(registers[i]);
    }
};

bool IsQuantity(int quantity, int most)
{
    return quantity >= 1 && quantity <= most;
}

// Slave and function, recorded for the check of the answer. False, with the fault noted,
// when nothing may be sent.
bool Begin(Frame *frame, int slave, int function, int start, int quantity, bool isInRange)
{
    // Until a frame is built, an answer that arrives belongs to nothing.
    MBM_nFnCode = -1;
    MBM_cnLastSend = 0;
    if (!MBM_isOpen || !isInRange) {
        MBM_Refuse(MBM_isOpen ? MBM_FAULT_ARGUMENT : MBM_FAULT_CLOSED);
        return false;
    }
    MBM_nFnCode = function;
    // Eight bits of the quantity: more bits than 255 can be asked for, but their answer is
    // expected by what is left of the number.
    MBM_expected = {static_cast<uint8_t>(slave), static_cast<uint8_t>(quantity),
                    static_cast<uint16_t>(start)};
    frame->Byte(slave);
    frame->Byte(function);
    frame->Word(start);
    return true;
}

} // namespace

int MBM_SendFN1or2(int slave, int function, int start, int quantity)
{
    Frame frame;
    if (!Begin(&frame, slave, function, start, quantity, IsQuantity(quantity, MBM_BITS_MAX)))
        return MBM_FAILED;
    frame.Word(quantity);
    return MBM_SendFrame(frame.length);
}

int MBM_SendFN1(int slave, int start, int quantity)
{
    return MBM_SendFN1or2(slave, MBM_FN_COILS, start, quantity);
}

int MBM_SendFN2(int slave, int start, int quantity)
{
    return MBM_SendFN1or2(slave, MBM_FN_INPUTS, start, quantity);
}

int MBM_SendFN3or4(int slave, int function, int start, int quantity)
{
    Frame frame;
    if (!Begin(&frame, slave, function, start, quantity, IsQuantity(quantity, MBM_READ_MAX)))
        return MBM_FAILED;
    frame.Word(quantity);
    return MBM_SendFrame(frame.length);
}

int MBM_SendFN3(int slave, int start, int quantity)
{
    return MBM_SendFN3or4(slave, MBM_FN_HOLDING, start, quantity);
}

int MBM_SendFN4(int slave, int start, int quantity)
{
    return MBM_SendFN3or4(slave, MBM_FN_INPUT_REGISTERS, start, quantity);
}

int MBM_SendFN6(int slave, int reg, int value)
{
    Frame frame;
    // One register, any number and any value: nothing can be out of range.
    if (!Begin(&frame, slave, MBM_FN_WRITE_ONE, reg, 1, true))
        return MBM_FAILED;
    frame.Word(value);
    return MBM_SendFrame(frame.length);
}

int MBM_SendFN16(int slave, int start, int quantity, const uint16_t *registers)
{
    Frame frame;
    if (!Begin(&frame, slave, MBM_FN_WRITE, start, quantity, IsQuantity(quantity, MBM_WRITE_MAX)))
        return MBM_FAILED;
    frame.Word(quantity);
    frame.Registers(registers, quantity);
    return MBM_SendFrame(frame.length);
}

int MBM_SendFN23(int slave, int readStart, int readQuantity, int writeStart, int writeQuantity,
                 const uint16_t *registers)
{
    Frame frame;
    // The registers written and both places must fit into one frame of 256 bytes.
    const bool isInRange =
        IsQuantity(readQuantity, MBM_READ_MAX) && IsQuantity(writeQuantity, MBM_READ_WRITE_MAX);
    if (!Begin(&frame, slave, MBM_FN_READ_WRITE, readStart, readQuantity, isInRange))
        return MBM_FAILED;
    frame.Word(readQuantity);
    frame.Word(writeStart);
    frame.Word(writeQuantity);
    frame.Registers(registers, writeQuantity);
    return MBM_SendFrame(frame.length);
}
