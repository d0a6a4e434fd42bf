// Answers to the Modbus master: what is read when, what is checked in which order, and the
// one call that sends a request and takes its answer.
#include "comm/failures.h"
#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/modbus_step.h"
#include "comm/trace.h"

#include <algorithm>
#include <cstring>

uint8_t MBM_byExCode = 0;
uint16_t MBM_awRcvData[MBM_READ_MAX];
uint32_t MBM_cnOk = 0, MBM_cnSilent = 0, MBM_cnRefused = 0;

namespace {

constexpr int HEAD_BYTES = 5;    // the shortest answer, an exception, and all others' beginning
constexpr int DRAIN_BYTES = 251; // what can follow the head
constexpr int DRAIN_ALL_BYTES = 256;

bool isEchoSkipped = false;
int cnFound = 0;    // bytes of the answer when it was picked out of the line already
int cnReceived = 0; // bytes of it that the line has brought

int Succeed(int result)
{
    MBM_nFault = 0;
    if (MBM_cnOk != UINT32_MAX)
        ++MBM_cnOk;
    MBM_NoteAnswered();
    if (TRC_isOn)
        MBM_EndTrace(isEchoSkipped, 0);
    return result;
}

// A failed check of the answer: `fault` says why; `code` is the coarse reason where the fault
// is none itself.
int Fail(int fault, int code)
{
    if (fault >= MBM_FAULT_EXCEPTION)
        MBM_NoteRefused();
    // What was read strictly may hold the beginning of an answer to something older.
    else if (cnReceived > 0 && cnFound == 0)
        MBM_NoteOddBytes(MBM_abyRcv, static_cast<size_t>(cnReceived));
    if (TRC_isOn)
        MBM_EndTrace(isEchoSkipped, fault);
    return MBM_Fail(fault, code);
}

int Fail(int fault)
{
    return Fail(fault, fault);
}

// The head of the answer is that of the request: nobody answered, the line did.
bool IsEcho(int got)
{
    const int compared = std::min(got, MBM_cnLastSend);
    return !isEchoSkipped && compared >= HEAD_BYTES &&
           std::memcmp(MBM_abyRcv, MBM_abySnd, static_cast<size_t>(compared)) == 0;
}

// As MBM_Read, but an answer that was picked out of the line stands in the buffer already.
int ReadAnswer(int offset, int count)
{
    if (cnFound > 0)
        return std::clamp(cnFound - offset, 0, count);
    const int got = MBM_Read(offset, count);
    cnReceived = offset + std::max(got, 0);
    return got;
}

// Reads the rest of what cannot be an answer, so that the next exchange finds an idle line.
int DrainAndFail(int code)
{
    const int rest = ReadAnswer(HEAD_BYTES, DRAIN_BYTES);
    return Fail(IsEcho(HEAD_BYTES + std::max(rest, 0)) ? static_cast<int>(MBM_FAULT_ECHO) : code,
                code);
}

// Reads the request back from a line that echoes. 0, or MBM_FAILED when it did not come
// whole: then one time-out has passed and no answer is waited for.
int SkipEcho()
{
    isEchoSkipped = false;
    if (!MBM_isEcho)
        return 0;
    const int got = ReadAnswer(0, MBM_cnLastSend);
    if (got < MBM_cnLastSend)
        return Fail(got < 0    ? MBM_FAULT_GONE
                    : got == 0 ? MBM_EX_SILENT
                               : MBM_FAULT_NO_ECHO,
                    MBM_EX_SILENT);
    isEchoSkipped = true;
    if (std::memcmp(MBM_abyRcv, MBM_abySnd, static_cast<size_t>(got)) == 0) {
        cnReceived = 0;
        return 0;
    }
    // Somebody else talked: what follows cannot be told apart from it.
    (void)ReadAnswer(got, DRAIN_BYTES);
    return Fail(MBM_FAULT_NO_ECHO, MBM_EX_FOREIGN);
}

// Picks the answer out of a line that is not in step, where older ones may come first.
int FindAnswer()
{
    int fault = 0;
    const int found = MBM_FindAnswer(MBM_abyRcv, MBM_FRAME_ROOM, &fault);
    isEchoSkipped = MBM_isEcho != 0;
    if (found > 0) {
        cnFound = found;
        return 0;
    }
    return Fail(fault, fault > 0 ? fault : static_cast<int>(MBM_EX_SILENT));
}

// The `count` bytes behind the head. Whether all came and the CRC over all is right.
bool ReadRest(int count)
{
    return ReadAnswer(HEAD_BYTES, count) == count && MBM_IsRcvCRC_Ok(HEAD_BYTES + count);
}

int ReceiveBits()
{
    const int count = (MBM_expected.quantity + 7) / 8;
    // Bits come as the slave packs them; the caller's registers hold two bytes each.
    if (MBM_abyRcv[2] != count)
        return DrainAndFail(MBM_EX_COUNT);
    if (!ReadRest(count))
        return Fail(MBM_EX_PART);
    const uint8_t *bytes = MBM_abyRcv + 3;
    for (int i = 0; i < count; i += 2)
        MBM_awRcvData[i / 2] =
            static_cast<uint16_t>(bytes[i] << 8 | (i + 1 < count ? bytes[i + 1] : 0));
    return Succeed(MBM_expected.quantity);
}

int ReceiveRegisters()
{
    const int quantity = MBM_expected.quantity;
    // Another count is another request's answer, or of a slave that cut the range.
    if (MBM_abyRcv[2] != 2 * quantity)
        return DrainAndFail(MBM_EX_COUNT);
    if (!ReadRest(2 * quantity))
        return Fail(MBM_EX_PART);
    for (int i = 0; i < quantity; ++i)
        MBM_awRcvData[i] = static_cast<uint16_t>(MBM_WordAt(MBM_abyRcv + 3 + 2 * i));
    return Succeed(quantity);
}

// Confirmations of a write: the function's first fields come back.
int ReceiveConfirmation()
{
    // Function 6 repeats the value: a device may confirm the one it has limited it to.
    const bool isSound = ReadRest(3);
    const bool isSame =
        MBM_nFnCode == MBM_FN_WRITE_ONE || (MBM_WordAt(MBM_abyRcv + 2) == MBM_expected.start &&
                                            MBM_WordAt(MBM_abyRcv + 4) == MBM_expected.quantity);
    if (isSound && isSame)
        return Succeed(0);
    return Fail(IsEcho(HEAD_BYTES + 3) ? MBM_FAULT_ECHO : MBM_EX_PART, MBM_EX_PART);
}

struct Receiver {
    int function;
    int (*receive)();
};
constexpr Receiver RECEIVERS[] = {
    {MBM_FN_COILS, ReceiveBits},
    {MBM_FN_INPUTS, ReceiveBits},
    {MBM_FN_HOLDING, ReceiveRegisters},
    {MBM_FN_INPUT_REGISTERS, ReceiveRegisters},
    {MBM_FN_WRITE_ONE, ReceiveConfirmation},
    {MBM_FN_WRITE, ReceiveConfirmation},
    {MBM_FN_READ_WRITE, ReceiveRegisters},
};

const Receiver *FindReceiver(int function)
{
    for (const Receiver &row : RECEIVERS) {
        if (row.function == function)
            return &row;
    }
    return nullptr;
}

// One request by its function, whose parts the caller has seen to be there.
int Send(int function, int slave, const MBM_Part *from, const MBM_Part *to)
{
    switch (function) {
    case MBM_FN_COILS:
    case MBM_FN_INPUTS:
        return MBM_SendFN1or2(slave, function, from->start, from->quantity);
    case MBM_FN_HOLDING:
    case MBM_FN_INPUT_REGISTERS:
        return MBM_SendFN3or4(slave, function, from->start, from->quantity);
    case MBM_FN_WRITE_ONE:
        return MBM_SendFN6(slave, to->start, to->registers[0]);
    case MBM_FN_WRITE:
        return MBM_SendFN16(slave, to->start, to->quantity, to->registers);
    default:
        return MBM_SendFN23(slave, from->start, from->quantity, to->start, to->quantity,
                            to->registers);
    }
}

} // namespace

int MBM_Fail(int fault, int code)
{
    MBM_byExCode = static_cast<uint8_t>(code);
    MBM_nFault = fault;
    ++(fault == MBM_EX_SILENT || fault == MBM_FAULT_GONE ? MBM_cnSilent : MBM_cnRefused);
    FAIL_Note(MBM_ErrorText(fault));
    return MBM_FAILED;
}

int MBM_ReceiveFN()
{
    if (!MBM_isOpen)
        return MBM_Refuse(MBM_FAULT_CLOSED);
    cnFound = cnReceived = 0;
    if ((MBM_IsCalm() ? SkipEcho() : FindAnswer()) != 0)
        return MBM_FAILED;
    const Receiver *receiver = FindReceiver(MBM_nFnCode);
    // A function that was sent by other means has no answer that could be checked.
    if (receiver == nullptr) {
        (void)ReadAnswer(0, DRAIN_ALL_BYTES);
        return MBM_FAILED;
    }
    const int head = ReadAnswer(0, HEAD_BYTES);
    if (head < HEAD_BYTES)
        return Fail(head < 0    ? MBM_FAULT_GONE
                    : head == 0 ? MBM_EX_SILENT
                                : MBM_FAULT_CUT,
                    MBM_EX_SILENT);
    if (MBM_abyRcv[0] != MBM_expected.slave ||
        (MBM_abyRcv[1] & ~MBM_EXCEPTION_BIT) != static_cast<unsigned>(MBM_nFnCode))
        return DrainAndFail(MBM_EX_FOREIGN);
    if ((MBM_abyRcv[1] & MBM_EXCEPTION_BIT) == 0)
        return receiver->receive();
    if (!MBM_IsRcvCRC_Ok(HEAD_BYTES))
        return DrainAndFail(MBM_EX_CRC);
    return Fail(MBM_FAULT_EXCEPTION + MBM_abyRcv[2]);
}

int MBM_MasterFN(int function, int slave, const MBM_Part *readPart, const MBM_Part *writePart)
{
    const auto hasRegisters = [](const MBM_Part *part) {
        return part != nullptr && part->registers != nullptr;
    };
    const bool isRead = function != MBM_FN_WRITE_ONE && function != MBM_FN_WRITE;
    const bool isWrite = !isRead || function == MBM_FN_READ_WRITE;
    if (FindReceiver(function) == nullptr || (isRead && !hasRegisters(readPart)) ||
        (isWrite && !hasRegisters(writePart)))
        return MBM_Refuse(MBM_FAULT_ARGUMENT);
    if (Send(function, slave, readPart, writePart) != 0)
        return MBM_FAILED;
    const int result = MBM_ReceiveFN();
    if (result < 0 || !isRead)
        return result;
    // Bits come packed, sixteen to a register.
    const bool isBits = function == MBM_FN_COILS || function == MBM_FN_INPUTS;
    const size_t count = isBits ? (readPart->quantity + 15u) / 16u : readPart->quantity;
    uint16_t *last = readPart->registers + count - 1;
    const uint16_t kept = *last; // before the copy overwrites it
    std::copy_n(MBM_awRcvData, std::min<size_t>(count, MBM_READ_MAX), readPart->registers);
    // An odd number of bytes was asked for: the last register's other half is not the target's.
    if (function == MBM_FN_READ_WRITE && writePart->start == MBM_TUNNEL_ODD)
        *last = static_cast<uint16_t>((kept & 0xFF00) | (*last & 0xFF));
    return result;
}
