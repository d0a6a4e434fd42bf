// What the files of the scope's window share: what it holds, what it shows, the steps of a
// recording and the curves. Only they call it; the others know window.h.
#ifndef SCOPE_WINDOW_PARTS_H
#define SCOPE_WINDOW_PARTS_H

#include "scope/capture.h"
#include "scope/session.h"

#include <string>

struct SCP_WindowState {
    SCP_Setup setup;                // as the fields have it; the target may have been told another
    SCP_Capture capture, reference; // the last recording, and one to compare it with
    size_t chosen = 0;              // channel whose fields are shown
    bool isRunning = false;         // the timer follows what the target does
};
extern SCP_WindowState SCP_windowState;

constexpr char SCP_NOT_FOUND_TEXT[] = "not found yet"; // state before the first init

// The fields (window.cpp).
void SCP_ShowStatus(const std::string &text);      // how a step ended
void SCP_ShowWindowState(const std::string &text); // what the scope does
void SCP_ShowButtons();
void SCP_ShowSetup(); // all fields, and the buttons

// The steps (window_run.cpp).
void SCP_Stop();    // follows no longer; the target goes on
bool SCP_IsFound(); // on the station that is current now
// One of the session's steps with the setup, at once where communication is on and the scope
// was found; else the next run does it.
void SCP_TellTarget(int (*step)(const SCP_Setup &setup, const SCP_View &view));

// The right half of the window (window_curves.cpp): the recording and the reference as curves,
// the trigger's marks and the list of what is measured.
// The trace whose spectrum stands in place of the curves; -1 the curves.
void SCP_ChooseSpectrum(int trace);
// Draws everything anew; zoom, cursors and hidden curves stay as the user has them.
void SCP_ShowCurves();
// Level and position of the setup where they lie on the recording.
void SCP_ShowMarks();
// Back into the setup, when the user has dragged them: the level as the target counts.
void SCP_ReadMarks();
// Between the cursors when both are shown, else over what is in view.
void SCP_ShowMeasures();
std::string SCP_CurveNumberText(double value); // six digits

#endif
