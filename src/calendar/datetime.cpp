// Counting days and seconds, and summer time, on the proleptic rules of the last Sundays.
#include "calendar/datetime.h"

namespace {

constexpr int32_t YEAR_FIRST = 1949, YEAR_LAST = 9999;
constexpr int32_t EPOCH_YEAR = 2000;
constexpr int32_t SECONDS_YEAR_LAST = 2135; // the last whole year that 32 bits of seconds hold
constexpr uint32_t DAY_S = 86400, HOUR_S = 3600, MINUTE_S = 60;
constexpr int32_t MARCH = 3, OCTOBER = 10, DECEMBER = 12;

// By the month's number; February as in a leap year.
const int32_t MONTH_DAYS[] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int32_t CountMonthDays(int32_t year, int32_t month)
{
    return month == 2 && !IsLeapDay(year) ? 28 : MONTH_DAYS[month];
}

uint32_t CountYearDays(int32_t year)
{
    return IsLeapDay(year) ? 366 : 365;
}

bool IsWithin(int32_t value, int32_t low, int32_t high)
{
    return value >= low && value <= high;
}

// The last Sunday of a month of 31 days, at a full hour.
DateTime GetLastSunday(int32_t year, int32_t month, int32_t hour)
{
    DateTime sunday = {year, month, 31, hour, 0, 0, DTTM_DECODED};
    // Monday is 1 and Sunday 7: the 31st goes back by as many days as it stands behind a Sunday.
    sunday.day -= DayOfWeek2000(&sunday) % 7;
    return sunday;
}

// `octoberHour`: when summer time ends, on the clock of the record.
bool IsSummerTime(const DateTime &dateTime, int32_t octoberHour)
{
    if (dateTime.month == MARCH) {
        const DateTime begin = GetLastSunday(dateTime.year, MARCH, 2);
        return DtTmCmp(&dateTime, &begin) >= 0;
    }
    if (dateTime.month == OCTOBER) {
        const DateTime end = GetLastSunday(dateTime.year, OCTOBER, octoberHour);
        return DtTmCmp(&dateTime, &end) < 0;
    }
    return IsWithin(dateTime.month, MARCH + 1, OCTOBER - 1);
}

// Moves a record of summer time, which never touches the year's ends, by an hour.
int MoveSeconds(DateTime *dateTime, int32_t seconds)
{
    const uint32_t now = WrkCET2000(dateTime);
    if (now == 0)
        return -1;
    return InvWrkCET2000(now + static_cast<uint32_t>(seconds), dateTime);
}

} // namespace

int IsLeapDay(int32_t year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 1 : 0;
}

int IsDtTmOk(const DateTime *dateTime)
{
    if (!IsWithin(dateTime->year, YEAR_FIRST, YEAR_LAST) || !IsWithin(dateTime->month, 1, 12))
        return 0;
    const bool isDate = IsWithin(dateTime->day, 1, CountMonthDays(dateTime->year, dateTime->month));
    const bool isTime = IsWithin(dateTime->hour, 0, 23) && IsWithin(dateTime->minute, 0, 59) &&
                        IsWithin(dateTime->second, 0, 59);
    return isDate && isTime && dateTime->kind != DTTM_EMPTY ? 1 : 0;
}

int32_t CntDays2000(const DateTime *dateTime)
{
    if (!IsDtTmOk(dateTime) || dateTime->year < EPOCH_YEAR)
        return -1;
    // Leap years before this one: of 4, of 100 and of 400 years, counted from 2000 on.
    const int32_t years = dateTime->year - EPOCH_YEAR;
    int32_t days = 365 * years + (years + 3) / 4 - (years + 99) / 100 + (years + 399) / 400;
    for (int32_t month = 1; month < dateTime->month; month++)
        days += CountMonthDays(dateTime->year, month);
    return days + dateTime->day - 1;
}

int32_t DayOfWeek2000(const DateTime *dateTime)
{
    const int32_t days = CntDays2000(dateTime);
    return days < 0 ? -1 : (days + 5) % 7 + 1; // 1 January 2000 was a Saturday
}

// Midnight of 1 January 2000 is second 0 and cannot be told from a record that is no time.
uint32_t WrkCET2000(const DateTime *dateTime)
{
    const int32_t days = CntDays2000(dateTime);
    if (days < 0 || dateTime->year > SECONDS_YEAR_LAST)
        return 0;
    return DAY_S * static_cast<uint32_t>(days) + HOUR_S * static_cast<uint32_t>(dateTime->hour) +
           MINUTE_S * static_cast<uint32_t>(dateTime->minute) +
           static_cast<uint32_t>(dateTime->second);
}

int InvWrkCET2000(uint32_t seconds, DateTime *dateTime)
{
    if (seconds == 0) // what WrkCET2000 answers to a record that is none
        return -1;
    DateTime found = {EPOCH_YEAR, 1, 1, 0, 0, 0, DTTM_DECODED};
    // At most 136 rounds: 32 bits of seconds end in 2136.
    for (; seconds >= DAY_S * CountYearDays(found.year); found.year++)
        seconds -= DAY_S * CountYearDays(found.year);
    for (; found.month < DECEMBER; found.month++) {
        const auto days = static_cast<uint32_t>(CountMonthDays(found.year, found.month));
        if (seconds < DAY_S * days)
            break;
        seconds -= DAY_S * days;
    }
    // Whole years and months are off: what is left lies within the month.
    found.day += static_cast<int32_t>(seconds / DAY_S);
    seconds %= DAY_S;
    found.hour = static_cast<int32_t>(seconds / HOUR_S);
    found.minute = static_cast<int32_t>(seconds % HOUR_S / MINUTE_S);
    found.second = static_cast<int32_t>(seconds % MINUTE_S);
    *dateTime = found;
    return 0;
}

int DtTmCmp(const DateTime *a, const DateTime *b)
{
    // The kind is not looked at: both passes of the hour in which summer time ends are equal.
    const int32_t pairs[][2] = {{a->year, b->year}, {a->month, b->month},   {a->day, b->day},
                                {a->hour, b->hour}, {a->minute, b->minute}, {a->second, b->second}};
    for (const auto &pair : pairs)
        if (pair[0] != pair[1])
            return pair[0] < pair[1] ? -1 : 1;
    return 0;
}

int StdTm2SezTm(DateTime *dateTime)
{
    if (!IsDtTmOk(dateTime))
        return -1;
    // On the clock of standard time, which shows 2 when that of summer time shows 3.
    const bool isSummer = IsSummerTime(*dateTime, 2);
    if (isSummer && MoveSeconds(dateTime, HOUR_S) < 0)
        return -1;
    dateTime->kind = isSummer ? DTTM_SUMMER : DTTM_EMPTY;
    return 0;
}

int SezTm2StdTm(DateTime *dateTime)
{
    DateTime record = *dateTime;
    record.kind = DTTM_DECODED; // a record of kind DTTM_EMPTY is welcome here
    if (!IsDtTmOk(&record))
        return -1;
    const bool isSummer = IsSummerTime(record, 3);
    // Standard time ends at 2 where summer time ends at 3: the hour between exists twice.
    const bool isTwice = isSummer && !IsSummerTime(record, 2);
    if (isTwice) {
        dateTime->kind = dateTime->kind == DTTM_EMPTY ? DTTM_DECODED : DTTM_SUMMER;
        return 0;
    }
    if (isSummer && MoveSeconds(&record, -static_cast<int32_t>(HOUR_S)) < 0)
        return -1;
    *dateTime = record;
    return 0;
}
