// Where the curves of a graph come from: a sampler that runs, or a recording on disk. The graph
// asks both the same: what there is, points to be drawn of a stretch of time, and measures.
#ifndef GRAPHS_SOURCE_H
#define GRAPHS_SOURCE_H

#include "graphs/graph_setup.h"
#include "sampler/recorder.h"
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

constexpr size_t GRS_SAMPLES_MAX = 2000000; // of a curve, in memory; fewer of many curves

// The recording of what the sampler gave out: what has fallen out of memory is read from it.
struct GRS_Past {
    std::string path; // "": nothing was recorded since the start
    double begin = 0; // the recording's time 0, as the graph counts
    bool isRead = false;
    RDR_Recording recording; // as it was when somebody looked at it last
};

struct GRS_Source {
    size_t samplesMax = GRS_SAMPLES_MAX;
    GRS_Past past;
    bool isFile = false; // the curves are a recording's; else the sampler's
    std::vector<GRS_Marker> markers;
    RDR_Recording recording;
    SMP_Sampler sampler;
    REC_Recorder recorder; // of what the sampler gives out, when the user wants it
    std::string message;   // news of the sampler or recorder, taken away by whoever shows it
    std::vector<GRH_Index> indexes; // of the sampler's items
    int64_t originUs = 0;           // time 0
    bool isFresh = false;           // something has come since it was last taken back
};

// Begins to sample the curves anew, or goes on with those that stay. 0, or a code of SMP_Start.
int GRS_Start(GRS_Source *source, const GRA_Setup &setup);
void GRS_Stop(GRS_Source *source);
// Writes what the sampler gives out from now on. 0, or a code of REC_Open: recorder.problem.
int GRS_Record(GRS_Source *source, const REC_Options &options);
// One step of the sampler: microseconds until the next, or SMP_IDLE.
int64_t GRS_Step(GRS_Source *source);
double GRS_Now(const GRS_Source &source); // seconds since time 0
// The marker goes into the recording too. 0, or REC_ERR_WRITE.
int GRS_Mark(GRS_Source *source, double time, const std::string &text);

// First and last sample there is, recorded ones included; false when there is none.
bool GRS_GetExtent(const GRS_Source &source, double *from, double *to);

// A curve to be drawn: times rise, NaN is a gap.
struct GRS_Points {
    std::vector<double> times, values;
};
// Of every curve: finely between `from` and `to`, coarsely beyond, so that the picture can be
// moved before finer points come. 0, or a code of RDR_Read.
int GRS_Draw(GRS_Source *source, const GRA_Setup &setup, double from, double to,
             std::vector<GRS_Points> *curves);
// Over every sample between two times; -1 where they are too many, or not all in memory.
int GRS_Measure(GRS_Source *source, const GRA_Setup &setup, double from, double to,
                std::vector<GRH_Measures> *measures);

#endif
