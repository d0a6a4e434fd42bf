// What the files of the graph window share: what it owns, what it shows, its sampling, the curves
// with their table, and its files. Only they call it; the others know window.h.
#ifndef GRAPHS_WINDOW_PARTS_H
#define GRAPHS_WINDOW_PARTS_H

#include "graphs/source.h"

#include <string>

extern GRA_Setup GRA_setup;
extern GRA_Source GRA_source;

// What is shown around the curves (window.cpp).
void GRA_ShowMessage(const std::string &text);
void GRA_ShowState(); // what the source does
void GRA_ShowButtons();
void GRA_ShowAll();   // also what is told in the end
void GRA_ShowFresh(); // what has come since, not more often than an eye can follow

// Sampling (window_run.cpp).
// Goes on with the curves that stay, or from nothing; a recording that was shown gives way.
void GRA_Start(bool isFromNothing);
void GRA_Stop();

// The curves and the table with what is set and measured of each (window_curves.cpp).
enum GRA_Column { // of the table
    GRA_COLUMN_NAME,
    GRA_COLUMN_UNIT,
    GRA_COLUMN_FACTOR,
    GRA_COLUMN_OFFSET,
    GRA_COLUMN_PANE,
    GRA_COLUMN_LAST,
    GRA_COLUMN_MEASURED, // the first of several
};
// The points for what is in view now. 0, or a code of REC_ReadCurves.
int GRA_ShowCurves(GRA_Source *source, const GRA_Setup &setup);
// The table, measured between the cursors when both are shown, else over what is in view.
void GRA_ShowTable(GRA_Source *source, const GRA_Setup &setup);
// A cell of the table was edited. False when it cannot hold this text: nothing has changed.
bool GRA_EditCell(GRA_Setup *setup);
// What is in view: its times, and whether the newest sample stays at the right edge.
void GRA_SetView(double from, double to, bool isFollowing);
void GRA_FitAll();
bool GRA_IsFollowing();
// How long a picture will do while samples come: until another column of it can be seen.
uint32_t GRA_GetPictureMs();
void GRA_GetTimes(double *from, double *to);
// The table's chosen curves, by rising index.
std::vector<size_t> GRA_GetChosen(size_t count);

// The files, each with its question (window_files.cpp).
// True when a recording is shown now; *message is one line for the user in any case.
bool GRA_OpenData(GRA_Setup *setup, GRA_Source *source, std::string *message);
void GRA_SaveData(const GRA_Setup &setup, const GRA_Source &source);
// True when there are other settings, and nothing that was sampled any more.
bool GRA_OpenSetup(GRA_Setup *setup, GRA_Source *source);
void GRA_AskAndSaveSetup(GRA_Setup *setup);
// "" when the user gave up, or was told why it cannot be.
std::string GRA_BeginRecording(const GRA_Setup &setup, GRA_Source *source);

#endif
