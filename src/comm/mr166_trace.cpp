// The mr166 link in words: results for the user, requests and answers for the trace.
#include "comm/failures.h"
#include "comm/mr166_driver.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "text/bytes.h"

#include <cstdio>

namespace {

struct ErrorText {
    int code;
    const char *text;
};
// Codes of the first protocol version, and the finer faults that share them.
constexpr ErrorText ERROR_TEXTS[] = {
    {0, "answered"},
    {MR166_ERR_SHORT, FAIL_CUT},
    {MR166_ERR_START, "answer damaged (start character)"},
    {MR166_ERR_END, "answer damaged (end character)"},
    {MR166_ERR_HEX, "answer damaged (not hexadecimal)"},
    {MR166_ERR_CHECK, "answer damaged (check value)"},
    {MR166_ERR_STATION, FAIL_WRONG_STATION},
    {MR166_ERR_COMMAND, "wrong command in the answer"},
    {MR166_ERR_LENGTH, "answer damaged (length)"},
    {MR166_ERR_TIMEOUT, FAIL_NO_ANSWER},
    {MR166_ERR_ARGUMENT, "bad station, command, address or count"},
    {MR166_ERR_CLOSED, FAIL_NOT_OPEN},
    {MR166_ERR_OPEN_NI, FAIL_NOT_AVAILABLE},
    {MR166_ERR_OPEN, FAIL_NOT_AVAILABLE},
    {MR166_ERR_GET, FAIL_NO_SETTINGS},
    {MR166_ERR_SET, FAIL_SETTINGS_REFUSED},
    {MR166_ERR_PORT, FAIL_BAD_PORT},
    {MR166_FAULT_GONE, FAIL_GONE},
    {MR166_FAULT_SEND, FAIL_NOT_SENT},
    {MR166_FAULT_ECHO, FAIL_ECHO},
    {MR166_FAULT_COUNT, FAIL_COUNT},
    {MR166_FAULT_CANCELLED, FAIL_CANCELLED},
    {MR166_FAULT_SURPLUS, "answers come more than once"},
    {MR166_FAULT_MISSING, "port is not available: no such device"},
    {MR166_FAULT_BUSY, "port is not available: another program has it"},
    {MR166_FAULT_ACCESS, "port is not available: no permission to use it"},
    {MR166_FAULT_BAUD, "baud rate is not supported by the device"},
    {MR166_FAULT_HOST, "port is not available: no such host"},
    {MR166_FAULT_REFUSED, "port is not available: nothing listens there"},
    {MR166_FAULT_SILENT, "port is not available: the host does not answer"},
};

TRC_Record current;        // the exchange being recorded
bool isAnswerShown = true; // a probe's bytes are of no interest

std::string HexList(const uint8_t *bytes, size_t count)
{
    const std::string text = std::to_string(count) + (count == 1 ? " byte:" : " bytes:");
    return count > 0 ? text + " " + TXT_FormatHexBytes(bytes, count) : text;
}

// The request in words. Its frame stands in the send buffer.
std::string DescribeRequest(const Mr166_Request &request, bool isProbe)
{
    const auto station = static_cast<unsigned>(request.station);
    const auto command = static_cast<unsigned>(request.command);
    const auto address = static_cast<unsigned>(request.address);
    const unsigned word = request.word;
    char text[96];
    if (isProbe) {
        std::snprintf(text, sizeof text, "station %u: is it in step? read %u bytes at 0x%06X",
                      station, word, address);
    } else if (command == MR166_CMD_READ) {
        std::snprintf(text, sizeof text, "station %u: read %u bytes at 0x%06X", station, word,
                      address);
    } else if (command == MR166_CMD_WRITE) {
        std::snprintf(text, sizeof text, "station %u: write at 0x%06X ", station, address);
        // Taken out of the frame again: the trace shows what goes over the line.
        constexpr size_t FRAME_COUNT = 9, FRAME_DATA = 11;
        uint8_t bytes[MR166_WRITE_MAX];
        const size_t count = hexToByte(Mr166_abySnd + FRAME_COUNT);
        for (size_t i = 0; i < count; ++i)
            bytes[i] = hexToByte(Mr166_abySnd + FRAME_DATA + 2 * i);
        return text + HexList(bytes, count);
    } else {
        std::snprintf(text, sizeof text, "station %u: command %u at 0x%06X with 0x%04X", station,
                      command, address, word);
    }
    return text;
}

} // namespace

std::string MrASC_ErrorText(int code)
{
    for (const ErrorText &row : ERROR_TEXTS) {
        if (row.code == code)
            return row.text;
    }
    // The target's own codes are the firmware's: a number is all that can be said.
    if (code <= -MR166_TARGET_ERROR_MIN)
        return FAIL_TARGET_ERROR + (" " + std::to_string(-code));
    return "error " + std::to_string(code);
}

void Mr166_BeginTrace(const Mr166_Request &request, bool isProbe)
{
    current = TRC_Record();
    PLT_LocalTime(&current.when);
    current.request = DescribeRequest(request, isProbe);
    isAnswerShown = !isProbe;
    TRC_Append(&current.sent, Mr166_abySnd, cbSnd);
    // Last: building the text must not count as time on the line.
    current.startUs = PLT_TickUs();
}

void Mr166_TraceReceived(const void *bytes, size_t count)
{
    TRC_Append(&current.received, bytes, count);
}

void Mr166_EndTrace(bool isAnswerChecked, bool isEchoSeen)
{
    current.durationUs = static_cast<uint32_t>(PLT_TickUs() - current.startUs);
    current.isGood = !isAnswerChecked || Mr166_nFault == 0;
    current.result = isAnswerChecked ? MrASC_ErrorText(Mr166_nFault) : "sent, answer not checked";
    if (isEchoSeen)
        current.result += FAIL_ECHO_SEEN;
    if (isAnswerChecked && isAnswerShown && current.isGood && cnRcvData > 0)
        current.answer = HexList(Mr166_abyRcvData, cnRcvData);
    TRC_Add(current);
}

void Mr166_TraceLink(bool isOpening, int port, int baud, int result)
{
    TRC_Record record;
    PLT_LocalTime(&record.when);
    record.startUs = PLT_TickUs();
    record.request = "COM" + std::to_string(port) + " at " + std::to_string(baud) + " baud, " +
                     MrASC_Driver().name;
    record.isGood = result == 0;
    // The reason of a failure stands in place of "opened".
    record.result = isOpening ? "opened" : "closed";
    if (result != 0)
        record.result = MrASC_ErrorText(result);
    TRC_Add(record);
}
