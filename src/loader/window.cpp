// A run takes place within the callback of its button; a progress box stands over the window
// meanwhile, and its Cancel stops between two blocks. All that is drawn comes from the job, so
// that a window opened after a run shows the same as one that was open.
#include "loader/window.h"

#include "comm/communication.h"
#include "loader/borrow.h"
#include "loader/program.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

#include <algorithm>

namespace {

constexpr int PANEL = PANEL_LOADER;
constexpr const char *TITLE = "Flash loader";
constexpr size_t RANGES_MAX = 500; // listed: a file of scattered bytes has thousands
// As meant on a light ground.
constexpr int COLOR_GOOD = 0x1F8A4C, COLOR_BAD = 0xC01C28;

struct StateLook {
    const char *text;
    unsigned style;
};
constexpr StateLook STATE_LOOKS[] = {
    // by LDR_StepState
    {"", UIS_DIM},      {"left out", UIS_DIM},   {"running", UIS_BOLD},
    {"done", UIS_GOOD}, {"failed", UIS_WARNING},
};

LDR_Job job;
bool isRunEnded = false; // the result of a run is shown, not that of reading the file

// What is on the screen while a run is on.
struct Screen {
    int dialog = 0;
    int percent = -1;
    std::string text;
    LDR_StepState steps[LDR_STEPS] = {};
};

// --- the file ---------------------------------------------------------------------------

void AddLine(const std::string &text, unsigned style)
{
    int count = 0;
    InsertListItem(PANEL, LOADER_CONTENTS, -1, text, 0);
    GetNumListItems(PANEL, LOADER_CONTENTS, &count);
    SetListCells(PANEL, LOADER_CONTENTS, count - 1, {{text, style, ""}});
}

// Problems first: they say why the file cannot be programmed.
void ShowContents()
{
    const HEX_File &file = job.file;
    ClearListCtrl(PANEL, LOADER_CONTENTS);
    for (const HEX_Problem &problem : file.problems)
        AddLine(HEX_FormatProblem(problem), problem.isFatal ? UIS_WARNING : UIS_NORMAL);
    const size_t all = file.fatal + file.remarks;
    if (all > file.problems.size())
        AddLine("and " + std::to_string(all - file.problems.size()) + " more problems", UIS_DIM);
    const size_t shown = std::min(file.ranges.size(), RANGES_MAX);
    for (size_t i = 0; i < shown; ++i)
        AddLine(HEX_FormatRange(file.ranges[i]), UIS_NORMAL);
    if (shown < file.ranges.size())
        AddLine("and " + std::to_string(file.ranges.size() - shown) + " more ranges", UIS_DIM);
}

void ShowBar()
{
    SetBarSegments(PANEL, LOADER_BAR, LDR_MakeBarSegments(job));
    SetCtrlVal(PANEL, LOADER_BAR_FIRST, "0x000000");
    SetCtrlVal(PANEL, LOADER_BAR_LAST, TXT_Format("0x%06X", LDR_GetBarSpan(job) - 1));
}

// --- the run ----------------------------------------------------------------------------

void ShowSteps()
{
    ClearListCtrl(PANEL, LOADER_STEPS);
    for (int i = 0; i < LDR_STEPS; ++i) {
        const StateLook &look = STATE_LOOKS[job.steps[i]];
        InsertListItem(PANEL, LOADER_STEPS, -1, LDR_GetStepText(i), i);
        SetListCells(PANEL, LOADER_STEPS, i,
                     {{LDR_GetStepText(i), UIS_NORMAL, ""}, {look.text, look.style, ""}});
    }
}

void ShowAll()
{
    SetCtrlVal(PANEL, LOADER_FILE, job.file.path);
    ShowContents();
    ShowBar();
    ShowSteps();
    // Reading a good file is no result: the line is for runs, and for files that cannot be run.
    const bool isGood = job.result == LDR_OK;
    SetCtrlVal(PANEL, LOADER_RESULT, isRunEnded || !isGood ? LDR_GetResultText(job) : "");
    SetCtrlAttribute(PANEL, LOADER_RESULT, ATTR_TEXT_COLOR, isGood ? COLOR_GOOD : COLOR_BAD);
    // "Done" says of the flash what its own line would say again.
    const bool isToldTwice = isGood && job.flash == LDR_FLASH_WHOLE;
    const bool isFlashShown = isRunEnded || job.flash != LDR_FLASH_UNTOUCHED;
    SetCtrlVal(PANEL, LOADER_FLASH, isFlashShown && !isToldTwice ? LDR_GetFlashText(job) : "");
    // The port that a run would use, which is the link's as long as that has it open.
    int port = ncom, baud = bRate;
    LDR_FindPort(&port, &baud);
    SetCtrlVal(PANEL, LOADER_PORT, TXT_Format("COM%d, %d baud", port, baud));
    const int isUnfit = job.plan.empty();
    SetCtrlAttribute(PANEL, LOADER_PROGRAM, ATTR_DIMMED, isUnfit);
    SetCtrlAttribute(PANEL, LOADER_COMPARE, ATTR_DIMMED, isUnfit);
}

bool OnStep(void *context, uint32_t done, uint32_t total, const char *text)
{
    Screen *screen = static_cast<Screen *>(context);
    const int percent = total > 0 ? static_cast<int>(uint64_t{100} * done / total) : 0;
    if (!std::equal(job.steps, job.steps + LDR_STEPS, screen->steps)) {
        std::copy(job.steps, job.steps + LDR_STEPS, screen->steps);
        ShowSteps();
        ProcessSystemEvents(); // a list is drawn in the middle of a callback only so
    }
    // Drawing costs time the wire could use: a hundred times a run is enough.
    if (percent != screen->percent || text != screen->text || total == 0) {
        screen->percent = percent;
        screen->text = text;
        // An erase has no total, and the first moments of a step no speed.
        std::string line = text;
        if (total > 0)
            line += TXT_Format(": %d %%", percent);
        if (total > 0 && job.bytesPerSecond > 0)
            line += ", " + std::to_string(job.bytesPerSecond) + " bytes/s, " +
                    std::to_string(job.secondsLeft) + " s left";
        SetCtrlVal(PANEL, LOADER_PROGRESS, line);
        ShowBar();
        UpdateProgressDialog(screen->dialog, percent, line);
    }
    return IsBreakWished();
}

void OnLog(void *, const char *line)
{
    InsertTextBoxLine(PANEL, LOADER_LOG, -1, line);
}

void RunJob(const char *what, int (*work)(int port, int baud, const LDR_Progress &progress))
{
    int port = ncom, baud = bRate;
    LDR_FindPort(&port, &baud);
    OnLog(nullptr, TXT_Format("%s on COM%d, %d baud", what, port, baud).c_str());
    Screen screen;
    screen.dialog = CreateProgressDialog(TITLE, what);
    // What the last run has left behind is not so any more from its first byte on.
    SetCtrlVal(PANEL, LOADER_RESULT, "");
    SetCtrlVal(PANEL, LOADER_FLASH, "");
    work(port, baud, {&screen, OnStep, OnLog});
    DiscardProgressDialog(screen.dialog);
    if (job.result == LDR_ERR_PORT) // nobody was there to log it
        OnLog(nullptr, LDR_GetResultText(job).c_str());
    OnLog(nullptr, LDR_GetFlashText(job).c_str());
    isRunEnded = true;
    SetCtrlVal(PANEL, LOADER_PROGRESS, "");
    ShowAll();
    COM_TellState(); // the port may have been closed and opened
}

enum Wish { WISH_NOTHING, WISH_RESUME, WISH_BEGIN };

// An interrupted run is gone on with unless the user wants it from the beginning; nothing is
// erased without a question.
Wish AskHow()
{
    if (LDR_CanResume(job)) {
        const int button =
            GenericMessagePopup(TITLE, LDR_GetFlashText(job) + "\n\nGo on, or begin anew?",
                                {"__Go on", "__Begin anew", "__Cancel"}, nullptr, 0);
        // "Begin anew" is asked about like any other beginning, below.
        if (button != 2)
            return button == 1 ? WISH_RESUME : WISH_NOTHING;
    }
    if (!job.isErase)
        return WISH_BEGIN;
    int port = ncom, baud = bRate;
    LDR_FindPort(&port, &baud);
    return ConfirmPopup(TITLE, LDR_GetQuestion(job, port), UI_DEFAULT_NO) == 1 ? WISH_BEGIN
                                                                               : WISH_NOTHING;
}

} // namespace

void LDR_WindowOpened()
{
    std::vector<UI_Column> columns;
    GetListColumns(PANEL, LOADER_STEPS, &columns);
    // Only the first time: wishes and widths of a window that is shown again are the user's.
    if (columns.empty()) {
        constexpr int STEP_WIDTH_PX = 80;
        UI_Column step, state, contents;
        step.title = "Step";
        step.width = STEP_WIDTH_PX;
        state.title = "State";
        contents.title = "What is in the file";
        SetListColumns(PANEL, LOADER_STEPS, {step, state});
        SetListColumns(PANEL, LOADER_CONTENTS, {contents});
        SetCtrlAttribute(PANEL, LOADER_FILE, ATTR_CTRL_MODE, 0);
        SetCtrlVal(PANEL, LOADER_ERASE, job.isErase ? 1 : 0);
        SetCtrlVal(PANEL, LOADER_READ_BACK, job.isVerify ? 1 : 0);
    }
    ShowAll();
}

void LDR_ResetWindow()
{
    job = LDR_Job();
    isRunEnded = false;
}

int LDR_PanelCB(int panel, int event, int)
{
    if (event == EVENT_CLOSE)
        HidePanel(panel);
    return 0;
}

int LDR_ChooseCB(int, int, int event, int)
{
    std::string path = job.file.path;
    if (event != EVENT_COMMIT ||
        FileSelectPopup("", path.empty() ? "*.hex" : path, "*.hex;*.h86", "Choose a HEX file",
                        FILE_LOAD, &path) == CON_NO_FILE_SELECTED)
        return 0;
    // Also a file with faults is taken over: the window lists them.
    LDR_Prepare(&job, path);
    isRunEnded = false;
    ShowAll();
    return 0;
}

int LDR_ProgramCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || job.plan.empty())
        return 0;
    // Read now and not when they are clicked: a run must not change its mind on the way.
    int isErase = 1, isVerify = 1;
    GetCtrlVal(PANEL, LOADER_ERASE, &isErase);
    GetCtrlVal(PANEL, LOADER_READ_BACK, &isVerify);
    job.isErase = isErase != 0;
    job.isVerify = isVerify != 0;
    switch (AskHow()) {
    case WISH_BEGIN:
        RunJob("Programming", [](int port, int baud, const LDR_Progress &progress) {
            return LDR_Run(&job, false, port, baud, progress);
        });
        break;
    case WISH_RESUME:
        RunJob("Going on", [](int port, int baud, const LDR_Progress &progress) {
            return LDR_Run(&job, true, port, baud, progress);
        });
        break;
    case WISH_NOTHING:
        break;
    }
    return 0;
}

int LDR_CompareCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT && !job.plan.empty())
        RunJob("Comparing", [](int port, int baud, const LDR_Progress &progress) {
            return LDR_Verify(&job, port, baud, progress);
        });
    return 0;
}
