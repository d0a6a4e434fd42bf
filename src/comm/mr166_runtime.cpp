// The run-time driver of the mr166 link: takes the answer byte by byte from the RS-232
// library and can so skip the echo of its own request on a two-wire line.
#include "comm/mr166_driver.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "platform/system.h"
#include "runtime/rs232.h"

#include <cstdio>

int16_t Mr166_wComDbg = 0;

namespace {

constexpr int PORT_MAX = 98;
// More than the longest answer and its echo.
constexpr int QUEUE_BYTES = 512;
constexpr int PARITY_NONE = 0, DATA_BITS = 8, STOP_BITS = 2;

enum class State { IDLE, SKIPPING_ECHO, COLLECTING, COMPLETE, WRONG_START };

int openPort = 0; // what this driver opened, whatever the settings say by now

State Advance(State state, char byte)
{
    if (state == State::SKIPPING_ECHO)
        return byte == MR166_END ? State::IDLE : state;
    // Requests and answers begin with different characters: on a two-wire line the first
    // frame heard is our own.
    const bool isEcho = byte == MR166_START_SHORT || byte == MR166_START_LONG;
    if (state == State::IDLE && isEcho)
        return State::SKIPPING_ECHO;
    Mr166_abyRcv[cbRcv++] = byte;
    if (state == State::IDLE)
        return byte == MR166_START_ANSWER ? State::COLLECTING : State::WRONG_START;
    return byte == MR166_END || cbRcv == MR166_ANSWER_ROOM ? State::COMPLETE : state;
}

// Takes what is in the input queue, up to the end of the answer.
State Collect(State state, int waiting, bool *isEchoSeen)
{
    for (; waiting > 0 && state < State::COMPLETE; --waiting) {
        const int byte = ComRdByte(openPort);
        if (byte < 0)
            break;
        if (TRC_isOn) {
            const auto received = static_cast<uint8_t>(byte);
            Mr166_TraceReceived(&received, 1);
        }
        state = Advance(state, static_cast<char>(byte));
        *isEchoSeen = *isEchoSeen || state == State::SKIPPING_ECHO;
    }
    return state;
}

// The end character tells the end of an answer, so its expected length does not matter.
Mr166_Ending ReadAnswer(size_t /*expected*/, bool *isEchoSeen)
{
    const uint32_t start = PLT_TickMs();
    State state = State::IDLE;
    cbRcv = 0;
    for (;;) {
        const uint32_t passed = PLT_TickMs() - start;
        // With the debug flag the wait has no end: the target may stand at a break point.
        if (!Mr166_wComDbg && passed >= Mr166_nTimeoutMs)
            return Mr166_Ending::TIME_OUT;
        const uint32_t wait =
            passed < Mr166_nTimeoutMs ? Mr166_nTimeoutMs - passed : Mr166_nTimeoutMs;
        const int waiting = WaitInQ(openPort, wait);
        if (waiting < 0)
            return Mr166_Ending::GONE;
        state = Collect(state, waiting, isEchoSeen);
        if (state == State::COMPLETE)
            return Mr166_Ending::COMPLETE;
        if (state == State::WRONG_START) {
            FlushOutQ(openPort);
            return Mr166_Ending::WRONG_START;
        }
    }
}

} // namespace

const Mr166_Driver MR166_DRIVER_RUNTIME = {
    "run-time driver",
    MR166_ERR_ARGUMENT,
    true,
    MrASC_OpenNI,
    MrASC_CloseNI,
    [] { FlushOutQ(openPort); },
    [] { return GetInQLen(openPort); },
    [] { return wMrOpenFlag && ComWrt(openPort, Mr166_abySnd, cbSnd) == cbSnd ? 0 : -1; },
    // readSome: the library hands out single bytes
    [](char *buffer, size_t capacity, unsigned waitMs) {
        const int waiting = WaitInQ(openPort, waitMs);
        int count = 0;
        while (count < waiting && static_cast<size_t>(count) < capacity)
            buffer[count++] = static_cast<char>(ComRdByte(openPort));
        return waiting < 0 ? waiting : count;
    },
    ReadAnswer,
};

int MrASC_OpenNI(int port, int baud)
{
    if (port < 0 || port > PORT_MAX)
        return MR166_ERR_PORT;
    char device[16];
    std::snprintf(device, sizeof device, "COM%d", port);
    if (OpenComConfig(port, device, baud, PARITY_NONE, DATA_BITS, STOP_BITS, QUEUE_BYTES,
                      QUEUE_BYTES) < 0)
        return MR166_ERR_OPEN_NI;
    openPort = port;
    // The library counts in seconds.
    SetComTime(port, Mr166_nTimeoutMs / 1000.0);
    wMrOpenFlag = 1;
    return 0;
}

void MrASC_CloseNI()
{
    wMrOpenFlag = 0;
    CloseCom(openPort);
}
