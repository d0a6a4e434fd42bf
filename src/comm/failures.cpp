// The table of causes: short, so a search from its front is quicker than anything clever.
#include "comm/failures.h"

#include <algorithm>
#include <vector>

const char *const FAIL_OTHER_CAUSES = "other causes";

namespace {

// In the order in which they came first, which the statistics window keeps.
std::vector<FAIL_Cause> causes;
size_t latest = 0; // the place of the last failure

} // namespace

void FAIL_Note(const std::string &cause)
{
    const auto isSame = [&cause](const FAIL_Cause &known) { return known.text == cause; };
    const auto found = std::find_if(causes.begin(), causes.end(), isSame);
    latest = static_cast<size_t>(std::distance(causes.begin(), found));
    if (latest == FAIL_CAUSES_MAX) {
        // The last place counts whatever found no place of its own.
        latest = FAIL_CAUSES_MAX - 1;
    } else if (latest == causes.size()) {
        FAIL_Cause added;
        added.text = latest == FAIL_CAUSES_MAX - 1 ? FAIL_OTHER_CAUSES : cause;
        causes.push_back(added);
    }
    FAIL_Cause &place = causes[latest];
    // A count that came round to 0 would hide a line that fails all the time.
    if (place.count != UINT32_MAX)
        ++place.count;
    PLT_LocalTime(&place.last);
}

void FAIL_Reset()
{
    // `latest` may point behind the end now: FAIL_Get answers null for that.
    causes.clear();
}

size_t FAIL_Count()
{
    return causes.size();
}

const FAIL_Cause *FAIL_Get(size_t index)
{
    return index < causes.size() ? &causes[index] : nullptr;
}

const FAIL_Cause *FAIL_Last()
{
    return FAIL_Get(latest);
}

uint32_t FAIL_CountOf(const char *needle)
{
    uint32_t sum = 0;
    for (const FAIL_Cause &cause : causes) {
        if (cause.text.find(needle) != std::string::npos)
            sum += cause.count;
    }
    return sum;
}
