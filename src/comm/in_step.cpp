// The book of open answers. Answers come in the order of their requests, so one whose
// origin is known proves that nothing older is left; a probe is a request made for its
// answer to be known.
#include "comm/in_step.h"

#include <algorithm>

namespace {

// What an earlier program left behind may by chance look like a probe's answer, but hardly
// like three chosen by lot, one right behind the other.
constexpr int PROBES_FOR_UNKNOWN = 3;
constexpr size_t RECENT_PROBES_MAX = 16, RECENT_REQUESTS_MAX = 6;
constexpr int PROBES_MAX = 32; // of one proof: nobody waits longer
constexpr uint32_t PROOF_PERIOD_MS = 1000, SUSPICION_MS = 10000;

STEP_Listener listener;
int lastPartner = -1;

STEP_Partner &PartnerOf(STEP_Line *line, int partner)
{
    return line->partners[static_cast<size_t>(partner)];
}

std::vector<STEP_Open>::const_iterator FindOpen(const STEP_Partner &partner, STEP_Shape shape)
{
    return std::find_if(partner.open.begin(), partner.open.end(),
                        [shape](const STEP_Open &item) { return item.shape == shape; });
}

// More answers came than requests up to a certain one had gone out: somebody on the line
// repeats, and everything accepted lately may have been a neighbour's.
void CheckSurplus(STEP_Line *line, STEP_Partner *partner, uint32_t requests)
{
    if (partner->came <= requests)
        return;
    partner->came = requests;
    if (partner->unknown > 0) // of the time before: nothing was accepted yet
        return;
    ++line->surplus;
    ++line->disturbed;
}

// Books an answer that turned up and crosses out the oldest open request of this shape with
// all before it, whose answers are lost. Of repetitions it may have been the first, so the
// later ones stay open. True when it was a probe's and `isKnown` to be: a refusal has no length
// to know it by and proves nothing.
bool BookAnswer(STEP_Line *line, STEP_Partner *partner, STEP_Shape shape, bool isKnown,
                uint32_t nowMs)
{
    ++partner->came;
    const auto found = FindOpen(*partner, shape);
    if (found == partner->open.end()) {
        CheckSurplus(line, partner, partner->sent);
        return false;
    }
    uint32_t newest = found->number; // of the requests it may answer
    for (const STEP_Open &open : partner->open)
        newest = open.shape == shape ? open.number : newest;
    CheckSurplus(line, partner, newest);
    // Answers that were lost count as come, or a later repetition would look like one of them.
    partner->came = std::max(partner->came, found->number);
    const bool isProbe = isKnown && found->isProbe;
    partner->open.erase(partner->open.begin(), found + 1);
    if (isProbe) {
        partner->isProofDue = false;
        partner->unknown = std::max(partner->unknown - 1, 0);
        partner->calmAt = line->disturbed;
        partner->provenMs = nowMs;
    }
    // Nothing is open: counting begins anew, so that neither number ever wraps.
    if (partner->open.empty())
        partner->sent = partner->came = 0;
    return isProbe;
}

// A xorshift: the order of probes need not be secret, only different from run to run.
uint32_t NextRandom(STEP_Line *line)
{
    line->random ^= line->random << 13;
    line->random ^= line->random >> 17;
    line->random ^= line->random << 5;
    return line->random;
}

bool IsUnused(const STEP_Line &line, int partner, STEP_Shape shape)
{
    const STEP_Partner &book = line.partners[static_cast<size_t>(partner)];
    const auto isIn = [shape](const std::vector<STEP_Shape> &recent) {
        return std::find(recent.begin(), recent.end(), shape) != recent.end();
    };
    return FindOpen(book, shape) == book.open.end() && !isIn(line.recentProbes) &&
           !isIn(line.recentRequests);
}

void NoteRecent(std::vector<STEP_Shape> *recent, size_t most, STEP_Shape shape)
{
    // A sweep asks for the same few sizes again and again: each stands in the list once.
    if (!recent->empty() && recent->back() == shape)
        return;
    recent->erase(std::remove(recent->begin(), recent->end(), shape), recent->end());
    recent->push_back(shape);
    if (recent->size() > most)
        recent->erase(recent->begin());
}

template <typename IsDone>
int SendProbes(STEP_Line *line, int partner, int attempts, const STEP_Prober &prober, IsDone isDone)
{
    int left = attempts;
    for (int sent = 0; !isDone(); ++sent) {
        // Without the second bound a line that repeats everything would be probed for ever.
        if (left <= 0 || sent == PROBES_MAX)
            return STEP_ERR_SILENT;
        const STEP_Shape shape = STEP_PickProbe(line, partner, prober.shapes, prober.count);
        const int result = prober.probe(partner, shape);
        if (result < 0)
            return STEP_ERR_ENDED;
        // A slow partner that has answered one probe will answer the next as well.
        left = result > 0 ? attempts : left - 1;
    }
    return STEP_PROVEN;
}

} // namespace

void STEP_Reset(STEP_Line *line, uint32_t seed)
{
    *line = STEP_Line();
    line->partners.resize(STEP_PARTNERS);
    for (STEP_Partner &partner : line->partners)
        partner.unknown = PROBES_FOR_UNKNOWN;
    // From 0 the generator would only give zeros.
    line->random = seed != 0 ? seed : 1;
}

bool STEP_IsSafe(const STEP_Line &line, int partner, STEP_Shape shape)
{
    const STEP_Partner &book = line.partners[static_cast<size_t>(partner)];
    return book.unknown == 0 && book.calmAt == line.disturbed &&
           (book.open.empty() || FindOpen(book, shape) == book.open.end());
}

bool STEP_IsCalm(const STEP_Line &line, int partner, size_t expected)
{
    const STEP_Partner &book = line.partners[static_cast<size_t>(partner)];
    return book.open.size() <= expected && book.unknown == 0 && book.calmAt == line.disturbed;
}

void STEP_Sent(STEP_Line *line, int partner, STEP_Shape shape, bool isProbe)
{
    STEP_Partner &book = PartnerOf(line, partner);
    // Too many to tell apart: from here on anything may come, as after opening.
    if (book.open.size() >= STEP_OPEN_MAX) {
        book.open.clear();
        book.unknown = PROBES_FOR_UNKNOWN;
    }
    book.open.push_back({shape, isProbe, ++book.sent});
    if (!isProbe)
        NoteRecent(&line->recentRequests, RECENT_REQUESTS_MAX, shape);
}

void STEP_Accepted(STEP_Line *line, int partner, STEP_Shape shape, uint32_t nowMs)
{
    STEP_Partner &book = PartnerOf(line, partner);
    if (!BookAnswer(line, &book, shape, true, nowMs))
        book.isProofDue = true;
}

bool STEP_Passed(STEP_Line *line, int partner, STEP_Shape shape, uint32_t nowMs)
{
    STEP_Partner &book = PartnerOf(line, partner);
    if (FindOpen(book, shape) == book.open.end())
        ++line->disturbed;
    // Of a partner that nothing was accepted from, a repeated answer harms nobody.
    return (!book.open.empty() || book.isProofDue) && BookAnswer(line, &book, shape, true, nowMs);
}

void STEP_Refused(STEP_Line *line, int partner, STEP_Shape shape)
{
    (void)BookAnswer(line, &PartnerOf(line, partner), shape, false, 0);
}

void STEP_Junk(STEP_Line *line, int partner, uint32_t answers)
{
    STEP_Partner &book = PartnerOf(line, partner);
    // Noise while something is open may be its damaged answer; alone it is nobody's.
    if (book.open.empty())
        ++line->disturbed;
    book.came += answers;
    CheckSurplus(line, &book, book.sent);
}

bool STEP_HaveAllCome(const STEP_Line &line, int partner)
{
    const STEP_Partner &book = line.partners[static_cast<size_t>(partner)];
    return book.came >= book.sent;
}

void STEP_WasSilent(STEP_Line *line, int partner, uint32_t nowMs)
{
    STEP_Partner &book = PartnerOf(line, partner);
    book = STEP_Partner();
    book.calmAt = line->disturbed;
    book.provenMs = nowMs;
}

bool STEP_IsSuspicious(STEP_Line *line, int partner, uint32_t nowMs)
{
    if (line->disturbed != line->disturbedSeen) {
        line->disturbedSeen = line->disturbed;
        line->suspiciousSinceMs = nowMs;
        line->isSuspicious = true;
    }
    line->isSuspicious = line->isSuspicious && nowMs - line->suspiciousSinceMs < SUSPICION_MS;
    return line->isSuspicious || nowMs - PartnerOf(line, partner).provenMs >= PROOF_PERIOD_MS;
}

STEP_Shape STEP_PickProbe(STEP_Line *line, int partner, const STEP_Shape *shapes, size_t count)
{
    const STEP_Partner &book = PartnerOf(line, partner);
    const auto isFree = [&](STEP_Shape shape, bool isRecentAllowed) {
        return isRecentAllowed ? FindOpen(book, shape) == book.open.end()
                               : IsUnused(*line, partner, shape);
    };
    const size_t start = NextRandom(line) % count;
    STEP_Shape chosen = shapes[start];
    bool isFound = false;
    for (const bool isRecentAllowed : {false, true}) {
        for (size_t i = 0; i < count && !isFound; ++i) {
            chosen = shapes[(start + i) % count];
            isFound = isFree(chosen, isRecentAllowed);
        }
    }
    NoteRecent(&line->recentProbes, RECENT_PROBES_MAX, chosen);
    return chosen;
}

bool STEP_PickUnusedProbe(STEP_Line *line, int partner, const std::vector<STEP_Shape> &shapes,
                          STEP_Shape *chosen)
{
    std::vector<STEP_Shape> unused;
    for (const STEP_Shape shape : shapes)
        if (IsUnused(*line, partner, shape))
            unused.push_back(shape);
    if (unused.empty())
        return false;
    *chosen = unused[NextRandom(line) % unused.size()];
    NoteRecent(&line->recentProbes, RECENT_PROBES_MAX, *chosen);
    return true;
}

std::vector<uint32_t> STEP_ListProbeLengths(uint32_t unit, uint32_t least, uint32_t most)
{
    std::vector<uint32_t> lengths;
    for (uint32_t units = 3; units * unit <= most; ++units)
        if (units % 4 != 0 && units * unit >= least)
            lengths.push_back(units * unit);
    return lengths;
}

int STEP_MakeSafe(STEP_Line *line, int partner, STEP_Shape shape, int attempts,
                  const STEP_Prober &prober)
{
    return SendProbes(line, partner, attempts, prober,
                      [&] { return STEP_IsSafe(*line, partner, shape); });
}

int STEP_ProveBehind(STEP_Line *line, int partner, int attempts, const STEP_Prober &prober)
{
    return SendProbes(line, partner, attempts, prober,
                      [&] { return !PartnerOf(line, partner).isProofDue; });
}

void STEP_SetListener(const STEP_Listener &wanted)
{
    listener = wanted;
    lastPartner = -1;
}

bool STEP_IsBreak()
{
    return listener.isBreak != nullptr && listener.isBreak();
}

void STEP_TellWaiting(int partner, bool isAfterFailure)
{
    if (listener.waiting != nullptr && (partner != lastPartner || isAfterFailure))
        listener.waiting(partner);
    lastPartner = partner;
}
