#include "comm/mr166_late.h"

#include "comm/mr166_driver.h"
#include "comm/mr166_frame.h"
#include "comm/mr166_link.h"
#include "platform/system.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr uint32_t SETTLE_MAX_MS = 5000; // a user must not wait longer for a ghost
constexpr size_t CHUNK = 256;

int cnMissing = 0;        // answers that may still come
std::vector<char> missed; // the frame they answer
uint32_t firstSentMs = 0; // when it went out first
uint32_t settledMs = 0;   // from then on nothing is expected

bool IsRepetition()
{
    return missed.size() == cbSnd && std::memcmp(missed.data(), Mr166_abySnd, cbSnd) == 0;
}

void ExpectNothingAfter(uint32_t ms)
{
    settledMs = PLT_TickMs() + std::min(ms, SETTLE_MAX_MS);
}

// Whole answers among `count` bytes; the tail of one that was cut does not count.
int CountAnswers(const char *bytes, int count, bool *isInFrame)
{
    int answers = 0;
    for (int i = 0; i < count; ++i) {
        if (bytes[i] == MR166_START_ANSWER)
            *isInFrame = true;
        if (bytes[i] != MR166_END || !*isInFrame)
            continue;
        *isInFrame = false;
        ++answers;
    }
    return answers;
}

} // namespace

void MrLATE_Settle()
{
    if (cnMissing == 0 || IsRepetition())
        return;
    char bytes[CHUNK];
    bool isInFrame = false;
    while (cnMissing > 0) {
        const auto left = static_cast<int32_t>(settledMs - PLT_TickMs());
        if (left <= 0)
            break;
        const int got = MrASC_Driver().readSome(bytes, sizeof bytes, static_cast<unsigned>(left));
        if (got < 0)
            break;
        cnMissing -= CountAnswers(bytes, got, &isInFrame);
    }
    MrASC_Driver().dropQueues();
    MrLATE_Forget();
}

void MrLATE_Sent()
{
    if (cnMissing == 0)
        firstSentMs = PLT_TickMs();
}

void MrLATE_Missed()
{
    ++cnMissing;
    missed.assign(Mr166_abySnd, Mr166_abySnd + cbSnd);
    ExpectNothingAfter(Mr166_nTimeoutMs);
}

// The first answer took this long from the first sending; each other one may take as
// long again, and half of it more because no two are alike.
void MrLATE_Answered()
{
    if (cnMissing == 0)
        return;
    const uint32_t took = PLT_TickMs() - firstSentMs;
    ExpectNothingAfter((took + took / 2) * static_cast<uint32_t>(cnMissing));
}

void MrLATE_Forget()
{
    cnMissing = 0;
}
