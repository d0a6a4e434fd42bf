// The figures of the statistics window, and the advice drawn from them. Window and clipboard take
// them from the same rows, so that a copy never says something else than the screen.
#include "diagnostics/statistics_panel.h"

#include "calendar/datetime.h"
#include "comm/failures.h"
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "runtime/list_columns.h"
#include "runtime/userint.h"
#include "ui/resource.h"

#include <cstdio>
#include <vector>

namespace {

struct Figures {
    UCM_Statistics counts;
    uint64_t failed = 0; // messages that were not answered, or not soundly
    // Answers that came damaged on the way. The layer's own count has refused ones in it, too,
    // which say nothing against the line.
    uint64_t damaged = 0;
};

Figures Measure()
{
    Figures figures;
    UCM_GetStatistics(&figures.counts);
    figures.failed = uint64_t{figures.counts.timeouts} + figures.counts.damaged;
    figures.damaged = FAIL_CountOf("answer damaged");
    return figures;
}

// --- texts -----------------------------------------------------------------------------

// Before the first message there is no share, rather than one of 0 %.
std::string ShareText(const Figures &figures)
{
    const uint64_t total = figures.counts.answered + figures.failed;
    if (total == 0)
        return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f %%",
                  100.0 * static_cast<double>(figures.failed) / static_cast<double>(total));
    return text;
}

struct Row {
    int panelControl;
    const char *name;
    std::string value;
};

std::vector<Row> Rows(const Figures &figures)
{
    const UCM_Statistics &counts = figures.counts;
    const FAIL_Cause *last = FAIL_Last();
    const std::string lastText =
        last == nullptr ? "none" : last->text + ", " + IsoDateText(last->last);
    return {
        {STATISTICS_ANSWERED, "Messages answered", std::to_string(counts.answered)},
        {STATISTICS_TIMEOUTS, "Time-outs", std::to_string(counts.timeouts)},
        {STATISTICS_DAMAGED, "Damaged or refused frames", std::to_string(counts.damaged)},
        {STATISTICS_REPEATED, "Repeated blocks", std::to_string(counts.repeated)},
        {STATISTICS_SHARE, "Error share", ShareText(figures)},
        {STATISTICS_LAST, "Last failure", lastText},
        {STATISTICS_SINCE, "Counted since", IsoDateText(counts.since)},
    };
}

struct ResultText {
    int result;
    const char *text;
};
constexpr ResultText RESULT_TEXTS[] = {
    {-1, "transfer failed, every try of a block"},
    {UCM_ERR_ARGUMENT, "bad station, address or count, or not in this protocol"},
};

// --- advice ----------------------------------------------------------------------------

template <const char *Cause> bool HasSeen(const Figures &)
{
    return FAIL_CountOf(Cause) > 0;
}

struct Advice {
    bool (*applies)(const Figures &figures);
    const char *text;
};
// Every row that applies is shown, in this order, so that no row may contradict another.
constexpr Advice ADVICE[] = {
    {[](const Figures &f) { return f.counts.answered == 0 && f.failed == 0 && FAIL_Count() == 0; },
     "Nothing has been sent since then: is communication on?"},
    {[](const Figures &f) { return f.counts.answered > 0 && FAIL_Count() == 0; },
     "Every message was answered."},
    {HasSeen<FAIL_NOT_AVAILABLE>,
     "The port could not be opened: wrong port number, another program has "
     "it, or no permission to use it."},
    {HasSeen<FAIL_GONE>, "The port vanished while in use: look at the USB adapter and its plug."},
    {HasSeen<FAIL_ECHO>,
     "The line echoes what is sent: switch Win32 services off. (Options menu; the "
     "run-time driver skips the echo of a two-wire line.)"},
    {[](const Figures &f) {
         return f.counts.timeouts > 0 && f.counts.answered == 0 && f.counts.damaged == 0;
     },
     "There was never an answer: check port, cable and supply of the target, then "
     "station and baud rate."},
    {[](const Figures &f) { return f.damaged > 0 && f.counts.answered == 0; },
     "Every answer is damaged: most likely the wrong baud rate, else the cable."},
    {[](const Figures &f) { return f.damaged > 0 && f.counts.answered > 0; },
     "Some answers are damaged: check cable, shield and ground; try a lower "
     "baud rate."},
    {[](const Figures &f) { return f.counts.timeouts > 0 && f.counts.answered > 0; },
     "Some requests get no answer: an item may name a station that is not there; "
     "else a loose contact or a busy target."},
    {HasSeen<FAIL_WRONG_STATION>, "An answer came from another station than asked: check the "
                                  "station numbers on the bus."},
    {HasSeen<FAIL_TARGET_ERROR>, "The target refuses some requests: the line is good, the address "
                                 "or command is not."},
};

std::string AdviceText(const Figures &figures)
{
    std::string text;
    for (const Advice &advice : ADVICE) {
        if (advice.applies(figures))
            text += std::string(text.empty() ? "" : "\n") + advice.text;
    }
    return text;
}

// --- tables ----------------------------------------------------------------------------

// "\033p76l" begins a column at 76 pixels; UI_JoinColumns knows it, too.
std::string MakeLabel(const std::string &first, const std::string &second, const std::string &third)
{
    return first + "\033p76l" + second + "\033p160l" + third;
}

std::vector<std::string> CauseLines()
{
    std::vector<std::string> lines;
    char clock[48];
    for (size_t i = 0; const FAIL_Cause *cause = FAIL_Get(i); ++i) {
        std::snprintf(clock, sizeof clock, "%02d:%02d:%02d", cause->last.hour, cause->last.minute,
                      cause->last.second);
        lines.push_back(MakeLabel(std::to_string(cause->count), clock, cause->text));
    }
    return lines;
}

// The operations that failed, by the result they gave.
std::vector<std::string> CounterLines(const UCM_Statistics &counts)
{
    std::vector<std::string> lines;
    for (int k = 1; k < UCM_COUNTERS; ++k) {
        if (counts.errors[k] == 0)
            continue;
        // The results of the unified layer itself; the rest are those of opening a port.
        std::string meaning = MrASC_ErrorText(-k);
        for (const ResultText &row : RESULT_TEXTS)
            if (row.result == -k)
                meaning = row.text;
        lines.push_back(MakeLabel(std::to_string(counts.errors[k]), std::to_string(-k), meaning));
    }
    return lines;
}

// Refilled as a whole: only the lines that differ go to the view.
void FillList(int control, const std::vector<std::string> &lines)
{
    ClearListCtrl(PANEL_STATISTICS, control);
    for (const std::string &line : lines)
        InsertListItem(PANEL_STATISTICS, control, -1, line, 0);
}

void AppendTable(std::string *text, const char *heading, const std::vector<std::string> &lines)
{
    *text += std::string("\n") + heading + "\n";
    for (const std::string &line : lines)
        *text += UI_JoinColumns(line, "\t") + "\n";
}

} // namespace

void DIA_StatisticsOpened()
{
    SetCtrlAttribute(PANEL_STATISTICS, STATISTICS_TIMER, ATTR_INTERVAL, STATISTICS_PERIOD_S);
    DIA_RefreshStatistics();
}

void DIA_RefreshStatistics()
{
    int isVisible = 0;
    if (GetPanelAttribute(PANEL_STATISTICS, ATTR_VISIBLE, &isVisible) < 0 || isVisible == 0)
        return;
    const Figures figures = Measure();
    for (const Row &row : Rows(figures))
        SetCtrlVal(PANEL_STATISTICS, row.panelControl, row.value);
    SetCtrlVal(PANEL_STATISTICS, STATISTICS_ADVICE, AdviceText(figures));
    FillList(STATISTICS_CAUSES, CauseLines());
    FillList(STATISTICS_COUNTERS, CounterLines(figures.counts));
}

std::string DIA_GetStatisticsText()
{
    const Figures figures = Measure();
    std::string text;
    for (const Row &row : Rows(figures))
        text += std::string(row.name) + "\t" + row.value + "\n";
    AppendTable(&text, "Count\tLast\tFailed exchanges by cause", CauseLines());
    AppendTable(&text, "Count\tCode\tFailed operations since the port was opened",
                CounterLines(figures.counts));
    return text + "\n" + AdviceText(figures) + "\n";
}

int DIA_StatisticsPanelCB(int panel, int event, int)
{
    if (event == EVENT_CLOSE || event == EVENT_KEYPRESS) // Esc is the only key it has
        HidePanel(panel);
    return 0;
}

// The layers below count on; what has been counted so far is taken off from now on.
int DIA_StatisticsResetCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT) {
        UCM_ResetStatistics();
        DIA_RefreshStatistics();
    }
    return 0;
}

int DIA_StatisticsCopyCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ClipboardPutText(DIA_GetStatisticsText());
    return 0;
}

int DIA_StatisticsTimerCB(int, int, int event, int)
{
    if (event == EVENT_TIMER_TICK)
        DIA_RefreshStatistics();
    return 0;
}
