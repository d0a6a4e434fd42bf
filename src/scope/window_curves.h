// The right half of the scope's window: the recording and the reference as curves, the
// trigger's marks and the list of what is measured. Only the window calls it.
#ifndef SCOPE_WINDOW_CURVES_H
#define SCOPE_WINDOW_CURVES_H

#include "scope/capture.h"

#include <string>

// The trace whose spectrum stands in place of the curves; -1 the curves.
void SCW_ChooseSpectrum(int trace);
// Draws everything anew; zoom, cursors and hidden curves stay as the user has them.
void SCW_ShowCurves(const SCP_Setup &setup, const SCP_Capture &capture,
                    const SCP_Capture &reference);
// Level and position of the setup where they lie on the recording.
void SCW_ShowMarks(const SCP_Setup &setup, const SCP_Capture &capture);
// Back into the setup, when the user has dragged them: the level as the target counts.
void SCW_ReadMarks(const SCP_Capture &capture, SCP_Setup *setup);
// Between the cursors when both are shown, else over what is in view.
void SCW_ShowMeasures(const SCP_Capture &capture);
std::string SCW_NumberText(double value); // six digits

#endif
