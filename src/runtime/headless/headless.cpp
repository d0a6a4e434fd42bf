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
    std::FILE *out = stdout;
    std::FILE *err = stderr;
    bool isProgressShown = false;
    int cancelAt = 0; // progress updates until the user presses Cancel
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

Answer AskForText(const VIEW_Question &question)
{
    std::string line;
    PrintForPerson("[" + question.text + "] (a single point cancels) ");
    if (!headless.readLine(&line) || line == ".")
        return {};
    return {1, line.empty() ? question.text : line};
}

Answer AskForButton(const std::vector<std::string> &buttons)
{
    std::string choice, line;
    for (size_t i = 0; i < buttons.size(); i++)
        choice += (i > 0 ? ", " : "") + std::to_string(i + 1) + " " + WithoutMark(buttons[i]);
    for (;;) {
        PrintForPerson("(" + choice + ") ");
        if (!headless.readLine(&line))
            return {};
        if (const int button = FindButton(buttons, line))
            return {button, ""};
    }
}

Answer AskAtTerminal(const VIEW_Question &question)
{
    if (question.kind == VIEW_FILE) {
        PrintForPerson(question.title + ": ");
        return AskForText(question);
    }
    if (question.hasEntry)
        return AskForText(question);
    if (question.kind != VIEW_MESSAGE)
        return AskForButton(ButtonsOf(question));
    std::string line;
    if (question.title != "Error") { // there is nothing to be done before one goes on
        PrintForPerson("(Enter) ");
        headless.readLine(&line);
    }
    return {1, ""};
}

// Nobody is there to type: pressing "again" with the old text could go on for ever.
Answer AnswerAlone(const VIEW_Question &question)
{
    const std::vector<std::string> buttons = ButtonsOf(question);
    const int count = static_cast<int>(buttons.size());
    int button = 0;
    if (question.hasEntry || question.kind == VIEW_FILE)
        button = 0;
    else if (headless.defaultAnswer == HL_ANSWER_YES)
        button = 1;
    else if (headless.defaultAnswer == HL_ANSWER_NO || question.kind == VIEW_CONFIRM)
        button = std::min(2, count);
    const std::string name =
        button == 0 ? "cancelled" : WithoutMark(buttons[static_cast<size_t>(button) - 1]);
    if (question.kind != VIEW_FILE && headless.defaultAnswer == HL_ANSWER_SAFE)
        PrintForPerson("(answered: " + name + ")\n");
    return {button, ""};
}

Answer FindAnswer(const VIEW_Question &question)
{
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
    const bool isClipboard = question.kind == VIEW_CLIPBOARD;
    if (!isClipboard)
        headless.popups.push_back(question.title + ": " + question.message);
    if (question.kind != VIEW_FILE && !isClipboard)
        PrintForPerson(question.title + ": " + question.message + "\n");
    const Answer answer = isClipboard ? Answer{1, headless.clipboard} : FindAnswer(question);
    VIEW_Event event;
    event.kind = VIEW_EVENT_ANSWER;
    event.id = question.id;
    event.button = answer.button;
    event.text = answer.text;
    VIEW_Post(event);
}

// --- progress ---------------------------------------------------------------------------

void OnProgress(const VIEW_Progress &box)
{
    if (headless.err && headless.isProgressShown) {
        std::fprintf(headless.err, "\r%s %3d %% %-40s%s", box.title.c_str(),
                     box.isGone ? 100 : box.percent, box.isGone ? "" : box.text.c_str(),
                     box.isGone ? "\n" : "");
        std::fflush(headless.err);
    }
}

void CancelInTime(int progress)
{
    if (headless.cancelAt == 0 || --headless.cancelAt > 0)
        return;
    headless.cancelAt = 1; // whoever starts again is cancelled again
    VIEW_Event event;
    event.kind = VIEW_EVENT_CANCEL;
    event.id = progress;
    VIEW_Post(event);
}

void OnBatch(const VIEW_Batch &batch)
{
    for (const VIEW_TextBox &box : batch.boxes)
        if (box.panel == UI_nPrintPanel && box.control == UI_nPrintControl)
            Print(headless.out, box.text);
    for (const VIEW_Progress &box : batch.progress) {
        OnProgress(box);
        // The first change of a box opens it, the last takes it away.
        static int known = 0;
        if (box.id == known && !box.isGone)
            CancelInTime(box.id);
        known = box.id;
    }
    if (batch.popupMenu != 0)
        headless.popupMenu = batch.popupMenu;
    if (!batch.helpFile.empty())
        PrintForPerson("The help text is " + batch.helpFile + "\n");
    if (batch.isBeep)
        std::fputs("\a", stderr);
    if (batch.hasClipboard)
        headless.clipboard = batch.clipboard;
    if (batch.question.id != 0)
        OnQuestion(batch.question);
}

} // namespace

// --- what a view provides -----------------------------------------------------------------

void VIEW_Wake()
{
    VIEW_Batch batch;
    while (VIEW_Fetch(&batch))
        OnBatch(batch);
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
    if (DOOR_TakeInterrupt())
        DOOR_OnSignal(false);
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
    const unsigned total = static_cast<unsigned>(std::clamp(seconds, 0.0, 3600.0) * 1000.0);
    for (unsigned done = 0; done < total && !isOver(); done += SLICE_MS)
        PLT_SleepMs(std::min(SLICE_MS, total - done));
    return isOver() ? 0 : HL_FireTimer(panel, control);
}
