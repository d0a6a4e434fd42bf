// The files of the graph window, each with its question: recordings, views, settings. Only the
// window calls it.
#ifndef GRAPHS_WINDOW_FILES_H
#define GRAPHS_WINDOW_FILES_H

#include "graphs/source.h"

#include <string>

// True when a recording is shown now; *message is one line for the user in any case.
bool GRF_OpenData(GRA_Setup *setup, GRS_Source *source, std::string *message);
void GRF_SaveData(const GRA_Setup &setup, const GRS_Source &source);
// True when there are other settings, and nothing that was sampled any more.
bool GRF_OpenSetup(GRA_Setup *setup, GRS_Source *source);
void GRF_SaveSetup(GRA_Setup *setup);
// "" when the user gave up, or was told why it cannot be.
std::string GRF_BeginRecording(const GRA_Setup &setup, GRS_Source *source);

#endif
