#include "diagnostics/line_test.h"

#include "comm/communication.h"
#include "comm/failures.h"
#include "comm/ucm.h"
#include "settings/settings.h"

#include <cstdint>

namespace {

// Failures that mean: bytes came. Parts of what FAIL_Note is given.
constexpr const char *BYTES_CAME[] = {"damaged", FAIL_WRONG_STATION, "wrong command", "another"};
// ... and: a station has understood and refuses.
constexpr const char *REFUSALS[] = {FAIL_TARGET_ERROR, "exception"};

std::string Who()
{
    return (VR_nProtocol == PROTOCOL_MODBUS ? "Slave " : "Station ") + std::to_string(STATION);
}

uint32_t CountBytesCame()
{
    uint32_t sum = 0;
    for (const char *cause : BYTES_CAME)
        sum += FAIL_CountOf(cause);
    return sum;
}

DIA_LineResult Ask(std::string *text)
{
    const uint32_t before = CountBytesCame();
    uint8_t byte = 0;
    const int result = UCM_Read(STATION, 0, 1, &byte);
    if (result >= 0 && UCM_Prove() == UCM_PROVEN) {
        *text = Who() + " answers.";
        return DIA_LINE_ANSWERS;
    }
    const std::string cause = UCM_LastErrorText();
    if (result == UCM_ERR_ARGUMENT) {
        *text = Who() + ": " + cause + ".";
        return DIA_LINE_BAD_STATION;
    }
    for (const char *refusal : REFUSALS)
        if (cause.compare(0, std::string(refusal).size(), refusal) == 0) {
            *text = Who() + " answers: " + cause + ".";
            return DIA_LINE_ANSWERS;
        }
    // An echo is also bytes that came, so it is told apart before they are counted.
    if (UCM_IsEchoing()) {
        *text = VR_nProtocol == PROTOCOL_MODBUS ? "The line echoes what is sent." : FAIL_ECHO;
        return DIA_LINE_ECHO;
    }
    if (cause == "cancelled") {
        *text = "Cancelled.";
        return DIA_LINE_CANCELLED;
    }
    if (CountBytesCame() != before) {
        *text = "Bytes arrive but no frames: wrong baud rate? (" + cause + ")";
        return DIA_LINE_NO_FRAMES;
    }
    *text = "Nothing answers: check cable and supply, then station and baud rate.";
    return DIA_LINE_SILENT;
}

} // namespace

DIA_LineResult DIA_TestLine(std::string *text)
{
    if (VR_OpenLink() < 0) {
        *text = UCM_PortName(ncom) + ": " + UCM_LastErrorText() + ".";
        UCM_Close();
        return DIA_LINE_NO_PORT;
    }
    const DIA_LineResult result = Ask(text);
    UCM_Close();
    return result;
}
