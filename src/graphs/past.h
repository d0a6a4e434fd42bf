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

constexpr uint64_t GPA_PART_BYTES = uint64_t{512} << 20;
constexpr size_t GPA_PARTS_MAX = 8;

struct GPA_Part { // one file: other items, or a full one, begin the next
    std::vector<SMP_Item> items;
    RDR_Recording recording;
};

// Curves as they were read last: numbers as sampled, times as the graph counts.
struct GPA_Reading {
    bool isValid = false;
    double from = 0, to = 0;
    std::vector<SMP_Item> items;
    std::vector<GRH_Points> curves;
};

struct GPA_Past {
    std::string folder; // of the files; "": the system's for temporary ones
    uint64_t partBytes = GPA_PART_BYTES;
    std::string problem; // why nothing is kept any more: told once

    // The rest is its own.
    REC_Recorder recorder;
    std::deque<GPA_Part> parts; // by rising time
    uint64_t begun = 0;         // parts so far
    uint64_t written = 0;       // rows of the sampler that have been written, or never can be
    GPA_Reading coarse, fine;
};

// Called at each row, the one with the number `rows` since the sampler's start: writes those that
// will leave the store next. `originUs` is the graph's time 0. 0, or -1: past->problem, from now
// on nothing is kept.
int GPA_Keep(GPA_Past *past, const SMP_Store &store, uint64_t rows, int64_t originUs);
// Behind several rows: from here on they can be read. Results of GPA_Keep.
int GPA_Flush(GPA_Past *past);
// False while there is none.
bool GPA_GetExtent(const GPA_Past &past, double *from, double *to);
// All of it, roughly, and a stretch as finely as a picture needs; both are read again only when
// they would look different. A curve an item; valid until the next call. Null when a file is gone.
const std::vector<GRH_Points> *GPA_ReadAll(GPA_Past *past, const std::vector<SMP_Item> &items,
                                           size_t pointsMax);
const std::vector<GRH_Points> *GPA_ReadFine(GPA_Past *past, const std::vector<SMP_Item> &items,
                                            double from, double to, size_t pointsMax);
// Every row between two times, for whoever saves them. False when there are more than `rowsMax`.
bool GPA_ReadRows(const GPA_Past &past, const std::vector<SMP_Item> &items, double from, double to,
                  size_t rowsMax, RDR_Curves *rows);
void GPA_Clear(GPA_Past *past); // removes the files; the folder stays as it was set

#endif
