// Numbers are checked against the width they are written with: a value that does not
// fit is refused, not cut.
#include "console/monitor/value_entry.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "console/monitor/dump.h"
#include "console/monitor/link.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/tokens.h"
#include "text/words.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint16_t INTEGER_BYTES = 2; // what a C166 integer, unsigned and hex value takes
constexpr uint16_t FLOAT_BYTES = 4;
constexpr int TMS_BITS = 32; // the mailbox moves whole words, of every kind

struct Kind {
    char kind;
    int base; // 0: decimal, or by a leading "0x" or "0"
    bool isSigned;
    uint16_t bytes; // on the C166
};
const Kind KINDS[] = {{'i', 0, true, INTEGER_BYTES},
                      {'u', 10, false, INTEGER_BYTES},
                      {'x', 16, false, INTEGER_BYTES},
                      {'f', 0, true, FLOAT_BYTES}};

char valueKind = 'i'; // of the entry that is open

const Kind *FindKind(char kind)
{
    for (const Kind &row : KINDS)
        if (row.kind == kind)
            return &row;
    return nullptr;
}

bool IsWholeText(const char *text, const char *end)
{
    return end != text && *TXT_SkipBlanks(end) == '\0';
}

// `bits` is the width of a number on the target; what does not fit is no number.
bool ParseValue(const char *text, const Kind &kind, int bits, uint32_t *value)
{
    char *end = nullptr;
    if (kind.kind == 'f') {
        // What is too large for the type becomes infinite, and is refused with the rest.
        const float number = std::strtof(text, &end);
        std::memcpy(value, &number, sizeof *value);
        return IsWholeText(text, end) && std::isfinite(number);
    }
    errno = 0;
    const long long number = std::strtoll(text, &end, kind.base);
    if (!IsWholeText(text, end) || errno != 0)
        return false;
    const long long half = 1LL << (bits - 1);
    const long long low = kind.isSigned ? -half : 0;
    const long long high = kind.isSigned ? half - 1 : 2 * half - 1;
    *value = static_cast<uint32_t>(number);
    return number >= low && number <= high;
}

void ShowC166Prompt()
{
    CON_SetPrompt(TXT_Format(" %06x:  ", dwAddr));
}

void ShowTmsPrompt()
{
    CON_SetPrompt(TXT_Format(" %08x:  ", dwAddr));
}

void EndEntry(int32_t mode)
{
    command = mode;
    CON_ShowModePrompt();
}

// The link is open for one value only: a user may take his time between two.
int EnterValue(int panel, const char *text, int (*write)(int panel, const char *text))
{
    if (CON_HoldLink(LINK_NO_QUESTION) < 0)
        return -1;
    const int result = write(panel, text);
    CON_ReleaseLink();
    return result;
}

} // namespace

bool CON_ParseStart(const char *text, uint32_t *address)
{
    if (FindKind(*text) == nullptr)
        return false;
    const char *cursor = TXT_SkipBlanks(text + 1);
    return TXT_ParseAddress(&cursor, address) && *TXT_SkipBlanks(cursor) == '\0';
}

int write_DPM(int, uint32_t address, char kind)
{
    PrintMonStr("Write ...");
    dwAddr = address;
    valueKind = kind;
    command = CMD_WRITE_C166;
    ShowC166Prompt();
    return 0;
}

int write_addr(int, uint32_t address, char kind)
{
    PrintMonStr("Write TMS memory...");
    dwAddr = address;
    valueKind = kind;
    command = CMD_WRITE_TMS;
    ShowTmsPrompt();
    return 0;
}

// Any failure ends the entry: what is typed next is a command again, and not a value for an
// address whose content is in doubt.
int write_DPM2(int, const char *text)
{
    const Kind &kind = *FindKind(valueKind);
    uint32_t value = 0;
    int result = 0;
    if (!ParseValue(text, kind, 8 * kind.bytes, &value)) {
        CON_Print("'%s' is not a value of this kind.", text);
        result = -1;
    } else if (!CON_IsInside(dwAddr, kind.bytes, 1)) {
        result = -1;
    } else {
        uint8_t bytes[FLOAT_BYTES];
        TXT_PutLittle(bytes, sizeof bytes, value);
        if (UCM_WriteProven(STATION, dwAddr, kind.bytes, bytes) != 0)
            result = CON_FailMemoryAt(dwAddr, UCM_LastErrorText());
    }
    if (result < 0) {
        EndEntry(CMD_C166);
        return -1;
    }
    dwAddr += kind.bytes;
    ShowC166Prompt();
    return 0;
}

int write_addrTMS(int, uint32_t address, uint32_t value)
{
    if (!CON_IsInside(address, 1, 1))
        return -1;
    uint32_t failedAt = 0;
    const int result = TMS_WriteProven(STATION, address, value, &failedAt);
    if (result == TMS_OK)
        return 0;
    // Only of a message that could not be sent the address is known.
    if (result != TMS_ERR_SEND)
        return CON_FailTms(result, UCM_LastErrorText());
    return CON_FailMemoryAt(failedAt, TMS_ErrorText(result));
}

// Whatever ends this entry leads to the C166 monitor, not back to the TMS monitor.
int write_addr2(int panel, const char *text)
{
    const Kind &kind = *FindKind(valueKind);
    uint32_t value = 0;
    if (!ParseValue(text, kind, TMS_BITS, &value)) {
        CON_Print("'%s' is not a value of this kind.", text);
        EndEntry(CMD_C166);
        return -1;
    }
    // The TMS320 behind a station has a float format of its own.
    if (kind.kind == 'f')
        value = IEEE_TMS(value);
    if (write_addrTMS(panel, dwAddr, value) < 0) {
        EndEntry(CMD_C166);
        return -1;
    }
    // An address of the TMS320 is a word.
    dwAddr++;
    ShowTmsPrompt();
    return 0;
}

int WriteD(int panel, const char *text)
{
    CON_Print(" %06x:  %s", dwAddr, text);
    if (*TXT_SkipBlanks(text) != '\0')
        return EnterValue(panel, text, write_DPM2);
    EndEntry(CMD_C166);
    return 0;
}

int WriteT(int panel, const char *text)
{
    CON_Print(" %08x:  %s", dwAddr, text);
    if (*TXT_SkipBlanks(text) != '\0')
        return EnterValue(panel, text, write_addr2);
    EndEntry(CMD_TMS);
    return 0;
}
