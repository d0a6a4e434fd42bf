// The terminal's view. It runs on the program's thread: VIEW_Wake, which the model calls when it
// has handed something over, fetches and prints at once, and an answer is in the queue before the
// question that waits for it looks there the first time.
#include "runtime/headless/headless.h"

#include <algorithm>
#include <cstdlib>
#include <deque>

#include "platform/system.h"
#include "runtime/model/door.h"
#include "runtime/model/model.h"

namespace {

struct Answer {
    int button = 0;
    std::string text;
};

struct Headless {
    std::FILE *out = stdout; // null = silent
    std::FILE *err = stderr;
    bool isProgressShown = false;
    int cancelAt = 0;      // progress updates until the user presses Cancel
    int knownProgress = 0; // the box that was drawn last
    std::deque<Answer> answers;
    HL_DefaultAnswer defaultAnswer = HL_ANSWER_SAFE;
    bool (*readLine)(std::string *line) = nullptr;
    std::vector<std::string> popups;
    int popupMenu = 0;
    std::string clipboard;
};
Headless headless;

void Print(std::FILE *stream, const std::string &text)
{
    if (stream)
        std::fwrite(text.data(), 1, text.size(), stream);
}

// For the eye, behind what was printed before it.
void PrintForPerson(const std::string &text)
{
    if (!headless.err)
        return;
    if (headless.out)
        std::fflush(headless.out);
    Print(headless.err, text);
    std::fflush(headless.err);
}

// --- questions ------------------------------------------------------------------------

std::string WithoutMark(std::string text)
{
    const size_t mark = text.find("__");
    return mark == std::string::npos ? text : text.erase(mark, 2);
}

std::vector<std::string> ButtonsOf(const VIEW_Question &question)
{
    switch (question.kind) {
    case VIEW_CONFIRM:
        return {"Yes", "No"};
    case VIEW_PROMPT:
        return {"OK", "Cancel"};
    case VIEW_GENERIC:
        return question.buttons;
    default:
        return {"OK"};
    }
}

// The button whose number was typed, or whose text begins with it; 0 = none.
int FindButton(const std::vector<std::string> &buttons, const std::string &line)
{
    const auto lower = [](std::string text) {
        for (char &c : text)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c;
        return text;
    };
    for (size_t i = 0; i < buttons.size(); i++) {
        const bool isNumber = line == std::to_string(i + 1);
        const bool isStart =
            !line.empty() &&
            lower(WithoutMark(buttons[i])).compare(0, line.size(), lower(line)) == 0;
        if (isNumber || isStart)
            return static_cast<int>(i) + 1;
    }
    return 0;
}

// Enter alone takes what is proposed, hence cancelling needs a sign of its own.
Answer AskForText(const VIEW_Question &question)
{
    std::string line;
    PrintForPerson("[" + question.text + "] (a single point cancels) ");
    if (!headless.readLine(&line) || line == ".")
        return {};
    return {1, line.empty() ? question.text : line};
}

Answer AskAtTerminal(const VIEW_Question &question)
{
    std::string line;
    if (question.kind == VIEW_FILE) // the title is all that a file question says
        PrintForPerson(question.title + ": ");
    if (question.kind == VIEW_FILE || question.hasEntry)
        return AskForText(question);
    if (question.kind == VIEW_MESSAGE) {
        // A message waits to be read. After an error there is nothing to be done but to go on.
        if (question.title != "Error") {
            PrintForPerson("(Enter) ");
            headless.readLine(&line);
        }
        return {1, ""};
    }
    const std::vector<std::string> buttons = ButtonsOf(question);
    std::string choice;
    for (size_t i = 0; i < buttons.size(); i++)
        choice += (i > 0 ? ", " : "") + std::to_string(i + 1) + " " + WithoutMark(buttons[i]);
    for (;;) { // until it is one of them, or the input ends
        PrintForPerson("(" + choice + ") ");
        if (!headless.readLine(&line))
            return {};
        if (const int button = FindButton(buttons, line))
            return {button, ""};
    }
}

// Nobody is there to type: pressing "again" with the old text could go on for ever.
Answer AnswerAlone(const VIEW_Question &question)
{
    const std::vector<std::string> buttons = ButtonsOf(question);
    const int count = static_cast<int>(buttons.size());
    int button = 0; // closed
    if (question.hasEntry || question.kind == VIEW_FILE)
        button = 0;
    else if (headless.defaultAnswer == HL_ANSWER_YES)
        button = 1;
    else if (headless.defaultAnswer == HL_ANSWER_NO || question.kind == VIEW_CONFIRM)
        button = std::min(2, count);
    // With --yes or --no whoever started the program knows; a safe answer is to be seen in a log.
    const std::string name =
        button == 0 ? "cancelled" : WithoutMark(buttons[static_cast<size_t>(button) - 1]);
    if (question.kind != VIEW_FILE && headless.defaultAnswer == HL_ANSWER_SAFE)
        PrintForPerson("(answered: " + name + ")\n");
    return {button, ""};
}

Answer FindAnswer(const VIEW_Question &question)
{
    if (question.kind == VIEW_CLIPBOARD)
        return {1, headless.clipboard};
    // Messages use up no answer of a test's queue.
    if (question.kind == VIEW_MESSAGE && !headless.readLine)
        return {1, ""};
    if (question.kind != VIEW_MESSAGE && !headless.answers.empty()) {
        const Answer answer = headless.answers.front();
        headless.answers.pop_front();
        return answer;
    }
    const bool isAsked = headless.readLine && headless.defaultAnswer == HL_ANSWER_SAFE;
    return isAsked ? AskAtTerminal(question) : AnswerAlone(question);
}

void OnQuestion(const VIEW_Question &question)
{
    // Nobody is asked for the clipboard, and a file's question is printed where one types.
    const std::string text = question.title + ": " + question.message;
    if (question.kind != VIEW_CLIPBOARD)
        headless.popups.push_back(text);
    if (question.kind != VIEW_CLIPBOARD && question.kind != VIEW_FILE)
        PrintForPerson(text + "\n");
    const Answer answer = FindAnswer(question);
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_ANSWER);
    event.id = question.id;
    event.button = answer.button;
    event.text = answer.text;
    VIEW_Post(event);
}

// --- progress ---------------------------------------------------------------------------

void OnProgress(const VIEW_Progress &box)
{
    // One line written over and over; blanks behind the text wipe out a longer one.
    if (headless.err && headless.isProgressShown) {
        std::fprintf(headless.err, "\r%s %3d %% %-40s%s", box.title.c_str(),
                     box.isGone ? 100 : box.percent, box.isGone ? "" : box.text.c_str(),
                     box.isGone ? "\n" : "");
        std::fflush(headless.err);
    }
    // Cancelled by a test at one of its updates: not by the change that opens the box, nor by
    // the one that takes it away.
    const bool isUpdate = box.id == headless.knownProgress && !box.isGone;
    headless.knownProgress = box.id;
    if (!isUpdate || headless.cancelAt == 0 || --headless.cancelAt > 0)
        return;
    headless.cancelAt = 1; // whoever starts again is cancelled again
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_CANCEL);
    event.id = box.id;
    VIEW_Post(event);
}

void OnBatch(const VIEW_Batch &batch)
{
    // Of all that a window would show, a terminal has the console's text alone.
    for (const VIEW_TextBox &box : batch.boxes)
        if (box.panel == UI_nPrintPanel && box.control == UI_nPrintControl)
            Print(headless.out, box.text);
    for (const VIEW_Progress &box : batch.progress)
        OnProgress(box);
    if (batch.popupMenu != 0)
        headless.popupMenu = batch.popupMenu;
    if (!batch.helpFile.empty())
        PrintForPerson("The help text is " + batch.helpFile + "\n");
    if (batch.isBeep)
        std::fputs("\a", stderr);
    if (batch.hasClipboard)
        headless.clipboard = batch.clipboard;
    if (batch.question.id != 0) // behind all the text it may be about
        OnQuestion(batch.question);
}

} // namespace

// --- what a view provides -----------------------------------------------------------------

void VIEW_Wake()
{
    VIEW_Batch batch;
    while (VIEW_Fetch(&batch)) // an answer may have changed something again
        OnBatch(batch);
    // In the middle of a callback more follows at once, and a pipe is quicker in large pieces.
    if (headless.out && MDL_GetState().depth == 0)
        std::fflush(headless.out);
}

int VIEW_Main(int argc, char **argv, int (*program)(int argc, char **argv))
{
    return VIEW_RunProgram(argc, argv, program);
}

// --- set-up ---------------------------------------------------------------------------------

void HL_Reset()
{
    MDL_Reset();
    headless = Headless();
    headless.out = headless.err = nullptr;
}

int HL_LoadAllPanels()
{
    for (int i = 0; i < UI_cnPanels; i++) {
        const int result = LoadPanel(0, UI_aPanels[i].panel);
        if (result < 0)
            return result;
    }
    return 0;
}

void HL_SetStreams(std::FILE *out, std::FILE *err)
{
    headless.out = out;
    headless.err = err;
}

void HL_ShowProgress(bool isShown)
{
    headless.isProgressShown = isShown;
}

void HL_SetDefaultAnswer(HL_DefaultAnswer answer)
{
    headless.defaultAnswer = answer;
}

void HL_SetAsker(bool (*readLine)(std::string *line))
{
    headless.readLine = readLine;
}

void HL_PushAnswer(int button, const std::string &text)
{
    headless.answers.push_back({button, text});
}

int HL_CountAnswers()
{
    return static_cast<int>(headless.answers.size());
}

const std::vector<std::string> &HL_GetPopups()
{
    return headless.popups;
}

void HL_CancelProgressAt(int update)
{
    headless.cancelAt = update;
}

int HL_GetPopupMenu()
{
    MDL_Flush();
    return headless.popupMenu;
}

const std::string &HL_GetClipboard()
{
    MDL_Flush();
    return headless.clipboard;
}

// --- event loop -------------------------------------------------------------------------------

void HL_SetDriver(int (*driver)())
{
    MDL_GetState().driver = driver;
}

bool HL_IsQuit()
{
    return MDL_GetState().isQuit;
}

bool HL_IsEndWished()
{
    if (MDL_FetchInterrupt()) // nobody will press Ctrl-C a second time at a prompt
        MDL_OnSignal(false);
    ProcessSystemEvents();
    return HL_IsQuit();
}

int HL_FireTimer(int panel, int control)
{
    ProcessSystemEvents(); // a request to end must not wait for the last of many ticks
    return HL_IsQuit() ? 0 : MDL_OnControl(panel, control, MDL_FireTimer);
}

int HL_WaitTimer(int panel, int control, bool (*isStopped)())
{
    constexpr unsigned SLICE_MS = 20; // how soon a request to stop is noticed
    double seconds = 0;
    const int error = GetCtrlAttribute(panel, control, ATTR_INTERVAL, &seconds);
    if (error < 0)
        return error;
    const auto isOver = [&] {
        ProcessSystemEvents();
        return HL_IsQuit() || (isStopped && isStopped());
    };
    constexpr double WAIT_MAX_S = 3600;
    const auto total = static_cast<unsigned>(std::clamp(seconds, 0.0, WAIT_MAX_S) * 1000.0);
    for (unsigned done = 0; done < total && !isOver(); done += SLICE_MS)
        PLT_SleepMs(std::min(SLICE_MS, total - done));
    return isOver() ? 0 : HL_FireTimer(panel, control);
}
