// Two logs side by side: both are put into one order and walked in step. The buffers' own order
// would not do: the same message stands elsewhere in each.
#include "logger/log_view.h"

#include <algorithm>

namespace {

struct Side {
    const LOGV_Log *log;
    std::vector<uint32_t> order; // of the rows: time, type, content
};

// Negative, 0 or positive as message a comes before, is the same as or comes after b.
int CompareMessages(const LOGV_Log &logA, uint32_t a, const LOGV_Log &logB, uint32_t b)
{
    const LOGV_Row &rowA = logA.rows[a], &rowB = logB.rows[b];
    if (rowA.stamp != rowB.stamp)
        return rowA.stamp < rowB.stamp ? -1 : 1;
    if (rowA.type != rowB.type)
        return rowA.type < rowB.type ? -1 : 1;
    const DLLD_Msg msgA = LOGV_GetMsg(logA, rowA), msgB = LOGV_GetMsg(logB, rowB);
    // The first word holds the replacement value, which is no part of the message.
    for (int32_t i = 1; i < msgA.length && i < msgB.length; i++) {
        const uint16_t wordA = DLLD_GetWord(msgA, i), wordB = DLLD_GetWord(msgB, i);
        if (wordA != wordB)
            return wordA < wordB ? -1 : 1;
    }
    return rowA.length - rowB.length;
}

Side Arrange(const LOGV_Log &log)
{
    Side side;
    side.log = &log;
    for (size_t i = 0; i < log.rows.size(); i++)
        if (log.rows[i].type != DLLD_JUNK)
            side.order.push_back(static_cast<uint32_t>(i));
    std::stable_sort(side.order.begin(), side.order.end(),
                     [&](uint32_t x, uint32_t y) { return CompareMessages(log, x, log, y) < 0; });
    return side;
}

} // namespace

std::vector<LOGV_Pair> LOGV_Compare(const LOGV_Log &a, const LOGV_Log &b)
{
    const Side sideA = Arrange(a), sideB = Arrange(b);
    std::vector<LOGV_Pair> pairs;
    size_t i = 0, j = 0;
    while (i < sideA.order.size() || j < sideB.order.size()) {
        // One side used up: the rest of the other one is its alone.
        int order = i == sideA.order.size() ? 1 : -1;
        if (i < sideA.order.size() && j < sideB.order.size())
            order = CompareMessages(a, sideA.order[i], b, sideB.order[j]);
        LOGV_Pair pair;
        if (order <= 0)
            pair.rowA = sideA.order[i++];
        if (order >= 0)
            pair.rowB = sideB.order[j++];
        pairs.push_back(pair);
    }
    return pairs;
}
