// What the graph window shows: the curves in its picture, and the table with what is set and
// measured of each. Only the window calls it.
#ifndef GRAPHS_WINDOW_CURVES_H
#define GRAPHS_WINDOW_CURVES_H

#include "graphs/source.h"

enum GRV_Column { // of the table
    GRV_NAME,
    GRV_UNIT,
    GRV_FACTOR,
    GRV_OFFSET,
    GRV_PANE,
    GRV_LAST,
    GRV_MEASURED, // the first of several
};

// The points for what is in view now. 0, or a code of RDR_Read.
int GRV_ShowCurves(GRS_Source *source, const GRA_Setup &setup);
// The table, measured between the cursors when both are shown, else over what is in view.
void GRV_ShowTable(GRS_Source *source, const GRA_Setup &setup);
// A cell of the table was edited. False when it cannot hold this text: nothing has changed.
bool GRV_EditCell(GRA_Setup *setup);
// What is in view: its times, and whether the newest sample stays at the right edge.
void GRV_SetView(double from, double to, bool isFollowing);
void GRV_FitAll();
bool GRV_IsFollowing();
// How long a picture will do while samples come: until another column of it can be seen.
uint32_t GRV_PictureMs();
void GRV_GetTimes(double *from, double *to);
// The table's chosen curves, by rising index.
std::vector<size_t> GRV_GetChosen(size_t count);

#endif
