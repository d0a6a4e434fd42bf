// Whether a line is in step. An answer says neither what it answers nor when it was asked
// for; all that tells it from another one is its shape (its kind and its length). This
// module keeps book of the answers that may still come, says when the next request is safe
// to send, and counts answers nobody asked for. It knows no protocol and no port: a link
// owns one STEP_Line, tells it what went out and what came, and sends the probes it asks
// for. docs/architecture/line.md has the reasoning and what no book can tell.
#ifndef COMM_IN_STEP_H
#define COMM_IN_STEP_H

#include <cstddef>
#include <cstdint>
#include <vector>

constexpr int STEP_PARTNERS = 256;   // stations or slaves, numbered from 0
constexpr size_t STEP_OPEN_MAX = 64; // more open answers than this are "anything"

// What tells the answers of one partner apart. The link chooses the number; two answers that
// could be taken for each other must have the same, others should differ.
typedef uint32_t STEP_Shape;

struct STEP_Open {
    STEP_Shape shape;
    bool isProbe;
    uint32_t number; // STEP_Partner::sent when it had gone out
};

struct STEP_Partner {
    std::vector<STEP_Open> open; // requests whose answers may still come, oldest first
    int unknown = 0;             // probes to be answered before nothing of an earlier time is left
    uint32_t sent = 0, came = 0; // requests and answers since nothing was open
    uint32_t calmAt = 0;         // STEP_Line::disturbed at the last proof
    uint32_t provenMs = 0;       // tick of the last proof
    bool isProofDue = false;     // something was accepted and no probe answered since
};

struct STEP_Line {
    std::vector<STEP_Partner> partners;
    uint32_t disturbed = 0; // grows with everything unexpected
    uint32_t surplus = 0;   // grows when more answers came than were asked for
    uint32_t random = 1;
    // Of any partner, the latest last: a repeated answer to one of them must prove nothing.
    std::vector<STEP_Shape> recentProbes, recentRequests;
    uint32_t disturbedSeen = 0, suspiciousSinceMs = 0; // when something odd was last noticed
    bool isSuspicious = false;
};

// The port was opened: anything may come from any partner, such as the answer to a program
// that was killed. `seed` makes the order of the probes.
void STEP_Reset(STEP_Line *line, uint32_t seed);

// True when an answer of this shape can only be the answer to a request that goes out now.
// Ask before the first try of a request. A repetition of the same request needs no asking:
// either answer is right.
bool STEP_IsSafe(const STEP_Line &line, int partner, STEP_Shape shape);
// True when nothing but the `expected` last requests can bring an answer, and nothing odd
// was seen: the answer may be read as it comes.
bool STEP_IsCalm(const STEP_Line &line, int partner, size_t expected);

void STEP_Sent(STEP_Line *line, int partner, STEP_Shape shape, bool isProbe);
// A sound answer was taken as the answer of the request; whatever was asked before it has
// been answered or is lost. `nowMs` is the tick.
void STEP_Accepted(STEP_Line *line, int partner, STEP_Shape shape, uint32_t nowMs);
// A sound answer went by that is not the one waited for. True when it was a probe's.
bool STEP_Passed(STEP_Line *line, int partner, STEP_Shape shape, uint32_t nowMs);
// The partner refused the request of this shape, or an older one: nothing is known by it.
void STEP_Refused(STEP_Line *line, int partner, STEP_Shape shape);
// Characters that were no sound answer, as many answers as they may have been (0: noise).
// They may be the damaged answer of something open, so nothing is crossed out.
void STEP_Junk(STEP_Line *line, int partner, uint32_t answers);

// As many answers have come, damaged ones included, as requests went out: to wait for more
// is of little use.
bool STEP_HaveAllCome(const STEP_Line &line, int partner);
// Nothing came for a whole time-out: the proof that is left when no probe is answered.
void STEP_WasSilent(STEP_Line *line, int partner, uint32_t nowMs);

// Whether what was read should be proven before it is used: after something odd everything
// for ten seconds, on a good line once a second.
bool STEP_IsSuspicious(STEP_Line *line, int partner, uint32_t nowMs);

// A probe that no open answer and no recent probe can be taken for, out of `count`
// shapes. When all are in use the one used longest ago.
STEP_Shape STEP_PickProbe(STEP_Line *line, int partner, const STEP_Shape *shapes, size_t count);
// The same where a proof is welcome but not needed: false when all are in use.
bool STEP_PickUnusedProbe(STEP_Line *line, int partner, const std::vector<STEP_Shape> &shapes,
                          STEP_Shape *chosen);
// For probes that read something of use: lengths from `least` to `most` bytes, in units of so
// many, that variables and full blocks do not have.
std::vector<uint32_t> STEP_ListProbeLengths(uint32_t unit, uint32_t least, uint32_t most);

// What a link does for a proof: sends a request for `shape`, tells STEP_Sent, and reads
// for one time-out at most, telling what came; may return as soon as `isDone` says so.
// 1 answered, 0 not, negative: no use in going on (cancelled, port gone, echo).
struct STEP_Prober {
    const STEP_Shape *shapes; // to choose from: reads that do no harm
    size_t count;
    int (*probe)(int partner, STEP_Shape shape);
};
enum {
    STEP_PROVEN = 0,
    STEP_ERR_SILENT = -1, // no probe was answered
    STEP_ERR_ENDED = -2,  // the prober gave up
};
// Sends probes until a request of this shape is safe; at most `attempts` in a row may stay
// unanswered. Costs nothing when it is safe already.
int STEP_MakeSafe(STEP_Line *line, int partner, STEP_Shape shape, int attempts,
                  const STEP_Prober &prober);
// Sends probes until everything accepted so far from this partner has a probe's answer
// behind it. Costs nothing when that is so. Compare `surplus` from before the reads: when
// it has grown they must be read again.
int STEP_ProveBehind(STEP_Line *line, int partner, int attempts, const STEP_Prober &prober);

// --- whoever waits in front of the screen -----------------------------------------------
// Set by the program through the unified layer; null entries are not called.
struct STEP_Listener {
    bool (*isBreak)() = nullptr;            // asked before every try: true ends the transfer
    void (*waiting)(int partner) = nullptr; // before a try that may take a time-out
};
void STEP_SetListener(const STEP_Listener &listener);
bool STEP_IsBreak();
// Tells the listener when the partner is another one than last, or the last try failed.
void STEP_TellWaiting(int partner, bool isAfterFailure);

#endif
