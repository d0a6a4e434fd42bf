// Where the curves of a graph come from: a sampler that runs, or a recording on disk. The graph
// asks both the same: what there is, points to be drawn of a stretch of time, and measures.
#ifndef GRAPHS_SOURCE_H
#define GRAPHS_SOURCE_H

#include "graphs/graph_setup.h"
#include "graphs/past.h"
#include "sampler/armed_recorder.h"
#include "sampler/recording.h"
#include "sampler/sampler.h"

#include <cstdint>
#include <string>
#include <vector>

// A moment with a text.
struct GRS_Marker {
    double time = 0;
    std::string text;
};

constexpr size_t GRS_MARKERS_MAX = 1000;

constexpr size_t GRS_SAMPLES_MAX = 2000000; // of a curve, in memory; fewer of many curves

// Points of live curves that stay as they are while the picture moves on: what is new comes
// behind them.
struct GRS_Live {
    bool isValid = false;
    double columnS = 0;           // of the fine points; 0: every sample
    double first = 0, border = 0; // coarse points from the first sample to here, fine ones behind
    std::vector<GRH_Scale> scales;
    std::vector<GRH_Points> coarse, fine;
    std::vector<double> openFrom; // fine points from here on are not final
};

struct GRS_Source {
    size_t samplesMax = GRS_SAMPLES_MAX;
    GPA_Past past;                   // what has left the sampler's memory
    bool isFile = false;             // the curves are a recording's; else the sampler's
    std::vector<GRS_Marker> markers; // the newest
    uint64_t markerCount = 0;        // that were ever set
    bool isBeepDue = false;          // a trigger wants one; taken away by whoever beeps
    RDR_Recording recording;
    SMP_Sampler sampler;
    ARC_Recorder recorder; // of what the sampler gives out, when the user wants it
    std::string message;   // news of the sampler or recorder, taken away by whoever shows it
    std::vector<GRH_Index> indexes; // of the sampler's items
    int64_t originUs = 0;           // time 0
    bool isFresh = false;           // something has come since it was last taken back
    GRS_Live live;
};

// Begins to sample the curves anew, or goes on with those that stay. 0, or a code of SMP_Start.
int GRS_Start(GRS_Source *source, const GRA_Setup &setup);
void GRS_Stop(GRS_Source *source);
// Stops, and forgets all there was; files of the past go.
void GRS_Clear(GRS_Source *source);
// Writes what the sampler gives out from now on, or from when a trigger of the settings starts
// it. 0, or a code of REC_Open: recorder.file.problem.
int GRS_Record(GRS_Source *source, const REC_Options &options);
// One step of the sampler: microseconds until the next, or SMP_IDLE.
int64_t GRS_Step(GRS_Source *source);
// The triggers of the settings from now on; a recording that runs goes on.
void GRS_UseTriggers(GRS_Source *source, const GRA_Setup &setup);
double GRS_Now(const GRS_Source &source); // seconds since time 0
// The marker goes into the recording too. 0, or REC_ERR_WRITE.
int GRS_Mark(GRS_Source *source, double time, const std::string &text);

// When the oldest round in memory was sampled: the middle of the round, less a rounding. False
// while nothing has fallen out.
bool GRS_FindOldest(const GRS_Source &source, double *seconds);
// First and last sample there is, those of the past included; false when there is none.
bool GRS_GetExtent(const GRS_Source &source, double *from, double *to);

// Of every curve: finely between `from` and `to`, coarsely beyond, so that the picture can be
// moved before finer points come. 0, or a code of RDR_Read.
int GRS_Draw(GRS_Source *source, const GRA_Setup &setup, double from, double to,
             std::vector<GRH_Points> *curves);
// Over every sample between two times; -1 where they are too many, or not all in memory.
int GRS_Measure(GRS_Source *source, const GRA_Setup &setup, double from, double to,
                std::vector<GRH_Measures> *measures);

constexpr size_t GRX_ROWS_MAX = 1000000;
// Every sample between two times as it is shown, scaled and in its unit, as a CSV file that opens
// as a recording again. 0, or -1 with the reason in *problem: the old file is as it was.
int GRX_Save(const std::string &path, const GRS_Source &source, const GRA_Setup &setup, double from,
             double to, std::string *problem);

#endif
