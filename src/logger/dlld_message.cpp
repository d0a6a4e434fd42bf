// Nothing here trusts a log: a length is counted in the buffer, and what lies behind it reads 0.
#include "logger/dlld_message.h"

namespace {

// A unit of a stamp is two seconds.
constexpr uint32_t UNITS_AN_HOUR = 1800, UNITS_A_MINUTE = 30;
// The target counts months of 31 days: no stamp needs a calendar there.
constexpr uint32_t HOURS_A_DAY = 24, HOURS_A_MONTH = 31 * HOURS_A_DAY;
constexpr int32_t STAMP_YEAR = 2000, STAMP_YEARS = 256;

// Callers hand in what a target or a file has said of itself.
bool IsPlace(const uint16_t *buffer, int32_t words, int32_t index)
{
    return buffer != nullptr && words >= 0 && words <= DLLD_WORDS_MAX && index >= 0 &&
           index < words;
}

// Formatting by hand: a listing holds tens of thousands of stamps.
char *PutTwoDigits(char *at, int32_t value)
{
    *at++ = static_cast<char>('0' + value / 10 % 10);
    *at++ = static_cast<char>('0' + value % 10);
    return at;
}

} // namespace

int32_t DLLD_MsgStartNdx(const uint16_t *buffer, int32_t words, int32_t index)
{
    if (!IsPlace(buffer, words, index))
        return -1;
    // Zeros part messages; a zero inside one is written as its z.
    while (index < words && buffer[index] == 0)
        index++;
    return index < words ? index : -1;
}

int32_t DLLD_MsgWLen(const uint16_t *buffer, int32_t words, int32_t start)
{
    if (!IsPlace(buffer, words, start))
        return 0;
    int32_t end = start;
    while (end < words && buffer[end] != 0)
        end++;
    return end - start;
}

uint16_t DLLD_GetZR_W(uint16_t word, uint8_t z)
{
    return word == z ? 0 : word;
}

uint32_t DLLD_GetZR_DW(uint16_t high, uint16_t low, uint8_t z)
{
    return static_cast<uint32_t>(DLLD_GetZR_W(high, z)) << 16 | DLLD_GetZR_W(low, z);
}

int CvtAMCBIOS_time(uint32_t stamp, DateTime *dateTime)
{
    // The year in the highest byte, the units since its begin below.
    const uint32_t units = stamp & 0xFFFFFF;
    const uint32_t hours = units / UNITS_AN_HOUR, rest = units % UNITS_AN_HOUR;
    dateTime->year = static_cast<int32_t>(stamp >> 24) + STAMP_YEAR;
    dateTime->month = static_cast<int32_t>(hours / HOURS_A_MONTH + 1);
    dateTime->day = static_cast<int32_t>(hours % HOURS_A_MONTH / HOURS_A_DAY + 1);
    dateTime->hour = static_cast<int32_t>(hours % HOURS_A_DAY);
    dateTime->minute = static_cast<int32_t>(rest / UNITS_A_MINUTE);
    dateTime->second = static_cast<int32_t>(rest % UNITS_A_MINUTE * 2);
    dateTime->kind = DTTM_DECODED;
    return 1;
}

uint32_t DLLD_MakeStamp(const DateTime &dateTime)
{
    const int32_t years = dateTime.year - STAMP_YEAR;
    // A stamp of 0 is before all others: a search finds the first message.
    if (years < 0 || years >= STAMP_YEARS)
        return 0;
    const int32_t days = 31 * (dateTime.month - 1) + dateTime.day - 1;
    const int32_t minutes = (24 * days + dateTime.hour) * 60 + dateTime.minute;
    // Half a unit is lost: the target counts in steps of two seconds.
    return static_cast<uint32_t>(years) << 24 |
           static_cast<uint32_t>(30 * minutes + dateTime.second / 2);
}

void DLLD_AppendTime(const DateTime &dateTime, std::string *text)
{
    char buffer[19]; // "2015-03-01 10:20:30" without an end
    char *at = PutTwoDigits(buffer, dateTime.year / 100);
    at = PutTwoDigits(at, dateTime.year);
    const int32_t parts[] = {dateTime.month, dateTime.day, dateTime.hour, dateTime.minute,
                             dateTime.second};
    const char *mark = "-- ::";
    for (const int32_t part : parts) {
        *at++ = *mark++;
        at = PutTwoDigits(at, part);
    }
    text->append(buffer, sizeof buffer);
}

uint8_t DLLD_GetType(const DLLD_Msg &msg)
{
    return static_cast<uint8_t>(msg.words[0] & 0xFF);
}

uint8_t DLLD_GetZ(const DLLD_Msg &msg)
{
    return static_cast<uint8_t>(msg.words[0] >> 8);
}

uint32_t DLLD_GetStamp(const DLLD_Msg &msg)
{
    if (msg.length < DLLD_HEAD_WORDS)
        return 0;
    return static_cast<uint32_t>(msg.words[2]) << 16 | msg.words[1];
}

uint16_t DLLD_GetWord(const DLLD_Msg &msg, int32_t index)
{
    if (index >= msg.length)
        return 0;
    // The head has no replaced zeros: it says which word stands for one.
    return index < DLLD_HEAD_WORDS ? msg.words[index]
                                   : DLLD_GetZR_W(msg.words[index], DLLD_GetZ(msg));
}

uint32_t DLLD_GetDWord(const DLLD_Msg &msg, int32_t index)
{
    return static_cast<uint32_t>(DLLD_GetWord(msg, index + 1)) << 16 | DLLD_GetWord(msg, index);
}

bool DLLD_NextMsg(const DLLD_Log &log, int32_t *index, DLLD_Msg *msg)
{
    const auto words = static_cast<int32_t>(log.size());
    const int32_t start = DLLD_MsgStartNdx(log.data(), words, *index);
    // -1 as well: no message is left.
    if (start < DLLD_HEADER_WORDS)
        return false;
    msg->words = log.data() + start;
    msg->length = DLLD_MsgWLen(log.data(), words, start);
    *index = start + msg->length;
    return true;
}
