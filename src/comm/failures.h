// Why exchanges failed: each cause in words with how often and when it last happened.
// It is what an engineer with a bad cable reads first, so it is always on; an exchange
// that is answered never comes here. It knows no protocol: whoever talks on the line
// notes each failed try, the statistics of the unified layer reset it.
#ifndef COMM_FAILURES_H
#define COMM_FAILURES_H

#include "platform/system.h"

#include <cstddef>
#include <cstdint>
#include <string>

constexpr size_t FAIL_CAUSES_MAX = 64; // further causes are counted together
extern const char *const FAIL_OTHER_CAUSES;

// What every protocol on the line may have to say; each stands in the causes by these words.
constexpr char FAIL_NO_ANSWER[] = "no answer";
constexpr char FAIL_CUT[] = "answer damaged (too short)";
constexpr char FAIL_COUNT[] = "answer has another number of bytes than asked for";
constexpr char FAIL_CANCELLED[] = "cancelled"; // the user has broken off
constexpr char FAIL_GONE[] = "port is gone";
constexpr char FAIL_NOT_SENT[] = "request could not be sent";
constexpr char FAIL_NOT_OPEN[] = "port is not open";
constexpr char FAIL_NOT_AVAILABLE[] = "port is not available";
constexpr char FAIL_NO_SETTINGS[] = "port settings could not be read";
constexpr char FAIL_SETTINGS_REFUSED[] = "port settings were refused";
constexpr char FAIL_BAD_PORT[] = "bad port number";
constexpr char FAIL_WRONG_STATION[] = "wrong station in the answer";
constexpr char FAIL_TARGET_ERROR[] = "target error code"; // its number behind it
constexpr char FAIL_ECHO[] = "The line echoes what is sent: switch Win32 services off.";
constexpr char FAIL_NO_PROOF[] = "no answer to the proof that the line is in step";
// Behind the result in the trace.
constexpr char FAIL_ECHO_SEEN[] = " (echo of the request seen)";

struct FAIL_Cause {
    std::string text;
    uint32_t count = 0; // stops at the maximum
    PLT_Date last;      // local time
};

void FAIL_Note(const std::string &cause);
void FAIL_Reset();
size_t FAIL_Count();                       // causes seen since the reset
const FAIL_Cause *FAIL_Get(size_t index);  // in order of appearance; null beyond the last
const FAIL_Cause *FAIL_Last();             // the latest; null when nothing has failed
uint32_t FAIL_CountOf(const char *needle); // failures whose cause contains the text

#endif
