// Dispatch of the unified layer by the recorded protocol, and its error counters.
#include "comm/ucm.h"

#include "comm/failures.h"
#include "comm/in_step.h"
#include "comm/ucm_protocol.h"
#include "platform/serial.h"

#include <algorithm>
#include <iterator>

UCM_Record UCM_recS;

namespace {

uint32_t doubts = 0; // refusals of UCM_Prove

constexpr const UCM_Protocol *PROTOCOLS[] = {&UCM_PROTOCOL_MR166, &UCM_PROTOCOL_MODBUS};
constexpr const char *REFUSED_TEXT = "bad station number or protocol";

bool isRefused = false;        // the last operation was refused before it reached a link
UCM_Statistics statisticsBase; // what the links had counted at the last reset
PLT_Date statisticsSince;      // of the last reset

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
    isRefused = true;
    return UCM_ERR_ARGUMENT;
}

// The recorded protocol when it has such a station; else null and the result in *refusal.
const UCM_Protocol *ForStation(int station, int *refusal)
{
    const UCM_Protocol *protocol = Current();
    isRefused = false;
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
    isRefused = result == UCM_ERR_ARGUMENT;
    return result;
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

int UCM_CountErr(int result)
{
    const int narrow = static_cast<int16_t>(result);
    if (narrow < 0 && narrow > -UCM_COUNTERS)
        ++UCM_recS.errors[-narrow];
    return narrow;
}

int UCM_Open(int protocol, int port, int baud)
{
    UCM_Close();
    UCM_ClearErrorCounter();
    const UCM_Protocol *row = FindProtocol(protocol);
    if (row == nullptr)
        return Refuse();
    isRefused = false;
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
    isRefused = false;
    const int result = protocol != nullptr ? protocol->prove() : UCM_PROVEN;
    doubts += result != UCM_PROVEN;
    return result;
}

uint32_t UCM_CountDoubts()
{
    return doubts;
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
    isRefused = false;
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
    return protocol != nullptr ? protocol->readBg(station, address, count, buffer) : refusal;
}

int UCM_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    int refusal = 0;
    const UCM_Protocol *protocol = ForStation(station, &refusal);
    return protocol != nullptr ? protocol->writeBg(station, address, count, data) : refusal;
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
    if (isRefused || Current() == nullptr)
        return REFUSED_TEXT;
    return Current()->lastErrorText();
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
    if (now.damaged != before.damaged)
        return UCM_CAUSE_REFUSED;
    return now.timeouts != before.timeouts ? UCM_CAUSE_SILENT : UCM_CAUSE_OTHER;
}

void UCM_ResetStatistics()
{
    statisticsBase = CountAll();
    PLT_LocalTime(&statisticsSince);
    FAIL_Reset();
    UCM_ClearErrorCounter();
}
