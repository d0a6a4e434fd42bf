// The communication statistics window: how many messages were answered and how many were
// not, why, since when, and what that pattern usually means. It reads what the
// communication layer counts and owns nothing but what it shows.
#ifndef DIAGNOSTICS_STATISTICS_PANEL_H
#define DIAGNOSTICS_STATISTICS_PANEL_H

#include <string>

constexpr double STATISTICS_PERIOD_S = 1.0;

void STP_Opened();      // the window has been put on the screen: shows the figures at once
void STP_Refresh();     // nothing when the window is not open
std::string STP_Text(); // everything the window shows, a figure a line, tabs between columns

int STP_PanelCB(int panel, int event, int data);
int STP_ResetCB(int panel, int control, int event, int data);
int STP_CopyCB(int panel, int control, int event, int data);
int STP_TimerCB(int panel, int control, int event, int data);

#endif
