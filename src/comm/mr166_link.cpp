// The mr166 link's port, chosen driver and block transfers. A block is tried until it is
// answered soundly; whether the answers were its own is proven behind the transfer.
#include "comm/mr166_link.h"

#include "comm/failures.h"
#include "comm/mr166_driver.h"
#include "comm/trace.h"

#include <algorithm>
#include <cstring>

uint16_t wMrOpenFlag = 0;
int32_t MR166_isWin32 = 0;
int32_t MrASC_nCom = 1;
int32_t MrASC_nBaudRate = 19200;
int16_t Mr166_CnBlkRpt = 3;
// The longest answer, 138 characters of 11 bits, takes 158 ms at 9600 baud.
uint32_t Mr166_nTimeoutMs = 400;
uint32_t EC_dwBlkRpt = 0;

namespace {

constexpr int STATIONS = 16;
constexpr int ROUNDS_MAX = 3; // of a transfer on a line that repeats answers

// Surplus answers that earlier proofs have settled: only younger ones make a read doubtful.
uint32_t surplusAtProof = 0;

// Why opening failed, finer than its result.
int OpenFault(int result)
{
    if (result == MR166_ERR_PORT)
        return result;
    constexpr struct {
        SER_Why why;
        int fault;
    } FAULTS[] = {{SER_WHY_MISSING, MR166_FAULT_MISSING}, {SER_WHY_BUSY, MR166_FAULT_BUSY},
                  {SER_WHY_ACCESS, MR166_FAULT_ACCESS},   {SER_WHY_BAUD, MR166_FAULT_BAUD},
                  {SER_WHY_HOST, MR166_FAULT_HOST},       {SER_WHY_REFUSED, MR166_FAULT_REFUSED},
                  {SER_WHY_SILENT, MR166_FAULT_SILENT}};
    for (const auto &row : FAULTS)
        if (row.why == SER_LastReason())
            return row.fault;
    return result;
}

// One block with all its tries. Tries of a proof that was not answered count like its own.
bool ExchangeBlock(const Mr166_Request &request)
{
    const Mr166_Driver &driver = MrASC_Driver();
    const uint32_t probesBefore = Mr166_FailedProbes();
    int result = Mr166_TryFirst(driver, request, Mr166_CnBlkRpt + 1);
    EC_dwBlkRpt += Mr166_FailedProbes() - probesBefore;
    // The request itself never went out: its tries were spent on the proof.
    const bool isUnproven = !Mr166_WasSent() && Mr166_FailedProbes() != probesBefore;
    for (int left = Mr166_CnBlkRpt; !isUnproven; --left) {
        // Fewer bytes than asked for must not be filled up with those of an older answer.
        if (result == 1 && (request.command != MR166_CMD_READ || cnRcvData == request.word))
            return true;
        if (result == 1) {
            Mr166_nFault = MR166_FAULT_COUNT;
            FAIL_Note(MrASC_ErrorText(Mr166_nFault));
        }
        if (Mr166_nFault == MR166_FAULT_CANCELLED)
            break;
        ++EC_dwBlkRpt;
        if (left <= 0)
            break;
        result = Mr166_TryAgain(driver, request);
    }
    return false;
}

uint16_t BlockOf(uint32_t count, uint16_t most)
{
    return static_cast<uint16_t>(std::min<uint32_t>(count, most));
}

bool ReadBlock(int station, uint32_t address, uint16_t count, void *buffer)
{
    if (!ExchangeBlock({station, MR166_CMD_READ, address, count, nullptr}))
        return false;
    std::memcpy(buffer, Mr166_abyRcvData, count);
    return true;
}

// Makes a transfer and puts a proof behind it: always when it has several blocks, because an
// answer that came twice shifts all that follow; else when the line is suspicious. When more
// answers came than were asked for, the transfer is made again.
template <typename Transfer>
int TransferProven(int station, uint32_t count, uint32_t blockMax, Transfer transfer)
{
    // Whether nothing that was accepted before, of any station, still waits for its proof.
    bool isAllProven = true;
    for (int i = 0; i < STATIONS; ++i)
        isAllProven = isAllProven && !Mr166_IsProofDue(i);
    const uint32_t surplusBefore = Mr166_CountSurplus();
    for (int round = 0; round < ROUNDS_MAX; ++round) {
        const uint32_t surplus = Mr166_CountSurplus();
        if (!transfer())
            return -1;
        if (count == 0 || !Mr166_IsProofDue(station))
            return 0;
        // A single block on a calm line is proven by the caller, with others, once a sweep.
        if (count <= blockMax && !Mr166_IsSuspicious(station))
            return 0;
        const uint32_t probesBefore = Mr166_FailedProbes();
        const int proven = Mr166_ProveBehind(station, Mr166_CnBlkRpt + 1);
        EC_dwBlkRpt += Mr166_FailedProbes() - probesBefore;
        if (proven < 0)
            return -1;
        if (Mr166_CountSurplus() != surplus)
            continue;
        // What was repeated on the way here can have touched nothing that was proven before.
        if (isAllProven)
            surplusAtProof += Mr166_CountSurplus() - surplusBefore;
        return 0;
    }
    // Each round brought more answers than were asked for: no byte of it can be believed.
    nMr166Err = MR166_FAULT_SURPLUS;
    Mr166_nFault = MR166_FAULT_SURPLUS;
    FAIL_Note(MrASC_ErrorText(MR166_FAULT_SURPLUS));
    return -1;
}

// 1 when the block was the last one: a full block says nothing about what follows.
template <typename Byte>
int Advance(uint32_t block, uint32_t most, uint32_t *address, uint32_t *count, Byte **bytes)
{
    *address += block;
    *count -= block;
    *bytes += block;
    return block < most ? 1 : 0;
}

} // namespace

const Mr166_Driver &MrASC_Driver()
{
    return MR166_isWin32 ? MR166_DRIVER_WIN32 : MR166_DRIVER_RUNTIME;
}

int MrASC_UseWin32(int flag)
{
    const int32_t isWin32 = flag != 0 ? 1 : 0;
    // Closing with the driver that has opened, before the other one is chosen.
    const bool isReopening = wMrOpenFlag && isWin32 != MR166_isWin32;
    if (isReopening)
        MrASC_Close();
    MR166_isWin32 = isWin32;
    return isReopening ? MrASC_Open(MrASC_nCom, MrASC_nBaudRate) : 0;
}

int MrASC_Open(int port, int baud)
{
    if (wMrOpenFlag)
        MrASC_Close();
    const int result = MrASC_Driver().open(port, baud);
    if (result == 0) {
        MrASC_nCom = port;
        MrASC_nBaudRate = baud;
        Mr166_NoteOpened();
        surplusAtProof = 0;
    }
    Mr166_nFault = result == 0 ? 0 : OpenFault(result);
    if (result != 0)
        FAIL_Note(MrASC_ErrorText(Mr166_nFault));
    if (TRC_isOn)
        Mr166_TraceLink(true, port, baud, Mr166_nFault);
    return result;
}

void MrASC_Close()
{
    // Closing what is closed is no event of the trace.
    if (wMrOpenFlag && TRC_isOn)
        Mr166_TraceLink(false, MrASC_nCom, MrASC_nBaudRate, 0);
    MrASC_Driver().close();
}

int MrASC_IsOpened()
{
    return wMrOpenFlag ? 1 : 0;
}

bool MrASC_IsGone()
{
    // Asking for the bytes that wait is the cheapest way to learn that the device has gone.
    return MrASC_Driver().waiting() < 0;
}

int MrFrameOut()
{
    return MrASC_Driver().frameOut();
}

int Mr166_Read(int station, uint32_t address, uint32_t count, void *buffer)
{
    uint8_t *bytes = static_cast<uint8_t *>(buffer);
    return TransferProven(station, count, MR166_READ_MAX, [&] {
        // Ends at the first block that fails: what lies behind it is not asked for any more.
        for (uint32_t done = 0; done < count; done += MR166_READ_MAX) {
            if (!ReadBlock(station, address + done, BlockOf(count - done, MR166_READ_MAX),
                           bytes + done))
                return false;
        }
        return true;
    });
}

int Mr166_Write(int station, uint32_t address, uint32_t count, const void *data)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    return TransferProven(station, count, MR166_WRITE_MAX, [&] {
        // In the order of addresses: what stands in front of a failure has been written.
        for (uint32_t done = 0; done < count; done += MR166_WRITE_MAX) {
            if (!ExchangeBlock({station, MR166_CMD_WRITE, address + done,
                                BlockOf(count - done, MR166_WRITE_MAX), bytes + done}))
                return false;
        }
        return true;
    });
}

int Mr166_Prove()
{
    bool isProven = true;
    for (int station = 0; station < STATIONS; ++station) {
        if (!Mr166_IsProofDue(station))
            continue;
        isProven = isProven && Mr166_ProveBehind(station, Mr166_CnBlkRpt + 1) >= 0;
        // Proven or not, the caller reads again: the same proof is not tried twice.
        Mr166_GiveUpProof(station);
    }
    const bool isSurplus = Mr166_CountSurplus() != surplusAtProof;
    surplusAtProof = Mr166_CountSurplus();
    if (!isProven)
        return -1;
    return isSurplus ? MR166_READ_AGAIN : 0;
}

int Mr166_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    const uint16_t block = BlockOf(*count, MR166_READ_MAX);
    if (!ReadBlock(station, *address, block, *buffer))
        return -1;
    return Advance(block, MR166_READ_MAX, address, count, buffer);
}

int Mr166_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    const uint16_t block = BlockOf(*count, MR166_WRITE_MAX);
    if (!ExchangeBlock({station, MR166_CMD_WRITE, *address, block, *data}))
        return -1;
    return Advance(block, MR166_WRITE_MAX, address, count, data);
}
