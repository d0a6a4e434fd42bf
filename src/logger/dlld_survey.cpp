// Looks at a log in a few reads: words are fetched block by block as they are asked for, and the
// last block is kept, because what is asked for next lies beside it.
#include "logger/dlld.h"

#include <algorithm>

namespace {

constexpr int32_t BLOCK_WORDS = 32; // one request on the wire

struct Looker {
    uint32_t address = 0;
    int32_t words = 0;
    int32_t block = -1; // the one that is in `now`; -1 = none
    uint16_t now[BLOCK_WORDS] = {};
    bool isFailed = false;
};

// The word at `index`; 0 behind the log and once a read has failed.
uint16_t LookAt(Looker *looker, int32_t index)
{
    const int32_t block = index / BLOCK_WORDS;
    if (looker->isFailed || index >= looker->words)
        return 0;
    if (block != looker->block) {
        const int32_t first = block * BLOCK_WORDS;
        const int32_t count = std::min(BLOCK_WORDS, looker->words - first);
        const uint32_t place = looker->address + 2 * static_cast<uint32_t>(first);
        looker->isFailed = DLLD_ReadWords(place, looker->now, count) < 0;
        looker->block = block;
    }
    return looker->isFailed ? uint16_t(0) : looker->now[index % BLOCK_WORDS];
}

// The end of the last word in the block that is not zero, or 0 when all are.
int32_t FindEnd(Looker *looker, int32_t block)
{
    const int32_t first = std::max(block * BLOCK_WORDS, DLLD_HEADER_WORDS);
    for (int32_t i = (block + 1) * BLOCK_WORDS; i > first; i--)
        if (LookAt(looker, i - 1) != 0)
            return i;
    return 0;
}

// The last block in use, by halving: what lies behind it has not been written yet.
int32_t FindFill(Looker *looker)
{
    int32_t used = 0, unused = (looker->words + BLOCK_WORDS - 1) / BLOCK_WORDS;
    while (unused - used > 1) {
        const int32_t middle = used + (unused - used) / 2;
        (FindEnd(looker, middle) > 0 ? used : unused) = middle;
    }
    return std::max(FindEnd(looker, used), DLLD_HEADER_WORDS);
}

uint32_t LookAtStamp(Looker *looker, int32_t start, int32_t end)
{
    // A head that is not whole has no time.
    if (end - start < DLLD_HEAD_WORDS)
        return 0;
    return uint32_t(LookAt(looker, start + 2)) << 16 | LookAt(looker, start + 1);
}

void FindStamps(Looker *looker, DLLD_Survey *survey)
{
    const int32_t end = survey->filledWords;
    int32_t first = DLLD_HEADER_WORDS, last = end;
    while (first < end && LookAt(looker, first) == 0)
        first++;
    int32_t firstEnd = first;
    while (firstEnd < end && LookAt(looker, firstEnd) != 0)
        firstEnd++;
    survey->firstStamp = LookAtStamp(looker, first, firstEnd);
    // The last message ends where the log is filled to: back to the zero in front of it.
    while (last > DLLD_HEADER_WORDS && LookAt(looker, last - 1) != 0)
        last--;
    survey->lastStamp = LookAtStamp(looker, last, end);
}

} // namespace

int DLLD_SurveyLog(const std::string &name, DLLD_Survey *survey)
{
    DLLD_Survey found;
    if (DLLD_FindLog(name, &found.address, &found.words) < 0 ||
        DLLD_ReadWords(found.address, found.header, DLLD_HEADER_WORDS) < 0)
        return -1;
    found.isGood = DLLD_TestLogHeader(found.header, found.address, found.words) == 0;
    Looker looker;
    looker.address = found.address;
    looker.words = found.words;
    if (found.isGood) {
        found.filledWords = FindFill(&looker);
        FindStamps(&looker, &found);
    }
    // Zeros stood in for words that were not read: what was found from them counts for nothing.
    if (looker.isFailed)
        return -1;
    *survey = found;
    return 0;
}
