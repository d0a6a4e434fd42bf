// The Modbus master in words: faults for the user, frames for the wire trace.
#include "comm/failures.h"
#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/trace.h"
#include "settings/limits.h"

#include <algorithm>
#include <cstdio>

namespace {

struct FaultText {
    int fault;
    const char *text;
};
constexpr FaultText FAULT_TEXTS[] = {
    {0, "answered"},
    {MBM_EX_SILENT, FAIL_NO_ANSWER},
    {MBM_EX_FOREIGN, "answer of another slave or function"},
    {MBM_EX_CRC, "answer damaged (CRC of an exception)"},
    {MBM_EX_COUNT, FAIL_COUNT},
    {MBM_EX_PART, "answer damaged (incomplete, CRC, or another write confirmed)"},
    {MBM_FAULT_CUT, FAIL_CUT},
    {MBM_FAULT_GONE, FAIL_GONE},
    {MBM_FAULT_SEND, FAIL_NOT_SENT},
    {MBM_FAULT_ECHO, "the line echoes what is sent: switch two-wire line echoes on"},
    {MBM_FAULT_NO_ECHO, "the line does not echo what is sent: switch two-wire line echoes off"},
    {MBM_FAULT_CLOSED, FAIL_NOT_OPEN},
    {MBM_FAULT_ARGUMENT, "bad Modbus function or quantity"},
    {MBM_FAULT_STEP, "the line does not come to rest"},
    {MBM_FAULT_CANCELLED, FAIL_CANCELLED},
    {MBM_ERR_OPEN, FAIL_NOT_AVAILABLE},
    {MBM_ERR_GET, FAIL_NO_SETTINGS},
    {MBM_ERR_SET, FAIL_SETTINGS_REFUSED},
    {MBM_ERR_PORT, FAIL_BAD_PORT},
};

// What a slave means by the exception codes 1 to 11.
constexpr const char *EXCEPTIONS[] = {"function not supported",
                                      "no such address",
                                      "value or quantity not allowed",
                                      "device failure",
                                      "accepted, needs more time",
                                      "device busy",
                                      "cannot be done",
                                      "memory parity error",
                                      "not defined",
                                      "no path through gateway",
                                      "no answer behind the gateway"};
constexpr int EXCEPTIONS_KNOWN = sizeof EXCEPTIONS / sizeof *EXCEPTIONS;

struct FunctionName {
    int function;
    const char *name;
};
constexpr FunctionName FUNCTION_NAMES[] = {
    {MBM_FN_COILS, "read coils"},
    {MBM_FN_INPUTS, "read discrete inputs"},
    {MBM_FN_HOLDING, "read holding registers"},
    {MBM_FN_INPUT_REGISTERS, "read input registers"},
    {MBM_FN_WRITE_ONE, "write one register"},
    {MBM_FN_WRITE, "write registers"},
    {MBM_FN_READ_WRITE, "read and write registers"},
};

constexpr unsigned BITS_PER_CHAR = 11; // start, eight data, parity, stop

TRC_Record current;       // the exchange being recorded
uint64_t lastEndUs = 0;   // when the last frame on the line ended; 0 = none since opening
uint64_t firstByteUs = 0; // when the answer began to arrive; 0 = not yet
size_t firstBytes = 0;    // of the answer, that were there at that time

// "10 from 0x0064" and the like.
std::string PlaceText(unsigned quantity, const char *link, unsigned start)
{
    char text[48];
    std::snprintf(text, sizeof text, "%u %s 0x%04X", quantity, link, start);
    return text;
}

// Said of every frame, good or not: a damaged answer is what one looks for in a trace.
std::string CrcText(const uint8_t *frame, size_t count)
{
    return count > MBM_CRC_BYTES && MBM_IsSoundFrame(frame, count) ? "CRC good" : "CRC bad";
}

// Time in characters of the line; negative times, which a fast line's clock can show, are none.
std::string GapText(int64_t us)
{
    const double chars =
        static_cast<double>(std::max<int64_t>(us, 0)) * MBM_dwBaudrate / (BITS_PER_CHAR * 1e6);
    char text[48];
    std::snprintf(text, sizeof text, "%.1f characters", chars);
    return text;
}

// Memory that a request of function 16 or 23 reaches through the reserved registers.
// `tunnel` points at the write part: start, quantity, byte count, registers.
std::string TunnelText(int function, const uint8_t *tunnel, unsigned readQuantity)
{
    const unsigned start = MBM_WordAt(tunnel), quantity = MBM_WordAt(tunnel + 2);
    if ((start != MBM_TUNNEL_EVEN && start != MBM_TUNNEL_ODD) || quantity < 2)
        return "";
    const unsigned address = MBM_WordAt(tunnel + 5) << 16 | MBM_WordAt(tunnel + 7);
    const unsigned registers = function == MBM_FN_WRITE ? quantity - 2 : readQuantity;
    const unsigned bytes = 2 * registers - (start == MBM_TUNNEL_ODD && registers > 0 ? 1 : 0);
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%06X", address);
    return (function == MBM_FN_WRITE ? ", memory write of " : ", memory read of ") +
           std::to_string(bytes) + " bytes at " + digits;
}

// "slave 1: read holding registers (3), 10 from 0x0064"; `count` without the CRC.
std::string DescribeRequest(const uint8_t *frame, size_t count)
{
    if (count < 6)
        return "frame of " + std::to_string(count) + " bytes";
    const int function = frame[1];
    const unsigned start = MBM_WordAt(frame + 2), quantity = MBM_WordAt(frame + 4);
    const char *name = "unknown function"; // of a frame built by other means
    for (const FunctionName &row : FUNCTION_NAMES) {
        if (row.function == function)
            name = row.name;
    }
    std::string text =
        "slave " + std::to_string(frame[0]) + ": " + name + " (" + std::to_string(function) + "), ";
    if (function == MBM_FN_WRITE_ONE)
        return text + PlaceText(quantity, "into", start);
    text += PlaceText(quantity, "from", start);
    if (function == MBM_FN_WRITE && count >= 11)
        text += TunnelText(function, frame + 2, 0);
    if (function == MBM_FN_READ_WRITE && count >= 15) {
        const std::string tunnel = TunnelText(function, frame + 6, quantity);
        text += tunnel.empty()
                    ? ", writes " + PlaceText(MBM_WordAt(frame + 8), "at", MBM_WordAt(frame + 6))
                    : tunnel;
    }
    return text;
}

// Of at least five bytes, the shortest answer there is.
std::string DescribeAnswer(const uint8_t *frame, size_t count)
{
    std::string text = "slave " + std::to_string(frame[0]);
    const int function = frame[1] & ~MBM_EXCEPTION_BIT;
    if ((frame[1] & MBM_EXCEPTION_BIT) != 0)
        text += ", exception " + std::to_string(frame[2]);
    else if (function == MBM_FN_WRITE_ONE || function == MBM_FN_WRITE)
        text += ", confirmed";
    else
        text += ", " + std::to_string(frame[2]) + " bytes";
    return text + ", " + CrcText(frame, count);
}

} // namespace

std::string MBM_ErrorText(int fault)
{
    for (const FaultText &row : FAULT_TEXTS) {
        if (row.fault == fault)
            return row.text;
    }
    if (fault == MBM_FAULT_SLAVE)
        return "bad slave address (" + std::to_string(MODBUS_STATION_MIN) + " to " +
               std::to_string(MODBUS_STATION_MAX) + ")";
    // Codes beyond the standard's are the device maker's: the number is all that can be said.
    const int code = fault - MBM_FAULT_EXCEPTION;
    std::string text = "exception " + std::to_string(code);
    if (code >= 1 && code <= EXCEPTIONS_KNOWN)
        text += std::string(" (") + EXCEPTIONS[code - 1] + ")";
    return text;
}

void MBM_BeginTrace(const uint8_t *frame, size_t count, bool isProbe)
{
    current = TRC_Record();
    PLT_LocalTime(&current.when);
    current.startUs = PLT_TickUs();
    current.request = (isProbe ? "probe of the line, " : "") + DescribeRequest(frame, count - 2) +
                      ", " + CrcText(frame, count);
    if (lastEndUs != 0)
        current.request += ", gap " + GapText(static_cast<int64_t>(current.startUs - lastEndUs));
    TRC_Append(&current.sent, frame, count);
    firstByteUs = 0;
}

void MBM_TraceReceived(const void *bytes, size_t count)
{
    TRC_Append(&current.received, bytes, count);
    if (firstByteUs == 0 && current.received.count > (MBM_isEcho ? current.sent.count : 0)) {
        firstByteUs = PLT_TickUs();
        firstBytes = current.received.count;
    }
}

void MBM_EndTrace(bool isEchoSkipped, int fault)
{
    lastEndUs = PLT_TickUs();
    current.durationUs = static_cast<uint32_t>(lastEndUs - current.startUs);
    current.isGood = fault == 0;
    current.result = MBM_ErrorText(fault);
    const size_t echo = isEchoSkipped ? current.sent.count : 0u;
    if (isEchoSkipped)
        current.result += FAIL_ECHO_SEEN;
    if (current.received.count >= echo + 5) {
        // What passed on the wire until then is no gap. A port without a baud rate has no wire.
        const size_t passed = firstBytes + (echo > 0 ? 0 : current.sent.count);
        const auto began = static_cast<int64_t>(firstByteUs - current.startUs);
        const auto baud = static_cast<int64_t>(MBM_dwBaudrate);
        const int64_t onWireUs =
            baud == 0 ? 0 : static_cast<int64_t>(passed) * BITS_PER_CHAR * 1000000 / baud;
        current.answer =
            DescribeAnswer(current.received.bytes + echo, current.received.count - echo) +
            ", gap " + GapText(began - onWireUs);
    }
    TRC_Add(current);
}

void MBM_TraceLink(bool isOpening, int port, int result)
{
    TRC_Record record;
    PLT_LocalTime(&record.when);
    record.startUs = PLT_TickUs();
    record.request = "COM" + std::to_string(port) + " at " + std::to_string(MBM_dwBaudrate) +
                     " baud, Modbus RTU";
    record.isGood = result == 0;
    record.result = result != 0 ? MBM_ErrorText(result) : isOpening ? "opened" : "closed";
    lastEndUs = 0; // the first request of a port has no gap in front of it
    TRC_Add(record);
}
