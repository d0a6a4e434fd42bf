// Graphs: the curves themselves, what of them is seen, and the cursors on their samples.
#include "runtime/model/model.h"

#include <algorithm>

#include "runtime/plot_view.h"

namespace {

template <class Use> int OnGraph(int panel, int control, Use use)
{
    return MDL_OnKind(panel, control, {UIK_GRAPH}, use);
}

bool IsPlotGood(const UI_Plot &plot)
{
    return plot.x && plot.y && plot.x->size() == plot.y->size() && plot.pane >= 0 &&
           plot.pane < GRAPH_PANES_MAX;
}

// There are other curves: what the user does to the old ones counts no more. With other
// samples alone the view is left to the user, who may be moving it this very moment; both
// sides settle it by the same rules.
void MarkPlots(MDL_Control *c, bool isNew)
{
    PLOT_SettleView(c->plots, &c->graph);
    c->graphMask |= VIEW_GRAPH_PLOTS;
    if (isNew) {
        c->graphMask |= VIEW_GRAPH_VIEW;
        MDL_Outdate(c);
    }
    MDL_FlushNowAndThen();
}

auto FindPlot(MDL_Control *c, int handle)
{
    return std::find_if(c->plots.begin(), c->plots.end(),
                        [handle](const UI_Plot &plot) { return plot.handle == handle; });
}

} // namespace

int PlotXY(int panel, int control, const UI_Plot &plot)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        if (!IsPlotGood(plot) || c->plots.size() >= GRAPH_PLOTS_MAX)
            return UIE_BAD_INDEX;
        c->plots.push_back(plot); // shares the numbers, copies none
        c->plots.back().handle = ++c->lastPlot;
        PLOT_MeasurePlot(&c->plots.back());
        MarkPlots(c, true);
        return c->lastPlot;
    });
}

int ReplacePlot(int panel, int control, int handle, const UI_Plot &plot)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        const auto found = FindPlot(c, handle);
        if (found == c->plots.end() || !IsPlotGood(plot))
            return UIE_BAD_INDEX;
        *found = plot;
        found->handle = handle; // cursors and hidden curves know it by that
        PLOT_MeasurePlot(&*found);
        MarkPlots(c, false);
        return 0;
    });
}

int DeleteGraphPlot(int panel, int control, int handle)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        const auto found = FindPlot(c, handle);
        if (handle != 0 && found == c->plots.end())
            return UIE_BAD_INDEX;
        if (handle == 0)
            c->plots.clear();
        else
            c->plots.erase(found);
        MarkPlots(c, true);
        return 0;
    });
}

int GetGraphPlots(int panel, int control, std::vector<UI_Plot> *plots)
{
    return OnGraph(panel, control, [&](const MDL_Control *c) {
        *plots = c->plots;
        // What the user has hidden in the legend is a matter of the view.
        for (UI_Plot &plot : *plots)
            plot.isVisible = !PLOT_IsHidden(c->graph, plot.handle);
    });
}

int SetGraphAxes(int panel, int control, const UI_GraphAxes &axes)
{
    return OnGraph(panel, control, [&](MDL_Control *c) {
        c->axes = axes;
        c->graphMask |= VIEW_GRAPH_AXES;
        MDL_FlushNowAndThen();
    });
}

int SetGraphView(int panel, int control, const UI_GraphView &view)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        if (!PLOT_IsGoodSample(view))
            return UIE_BAD_INDEX;
        c->graph = view;
        PLOT_SettleView(c->plots, &c->graph);
        c->graphMask |= VIEW_GRAPH_VIEW;
        MDL_Outdate(c);
        MDL_FlushNowAndThen();
        return 0;
    });
}

int GetGraphView(int panel, int control, UI_GraphView *view)
{
    MDL_CatchUp(); // zoomed a moment ago
    return OnGraph(panel, control, [&](const MDL_Control *c) { *view = c->graph; });
}
