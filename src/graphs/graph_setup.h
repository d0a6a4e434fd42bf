// What the user sets of a graph, as plain data, and its text file: saved by name beside the
// watch list (docs/manual/reference/formats.md).
#ifndef GRAPHS_GRAPH_SETUP_H
#define GRAPHS_GRAPH_SETUP_H

#include "graphs/history.h"
#include "runtime/userint.h"

#include <string>
#include <vector>

constexpr size_t GRA_CURVES_MAX = 32;
constexpr double GRA_WINDOW_MIN_S = 1, GRA_WINDOW_MAX_S = 24 * 3600;

struct GRA_Curve {
    SMP_Item item;
    GRA_Scale scale;
    std::string unit;
    int pane = 0; // from 0 to GRA_CURVES_MAX - 1
};

struct GRA_Setup {
    std::vector<GRA_Curve> curves;
    int periodMs = 100;  // 0: as fast as the line allows
    double windowS = 10; // what a live graph shows
    UI_GraphLayout layout = GRAPH_TOGETHER;
    std::string triggers;             // as SMP_ParseTriggers has them
    std::vector<std::string> foreign; // lines of later versions, and comments: they are kept
};

// 0, or -1: cannot be read, *setup as it was. Lines with a bad value are named in *problems
// ("line 3: ...") and left out. Names are looked up in the maps there are.
int GRA_LoadSetup(const std::string &path, GRA_Setup *setup, std::vector<std::string> *problems);
int GRA_SaveSetup(const std::string &path, const GRA_Setup &setup); // 0, or -1: old file as it was
// Looks a curve's name up anew. False when nothing has this name: it is sampled as failed.
bool GRA_Resolve(SMP_Item *item);

#endif
