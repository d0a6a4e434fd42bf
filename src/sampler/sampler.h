// Reads a set of items at a set period, or as fast as the line allows, and asks for neighbours
// together (comm/grouping.h). One exchange a step, so that whatever else wants the line has its
// turn in between; no window and no timer: whoever owns a sampler calls SMP_Step when it is due.
// Samples are given out only behind a proof that the line was in step, at most a second later.
//
//     SMP_Sampler sampler;
//     SMP_Start(&sampler, items, 100, listener);         // ten times a second
//     for (...) waitUs = SMP_Step(&sampler);             // from a timer
//     SMP_CopySamples(sampler.store, 0, first, end, ...);       // curves
//     SMP_Stop(&sampler);
#ifndef SAMPLER_SAMPLER_H
#define SAMPLER_SAMPLER_H

#include "comm/grouping.h"
#include "comm/ucm.h"
#include "sampler/sample_store.h"

#include <cstdint>
#include <string>
#include <vector>

constexpr size_t SMP_ITEMS_MAX = 500;
constexpr int SMP_FAST = 0; // period: as fast as the line allows
constexpr int SMP_PERIOD_MAX_MS = 24 * 3600 * 1000;
constexpr int64_t SMP_IDLE = -1; // result of SMP_Step: not running

// How the line is reached. Tests and benches fill in their own.
struct SMP_Line {
    int (*read)(int station, uint32_t address, uint32_t count, void *buffer); // as UCM_Read
    int (*readTMS)(int station, uint32_t address, uint32_t *value); // one word, by the mailbox
    int (*prove)();                                                 // as UCM_Prove
    uint32_t (*doubts)();                                           // as UCM_CountDoubts
    std::string (*failure)(); // why the last read or proof failed
    UCM_Cause (*cause)();     // of the last read that failed
    uint64_t (*nowUs)();      // a steady clock
    // As UCM_ReadProving; null: proofs are exchanges of their own.
    int (*readProving)(int station, uint32_t address, uint32_t count, void *buffer) = nullptr;
};
extern const SMP_Line SMP_LINE; // the unified layer and the system's clock

// All items once, in their order: one row of a table. Valid during the call only.
struct SMP_Row {
    int64_t timeUs = 0; // steady clock, the middle between its first and its last sample
    const SMP_Sample *samples = nullptr;
    size_t count = 0;
};

struct SMP_Sampler;
// Who is told, within SMP_Step. Entries may be null; none may use the line or the sampler.
struct SMP_Listener {
    void *context = nullptr;
    // A complete row, proven or marked as failed, in the order of time.
    void (*row)(void *context, const SMP_Sampler &sampler, const SMP_Row &row) = nullptr;
    void (*published)(void *context) = nullptr; // behind one or several rows
    // A station falls silent or is back: one line for the user.
    void (*message)(void *context, const std::string &text) = nullptr;
};

struct SMP_Totals { // since SMP_Start
    uint64_t rows = 0;
    uint64_t samples = 0, failed = 0; // given out; failed is contained in samples
    uint64_t chars = 0;               // of the blocks on the wire, without proofs and repetitions
    uint64_t elapsedUs = 0;
};

struct SMP_Station { // one that does not answer is asked rarely, not to hold up the others
    int number = 0;
    bool isSilent = false;
    uint64_t askAgainUs = 0;
    std::string reason;
};

struct SMP_Sampler {
    SMP_Store store;
    SMP_Totals totals;
    bool isRunning = false;

    // The rest is the sampler's own.
    SMP_Line line = SMP_LINE;
    SMP_Listener listener;
    int periodMs = SMP_FAST;
    int protocol = 0, processor = 0; // that the plan was made for
    std::vector<UCM_Block> plan;
    std::vector<uint8_t> isAlone; // items that must not share a block for a while
    uint64_t togetherUs = 0;      // when they may again, 0: none is alone
    uint64_t apartUs = 0;         // how long that lasted the last time
    std::vector<SMP_Station> stations;
    size_t next = 0; // block of the plan
    uint64_t startUs = 0, dueUs = 0, provenUs = 0;
    uint32_t doubts = 0;
    std::vector<SMP_Sample> row; // being read
    bool isInRow = false, isAnyAsked = false;
    bool hasProofCome = false;        // with the last block of the row
    std::vector<SMP_Sample> held;     // rows that wait for their proof, one behind the other
    std::vector<SMP_Sample> previous; // last good counts of rates
};

enum { SMP_ERR_ITEMS = -1, SMP_ERR_PERIOD = -2 };

// Starts with an empty store. 0, SMP_ERR_ITEMS: none or too many, SMP_ERR_PERIOD. Communication
// need not be on yet. `line` may be null: SMP_LINE.
int SMP_Start(SMP_Sampler *sampler, const std::vector<SMP_Item> &items, int periodMs,
              const SMP_Listener &listener, size_t samplesMax = SMP_DEFAULT_SAMPLES,
              const SMP_Line *line = nullptr);
// Other items, another station, an address that no longer resolves: what stays the same keeps
// its samples. The row that is being read is given up. Results of SMP_Start.
int SMP_Change(SMP_Sampler *sampler, const std::vector<SMP_Item> &items);
// Proves and gives out what is held, and ends.
void SMP_Stop(SMP_Sampler *sampler);
// At most one block (or one mailbox transfer), or one proof. Microseconds until it has
// something to do again, 0 at once; SMP_IDLE.
int64_t SMP_Step(SMP_Sampler *sampler);
// The line was closed or changed: what is held cannot be proven any more.
void SMP_DropHeld(SMP_Sampler *sampler, const std::string &reason);

// Rows a second that the wire allows at most by the plan's characters; 0 without one.
double SMP_RowsPerSecondMax(const SMP_Sampler &sampler, int baud);
// What part of the line's time the blocks have used, 0 to 1.
double SMP_WireShare(const SMP_Sampler &sampler, int baud);

// What is asked of the line (sampler_wire.cpp). Only the sampler calls it.
constexpr double SMP_BITS_PER_CHAR = 11; // of both protocols
// The plan for the protocol and processor of now; the row begins anew.
void SMP_MakePlan(SMP_Sampler *sampler);
// The block that is next was refused, and may hold a byte that cannot be read: its items go on one
// by one, and for a while they stay so.
void SMP_PartBlock(SMP_Sampler *sampler, uint64_t nowUs);
// Characters of the exchanges a block takes.
uint64_t SMP_CountChars(const SMP_Sampler &sampler, const UCM_Block &block);

#endif
