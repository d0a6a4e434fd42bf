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
struct GRA_Marker {
    double time = 0;
    std::string text;
};

constexpr size_t GRA_MARKERS_MAX = 1000;

constexpr size_t GRA_SAMPLES_MAX = 2000000; // of a curve, in memory; fewer of many curves

// Points of live curves that stay as they are while the picture moves on: what is new comes
// behind them.
struct GRA_Live {
    bool isValid = false;
    double columnS = 0;           // of the fine points; 0: every sample
    double first = 0, border = 0; // coarse points from the first sample to here, fine ones behind
    std::vector<GRA_Scale> scales;
    std::vector<GRA_Points> coarse, fine;
    std::vector<double> openFrom; // fine points from here on are not final
};

struct GRA_Source {
    size_t samplesMax = GRA_SAMPLES_MAX;
    GRA_Past past;                   // what has left the sampler's memory
    bool isFile = false;             // the curves are a recording's; else the sampler's
    std::vector<GRA_Marker> markers; // the newest
    uint64_t markerCount = 0;        // that were ever set
    bool isBeepDue = false;          // a trigger wants one; taken away by whoever beeps
    REC_Recording recording;
    SMP_Sampler sampler;
    REC_ArmedRecorder recorder; // of what the sampler gives out, when the user wants it
    std::string message;        // news of the sampler or recorder, taken away by whoever shows it
    std::vector<GRA_HistoryIndex> indexes; // of the sampler's items
    int64_t originUs = 0;                  // time 0
    bool isFresh = false;                  // something has come since it was last taken back
    GRA_Live live;
};

// Begins to sample the curves anew, or goes on with those that stay. 0, or a code of SMP_Start.
int GRA_StartSource(GRA_Source *source, const GRA_Setup &setup);
void GRA_StopSource(GRA_Source *source);
// Stops, and forgets all there was; files of the past go.
void GRA_ClearSource(GRA_Source *source);
// Writes what the sampler gives out from now on, or from when a trigger of the settings starts
// it. 0, or a code of REC_Open: recorder.file.problem.
int GRA_RecordSource(GRA_Source *source, const REC_Options &options);
// One step of the sampler: microseconds until the next, or SMP_IDLE.
int64_t GRA_StepSource(GRA_Source *source);
// The triggers of the settings from now on; a recording that runs goes on.
void GRA_UseTriggers(GRA_Source *source, const GRA_Setup &setup);
double GRA_GetNow(const GRA_Source &source); // seconds since time 0
// The marker goes into the recording too. 0, or REC_ERR_WRITE.
int GRA_MarkSource(GRA_Source *source, double time, const std::string &text);

// When the oldest round in memory was sampled: the middle of the round, less a rounding. False
// while nothing has fallen out.
bool GRA_FindOldest(const GRA_Source &source, double *seconds);
// First and last sample there is, those of the past included; false when there is none.
bool GRA_GetSourceExtent(const GRA_Source &source, double *from, double *to);

// Of every curve: finely between `from` and `to`, coarsely beyond, so that the picture can be
// moved before finer points come. 0, or a code of REC_ReadCurves.
int GRA_DrawSource(GRA_Source *source, const GRA_Setup &setup, double from, double to,
                   std::vector<GRA_Points> *curves);
// Over every sample between two times; -1 where they are too many, or not all in memory.
int GRA_MeasureSource(GRA_Source *source, const GRA_Setup &setup, double from, double to,
                      std::vector<GRA_Measures> *measures);

constexpr size_t GRA_EXPORT_ROWS_MAX = 1000000;
// Every sample between two times as it is shown, scaled and in its unit, as a CSV file that opens
// as a recording again. 0, or -1 with the reason in *problem: the old file is as it was.
int GRA_SaveCsv(const std::string &path, const GRA_Source &source, const GRA_Setup &setup,
                double from, double to, std::string *problem);

#endif
