// The two text forms of a date-time record, and the clock's own.
#include "calendar/datetime.h"

#include "platform/system.h"
#include "text/xscan.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr size_t TEXT_SIZE = 80; // room for any seven numbers of 32 bits
constexpr size_t CTIME_CHARS = 25, CTIME_STAMP_AT = 4, CTIME_STAMP_CHARS = 20;

const char *const MONTH_NAMES[] = {"",    "JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                   "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

// One step of a text form: a pattern, and the field that its digits fill, if any.
struct Step {
    const char *pattern;
    int32_t DateTime::*field;
};

const Step TM19_STEPS[] = {
    {"* ", nullptr},  {"@@4#0-9.", &DateTime::year},
    {"M", nullptr},   {"@@2#0-9.", &DateTime::month},
    {"D", nullptr},   {"@@2#0-9.", &DateTime::day},
    {"-", nullptr},   {"@@2#0-9.", &DateTime::hour},
    {"_", nullptr},   {"@@2#0-9.", &DateTime::minute},
    {"_", nullptr},   {"@@2#0-9.", &DateTime::second},
    {"* #", nullptr},
};
// Behind the month's name.
const Step STAMP_STEPS[] = {
    {" ", nullptr},   {"*@2#0-9.", &DateTime::day},
    {" ", nullptr},   {"*@2#0-9.", &DateTime::hour},
    {":", nullptr},   {"@@2#0-9.", &DateTime::minute},
    {":", nullptr},   {"@@2#0-9.", &DateTime::second},
    {" ", nullptr},   {"@@4#0-9.", &DateTime::year},
    {"* #", nullptr},
};

template <size_t N> bool ReadSteps(const char *text, const Step (&steps)[N], DateTime *dateTime)
{
    for (const Step &step : steps) {
        const char *start = text;
        if (xscani(step.pattern, &text) < 0)
            return false;
        if (step.field != nullptr)
            dateTime->*step.field = std::atoi(start);
    }
    return true;
}

// The caller's record changes only when all of the text was a real time.
int Accept(const DateTime &read, DateTime *dateTime)
{
    if (!IsDtTmOk(&read))
        return -1;
    *dateTime = read;
    return 0;
}

} // namespace

int DtTm2TmStamp(const DateTime *dateTime, std::string *text)
{
    text->clear();
    if (!IsDtTmOk(dateTime))
        return -1;
    char buffer[TEXT_SIZE];
    std::snprintf(buffer, sizeof buffer, "%s %02d %02d:%02d:%02d %04d",
                  MONTH_NAMES[dateTime->month], dateTime->day, dateTime->hour, dateTime->minute,
                  dateTime->second, dateTime->year);
    *text = buffer;
    return 0;
}

// 19 characters that sort by time and may stand in a file name.
int DtTm2Tm19(const DateTime *dateTime, std::string *text)
{
    text->clear();
    if (!IsDtTmOk(dateTime))
        return -1;
    char buffer[TEXT_SIZE];
    std::snprintf(buffer, sizeof buffer, "%04dm%02dd%02d-%02d_%02d_%02d", dateTime->year,
                  dateTime->month, dateTime->day, dateTime->hour, dateTime->minute,
                  dateTime->second);
    *text = buffer;
    return 0;
}

int MakeTmStamp(std::string *text)
{
    const std::time_t now = std::time(nullptr);
    const char *whole = std::ctime(&now); // "Sun Mar  1 10:20:30 2015\n", in English everywhere
    // A year of five digits has another length, and no stamp.
    if (whole == nullptr || std::strlen(whole) != CTIME_CHARS)
        return -1;
    text->assign(whole + CTIME_STAMP_AT, CTIME_STAMP_CHARS);
    return 0;
}

std::string IsoDateText(const PLT_Date &date, char between)
{
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d%c%02d:%02d:%02d", date.year, date.month,
                  date.day, between, date.hour, date.minute, date.second);
    return text;
}

int TmStamp2DtTm(const char *text, DateTime *dateTime)
{
    char name[4];
    char *output = name;
    // Blanks in front and the case of the month are free.
    xscan("* ", &text);
    if (xscaniu("@@3#A-Z.", &text, &output) < 0)
        return -1;
    DateTime read;
    // A name of no month leaves 0, which no date has.
    for (int32_t month = 1; month <= 12; month++)
        if (std::strcmp(name, MONTH_NAMES[month]) == 0)
            read.month = month;
    read.kind = DTTM_DECODED;
    return ReadSteps(text, STAMP_STEPS, &read) ? Accept(read, dateTime) : -1;
}

int Tm19_2DtTm(const char *text, DateTime *dateTime)
{
    DateTime read;
    read.kind = DTTM_DECODED;
    return ReadSteps(text, TM19_STEPS, &read) ? Accept(read, dateTime) : -1;
}
