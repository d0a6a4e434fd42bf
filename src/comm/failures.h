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
