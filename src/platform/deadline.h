// Waits that are bounded as a whole, however many calls they take: a deadline by the steady
// clock, and what is left until then. For the ports of this room.
#ifndef PLATFORM_DEADLINE_H
#define PLATFORM_DEADLINE_H

#include "platform/system.h"

#include <algorithm>
#include <climits>

inline uint64_t PLT_DeadlineUs(unsigned totalMs)
{
    return PLT_TickUs() + uint64_t{totalMs} * 1000u;
}

// Milliseconds, at most INT_MAX; rounded up so that a wait never ends before its time.
inline int PLT_LeftMs(uint64_t deadlineUs)
{
    const uint64_t now = PLT_TickUs();
    const uint64_t left = deadlineUs > now ? (deadlineUs - now + 999u) / 1000u : 0;
    return static_cast<int>(std::min<uint64_t>(left, INT_MAX));
}

#endif
