// The window of the flash loader: a HEX file is chosen and checked, programmed into the
// target's flash and compared with it. It shows an LDR_Job, which it owns and which lives on
// while the window is closed, and decides nothing but what to ask.
#ifndef LOADER_WINDOW_H
#define LOADER_WINDOW_H

#include "loader/job.h"
#include "runtime/userint.h"

#include <vector>

void LDR_WindowOpened(); // the panel has been shown
void LDR_ResetWindow();  // forgets file and flash; for tests

int LDR_PanelCB(int panel, int event, int data);
int LDR_ChooseCB(int panel, int control, int event, int data);
int LDR_ProgramCB(int panel, int control, int event, int data);
int LDR_CompareCB(int panel, int control, int event, int data);

// --- its bar: the file's ranges in the target's address space, and how far each has come ----
// Bytes from address 0 on that the bar stands for: a power of two that holds the file.
uint32_t LDR_GetBarSpan(const LDR_Job &job);
// Ranges too close to be told apart on a screen are one segment. At most UI_SEGMENTS_MAX.
std::vector<UI_Segment> LDR_MakeBarSegments(const LDR_Job &job);

#endif
