// A picture is handed over as it is in view; which curves there are, and what the table's columns
// are called, is told only when it has changed, for the view keeps what the user did to them.
#include "graphs/window_parts.h"

#include "runtime/userint.h"
#include "scope/measure.h"
#include "text/numbers.h"
#include "text/words.h"
#include "ui/resource.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr size_t UNIT_MAX_CHARS = 20;
constexpr uint32_t LIVE_MS = 50, STILL_MS = 500; // between two pictures
constexpr double SCREEN_COLUMNS = 1200;          // of pixels: a screen has hardly more

std::string NumberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

UI_GraphView GetView()
{
    UI_GraphView view;
    GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &view);
    return view;
}

UI_Plot MakePlot(const GRA_Curve &curve, GRA_Points *points)
{
    UI_Plot plot;
    plot.name = curve.item.name;
    plot.unit = curve.unit;
    plot.pane = curve.pane;
    plot.x = std::make_shared<const std::vector<double>>(std::move(points->times));
    plot.y = std::make_shared<const std::vector<double>>(std::move(points->values));
    return plot;
}

void ShowMarkers(const GRA_Source &source)
{
    UI_GraphAxes axes;
    axes.xLabel = source.isFile ? "time [h:m:s]" : "time since the start [h:m:s]";
    axes.isTime = true;
    axes.isLive = !source.isFile;
    for (const GRA_Marker &marker : source.markers)
        axes.notes.push_back({marker.time, marker.text});
    // The axes are drawn anew by this: not twenty times a second for nothing.
    static uint64_t shown = 0;
    static bool wasFile = false, isShown = false;
    const uint64_t count = source.markerCount + axes.notes.size(); // a new start has none
    if (isShown && shown == count && wasFile == source.isFile)
        return;
    isShown = true;
    shown = count;
    wasFile = source.isFile;
    SetGraphAxes(PANEL_GRAPH, STRIP_GRAPH, axes);
}

// The newest sample of a curve, as the table has it.
UI_Cell LastCell(const GRA_Source &source, const GRA_Setup &setup, size_t index)
{
    const SMP_Store &store = source.sampler.store;
    if (source.isFile || index >= store.rings.size() ||
        store.rings[index].first == store.rings[index].end)
        return {"", UIS_NORMAL, ""};
    const SMP_Sample last = SMP_GetSample(store, index, store.rings[index].end - 1);
    if (last.state != SMP_GOOD)
        return {"failed", UIS_WARNING, SMP_ReasonText(store, last.state)};
    // Scaled as the curve is: what the line has given stands in the watch list.
    const GRA_Scale &scale = setup.curves[index].scale;
    return {NumberText(SMP_Number(store.items[index], last.bits) * scale.factor + scale.offset),
            UIS_NORMAL, ""};
}

void ShowColumns(bool isBetween)
{
    SetListColumns(PANEL_GRAPH, STRIP_CURVES,
                   {{isBetween ? SCP_BETWEEN_TEXT : "In view", 116},
                    {"Unit", 40, UIA_LEFT, true},
                    {"Factor", 50, UIA_RIGHT, true},
                    {"Offset", 50, UIA_RIGHT, true},
                    {"Pane", 36, UIA_RIGHT, true},
                    {"Last", 82, UIA_RIGHT},
                    {"Min", 82, UIA_RIGHT},
                    {"Max", 82, UIA_RIGHT},
                    {"Average", 82, UIA_RIGHT},
                    {"RMS", 82, UIA_RIGHT},
                    {"Std dev", 82, UIA_RIGHT},
                    {"Period s", 82, UIA_RIGHT},
                    {"Hz", 82, UIA_RIGHT},
                    {"Slope /s", 82, UIA_RIGHT},
                    {"Samples", 60, UIA_RIGHT},
                    {"Failed", 50, UIA_RIGHT}});
}

std::vector<UI_Cell> MakeCells(const GRA_Source &source, const GRA_Setup &setup, size_t index,
                               const GRA_Measures &m, bool isMeasured)
{
    const GRA_Curve &curve = setup.curves[index];
    const auto cell = [&](bool isKnown, double value) {
        return UI_Cell{isMeasured && m.count > 0 && isKnown ? NumberText(value) : "-", UIS_NORMAL,
                       isMeasured ? "" : "too many samples to measure, or not all in memory"};
    };
    // A recording's columns need no place; a name without one is sampled as failed.
    const bool isKnownPlace = source.isFile || curve.item.address != SMP_NO_ADDRESS;
    return {
        {curve.item.name, isKnownPlace ? UIS_NORMAL : UIS_WARNING,
         isKnownPlace ? "" : "no map knows this name"},
        {curve.unit, UIS_NORMAL, ""},
        {NumberText(curve.scale.factor), UIS_NORMAL, ""},
        {NumberText(curve.scale.offset), UIS_NORMAL, ""},
        {std::to_string(curve.pane + 1), UIS_NORMAL, ""},
        LastCell(source, setup, index),
        cell(true, m.min),
        cell(true, m.max),
        cell(true, m.mean),
        cell(true, m.rms),
        cell(true, m.deviation),
        cell(m.hasShape && m.period > 0, m.period),
        cell(m.hasShape && m.period > 0, 1 / m.period),
        cell(m.hasShape, m.slope),
        cell(true, static_cast<double>(m.count)),
        {isMeasured ? std::to_string(m.failed) : "-", m.failed > 0 ? UIS_WARNING : UIS_NORMAL, ""}};
}

} // namespace

int GRA_ShowCurves(GRA_Source *source, const GRA_Setup &setup)
{
    const UI_GraphView view = GetView();
    // A view that fits or follows is moved by the graph once the points are there; they are to be
    // those of where it will be.
    double from = view.x.min, to = view.x.max, first = 0, last = 0;
    if (GRA_GetSourceExtent(*source, &first, &last)) {
        if (view.isXFitted) {
            from = first;
            to = last;
        } else if (view.isFollowing) {
            from = last - (to - from);
            to = last;
        }
    }
    std::vector<GRA_Points> points;
    const int result = GRA_DrawSource(source, setup, from, to, &points);
    if (result < 0)
        return result;
    std::vector<UI_Plot> plots, old;
    for (size_t i = 0; i < points.size(); ++i)
        plots.push_back(MakePlot(setup.curves[i], &points[i]));
    GetGraphPlots(PANEL_GRAPH, STRIP_GRAPH, &old);
    // A curve that stays keeps its handle, and with it its cursors and whether it is hidden.
    const bool isSame = std::equal(
        old.begin(), old.end(), plots.begin(), plots.end(), [](const UI_Plot &a, const UI_Plot &b) {
            return a.name == b.name && a.unit == b.unit && a.pane == b.pane;
        });
    if (!isSame)
        DeleteGraphPlot(PANEL_GRAPH, STRIP_GRAPH, 0);
    for (size_t i = 0; i < plots.size(); ++i) {
        if (isSame)
            ReplacePlot(PANEL_GRAPH, STRIP_GRAPH, old[i].handle, plots[i]);
        else
            PlotXY(PANEL_GRAPH, STRIP_GRAPH, plots[i]);
    }
    ShowMarkers(*source);
    return 0;
}

void GRA_ShowTable(GRA_Source *source, const GRA_Setup &setup)
{
    const UI_GraphView view = GetView();
    const bool isBetween = view.cursors[0].isShown && view.cursors[1].isShown;
    const double one = view.cursors[0].x, two = view.cursors[1].x;
    std::vector<GRA_Measures> measures;
    const bool isMeasured =
        GRA_MeasureSource(source, setup, isBetween ? std::min(one, two) : view.x.min,
                          isBetween ? std::max(one, two) : view.x.max, &measures) == 0;
    // Only when the first one is called something else, or at the beginning.
    static int columnsFor = -1;
    int count = 0;
    GetNumListItems(PANEL_GRAPH, STRIP_CURVES, &count);
    std::vector<UI_Column> columns;
    GetListColumns(PANEL_GRAPH, STRIP_CURVES, &columns);
    if (columnsFor != (isBetween ? 1 : 0) || columns.empty())
        ShowColumns(isBetween);
    columnsFor = isBetween ? 1 : 0;
    // Lines are kept, and only their cells set: the choice of the user stays.
    const int wanted = static_cast<int>(setup.curves.size());
    for (; count < wanted; ++count)
        InsertListItem(PANEL_GRAPH, STRIP_CURVES, -1, "", count);
    if (count > wanted)
        DeleteListItem(PANEL_GRAPH, STRIP_CURVES, wanted, count - wanted);
    for (int i = 0; i < wanted; ++i) {
        const auto index = static_cast<size_t>(i);
        SetListCells(PANEL_GRAPH, STRIP_CURVES, i,
                     MakeCells(*source, setup, index, measures[index], isMeasured));
    }
}

void GRA_SetView(double from, double to, bool isFollowing)
{
    UI_GraphView view = GetView();
    view.isXFitted = false;
    view.isFollowing = isFollowing;
    view.x = {from, to};
    SetGraphView(PANEL_GRAPH, STRIP_GRAPH, view);
}

void GRA_FitAll()
{
    // Cursors too: they would stand at times of other curves.
    UI_GraphView view = GetView();
    view.isXFitted = view.isYFitted = true;
    view.isFollowing = false;
    view.cursors[0].isShown = view.cursors[1].isShown = false;
    SetGraphView(PANEL_GRAPH, STRIP_GRAPH, view);
}

uint32_t GRA_GetPictureMs()
{
    const UI_GraphView view = GetView();
    if (!view.isFollowing && !view.isXFitted)
        return STILL_MS; // what comes is not in view, or hardly
    // A column of the screen is so much time: sooner nothing could be seen to have moved.
    const double columnMs = (view.x.max - view.x.min) * 1000 / SCREEN_COLUMNS;
    return static_cast<uint32_t>(std::clamp<double>(columnMs, LIVE_MS, STILL_MS));
}

bool GRA_IsFollowing()
{
    return GetView().isFollowing;
}

void GRA_GetTimes(double *from, double *to)
{
    const UI_GraphView view = GetView();
    *from = view.x.min;
    *to = view.x.max;
}

std::vector<size_t> GRA_GetChosen(size_t count)
{
    // The table may still have lines of curves that are gone.
    std::vector<int> lines;
    GetListSelection(PANEL_GRAPH, STRIP_CURVES, &lines);
    std::vector<size_t> chosen;
    for (const int line : lines)
        if (line >= 0 && static_cast<size_t>(line) < count)
            chosen.push_back(static_cast<size_t>(line));
    return chosen;
}

bool GRA_EditCell(GRA_Setup *setup)
{
    // A line that is gone meanwhile is no mistake of the user's.
    int index = 0, column = 0;
    std::string text;
    if (GetEditedCell(PANEL_GRAPH, STRIP_CURVES, &index, &column, &text) < 0 || index < 0 ||
        static_cast<size_t>(index) >= setup->curves.size())
        return true;
    GRA_Curve &curve = setup->curves[static_cast<size_t>(index)];
    double number = 0;
    const bool isNumber = TXT_ParseNumber(text, &number);
    if (column == GRA_COLUMN_UNIT)
        curve.unit = TXT_Visible(text.substr(0, UNIT_MAX_CHARS)); // any text is a unit
    else if (column == GRA_COLUMN_FACTOR && isNumber && number != 0)
        curve.scale.factor = number;
    else if (column == GRA_COLUMN_OFFSET && isNumber)
        curve.scale.offset = number;
    else if (column == GRA_COLUMN_PANE && isNumber && number >= 1 && number <= GRA_CURVES_MAX)
        curve.pane = static_cast<int>(number) - 1;
    else
        return false;
    return true;
}
