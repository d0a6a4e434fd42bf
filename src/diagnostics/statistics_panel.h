// The communication statistics window: how many messages were answered and how many were
// not, why, since when, and what that pattern usually means. It reads what the
// communication layer counts and owns nothing but what it shows.
#ifndef DIAGNOSTICS_STATISTICS_PANEL_H
#define DIAGNOSTICS_STATISTICS_PANEL_H

#include <string>

constexpr double STATISTICS_PERIOD_S = 1.0;

void DIA_StatisticsOpened();  // the window has been put on the screen: shows the figures at once
void DIA_RefreshStatistics(); // nothing when the window is not open
std::string
DIA_GetStatisticsText(); // everything the window shows, a figure a line, tabs between columns

int DIA_StatisticsPanelCB(int panel, int event, int data);
int DIA_StatisticsResetCB(int panel, int control, int event, int data);
int DIA_StatisticsCopyCB(int panel, int control, int event, int data);
int DIA_StatisticsTimerCB(int panel, int control, int event, int data);

#endif
