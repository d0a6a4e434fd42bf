// Blocks become stretches of one state, stretches become segments. A file of any size gives a
// bounded number of them: gaps that no screen could show are closed.
#include "loader/program.h"
#include "loader/window.h"
#include "text/words.h"

#include <algorithm>

namespace {

constexpr uint32_t SPAN_MIN_BYTES = 0x10000;
constexpr uint32_t PARTS = 1024; // gaps of less than one part are not drawn

struct State {
    unsigned style;
    const char *text;
};
constexpr State WAITING = {UIS_DIM, "to be written"};
constexpr State WRITTEN = {UIS_NORMAL, "written, not read back"};
constexpr State VERIFIED = {UIS_GOOD, LDR_EQUAL};

// What is known of the flash counts, not how far the last run came: after a failure much of
// it may be of no use.
State FindState(const LDR_Job &job, size_t block)
{
    const bool isCompared = job.result == 0 && job.steps[LDR_STEP_VERIFY] == LDR_DONE;
    const bool isKept = job.flash == LDR_FLASH_PARTLY || job.flash == LDR_FLASH_WHOLE;
    if (isCompared || (isKept && block < job.verified))
        return VERIFIED;
    return isKept && block < job.written ? WRITTEN : WAITING;
}

struct Stretch {
    uint32_t first, end; // the byte behind it
    State state;
};

// Shares of the span; `end` is the byte behind the segment.
UI_Segment MakeSegment(uint32_t first, uint32_t end, uint32_t span, unsigned style,
                       const std::string &tip)
{
    UI_Segment segment;
    segment.first = static_cast<double>(first) / span;
    segment.last = static_cast<double>(end) / span;
    segment.style = style;
    segment.tip = tip;
    return segment;
}

} // namespace

uint32_t LDR_GetBarSpan(const LDR_Job &job)
{
    // A power of two, so that a file which grows a little does not move the picture.
    uint32_t span = SPAN_MIN_BYTES;
    while (!job.plan.empty() && span < LDR_GetEnd(job.plan.back()))
        span *= 2;
    return span;
}

std::vector<UI_Segment> LDR_MakeBarSegments(const LDR_Job &job)
{
    const uint32_t span = LDR_GetBarSpan(job);
    const uint32_t gapMin = span / PARTS;
    std::vector<Stretch> stretches;
    for (size_t i = 0; i < job.plan.size(); ++i) {
        const HEX_Record &block = job.plan[i];
        const State state = FindState(job, i);
        Stretch *last = stretches.empty() ? nullptr : &stretches.back();
        const bool isNear = last != nullptr && block.address - last->end < gapMin;
        // One piece also without a gap, where only the state changes: three pieces at most.
        if (last != nullptr && last->state.style == state.style &&
            (isNear || block.address == last->end))
            last->end = std::max(last->end, LDR_GetEnd(block));
        else
            stretches.push_back({block.address, LDR_GetEnd(block), state});
    }
    std::vector<UI_Segment> segments;
    for (const Stretch &stretch : stretches)
        segments.push_back(MakeSegment(
            stretch.first, stretch.end, span, stretch.state.style,
            TXT_Format("0x%06X-0x%06X: %s", stretch.first, stretch.end - 1, stretch.state.text)));
    // The last one lies on top: a single byte of a large file can still be pointed at.
    const LDR_Difference &at = job.difference;
    if (job.result == LDR_ERR_DIFFERENT || job.result == LDR_ERR_NEEDS_ERASE)
        segments.push_back(MakeSegment(at.address, at.address + 1, span, UIS_WARNING,
                                       TXT_Format("0x%06X: %02X wanted, %02X found", at.address,
                                                  static_cast<unsigned>(at.wanted),
                                                  static_cast<unsigned>(at.found))));
    return segments;
}
