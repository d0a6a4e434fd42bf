// Curves go to the graph as shared samples, which the view does not copy; zoom and cursors are
// the graph's own. Here is only what belongs to them: names, panes, marks, measures.
#include "runtime/userint.h"
#include "scope/measure.h"
#include "scope/window_parts.h"
#include "ui/resource.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

SCP_ChannelSetup triggerChannel;          // as it was scaled when the marks were drawn
double shownLevel = 0, shownPosition = 0; // as the graph has them, scaled; seconds
int spectrumOf = -1;                      // trace; -1: the curves are shown

// Seconds, one a sample: all traces of a recording share them.
std::vector<double> TimesOf(const SCP_Capture &capture)
{
    std::vector<double> times(capture.traces.empty() ? 0 : capture.traces[0].samples.size());
    for (size_t i = 0; i < times.size(); ++i)
        times[i] = SCP_TimeOf(capture, i);
    return times;
}

UI_Samples Share(std::vector<double> values)
{
    return std::make_shared<const std::vector<double>>(std::move(values));
}

// A curve to compare with has the pane of the one it is compared with.
int PaneOf(const std::string &name, size_t index)
{
    const std::vector<SCP_Trace> &traces = SCP_windowState.capture.traces;
    for (size_t i = 0; i < traces.size(); ++i)
        if (traces[i].name == name)
            index = i;
    return static_cast<int>(std::min<size_t>(index, GRAPH_PANES_MAX - 1));
}

void AddCurves(const SCP_Capture &from, bool isReference, std::vector<UI_Plot> *plots)
{
    const UI_Samples times = Share(TimesOf(from));
    for (size_t i = 0; i < from.traces.size(); ++i) {
        const SCP_Trace &trace = from.traces[i];
        UI_Plot plot;
        plot.x = times;
        plot.y = Share(trace.samples);
        // Told from each other by the name as well: dashes are lost in a dense curve.
        plot.name = trace.name + (isReference ? " (reference)" : "");
        plot.unit = trace.unit;
        plot.isDashed = isReference;
        plot.pane = PaneOf(trace.name, i);
        plots->push_back(plot);
    }
}

// Of the trace, and of the reference's of that name.
void AddSpectra(const SCP_Capture &from, const std::string &name, bool isReference,
                std::vector<UI_Plot> *plots)
{
    // Too short, or with samples that were not read, it has none: no curve then.
    for (const SCP_Trace &trace : from.traces) {
        SCP_Spectrum spectrum;
        if (trace.name != name || SCP_MakeSpectrum(trace.samples, from.rate, &spectrum) < 0)
            continue;
        UI_Plot plot;
        plot.x = Share(spectrum.frequencies);
        plot.y = Share(spectrum.amplitudes);
        plot.name = name + " (" + (isReference ? "reference, " : "") + "peak " +
                    SCP_CurveNumberText(spectrum.peak) + " at " +
                    SCP_CurveNumberText(spectrum.peakHz) + " Hz)";
        plot.unit = trace.unit;
        plot.isDashed = isReference;
        plots->push_back(plot);
    }
}

// A curve that is there again keeps its handle, and with it its cursors and whether it is
// hidden.
void Draw(const std::vector<UI_Plot> &plots)
{
    std::vector<UI_Plot> old;
    GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &old);
    const bool isSame =
        std::equal(old.begin(), old.end(), plots.begin(), plots.end(),
                   [](const UI_Plot &one, const UI_Plot &other) { return one.name == other.name; });
    if (!isSame)
        DeleteGraphPlot(PANEL_SCOPE, SCOPE_GRAPH, 0);
    for (size_t i = 0; i < plots.size(); ++i) {
        if (isSame)
            ReplacePlot(PANEL_SCOPE, SCOPE_GRAPH, old[i].handle, plots[i]);
        else
            PlotXY(PANEL_SCOPE, SCOPE_GRAPH, plots[i]);
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
    return isKnown ? SCP_CurveNumberText(value) : "-";
}

} // namespace

std::string SCP_CurveNumberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

void SCP_ChooseSpectrum(int trace)
{
    spectrumOf = trace;
    // Seconds and hertz have no limits in common.
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    view.isXFitted = view.isYFitted = true;
    view.cursors[0].isShown = view.cursors[1].isShown = false;
    SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view);
}

void SCP_ShowCurves()
{
    const SCP_Capture &capture = SCP_windowState.capture;
    // First the choices, which are the traces there are: one that is gone takes its spectrum
    // with it.
    if (spectrumOf >= static_cast<int>(capture.traces.size()))
        spectrumOf = -1;
    ClearListCtrl(PANEL_SCOPE, SCOPE_SHOWN);
    InsertListItem(PANEL_SCOPE, SCOPE_SHOWN, -1, "Curves", -1);
    for (size_t i = 0; i < capture.traces.size(); ++i)
        InsertListItem(PANEL_SCOPE, SCOPE_SHOWN, -1, "Spectrum of " + capture.traces[i].name,
                       static_cast<int>(i));
    SetCtrlVal(PANEL_SCOPE, SCOPE_SHOWN, spectrumOf);
    std::vector<UI_Plot> plots;
    if (spectrumOf >= 0) {
        const std::string &name = capture.traces[static_cast<size_t>(spectrumOf)].name;
        AddSpectra(capture, name, false, &plots);
        AddSpectra(SCP_windowState.reference, name, true, &plots);
    } else {
        AddCurves(capture, false, &plots);
        AddCurves(SCP_windowState.reference, true, &plots);
    }
    SetGraphAxes(PANEL_SCOPE, SCOPE_GRAPH,
                 {spectrumOf >= 0 ? "frequency [Hz]" : "time [s], 0 = trigger",
                  spectrumOf >= 0 ? "amplitude" : ""});
    Draw(plots);
    SCP_ShowMarks();
    SCP_ShowMeasures();
}

void SCP_ShowMarks()
{
    const SCP_Setup &setup = SCP_windowState.setup;
    const SCP_Capture &capture = SCP_windowState.capture;
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    triggerChannel = setup.channels[0];
    // Free run (2) has neither level nor a moment at which it triggers.
    const bool isShown = !capture.traces.empty() && setup.mode != 2 && spectrumOf < 0;
    view.level = {isShown, setup.level * triggerChannel.factor + triggerChannel.offset,
                  PaneOf(triggerChannel.place, 0)};
    view.position = {isShown, SCP_TimeOf(capture, 0) + LengthOf(capture) * setup.position / 100};
    shownLevel = view.level.value;
    shownPosition = view.position.value;
    SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view);
}

void SCP_ReadMarks()
{
    SCP_Setup &setup = SCP_windowState.setup;
    const SCP_Capture &capture = SCP_windowState.capture;
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    // Only what was dragged: the way there and back would round what was typed.
    if (view.level.isShown && view.level.value != shownLevel)
        // Scaled back as it was scaled, whatever the fields of the channel say by now.
        setup.level = (view.level.value - triggerChannel.offset) / triggerChannel.factor;
    const double length = LengthOf(capture);
    if (view.position.isShown && view.position.value != shownPosition && length > 0)
        setup.position = std::clamp(
            std::round((view.position.value - SCP_TimeOf(capture, 0)) / length * 100), 0.0, 100.0);
    shownLevel = view.level.value;
    shownPosition = view.position.value;
}

void SCP_ShowMeasures()
{
    const SCP_Capture &capture = SCP_windowState.capture;
    UI_GraphView view;
    GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view);
    const std::vector<double> times = TimesOf(capture);
    const bool isWhole = spectrumOf >= 0; // the graph's limits are no times
    const bool isBetween = !isWhole && view.cursors[0].isShown && view.cursors[1].isShown;
    double from = isBetween ? std::min(view.cursors[0].x, view.cursors[1].x) : view.x.min;
    double to = isBetween ? std::max(view.cursors[0].x, view.cursors[1].x) : view.x.max;
    if (isWhole) {
        from = SCP_TimeOf(capture, 0);
        to = from + LengthOf(capture);
    }
    // The head of the first column says what the measures are of.
    SetListColumns(PANEL_SCOPE, SCOPE_MEASURES,
                   {{isBetween ? SCP_BETWEEN_TEXT
                     : isWhole ? "Whole recording"
                               : "In view",
                     116},
                    {"Min", 68, UIA_RIGHT},
                    {"Max", 68, UIA_RIGHT},
                    {"Peak-peak", 68, UIA_RIGHT},
                    {"Mean", 68, UIA_RIGHT},
                    {"RMS", 68, UIA_RIGHT},
                    {"Period s", 68, UIA_RIGHT},
                    {"Hz", 68, UIA_RIGHT},
                    {"Duty %", 52, UIA_RIGHT}});
    ClearListCtrl(PANEL_SCOPE, SCOPE_MEASURES);
    for (size_t i = 0; i < capture.traces.size(); ++i) {
        const SCP_Trace &trace = capture.traces[i];
        // No dash stands for 0: what is not known looks different from a measured zero.
        const SCP_Measures m = SCP_Measure(times, trace.samples, from, to);
        const bool isKnown = m.count > 0, isPeriodic = m.period > 0;
        const std::string unit = trace.unit.empty() ? "" : " [" + trace.unit + "]";
        InsertListItem(PANEL_SCOPE, SCOPE_MEASURES, -1, trace.name, static_cast<int>(i));
        SetListCells(PANEL_SCOPE, SCOPE_MEASURES, static_cast<int>(i),
                     {{trace.name + unit, UIS_NORMAL, ""},
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
