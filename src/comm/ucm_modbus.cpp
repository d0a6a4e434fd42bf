// Target memory over Modbus: reads and writes are carried through reserved registers, in
// blocks; the link's commands are emulated. The Modbus row of the unified layer.
#include "comm/ucm_modbus.h"
#include "comm/in_step.h"
#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/modbus_step.h"
#include "comm/ucm.h"
#include "comm/ucm_protocol.h"
#include "settings/limits.h"
#include "settings/settings.h"

#include <algorithm>

namespace {

// 108 registers of data and two of the address: a multiple of four bytes below the 123
// registers that a frame can write.
constexpr uint32_t BLOCK_BYTES = 216, WRITE_BLOCK_MAX = 246;
constexpr uint16_t ADDRESS_REGISTERS = 2;

constexpr int ROUNDS_MAX = 3; // of a transfer during which more answers came than were asked for

uint32_t cnRepeated = 0; // failed tries of blocks
uint32_t surplusAtProof = 0;

// The place says whether the last register carries one byte or two.
uint16_t TunnelOf(uint32_t count)
{
    return count % 2 != 0 ? MBM_TUNNEL_ODD : MBM_TUNNEL_EVEN;
}

// High half first, as registers of 32 bits are usually laid out.
void PutAddress(uint32_t address, uint16_t *registers)
{
    registers[0] = static_cast<uint16_t>(address >> 16);
    registers[1] = static_cast<uint16_t>(address);
}

int Message(int slave, int command, uint32_t address, uint16_t word, const void *data)
{
    if (slave < MODBUS_STATION_MIN || slave > MODBUS_STATION_MAX) {
        MBM_Refuse(MBM_FAULT_SLAVE);
        (void)UCM_CountErr(UCM_ERR_ARGUMENT);
        return 0;
    }
    // Only a read writes to the data, and whoever asks for one passes a buffer.
    void *buffer = const_cast<void *>(data);
    return UCM_EmuCom166MsgMBM(slave, command, address, word, buffer) >= 0 ? 1 : 0;
}

// Every slave that something was read from since its last proof; a slave that does not
// answer is asked once and then given up, so that the next sweep does not wait for it.
int Prove()
{
    int fault = 0;
    for (int slave = MODBUS_STATION_MIN; slave <= MODBUS_STATION_MAX; ++slave) {
        if (!MBM_IsProofDue(slave))
            continue;
        if (fault == 0)
            fault = MBM_ProveBehind(slave, UCM_recS.tries);
        MBM_GiveUpProof(slave);
    }
    const bool isSurplus = MBM_CountSurplus() != surplusAtProof;
    surplusAtProof = MBM_CountSurplus();
    if (fault != 0) {
        MBM_Refuse(fault);
        return UCM_NOT_PROVEN;
    }
    return isSurplus ? UCM_READ_AGAIN : UCM_PROVEN;
}

} // namespace

int UCM_ExchangeMBM(int function, int slave, const MBM_Part *from, const MBM_Part *to)
{
    int result = MBM_FAILED;
    for (int left = UCM_recS.tries; left > 0 && result < 0; --left) {
        if (STEP_IsBreak())
            return UCM_CountErr(MBM_Refuse(MBM_FAULT_CANCELLED));
        STEP_TellWaiting(slave, MBM_nFault != 0);
        result = UCM_CountErr(MBM_MasterFN(function, slave, from, to));
        if (result < 0)
            ++cnRepeated;
    }
    return result;
}

int UCM_WriteBlkMBM(int slave, uint32_t address, uint32_t count, const void *data)
{
    if (count < 1 || count > WRITE_BLOCK_MAX)
        return UCM_ERR_ARGUMENT;
    // The byte that comes first is a register's low half; the last one may stand alone.
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    uint16_t registers[ADDRESS_REGISTERS + (WRITE_BLOCK_MAX + 1) / 2] = {};
    PutAddress(address, registers);
    for (uint32_t i = 0; i < count; ++i)
        registers[ADDRESS_REGISTERS + i / 2] |=
            static_cast<uint16_t>(i % 2 == 0 ? bytes[i] : bytes[i] << 8);
    const auto quantity = static_cast<uint16_t>(ADDRESS_REGISTERS + (count + 1) / 2);
    const MBM_Part to = {TunnelOf(count), quantity, registers};
    return UCM_ExchangeMBM(MBM_FN_WRITE, slave, nullptr, &to);
}

int UCM_ReadBlkMBM(int slave, uint32_t address, uint32_t count, void *buffer)
{
    uint16_t target[ADDRESS_REGISTERS], registers[MBM_READ_MAX] = {};
    PutAddress(address, target);
    const uint32_t quantity = (count + 1) / 2;
    const MBM_Part to = {TunnelOf(count), ADDRESS_REGISTERS, target};
    const MBM_Part from = {MBM_TUNNEL_DATA, static_cast<uint16_t>(std::min(quantity, 0xFFFFu)),
                           registers};
    const int result = UCM_ExchangeMBM(MBM_FN_READ_WRITE, slave, &from, &to);
    uint8_t *bytes = static_cast<uint8_t *>(buffer);
    for (uint32_t i = 0; result >= 0 && i < count; ++i)
        bytes[i] = static_cast<uint8_t>(i % 2 == 0 ? registers[i / 2] : registers[i / 2] >> 8);
    return result;
}

int UCM_WriteBlkBgMBM(int slave, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    // The caller's place moves on even when the block fails: it may try the next one.
    const uint32_t block = std::min(*count, BLOCK_BYTES), place = *address;
    const uint8_t *bytes = *data;
    *address += block;
    *data += block;
    *count -= block;
    const int result = UCM_WriteBlkMBM(slave, place, block, bytes);
    return result < 0 ? result : *count == 0 ? 1 : 0;
}

int UCM_ReadBlkBgMBM(int slave, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    const uint32_t block = std::min(*count, BLOCK_BYTES), place = *address;
    uint8_t *bytes = *buffer;
    *address += block;
    *buffer += block;
    *count -= block;
    const int result = UCM_ReadBlkMBM(slave, place, block, bytes);
    return result < 0 ? result : *count == 0 ? 1 : 0;
}

int UCM_WriteMBM(int slave, uint32_t address, uint32_t count, const void *data)
{
    // Of several blocks, one's confirmation may have come twice in place of the next one's.
    for (int round = 0; round < ROUNDS_MAX; ++round) {
        const uint32_t surplus = MBM_CountSurplus();
        const uint8_t *bytes = static_cast<const uint8_t *>(data);
        uint32_t place = address, left = count;
        int result = 0;
        // In address order, up to the first block that fails.
        while (left > 0 && result >= 0)
            result = std::min(UCM_WriteBlkBgMBM(slave, &place, &left, &bytes), 0);
        if (result < 0 || count <= BLOCK_BYTES || MBM_CountSurplus() == surplus)
            return result;
    }
    return MBM_Refuse(MBM_FAULT_STEP);
}

int UCM_ReadMBM(int slave, uint32_t address, uint32_t count, void *buffer)
{
    for (int round = 0; round < ROUNDS_MAX; ++round) {
        const uint32_t surplus = MBM_CountSurplus();
        uint8_t *bytes = static_cast<uint8_t *>(buffer);
        int result = 0;
        for (uint32_t done = 0; done < count && result >= 0; done += BLOCK_BYTES)
            result = UCM_ReadBlkMBM(slave, address + done, std::min(count - done, BLOCK_BYTES),
                                    bytes + done);
        // A single block on a calm line is proven by the caller, with others, once a sweep.
        if (result < 0 || !MBM_IsProofDue(slave) ||
            (count <= BLOCK_BYTES && !MBM_IsSuspicious(slave)))
            return result;
        const int fault = MBM_ProveBehind(slave, UCM_recS.tries);
        if (fault != 0)
            return UCM_CountErr(MBM_Refuse(fault));
        if (MBM_CountSurplus() == surplus)
            return result;
    }
    return MBM_Refuse(MBM_FAULT_STEP);
}

int UCM_EmuCom166MsgMBM(int slave, int command, uint32_t address, uint16_t word, void *data)
{
    constexpr int READ = 0, STORE_WORD = 4, WRITE = 8;
    if (command == WRITE)
        return UCM_WriteMBM(slave, address, word, data);
    if (command == STORE_WORD) {
        const uint8_t bytes[] = {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8)};
        return UCM_WriteMBM(slave, address, sizeof bytes, bytes);
    }
    if (command == READ)
        return UCM_ReadMBM(slave, address, word, data);
    MBM_Refuse(MBM_FAULT_ARGUMENT);
    return UCM_ERR_ARGUMENT;
}

const UCM_Protocol UCM_PROTOCOL_MODBUS = {
    PROTOCOL_MODBUS,
    MODBUS_STATION_MIN,
    MODBUS_STATION_MAX,
    BLOCK_BYTES,
    // open: even parity is the standard's default
    [](int port, int baud) {
        surplusAtProof = 0; // counted anew on each port
        return MBM_Open(port, baud, MBM_PARITY_EVEN) < 0 ? UCM_CountErr(UCM_ERR_MODBUS_OPEN) : 0;
    },
    MBM_Close,
    // isOpened
    [] { return MBM_isOpen ? 1 : 0; },
    nullptr,
    UCM_ReadMBM,
    // pickProving
    [](int slave, uint32_t least, uint32_t most) {
        return MBM_PickProving(slave, least, std::min(most, BLOCK_BYTES));
    },
    // readProving: the caller reads again, with all tries, what fails here
    [](int slave, uint32_t address, uint32_t count, void *buffer) {
        const int fault = MBM_ReadProving(slave, address, count, static_cast<uint8_t *>(buffer));
        return fault == 0 ? 0 : MBM_Fail(fault, MBM_EX_SILENT);
    },
    UCM_WriteMBM,
    UCM_ReadBlkBgMBM,
    UCM_WriteBlkBgMBM,
    Message,
    nullptr,
    Prove,
    // isEchoing
    [] { return MBM_nFault == MBM_FAULT_ECHO; },
    // lastErrorText
    [] { return MBM_nFault == 0 ? std::string() : MBM_ErrorText(MBM_nFault); },
    // addCounts: since the program started, the layer above subtracts its last reset
    [](UCM_Statistics *statistics) {
        statistics->answered += MBM_cnOk;
        statistics->timeouts += MBM_cnSilent;
        statistics->damaged += MBM_cnRefused;
        statistics->repeated += cnRepeated;
    },
    MBM_IsGone,
};
