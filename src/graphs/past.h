// What has left the memory of a live graph. Rows go into files of the folder for temporary ones
// shortly before the sampler's store drops them, so that a short session writes none, and are read
// back when somebody looks. Disk and memory are bounded: of too many files the oldest goes. They
// are removed with the past; those of a program that was killed, when the next one begins its own.
#ifndef GRAPHS_PAST_H
#define GRAPHS_PAST_H

#include "graphs/history.h"
#include "sampler/recorder.h"
#include "sampler/recording.h"

#include <deque>
#include <string>
#include <vector>

constexpr uint64_t GRA_PAST_PART_BYTES = uint64_t{512} << 20;
constexpr size_t GRA_PAST_PARTS_MAX = 8;

struct GRA_PastPart { // one file: other items, or a full one, begin the next
    std::vector<SMP_Item> items;
    REC_Recording recording;
};

// Curves as they were read last: numbers as sampled, times as the graph counts.
struct GRA_PastReading {
    bool isValid = false;
    double from = 0, to = 0;
    std::vector<SMP_Item> items;
    std::vector<GRA_Points> curves;
};

struct GRA_Past {
    std::string folder; // of the files; "": the system's for temporary ones
    uint64_t partBytes = GRA_PAST_PART_BYTES;
    std::string problem; // why nothing is kept any more: told once

    // The rest is its own.
    REC_Recorder recorder;
    std::deque<GRA_PastPart> parts; // by rising time
    uint64_t begun = 0;             // parts so far
    uint64_t written = 0;           // rows of the sampler that have been written, or never can be
    GRA_PastReading coarse, fine;
};

// Called at each row, the one with the number `rows` since the sampler's start: writes those that
// will leave the store next. `originUs` is the graph's time 0. 0, or -1: past->problem, from now
// on nothing is kept.
int GRA_KeepPast(GRA_Past *past, const SMP_Store &store, uint64_t rows, int64_t originUs);
// Behind several rows: from here on they can be read. Results of GRA_KeepPast.
int GRA_FlushPast(GRA_Past *past);
// False while there is none.
bool GRA_GetPastExtent(const GRA_Past &past, double *from, double *to);
// All of it, roughly, and a stretch as finely as a picture needs; both are read again only when
// they would look different. A curve an item; valid until the next call. Null when a file is gone.
const std::vector<GRA_Points> *GRA_ReadWholePast(GRA_Past *past, const std::vector<SMP_Item> &items,
                                                 size_t pointsMax);
const std::vector<GRA_Points> *GRA_ReadPastFine(GRA_Past *past, const std::vector<SMP_Item> &items,
                                                double from, double to, size_t pointsMax);
// Every row between two times, for whoever saves them. False when there are more than `rowsMax`.
bool GRA_ReadPastRows(const GRA_Past &past, const std::vector<SMP_Item> &items, double from,
                      double to, size_t rowsMax, REC_Curves *rows);
void GRA_ClearPast(GRA_Past *past); // removes the files; the folder stays as it was set

#endif
