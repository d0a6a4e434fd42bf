// The program's one date-time record and the ways in and out of it: days and seconds since
// the year 2000, text forms for listings and file names, Central European summer time. Pure
// calculation, except that MakeTmStamp asks the clock. Anybody may call.
#ifndef CALENDAR_DATETIME_H
#define CALENDAR_DATETIME_H

#include <cstdint>
#include <string>

enum {
    DTTM_EMPTY = 0,   // not filled; also what StdTm2SezTm leaves outside summer time
    DTTM_SUMMER = 1,  // summer time
    DTTM_DECODED = 3, // filled by a decoder or reader
};

struct PLT_Date; // platform/system.h

struct DateTime {
    int32_t year = 0;
    int32_t month = 0; // 1 = January
    int32_t day = 0;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
    int32_t kind = DTTM_EMPTY;
};

int IsLeapDay(int32_t year);            // 1 for a leap year, else 0
int IsDtTmOk(const DateTime *dateTime); // 1: years 1949 to 9999, a real date, kind not 0
// Days since 1 January 2000, or -1 for an invalid record or an earlier year.
int32_t CntDays2000(const DateTime *dateTime);
// Monday = 1 ... Sunday = 7, or -1 as above.
int32_t DayOfWeek2000(const DateTime *dateTime);

// Seconds since 1 January 2000 00:00:00; 0 also for an invalid record or a year outside
// 2000 to 2135.
uint32_t WrkCET2000(const DateTime *dateTime);
// The way back, kind DTTM_DECODED. 0, or -1 for 0 seconds.
int InvWrkCET2000(uint32_t seconds, DateTime *dateTime);

// -1, 0 or 1: a is earlier than, equal to or later than b. The kind is not compared.
int DtTmCmp(const DateTime *a, const DateTime *b);

// Texts. Each answers 0, or -1: to a record that is invalid (the text is then empty), to a
// text that is none of its kind or no real time (the record is then as it was).
int DtTm2TmStamp(const DateTime *dateTime, std::string *text); // "MAR 01 10:20:30 2015"
int DtTm2Tm19(const DateTime *dateTime, std::string *text);    // "2015m03d01-10_20_30"
// The local time now, as "Mar  1 10:20:30 2015".
int MakeTmStamp(std::string *text);
// "2015-03-01 10:20:30"; some forms want a T in the middle.
std::string IsoDateText(const PLT_Date &date, char between = ' ');
// The readers accept either case, blanks around the text and, in a time stamp, several
// blanks between its parts and a day or hour of one digit: what MakeTmStamp writes, too.
int TmStamp2DtTm(const char *text, DateTime *dateTime);
int Tm19_2DtTm(const char *text, DateTime *dateTime);

// Central European time to summer time and back: from the last Sunday of March, 02:00
// standard time, to the last Sunday of October, 02:00 standard time. 0, or -1: the record is
// invalid, or lies outside the years of WrkCET2000.
//
// To summer time: the kind becomes DTTM_SUMMER where the hour was added, else DTTM_EMPTY.
int StdTm2SezTm(DateTime *dateTime);
// Back: a record of any kind is taken, also the DTTM_EMPTY that StdTm2SezTm leaves, and
// becomes DTTM_DECODED. The hour from 02:00 to 03:00 that exists twice at the end of October
// is left as it is: a record of kind DTTM_EMPTY is known to be standard time already, any
// other is marked DTTM_SUMMER, summer time until it is known better.
int SezTm2StdTm(DateTime *dateTime);

#endif
