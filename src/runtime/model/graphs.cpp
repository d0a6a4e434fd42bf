// Graphs: the curves themselves, what of them is seen, and the cursors on their samples.
#include "runtime/model/model.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double MARGIN = 0.05; // of the height, above and below a fitted curve

template <class Use> int OnGraph(int panel, int control, Use use)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        return c->row->kind == UIK_GRAPH ? use(c) : static_cast<int>(UIE_BAD_TYPE);
    });
}

bool IsPlotGood(const UI_Plot &plot)
{
    return plot.x && plot.y && plot.x->size() == plot.y->size();
}

bool IsHidden(const UI_GraphView &view, int handle)
{
    return std::find(view.hidden.begin(), view.hidden.end(), handle) != view.hidden.end();
}

struct Limits {
    double low = INFINITY, high = -INFINITY;
    void add(double value)
    {
        low = std::min(low, value); // a NaN compares false and changes nothing
        high = std::max(high, value);
    }
    // A single value, or none, gets room around it.
    void take(double margin, double *min, double *max) const
    {
        const bool isEmpty = low > high;
        const double center = isEmpty ? 0.5 : low / 2 + high / 2;
        const double half = isEmpty ? 0.5 : (high / 2 - low / 2) * (1 + 2 * margin);
        const double room = half > 0 ? half : std::max(0.5, std::fabs(center) * 0.01);
        *min = center - room;
        *max = center + room;
    }
};

void Fit(const std::vector<UI_Plot> &plots, UI_GraphView *view)
{
    Limits x, y;
    for (const UI_Plot &plot : plots) {
        if (IsHidden(*view, plot.handle) || plot.x->empty())
            continue;
        x.add(plot.x->front());
        x.add(plot.x->back());
        for (const double value : *plot.y)
            y.add(value);
    }
    x.take(0, &view->xMin, &view->xMax);
    y.take(MARGIN, &view->yMin, &view->yMax);
}

void Snap(const std::vector<UI_Plot> &plots, UI_Cursor *cursor)
{
    const UI_Plot *found = nullptr;
    for (const UI_Plot &plot : plots)
        if (!plot.x->empty() && (found == nullptr || plot.handle == cursor->plot))
            found = &plot;
    if (found == nullptr) {
        cursor->isShown = false;
        cursor->index = -1;
        return;
    }
    const std::vector<double> &x = *found->x;
    auto after = std::lower_bound(x.begin(), x.end(), cursor->x);
    if (after == x.end() || (after != x.begin() && cursor->x - after[-1] <= *after - cursor->x))
        --after;
    cursor->plot = found->handle;
    cursor->index = static_cast<int>(after - x.begin());
    cursor->x = *after;
    cursor->y = (*found->y)[static_cast<size_t>(cursor->index)];
}

// The program has changed the curves: what the user does to the old ones counts no more.
int MarkPlots(MDL_Control *c)
{
    MDL_SettleGraph(c->plots, &c->graph);
    c->graphMask |= VIEW_GRAPH_PLOTS | VIEW_GRAPH_VIEW;
    c->stamp = ++MDL_GetState().stamp;
    MDL_FlushNowAndThen();
    return 0;
}

auto FindPlot(MDL_Control *c, int handle)
{
    return std::find_if(c->plots.begin(), c->plots.end(),
                        [handle](const UI_Plot &plot) { return plot.handle == handle; });
}

} // namespace

bool MDL_IsViewGood(const UI_GraphView &view)
{
    const auto isGood = [](double low, double high) {
        return std::isfinite(low) && std::isfinite(high) && low < high;
    };
    return view.isFitted || (isGood(view.xMin, view.xMax) && isGood(view.yMin, view.yMax));
}

void MDL_SettleGraph(const std::vector<UI_Plot> &plots, UI_GraphView *view)
{
    if (view->isFitted)
        Fit(plots, view);
    for (UI_Cursor &cursor : view->cursors)
        if (cursor.isShown)
            Snap(plots, &cursor);
}

int PlotXY(int panel, int control, const UI_Plot &plot)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        if (!IsPlotGood(plot) || c->plots.size() >= GRAPH_PLOTS_MAX)
            return UIE_BAD_INDEX;
        c->plots.push_back(plot);
        c->plots.back().handle = ++c->lastPlot;
        MarkPlots(c);
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
        found->handle = handle;
        return MarkPlots(c);
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
        return MarkPlots(c);
    });
}

int GetGraphPlots(int panel, int control, std::vector<UI_Plot> *plots)
{
    return OnGraph(panel, control, [&](const MDL_Control *c) {
        *plots = c->plots;
        for (UI_Plot &plot : *plots)
            plot.isVisible = !IsHidden(c->graph, plot.handle);
        return 0;
    });
}

int SetGraphAxes(int panel, int control, const UI_GraphAxes &axes)
{
    return OnGraph(panel, control, [&](MDL_Control *c) {
        c->axes = axes;
        c->graphMask |= VIEW_GRAPH_AXES;
        MDL_FlushNowAndThen();
        return 0;
    });
}

int SetGraphView(int panel, int control, const UI_GraphView &view)
{
    return OnGraph(panel, control, [&](MDL_Control *c) -> int {
        if (!MDL_IsViewGood(view))
            return UIE_BAD_INDEX;
        c->graph = view;
        MDL_SettleGraph(c->plots, &c->graph);
        c->graphMask |= VIEW_GRAPH_VIEW;
        c->stamp = ++MDL_GetState().stamp;
        MDL_FlushNowAndThen();
        return 0;
    });
}

int GetGraphView(int panel, int control, UI_GraphView *view)
{
    MDL_CatchUp();
    return OnGraph(panel, control, [&](const MDL_Control *c) {
        *view = c->graph;
        return 0;
    });
}
