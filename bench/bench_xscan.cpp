// The pattern scanner against PCRE2 on the patterns that the parsers use: nanoseconds a
// call on a text that matches and on one that does not, and how many times longer PCRE2
// takes. Ends with 1 when its interpreter was faster anywhere; its JIT is for information.
#include "../tests/support/scan_patterns.h"
#include "text/xscan.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

constexpr int CALLS = 2000;
constexpr int ROUNDS = 60; // in turns, the best one counts: the machine is not ours alone

constexpr double UNTIMED = 1e30;

// Nanoseconds a call.
struct Times {
    double scan = UNTIMED;
    double interpreter = UNTIMED;
    double jit = UNTIMED;
};

// Results are gathered here so that no call can be left out.
volatile long sink;

template <typename Call> void TimeOf(Call call, double *best)
{
    long sum = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < CALLS; i++)
        sum += call();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    sink = sink + sum;
    *best = std::min(*best, taken.count() / CALLS);
}

pcre2_code *CompilePattern(const ScanPattern &pattern, bool jit)
{
    int error;
    PCRE2_SIZE offset;
    const uint32_t options =
        PCRE2_ANCHORED | PCRE2_DOTALL | ((pattern.flags & XSCAN_NOCASE) != 0 ? PCRE2_CASELESS : 0);
    pcre2_code *code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.perl),
                                     PCRE2_ZERO_TERMINATED, options, &error, &offset, nullptr);
    if (code != nullptr && jit)
        pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
    return code;
}

Times TimeAll(const ScanPattern &pattern, const char *text)
{
    pcre2_code *plain = CompilePattern(pattern, false);
    pcre2_code *compiled = CompilePattern(pattern, true);
    pcre2_match_data *data = pcre2_match_data_create_from_pattern(plain, nullptr);
    const PCRE2_SPTR subject = reinterpret_cast<PCRE2_SPTR>(text);
    const size_t length = std::strlen(text);
    const auto scan = [&] {
        const char *cursor = text;
        return xscan1(pattern.pattern, &cursor, nullptr, pattern.flags);
    };
    Times times;
    for (int round = 0; round < ROUNDS; round++) {
        TimeOf(scan, &times.scan);
        TimeOf([&] { return pcre2_match(plain, subject, length, 0, 0, data, nullptr); },
               &times.interpreter);
        TimeOf([&] { return pcre2_jit_match(compiled, subject, length, 0, 0, data, nullptr); },
               &times.jit);
    }
    pcre2_match_data_free(data);
    pcre2_code_free(compiled);
    pcre2_code_free(plain);
    return times;
}

void PrintRow(const char *text)
{
    for (; *text != '\0'; ++text) {
        if (*text == '\r' || *text == '\n')
            std::printf("\\%c", *text == '\r' ? 'r' : 'n');
        else
            std::putchar(*text);
    }
    std::putchar('\n');
}

} // namespace

int main()
{
    int slower = 0;
    double worst = UNTIMED, worstJit = UNTIMED;
    std::printf("%5s %8s %8s %8s %7s %7s  pattern\n", "text", "xscan", "pcre2", "jit", "x pcre2",
                "x jit");
    for (const ScanPattern &pattern : SCAN_PATTERNS) {
        for (const char *text : {pattern.match, pattern.noMatch}) {
            const Times times = TimeAll(pattern, text);
            const double ratio = times.interpreter / times.scan;
            const double ratioJit = times.jit / times.scan;
            std::printf("%5s %6.1fns %6.1fns %6.1fns %7.2f %7.2f  ",
                        text == pattern.match ? "match" : "none", times.scan, times.interpreter,
                        times.jit, ratio, ratioJit);
            PrintRow(pattern.pattern);
            slower += ratio < 1.0 ? 1 : 0;
            worst = std::min(worst, ratio);
            worstJit = std::min(worstJit, ratioJit);
        }
    }
    std::printf("smallest ratio to pcre2 %.2f, to its JIT %.2f; slower than pcre2 on %d texts\n",
                worst, worstJit, slower);
    return slower == 0 ? 0 : 1;
}
