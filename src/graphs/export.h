// What is in view of a graph as a CSV file, which opens as a recording again.
#ifndef GRAPHS_EXPORT_H
#define GRAPHS_EXPORT_H

#include "graphs/source.h"

constexpr size_t GRX_ROWS_MAX = 1000000;

// Every sample between two times as it is shown: scaled, in its unit. 0, or -1 with the reason
// in *problem: the old file is as it was.
int GRX_Save(const std::string &path, const GRS_Source &source, const GRA_Setup &setup, double from,
             double to, std::string *problem);

#endif
