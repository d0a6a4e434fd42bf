// Each operation goes to the row of the recorded protocol. What the links cannot know is kept
// here: which results were failures, who was refused before a link was asked, and what the
// links had counted when the statistics were last reset.
#include "comm/ucm.h"

#include "comm/failures.h"
#include "comm/grouping.h"
#include "comm/in_step.h"
#include "comm/ucm_protocol.h"
#include "platform/serial.h"
#include "settings/limits.h"

#include <algorithm>
#include <iterator>
#include <vector>

UCM_Record UCM_recS;
const char *const UCM_REPEATED_TEXT =
    "answers come more than once: which one is meant cannot be told";

namespace {

constexpr int ROUNDS_MAX = 3; // of exchanges on a line that repeats answers

uint32_t doubts = 0; // refusals of UCM_Prove

constexpr const UCM_Protocol *PROTOCOLS[] = {&UCM_PROTOCOL_MR166, &UCM_PROTOCOL_MODBUS};
constexpr const char *REFUSED = "bad station number or protocol";

const char *ownCause = nullptr; // why the last operation failed when no link can know it
UCM_Statistics statisticsBase;  // what the links had counted at the last reset
PLT_Date statisticsSince;       // of the last reset

// Two rows: a search costs less than keeping a pointer beside UCM_recS right.
const UCM_Protocol *FindProtocol(int number)
{
    for (const UCM_Protocol *protocol : PROTOCOLS) {
        if (protocol->number == number)
            return protocol;
    }
    return nullptr;
}

const UCM_Protocol *Current()
{
    return FindProtocol(UCM_recS.protocol);
}

int Refuse()
{
    ownCause = REFUSED;
    return UCM_ERR_ARGUMENT;
}

// The recorded protocol when it has such a station; else null and the result in *refusal.
const UCM_Protocol *ForStation(int station, int *refusal)
{
    const UCM_Protocol *protocol = Current();
    ownCause = nullptr;
    if (protocol != nullptr && station >= protocol->stationMin && station <= protocol->stationMax)
        return protocol;
    *refusal = Refuse();
    if (protocol != nullptr)
        UCM_CountErr(*refusal);
    return nullptr;
}

// For single requests, whose station the row checks itself.
int Sent(int result)
{
    ownCause = result == UCM_ERR_ARGUMENT ? REFUSED : nullptr;
    return result;
}

// One step with its proof; made again from where it began while the line repeats answers.
template <typename Step, typename Byte>
int StepProven(Step step, int station, uint32_t *address, uint32_t *count, Byte **bytes)
{
    const uint32_t fromAddress = *address, fromCount = *count;
    Byte *const fromBytes = *bytes;
    int result = 0;
    const int proven = UCM_MakeProven([&] {
        *address = fromAddress;
        *count = fromCount;
        *bytes = fromBytes;
        result = step(station, address, count, bytes);
        return std::min(result, 0);
    });
    return result >= 0 && proven < 0 ? UCM_CountErr(proven) : result;
}

UCM_Statistics CountAll()
{
    UCM_Statistics sum;
    for (const UCM_Protocol *protocol : PROTOCOLS)
        protocol->addCounts(&sum);
    return sum;
}

} // namespace

void UCM_Init()
{
    UCM_recS = UCM_Record();
    if (statisticsSince.year == 0)
        PLT_LocalTime(&statisticsSince);
}

void UCM_ClearErrorCounter()
{
    std::fill(std::begin(UCM_recS.errors), std::end(UCM_recS.errors), uint16_t{0});
}

// Results are 16-bit numbers by contract: a caller sees the same from every row.
int UCM_CountErr(int result)
{
    const int narrow = static_cast<int16_t>(result);
    if (narrow < 0 && narrow > -UCM_COUNTERS)
        ++UCM_recS.errors[-narrow];
    return narrow;
}

int UCM_Open(int protocol, int port, int baud)
{
    // Closed and cleared even when the number is none: the old link must not answer for it.
    UCM_Close();
    UCM_ClearErrorCounter();
    const UCM_Protocol *row = FindProtocol(protocol);
    if (row == nullptr)
        return Refuse();
    ownCause = nullptr;
    // Recorded before it is known to work: the reason of a failure is asked of this protocol.
    UCM_recS.protocol = static_cast<int16_t>(protocol);
    UCM_recS.port = static_cast<int16_t>(port);
    const int result = row->open(port, baud);
    UCM_recS.opened = static_cast<int16_t>(row->isOpened());
    return result;
}

void UCM_Close()
{
    if (!UCM_recS.opened)
        return;
    if (Current() != nullptr)
        Current()->close();
    UCM_recS.port = 0;
    UCM_recS.opened = 0;
}

int UCM_IsOpened()
{
    return UCM_recS.opened;
}

bool UCM_IsGone()
{
    return UCM_recS.opened && Current()->isGone();
}

std::string UCM_PortName(int port)
{
    return "COM" + std::to_string(port) + " (" + SER_DevicePath(port) + ")";
}

int UCM_Prove()
{
    const UCM_Protocol *protocol = Current();
    ownCause = nullptr;
    const int result = protocol != nullptr ? protocol->prove() : UCM_PROVEN;
    // Whoever holds values back learns by this count that somebody else's proof concerned them too.
    doubts += result != UCM_PROVEN;
    if (result == UCM_READ_AGAIN)
        ownCause = UCM_REPEATED_TEXT;
    else if (result == UCM_NOT_PROVEN && protocol->lastErrorText().empty())
        ownCause = FAIL_NO_PROOF;
    return result;
}

uint32_t UCM_CountDoubts()
{
    return doubts;
}

int UCM_MakeProven(const std::function<int()> &exchange)
{
    // A failure ends it at once, unproven: there is nothing to be shown.
    int proof = UCM_READ_AGAIN;
    for (int round = 0; round < ROUNDS_MAX && proof == UCM_READ_AGAIN; ++round) {
        const int result = exchange();
        if (result < 0)
            return result;
        proof = UCM_Prove();
    }
    return proof == UCM_PROVEN ? 0 : UCM_ERR_PROOF;
}

UCM_Series UCM_MakeSeries(uint32_t count, const std::function<int(uint32_t index)> &exchange)
{
    UCM_Series series;
    const int proven = UCM_MakeProven([&] {
        series = UCM_Series();
        while (series.made < count && series.result >= 0) {
            series.result = exchange(series.made);
            series.made += series.result >= 0 ? 1 : 0;
        }
        if (series.result < 0)
            series.cause = UCM_LastErrorText();
        return 0; // what came before a failure is proven as well
    });
    series.good = proven < 0 ? 0 : series.made;
    if (proven < 0 && series.result >= 0) {
        series.result = proven;
        series.cause = UCM_LastErrorText();
    }
    return series;
}

int UCM_ReadProven(int station, uint32_t address, uint32_t count, void *buffer)
{
    return UCM_MakeProven([&] { return UCM_Read(station, address, count, buffer); });
}

int UCM_WriteProven(int station, uint32_t address, uint16_t count, const void *data)
{
    if (UCM_EmuCom166Msg(station, TARGET_WRITE, address, count, data) <= 0)
        return UCM_ERR_FAILED;
    const int proof = UCM_Prove();
    if (proof != UCM_READ_AGAIN)
        return proof == UCM_PROVEN ? 0 : UCM_ERR_PROOF;
    // The acknowledgement may have been an older one's. To write again might set off twice what
    // the value sets off: what the target holds decides.
    std::vector<uint8_t> held(count);
    if (UCM_ReadProven(station, address, count, held.data()) < 0)
        return UCM_ERR_PROOF;
    const uint8_t *wanted = static_cast<const uint8_t *>(data);
    if (std::equal(held.begin(), held.end(), wanted))
        return 0;
    ownCause = UCM_REPEATED_TEXT;
    return UCM_ERR_PROOF;
}

bool UCM_IsEchoing()
{
    return Current() != nullptr && Current()->isEchoing();
}

void UCM_SetListener(const UCM_Listener &listener)
{
    STEP_Listener wanted;
    wanted.isBreak = listener.isBreak;
    wanted.waiting = listener.waiting;
    STEP_SetListener(wanted);
}

int UCM_UseWin32(int flag)
{
    const UCM_Protocol *protocol = Current();
    if (protocol == nullptr || protocol->useWin32 == nullptr)
        return Refuse();
    ownCause = nullptr;
    // Reopens the port when it is open: nothing of the old driver's input is taken over.
    const int result = protocol->useWin32(flag);
    // A link that could not be reopened with the other driver is closed.
    UCM_recS.opened = static_cast<int16_t>(protocol->isOpened());
    return result;
}

int UCM_Read(int station, uint32_t address, uint32_t count, void *buffer)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    return protocol != nullptr ? protocol->read(station, address, count, buffer) : refusal;
}

int UCM_ReadProving(int station, uint32_t address, uint32_t count, void *buffer)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    if (protocol == nullptr)
        return refusal;
    const uint32_t blockMax = UCM_ReadWire(protocol->number).blockMax;
    // The last block has to have a length that proves; in as many blocks as without a proof, if
    // one can be had for that, else in one more.
    const uint32_t blocks = (count + blockMax - 1) / blockMax;
    const uint32_t least = count > 0 ? count - (blocks - 1) * blockMax : 0;
    uint32_t last = protocol->pickProving(station, least, std::min(count, blockMax));
    if (last == 0 && least > 0)
        last = protocol->pickProving(station, 1, least - 1);
    uint8_t *bytes = static_cast<uint8_t *>(buffer);
    uint32_t done = 0;
    int result = 0;
    for (; done < count - last && result >= 0; done += std::min(count - last - done, blockMax))
        result = protocol->read(station, address + done, std::min(count - last - done, blockMax),
                                bytes + done);
    if (result < 0 || last == 0)
        return std::min(result, 0);
    // That is one try. What it was to prove waits for UCM_Prove then.
    if (protocol->readProving(station, address + done, last, bytes + done) == 0)
        return 1;
    return protocol->read(station, address + done, last, bytes + done); // with all its tries
}

int UCM_Write(int station, uint32_t address, uint32_t count, const void *data)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    return protocol != nullptr ? protocol->write(station, address, count, data) : refusal;
}

int UCM_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    return protocol != nullptr ? StepProven(protocol->readBg, station, address, count, buffer)
                               : refusal;
}

int UCM_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    return protocol != nullptr ? StepProven(protocol->writeBg, station, address, count, data)
                               : refusal;
}

uint32_t UCM_WriteStep()
{
    return Current() != nullptr ? Current()->writeStep : 1;
}

int UCM_EmuCom166Msg(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const UCM_Protocol *protocol = Current();
    return protocol != nullptr ? Sent(protocol->message(station, command, address, word, data))
                               : Refuse();
}

int UCM_EmuCom166MsgNA(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const UCM_Protocol *protocol = Current();
    if (protocol == nullptr || protocol->messageNoAnswer == nullptr)
        return Refuse();
    return Sent(protocol->messageNoAnswer(station, command, address, word, data));
}

std::string UCM_LastErrorText()
{
    if (ownCause != nullptr)
        return ownCause;
    return Current() != nullptr ? Current()->lastErrorText() : REFUSED;
}

void UCM_GetStatistics(UCM_Statistics *statistics)
{
    const UCM_Statistics now = CountAll();
    statistics->answered = now.answered - statisticsBase.answered;
    // The links count these two in 16 bits.
    statistics->timeouts = static_cast<uint16_t>(now.timeouts - statisticsBase.timeouts);
    statistics->damaged = static_cast<uint16_t>(now.damaged - statisticsBase.damaged);
    statistics->repeated = now.repeated - statisticsBase.repeated;
    statistics->since = statisticsSince;
    std::copy(std::begin(UCM_recS.errors), std::end(UCM_recS.errors),
              std::begin(statistics->errors));
}

UCM_Cause UCM_CauseSince(const UCM_Statistics &before)
{
    UCM_Statistics now;
    UCM_GetStatistics(&now);
    // An answer that came, in whatever state, says that somebody is there.
    if (now.damaged != before.damaged)
        return UCM_CAUSE_REFUSED;
    return now.timeouts != before.timeouts ? UCM_CAUSE_SILENT : UCM_CAUSE_OTHER;
}

void UCM_ResetStatistics()
{
    // The links' own counters go on: they are other callers' as well.
    statisticsBase = CountAll();
    PLT_LocalTime(&statisticsSince);
    FAIL_Reset();
    UCM_ClearErrorCounter();
}
