// What the files of the graph window share: what it owns, what it shows, its sampling, the curves
// with their table, and its files. Only they call it; the others know window.h.
#ifndef GRAPHS_WINDOW_PARTS_H
#define GRAPHS_WINDOW_PARTS_H

#include "graphs/source.h"

#include <string>

extern GRA_Setup GRV_setup;
extern GRS_Source GRV_source;

// What is shown around the curves (window.cpp).
void GRV_ShowMessage(const std::string &text);
void GRV_ShowState(); // what the source does
void GRV_ShowButtons();
void GRV_ShowAll();   // also what is told in the end
void GRV_ShowFresh(); // what has come since, not more often than an eye can follow

// Sampling (window_run.cpp).
// Goes on with the curves that stay, or from nothing; a recording that was shown gives way.
void GRV_Start(bool isFromNothing);
void GRV_Stop();

// The curves and the table with what is set and measured of each (window_curves.cpp).
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

// The files, each with its question (window_files.cpp).
// True when a recording is shown now; *message is one line for the user in any case.
bool GRF_OpenData(GRA_Setup *setup, GRS_Source *source, std::string *message);
void GRF_SaveData(const GRA_Setup &setup, const GRS_Source &source);
// True when there are other settings, and nothing that was sampled any more.
bool GRF_OpenSetup(GRA_Setup *setup, GRS_Source *source);
void GRF_SaveSetup(GRA_Setup *setup);
// "" when the user gave up, or was told why it cannot be.
std::string GRF_BeginRecording(const GRA_Setup &setup, GRS_Source *source);

#endif
