// The date-time record against second opinions: the C library's calendar for every day that
// the seconds can count, the system's time zone data for summer time.
#include "calendar/datetime.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr time_t DAY_S = 86400, HOUR_S = 3600;
constexpr time_t EPOCH_2000 = 946684800; // 1 January 2000 as time() counts

DateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
            int kind = DTTM_DECODED)
{
    return {year, month, day, hour, minute, second, kind};
}

DateTime FromTm(const tm &t)
{
    return At(t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
}

std::string Text(const DateTime &d)
{
    char buffer[96];
    snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d/%d", d.year, d.month, d.day,
             d.hour, d.minute, d.second, d.kind);
    return buffer;
}

} // namespace

TEST(Calendar, CountsAsTheLibraryDoes)
{
    int days = 0;
    for (time_t at = EPOCH_2000;; at += DAY_S, days++) {
        tm t;
        gmtime_r(&at, &t);
        if (t.tm_year + 1900 == 2136)
            break;
        const DateTime midnight = FromTm(t);
        ASSERT_EQ(CntDays2000(&midnight), days) << Text(midnight);
        ASSERT_EQ(DayOfWeek2000(&midnight) % 7, t.tm_wday) << Text(midnight);
        // Midnight, the second before the next, and one that moves through the day.
        for (const time_t second : {time_t(0), DAY_S - 1, time_t(days) * 7919 % DAY_S}) {
            const time_t moment = at + second;
            gmtime_r(&moment, &t);
            const DateTime d = FromTm(t);
            const auto count = static_cast<uint32_t>(moment - EPOCH_2000);
            ASSERT_EQ(WrkCET2000(&d), count) << Text(d);
            DateTime back;
            ASSERT_EQ(InvWrkCET2000(count, &back), count == 0 ? -1 : 0);
            if (count != 0) {
                ASSERT_EQ(Text(back), Text(d));
            }
        }
    }
    EXPECT_EQ(days, 49673);
}

TEST(Calendar, RefusesWhatIsNoDate)
{
    const DateTime bad[] = {
        At(1948, 12, 31),      At(10000, 1, 1),          At(2020, 0, 1),
        At(2020, 13, 1),       At(2020, 4, 31),          At(2100, 2, 29),
        At(2020, 1, 0),        At(2020, 1, 1, 24),       At(2020, 1, 1, -1),
        At(2020, 1, 1, 0, 60), At(2020, 1, 1, 0, 0, 60), At(2020, 1, 1, 0, 0, 0, DTTM_EMPTY)};
    for (DateTime d : bad) {
        std::string text = "old";
        EXPECT_EQ(IsDtTmOk(&d), 0) << Text(d);
        EXPECT_EQ(CntDays2000(&d) + DayOfWeek2000(&d), -2) << Text(d);
        EXPECT_EQ(WrkCET2000(&d), 0u) << Text(d);
        EXPECT_EQ(DtTm2Tm19(&d, &text) + StdTm2SezTm(&d), -2) << Text(d);
        EXPECT_EQ(text, "");
    }
    // Dates that are real, but before or behind what can be counted.
    const DateTime early = At(1999, 12, 31), late = At(2136, 1, 1);
    EXPECT_EQ(IsDtTmOk(&early) + IsDtTmOk(&late), 2);
    EXPECT_EQ(CntDays2000(&early), -1);
    EXPECT_EQ(CntDays2000(&late), 49673);
    EXPECT_EQ(WrkCET2000(&early) + WrkCET2000(&late), 0u);
}

TEST(Calendar, SummerTimeIsThatOfTheZoneData)
{
    setenv("TZ", "Europe/Prague", 1);
    tzset();
    int summerHours = 0;
    for (time_t at = EPOCH_2000; at < EPOCH_2000 + 38 * 366 * DAY_S; at += HOUR_S) {
        tm standard, local;
        const time_t shifted = at + HOUR_S; // standard time is an hour before UTC
        gmtime_r(&shifted, &standard);
        localtime_r(&at, &local);
        if (standard.tm_year + 1900 > 2037)
            break;
        DateTime d = FromTm(standard);
        const std::string before = Text(d);
        ASSERT_EQ(StdTm2SezTm(&d), 0) << before;
        DateTime wanted = FromTm(local);
        wanted.kind = local.tm_isdst > 0 ? DTTM_SUMMER : DTTM_EMPTY;
        ASSERT_EQ(Text(d), Text(wanted)) << before;
        summerHours += local.tm_isdst > 0;
        // And back, except in the first of the two equal hours, which stays.
        ASSERT_EQ(SezTm2StdTm(&d), 0) << before;
        const time_t hourOn = at + HOUR_S;
        tm next;
        localtime_r(&hourOn, &next);
        const bool isTwice = local.tm_isdst > 0 && next.tm_isdst == 0;
        ASSERT_EQ(Text(d), isTwice ? Text(wanted) : before);
    }
    unsetenv("TZ");
    tzset();
    EXPECT_GT(summerHours, 38 * 200 * 24); // the system has the zone
}

TEST(Calendar, TheHourThatComesTwiceIsKnownOnlyByItsKind)
{
    for (const int kind : {DTTM_DECODED, DTTM_SUMMER, DTTM_EMPTY}) {
        DateTime d = At(2014, 10, 26, 2, 30, 0, kind);
        EXPECT_EQ(SezTm2StdTm(&d), 0);
        EXPECT_EQ(d.kind, kind == DTTM_EMPTY ? DTTM_DECODED : DTTM_SUMMER);
    }
    DateTime beyond = At(2136, 7, 1), wrong = At(2014, 2, 30);
    EXPECT_EQ(StdTm2SezTm(&beyond), -1); // its seconds cannot be counted
    EXPECT_EQ(SezTm2StdTm(&wrong), -1);
}

TEST(Calendar, TextsAndTheirReaders)
{
    const DateTime d = At(2015, 3, 1, 10, 20, 30);
    std::string stamp, tm19, now;
    ASSERT_EQ(DtTm2TmStamp(&d, &stamp), 0);
    ASSERT_EQ(DtTm2Tm19(&d, &tm19), 0);
    EXPECT_EQ(stamp, "MAR 01 10:20:30 2015");
    EXPECT_EQ(tm19, "2015m03d01-10_20_30");
    const char *const stamps[] = {"MAR 01 10:20:30 2015", "  mar  1 10:20:30  2015 "};
    const char *const tm19s[] = {"2015m03d01-10_20_30", " 2015M03D01-10_20_30 "};
    for (int i = 0; i < 2; i++) {
        DateTime a, b;
        EXPECT_EQ(TmStamp2DtTm(stamps[i], &a), 0) << stamps[i];
        EXPECT_EQ(Tm19_2DtTm(tm19s[i], &b), 0) << tm19s[i];
        EXPECT_EQ(Text(a), Text(d));
        EXPECT_EQ(Text(b), Text(d));
    }
    for (const char *bad :
         {"", "MAR", "MAX 01 10:20:30 2015", "MAR 01 10:20:30 15", "MAR 01 10:20 2015",
          "FEB 29 10:20:30 2015", "MAR 01 10:20:30 2015 x", "2015m03d01-10_20_3",
          "2015m02d29-10_20_30", "2015m03d01 10_20_30", "2015m03d01-10_20_300"}) {
        DateTime kept = At(2001, 2, 3);
        EXPECT_EQ(TmStamp2DtTm(bad, &kept), -1) << bad;
        EXPECT_EQ(Tm19_2DtTm(bad, &kept), -1) << bad;
        EXPECT_EQ(Text(kept), Text(At(2001, 2, 3)));
    }
    ASSERT_EQ(MakeTmStamp(&now), 0);
    EXPECT_EQ(now.size(), 20u);
    DateTime read;
    EXPECT_EQ(TmStamp2DtTm(now.c_str(), &read), 0) << now;
}

TEST(Calendar, ComparesFromYearToSecond)
{
    for (const uint32_t step : {1u, 60u, 3600u, 86400u, 40 * 86400u, 400 * 86400u}) {
        DateTime a, b; // b has smaller parts below the one that decides
        InvWrkCET2000(step * 1000 - 1, &a);
        InvWrkCET2000(step * 1001, &b);
        EXPECT_EQ(DtTmCmp(&a, &b), -1) << step;
        EXPECT_EQ(DtTmCmp(&b, &a), 1) << step;
        a.kind = DTTM_SUMMER;
        const DateTime same = At(a.year, a.month, a.day, a.hour, a.minute, a.second);
        EXPECT_EQ(DtTmCmp(&a, &same), 0);
    }
}
