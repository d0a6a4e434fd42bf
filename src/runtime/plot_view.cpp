// Everything here is a formula on copies: the model and a window each settle their own view after
// each change, and because they do it alike neither needs to tell the other.
#include "runtime/plot_view.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double MARGIN = 0.05;        // of the height, above and below a fitted curve
constexpr double FINEST_SHARE = 1e-12; // of the value: below, neighbouring numbers coincide
constexpr double WIDEST = 1e150;       // of a limit; its square is still a number
constexpr double NARROWEST = 1e-300;
constexpr double ROOM_SHARE = 0.01;    // of the value, on each side of a single one
constexpr size_t SEARCHED_MAX = 20000; // samples of a curve that are looked at to fit its height

struct Extent {
    double low = INFINITY, high = -INFINITY;
    void add(double value)
    {
        low = std::min(low, value); // a NaN compares false and changes nothing
        high = std::max(high, value);
    }
    bool isEmpty() const
    {
        return low > high;
    }
    // A single value, or none, gets room around it.
    UI_Limits limits(double margin) const
    {
        // Halved first: the sum of two large numbers may be none.
        const double center = isEmpty() ? 0.5 : low / 2 + high / 2;
        const double half = isEmpty() ? 0.5 : (high / 2 - low / 2) * (1 + 2 * margin);
        const double room = half > 0 ? half : std::max(0.5, std::fabs(center) * ROOM_SHARE);
        return {center - room, center + room};
    }
};

// To the nearest sample of its plot. A cursor whose plot has gone stands on the first there is.
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

// Of the samples between the limits; of a long curve as a whole, for it would take too long.
Extent HeightsBetween(const UI_Plot &plot, const UI_Limits &x)
{
    Extent extent;
    if (plot.y->size() > SEARCHED_MAX) {
        extent.low = plot.low;
        extent.high = plot.high;
        return extent;
    }
    const std::vector<double> &times = *plot.x;
    auto from = std::lower_bound(times.begin(), times.end(), x.min) - times.begin();
    auto to = std::upper_bound(times.begin(), times.end(), x.max) - times.begin();
    from -= from > 0 ? 1 : 0; // the lines to the neighbours are in view too
    to += to < static_cast<std::ptrdiff_t>(times.size()) ? 1 : 0;
    std::for_each(plot.y->begin() + from, plot.y->begin() + to,
                  [&](double value) { extent.add(value); });
    return extent;
}

bool IsSeen(const UI_Plot &plot, const UI_GraphView &view)
{
    return !plot.x->empty() && !PLOT_IsHidden(view, plot.handle);
}

} // namespace

int PLOT_PaneOf(const UI_GraphView &view, int pane)
{
    return view.layout == GRAPH_TOGETHER ? 0 : std::clamp(pane, 0, GRAPH_PANES_MAX - 1);
}

bool PLOT_IsHidden(const UI_GraphView &view, int handle)
{
    return std::find(view.hidden.begin(), view.hidden.end(), handle) != view.hidden.end();
}

bool PLOT_IsGoodSample(const UI_GraphView &view)
{
    const auto isGood = [](const UI_Limits &limits) {
        return std::isfinite(limits.min) && std::isfinite(limits.max) && limits.min < limits.max;
    };
    return (view.isXFitted || isGood(view.x)) &&
           (view.isYFitted || std::all_of(std::begin(view.y), std::end(view.y), isGood));
}

bool PLOT_HasSamples(const std::vector<UI_Plot> &plots, const UI_GraphView &view)
{
    return std::any_of(plots.begin(), plots.end(),
                       [&](const UI_Plot &plot) { return IsSeen(plot, view); });
}

void PLOT_MeasurePlot(UI_Plot *plot)
{
    Extent extent;
    for (const double value : *plot->y)
        extent.add(value);
    plot->low = extent.low;
    plot->high = extent.high;
}

void PLOT_SettleView(const std::vector<UI_Plot> &plots, UI_GraphView *view)
{
    // First across: which heights are in view depends on it. x rises, so its ends say all.
    Extent x, y[GRAPH_PANES_MAX];
    for (const UI_Plot &plot : plots) {
        if (!IsSeen(plot, *view))
            continue;
        x.add(plot.x->front());
        x.add(plot.x->back());
    }
    if (view->isXFitted)
        view->x = x.limits(0);
    else if (view->isFollowing && !x.isEmpty()) // the newest sample at the right edge
        view->x = {x.high - (view->x.max - view->x.min), x.high};
    for (const UI_Plot &plot : plots) {
        if (!view->isYFitted || !IsSeen(plot, *view))
            continue;
        const Extent heights = HeightsBetween(plot, view->x);
        // Curves of one pane share their axis.
        Extent &own = y[PLOT_PaneOf(*view, plot.pane)];
        own.add(heights.low);
        own.add(heights.high);
    }
    for (int i = 0; i < GRAPH_PANES_MAX && view->isYFitted; i++)
        view->y[i] = y[i].limits(MARGIN);
    for (UI_Cursor &cursor : view->cursors)
        if (cursor.isShown)
            Snap(plots, &cursor);
}

void PLOT_Zoom(UI_Limits *limits, double share, double center)
{
    const UI_Limits wished = {center - (center - limits->min) * share,
                              center + (limits->max - center) * share};
    const double width = wished.max - wished.min;
    const double largest = std::max(std::fabs(wished.min), std::fabs(wished.max));
    if (width > largest * FINEST_SHARE && width > NARROWEST && largest < WIDEST)
        *limits = wished;
}
