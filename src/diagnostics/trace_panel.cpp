// The list of the trace window. It keeps the number of the exchange behind each line:
// lines whose exchange has left the ring go from the top, new ones come at the end, the
// rest is not touched.
#include "diagnostics/trace_panel.h"

#include "comm/trace.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "ui/resource.h"

#include <algorithm>
#include <cstdio>
#include <deque>

namespace {

constexpr const char *PAUSE_LABEL = "__Pause";
constexpr const char *RESUME_LABEL = "Resu__me";
constexpr const char *EMPTY_TEXT = "Nothing has gone over the line since the trace was started.";
constexpr const char *NO_FAILURE_TEXT = "No exchange has failed since the trace was started.";

bool isOpen = false;
bool isFailuresOnly = false;
bool isFollowing = true;      // the newest line is the selected one
uint64_t selected = 0;        // number of the selected exchange, 0 = none
uint64_t detailed = 0;        // number of the exchange in the text box
uint64_t lastTaken = 0;       // newest exchange that was looked at
std::deque<uint64_t> numbers; // of the lines

// First kept exchange of at least this number, as an index of the ring.
size_t RingIndexOf(uint64_t number)
{
    size_t low = 0, high = TRC_Count();
    while (low < high) {
        const size_t middle = (low + high) / 2;
        if (TRC_Get(middle)->number < number)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

const TRC_Record *FindRecord(uint64_t number)
{
    const TRC_Record *record = TRC_Get(RingIndexOf(number));
    return record != nullptr && record->number == number ? record : nullptr;
}

// Lines whose exchange has left the ring; returns how many went.
int DropStaleLines()
{
    const TRC_Record *oldest = TRC_Get(0);
    const auto firstKept = oldest == nullptr
                               ? numbers.end()
                               : std::lower_bound(numbers.begin(), numbers.end(), oldest->number);
    const int count = static_cast<int>(firstKept - numbers.begin());
    if (count > 0)
        DeleteListItem(PANEL_TRACE, TRACE_LIST, 0, count);
    numbers.erase(numbers.begin(), firstKept);
    return count;
}

void AppendNewLines()
{
    for (size_t i = RingIndexOf(lastTaken + 1); const TRC_Record *record = TRC_Get(i); ++i) {
        lastTaken = record->number;
        if (isFailuresOnly && record->isGood)
            continue;
        char clock[64];
        std::snprintf(clock, sizeof clock, "%02d:%02d:%02d.%03d", record->when.hour,
                      record->when.minute, record->when.second, record->when.millisecond);
        // " (!)" is how the program marks what failed; the desktop shows it in red.
        InsertListItem(PANEL_TRACE, TRACE_LIST, -1,
                       std::string(clock) + "\033p90l" + record->result +
                           (record->isGood ? "" : " (!)") + "\033p370l" + record->request,
                       0);
        numbers.push_back(record->number);
    }
}

// Not drawn again while it shows the same exchange: a text that is being marked would jump away.
void ShowDetail()
{
    const TRC_Record *record = selected == 0 ? nullptr : FindRecord(selected);
    if (record != nullptr && record->number == detailed)
        return;
    std::string text = isFailuresOnly && TRC_Count() > 0 ? NO_FAILURE_TEXT : EMPTY_TEXT;
    if (record != nullptr) {
        text.clear();
        TRC_Format(*record, &text);
    }
    detailed = record == nullptr ? 0 : record->number;
    ResetTextBox(PANEL_TRACE, TRACE_DETAIL, text);
    SetCtrlAttribute(PANEL_TRACE, TRACE_COPY, ATTR_DIMMED, record == nullptr);
}

// The selection stays with its exchange while lines above it go; one that has gone itself
// gives way to the oldest line.
void Reselect()
{
    if (numbers.empty()) {
        selected = 0;
        isFollowing = true;
        return;
    }
    auto line = std::lower_bound(numbers.begin(), numbers.end(), selected);
    if (isFollowing || line == numbers.end())
        line = numbers.end() - 1;
    selected = *line;
    SetCtrlIndex(PANEL_TRACE, TRACE_LIST, static_cast<int>(line - numbers.begin()));
}

void ShowCount()
{
    size_t failed = 0;
    for (size_t i = 0; const TRC_Record *record = TRC_Get(i); ++i)
        failed += record->isGood ? 0 : 1;
    char text[96];
    std::snprintf(text, sizeof text, "%s%zu of at most %zu exchanges, %zu failed",
                  TRC_IsPaused() ? "Paused: " : "", TRC_Count(), TRACE_CAPACITY, failed);
    SetCtrlVal(PANEL_TRACE, TRACE_COUNT, text);
}

// The next refresh lists all that the ring holds.
void EmptyList()
{
    ClearListCtrl(PANEL_TRACE, TRACE_LIST);
    numbers.clear();
    lastTaken = 0;
}

void Pause(bool isPaused)
{
    TRC_Pause(isPaused);
    SetCtrlAttribute(PANEL_TRACE, TRACE_PAUSE, ATTR_LABEL_TEXT,
                     isPaused ? RESUME_LABEL : PAUSE_LABEL);
}

} // namespace

void DIA_TraceOpened()
{
    if (!isOpen) {
        isOpen = true;
        isFollowing = true;
        TRC_Enable(TRACE_CAPACITY);
        Pause(false);
        SetCtrlAttribute(PANEL_TRACE, TRACE_TIMER, ATTR_INTERVAL, TRACE_PERIOD_S);
    }
    DIA_RefreshTrace();
}

void DIA_RefreshTrace()
{
    if (!isOpen)
        return;
    int top = 0;
    GetCtrlAttribute(PANEL_TRACE, TRACE_LIST, ATTR_FIRST_VISIBLE_LINE, &top);
    const int dropped = DropStaleLines();
    AppendNewLines();
    Reselect();
    // Who reads older lines keeps them where they are on the screen.
    const int last = static_cast<int>(numbers.size()) - 1;
    SetCtrlAttribute(PANEL_TRACE, TRACE_LIST, ATTR_FIRST_VISIBLE_LINE,
                     std::max(0, isFollowing ? last : top - dropped));
    ShowDetail();
    ShowCount();
}

std::string DIA_GetTraceText()
{
    std::string text;
    for (const uint64_t number : numbers) {
        if (const TRC_Record *record = FindRecord(number))
            TRC_Format(*record, &text);
    }
    return text;
}

int DIA_TracePanelCB(int, int event, int)
{
    if (event != EVENT_CLOSE && event != EVENT_KEYPRESS) // Esc is the only key it has
        return 0;
    // Recording costs time with every exchange, so nothing is kept that nobody can see.
    TRC_Enable(0);
    Pause(false);
    EmptyList();
    HidePanel(PANEL_TRACE);
    isOpen = false;
    return 0;
}

int DIA_TraceListCB(int panel, int control, int event, int)
{
    if (event != EVENT_VAL_CHANGED)
        return 0;
    int index = -1;
    GetCtrlIndex(panel, control, &index);
    const int count = static_cast<int>(numbers.size());
    if (index < 0 || index >= count)
        return 0;
    selected = numbers[static_cast<size_t>(index)];
    isFollowing = index == count - 1;
    ShowDetail();
    return 0;
}

int DIA_TracePauseCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    Pause(!TRC_IsPaused());
    DIA_RefreshTrace();
    return 0;
}

int DIA_TraceClearCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    TRC_Clear();
    EmptyList();
    DIA_RefreshTrace();
    return 0;
}

int DIA_TraceCopyCB(int, int, int event, int)
{
    const TRC_Record *record = event == EVENT_COMMIT ? FindRecord(selected) : nullptr;
    if (record == nullptr)
        return 0;
    std::string text;
    TRC_Format(*record, &text);
    ClipboardPutText(text);
    return 0;
}

int DIA_TraceCopyAllCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ClipboardPutText(DIA_GetTraceText());
    return 0;
}

int DIA_TraceSaveCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    const std::string text = DIA_GetTraceText(); // what the user saw when the button was pressed
    std::string path;
    if (FileSelectPopup("", "trace.txt", "*.txt", "Save wire trace", FILE_SAVE, &path) ==
        CON_NO_FILE_SELECTED)
        return 0;
    SafeFile file;
    const bool isFileOpen = PLT_BeginSave(&file, path, "wb") == 0;
    if (isFileOpen)
        PLT_SaveText(file.file, text); // with the line ends of this program's other files
    if (!isFileOpen || PLT_CommitSave(&file) < 0)
        MessagePopup("Error", PLT_SaveFailureText(path));
    return 0;
}

int DIA_TraceFilterCB(int panel, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    int isOn = 0;
    GetCtrlVal(panel, control, &isOn);
    isFailuresOnly = isOn != 0;
    EmptyList();
    DIA_RefreshTrace();
    // The selected exchange stands at quite another place now.
    constexpr int LINES_ABOVE = 5; // kept in view
    int index = 0;
    GetCtrlIndex(PANEL_TRACE, TRACE_LIST, &index);
    SetCtrlAttribute(PANEL_TRACE, TRACE_LIST, ATTR_FIRST_VISIBLE_LINE,
                     std::max(0, index - LINES_ABOVE));
    return 0;
}

int DIA_TraceTimerCB(int, int, int event, int)
{
    if (event == EVENT_TIMER_TICK)
        DIA_RefreshTrace();
    return 0;
}
