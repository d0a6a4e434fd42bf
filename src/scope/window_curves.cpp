#include "scope/window_curves.h"

#include "runtime/userint.h"
#include "scope/measure.h"
#include "ui/resource.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

std::vector<int> handles;                 // of the recording's curves, in their order
SCP_ChannelSetup triggerChannel;          // as it was scaled when the marks were drawn
double shownLevel = 0, shownPosition = 0; // as the graph has them

UI_Samples TimesOf(const SCP_Capture &capture)
{
    std::vector<double> times(capture.traces.empty() ? 0 : capture.traces[0].samples.size());
    for (size_t i = 0; i < times.size(); ++i)
        times[i] = SCP_TimeOf(capture, i);
    return std::make_shared<const std::vector<double>>(std::move(times));
}

void AddPlots(const SCP_Capture &capture, bool isReference, std::vector<UI_Plot> *plots)
{
    const UI_Samples times = TimesOf(capture);
    for (const SCP_Trace &trace : capture.traces) {
        UI_Plot plot;
        plot.x = times;
        plot.y = std::make_shared<const std::vector<double>>(trace.samples);
        plot.name = trace.name + (isReference ? " (reference)" : "");
        plot.unit = trace.unit;
        plot.isDashed = isReference;
        plots->push_back(plot);
    }
}

double LengthOf(const SCP_Capture &capture)
{
    return capture.traces.empty()
               ? 0
               : static_cast<double>(capture.traces[0].samples.size()) / capture.rate;
}

std::string Cell(bool isKnown, double value)
{
    return isKnown ? SCW_NumberText(value) : "-";
}

} // namespace

std::string SCW_NumberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

void SCW_ShowCurves(const SCP_Setup &setup, const SCP_Capture &capture,
                    const SCP_Capture &reference)
{
    std::vector<UI_Plot> plots, old;
    AddPlots(capture, false, &plots);
    AddPlots(reference, true, &plots);
    GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &old);
    // A curve that is there again keeps its handle, and with it its cursors and whether it
    // is hidden.
    const bool isSame =
        std::equal(old.begin(), old.end(), plots.begin(), plots.end(),
                   [](const UI_Plot &one, const UI_Plot &other) { return one.name == other.name; });
    if (!isSame)
        DeleteGraphPlot(PANEL_SCOPE, SCOPE_GRAPH, 0);
    handles.clear();
    for (size_t i = 0; i < plots.size(); ++i) {
        int handle = isSame ? old[i].handle : 0;
        if (isSame)
            ReplacePlot(PANEL_SCOPE, SCOPE_GRAPH, handle, plots[i]);
        else
            handle = PlotXY(PANEL_SCOPE, SCOPE_GRAPH, plots[i]);
        if (i < capture.traces.size())
            handles.push_back(handle);
    }
    SCW_ShowMarks(setup, capture);
    SCW_ShowMeasures(capture);
}

void SCW_ShowMarks(const SCP_Setup &setup, const SCP_Capture &capture)
{
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    triggerChannel = setup.channels[0];
    const bool isShown = !capture.traces.empty() && setup.mode != 2;
    view.level = {isShown, setup.level * triggerChannel.factor + triggerChannel.offset};
    view.position = {isShown, SCP_TimeOf(capture, 0) + LengthOf(capture) * setup.position / 100};
    shownLevel = view.level.value;
    shownPosition = view.position.value;
    SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view);
}

void SCW_ReadMarks(const SCP_Capture &capture, SCP_Setup *setup)
{
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    // Only what was dragged: the way there and back would round what was typed.
    if (view.level.isShown && view.level.value != shownLevel)
        setup->level = (view.level.value - triggerChannel.offset) / triggerChannel.factor;
    const double length = LengthOf(capture);
    if (view.position.isShown && view.position.value != shownPosition && length > 0)
        setup->position = std::clamp(
            std::round((view.position.value - SCP_TimeOf(capture, 0)) / length * 100), 0.0, 100.0);
    shownLevel = view.level.value;
    shownPosition = view.position.value;
}

void SCW_ShowMeasures(const SCP_Capture &capture)
{
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    std::vector<UI_Plot> plots;
    GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &plots);
    const bool isBetween = view.cursors[0].isShown && view.cursors[1].isShown;
    const double from = isBetween ? std::min(view.cursors[0].x, view.cursors[1].x) : view.xMin;
    const double to = isBetween ? std::max(view.cursors[0].x, view.cursors[1].x) : view.xMax;
    SetListColumns(PANEL_SCOPE, SCOPE_MEASURES,
                   {{isBetween ? "Between the cursors" : "In view", 110},
                    {"Min", 68, UIA_RIGHT},
                    {"Max", 68, UIA_RIGHT},
                    {"Peak-peak", 68, UIA_RIGHT},
                    {"Mean", 68, UIA_RIGHT},
                    {"RMS", 68, UIA_RIGHT},
                    {"Period s", 68, UIA_RIGHT},
                    {"Hz", 68, UIA_RIGHT},
                    {"Duty %", 56, UIA_RIGHT}});
    ClearListCtrl(PANEL_SCOPE, SCOPE_MEASURES);
    for (size_t i = 0; i < capture.traces.size() && i < plots.size(); ++i) {
        const SCP_Measures m = SCP_Measure(*plots[i].x, *plots[i].y, from, to);
        const bool isKnown = m.count > 0, isPeriodic = m.period > 0;
        const std::string unit = plots[i].unit.empty() ? "" : " [" + plots[i].unit + "]";
        InsertListItem(PANEL_SCOPE, SCOPE_MEASURES, -1, plots[i].name, static_cast<int>(i));
        SetListCells(PANEL_SCOPE, SCOPE_MEASURES, static_cast<int>(i),
                     {{plots[i].name + unit, UIS_NORMAL, ""},
                      {Cell(isKnown, m.min), UIS_NORMAL, ""},
                      {Cell(isKnown, m.max), UIS_NORMAL, ""},
                      {Cell(isKnown, m.max - m.min), UIS_NORMAL, ""},
                      {Cell(isKnown, m.mean), UIS_NORMAL, ""},
                      {Cell(isKnown, m.rms), UIS_NORMAL, ""},
                      {Cell(isPeriodic, m.period), UIS_NORMAL, ""},
                      {Cell(isPeriodic, 1 / m.period), UIS_NORMAL, ""},
                      {Cell(isPeriodic, m.duty * 100), UIS_NORMAL, ""}});
    }
}
