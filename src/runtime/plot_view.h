// What of a graph is in view: limits that follow the curves, cursors that stand on samples.
// The model and the view of a window keep the same rules by calling this, each for its own
// copy; knows nothing of how it is drawn.
#ifndef RUNTIME_PLOT_VIEW_H
#define RUNTIME_PLOT_VIEW_H

#include "runtime/userint.h"

// The pane whose limits hold for a plot's or mark's pane: 0 while all are together.
int PLOT_PaneOf(const UI_GraphView &view, int pane);
bool PLOT_IsHidden(const UI_GraphView &view, int handle);
// Limits are finite and rise.
bool PLOT_IsGoodSample(const UI_GraphView &view);
// Whether there is a sample to be seen.
bool PLOT_HasSamples(const std::vector<UI_Plot> &plots, const UI_GraphView &view);
void PLOT_MeasurePlot(UI_Plot *plot); // its low and high
// Fitted and following limits by the plots, cursors to the nearest sample of their plot. A
// cursor without a plot goes away.
void PLOT_SettleView(const std::vector<UI_Plot> &plots, UI_GraphView *view);
// Narrower (share < 1) or wider, `center` staying where it is. Limits too narrow or too wide
// for a picture stay as they are.
void PLOT_Zoom(UI_Limits *limits, double share, double center);

#endif
