// Pop-ups, progress boxes and the desktop's services. A question blocks the program, not the
// view: it goes out with a batch, and the answer comes back as an event like any other.
#include "runtime/model/model.h"

#include <algorithm>

#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/model/door.h"

namespace {

constexpr size_t BUTTONS_MAX = 3;
constexpr uint64_t WAIT_US = 60000000; // at the door; then the queue is looked through again

// 1 and the answer, 0 while there is none, -1 when nobody will answer any more.
int FindAnswer(MDL_State *state, int id, VIEW_Event *answer)
{
    MDL_CatchUp();
    for (size_t i = 0; i < state->queue.size(); i++) {
        if (state->queue[i].kind == VIEW_EVENT_END)
            return -1;
        if (state->queue[i].kind != VIEW_EVENT_ANSWER || state->queue[i].id != id)
            continue;
        *answer = state->queue[i]; // out of turn: it is what the program waits for
        state->queue.erase(state->queue.begin() + static_cast<std::ptrdiff_t>(i));
        state->isCaught.erase(state->isCaught.begin() + static_cast<std::ptrdiff_t>(i));
        MDL_CountHandledEvents();
        return 1;
    }
    return 0;
}

// Number of the button, 0 when it was closed. Everything else that the user does meanwhile
// waits; the program is not busy: it is the user who is asked.
int Ask(VIEW_Question question, std::string *text)
{
    MDL_State &state = MDL_GetState();
    if (state.isEndWished)
        return 0;
    question.id = state.nextQuestion++;
    state.extra.question = question;
    VIEW_Busy busy;
    VIEW_GetBusy(&busy); // a question may be asked outside a callback too
    MDL_SetDoorBusy(false);
    state.depth++; // no callback and no timer starts
    MDL_Flush();
    VIEW_Event answer;
    int found = 0;
    while ((found = FindAnswer(&state, question.id, &answer)) == 0)
        MDL_WaitEvent(PLT_TickUs() + WAIT_US);
    state.depth--;
    MDL_SetDoorBusy(busy.isBusy);
    // The end of the session takes the question away and all that may follow it.
    if (found < 0) {
        state.isEndWished = true;
        state.extra.closedQuestion = question.id;
        MDL_Flush();
        return 0;
    }
    // The view keeps to the bound as well; this is the side that must not rely on it.
    if (text && answer.button > 0)
        *text = question.maxLength > 0 ? answer.text.substr(0, question.maxLength) : answer.text;
    return answer.button;
}

VIEW_Question MakeQuestion(VIEW_QuestionKind kind, const std::string &title,
                           const std::string &message)
{
    VIEW_Question question;
    question.kind = kind;
    question.title = title;
    question.message = message;
    return question;
}

void Equip(VIEW_Question *question, const std::string &text, size_t maxLength)
{
    question->hasEntry = true;
    question->text = text;
    question->maxLength = maxLength;
}

VIEW_Progress *FindProgress(int id)
{
    for (VIEW_Progress &box : MDL_GetState().progress)
        if (box.id == id)
            return &box;
    return nullptr;
}

void Show(const VIEW_Progress &box)
{
    MDL_GetState().extra.progress.push_back(box);
    MDL_Flush(false);
}

} // namespace

int MessagePopup(const std::string &title, const std::string &message)
{
    Ask(MakeQuestion(VIEW_MESSAGE, title, message), nullptr);
    return 0;
}

int ConfirmPopup(const std::string &title, const std::string &message, UI_Default enter)
{
    VIEW_Question question = MakeQuestion(VIEW_CONFIRM, title, message);
    question.defaultButton = enter == UI_DEFAULT_NO ? 2 : 1;
    return Ask(question, nullptr) == 1;
}

int PromptPopup(const std::string &title, const std::string &message, std::string *text,
                size_t maxLength)
{
    VIEW_Question question = MakeQuestion(VIEW_PROMPT, title, message);
    Equip(&question, *text, maxLength);
    std::string entered;
    if (Ask(question, &entered) != 1)
        return -1;
    *text = entered;
    return 0;
}

int GenericMessagePopup(const std::string &title, const std::string &message,
                        const std::vector<std::string> &buttons, std::string *text,
                        size_t maxLength)
{
    if (buttons.empty() || buttons.size() > BUTTONS_MAX)
        return UIE_BAD_TYPE;
    VIEW_Question question = MakeQuestion(VIEW_GENERIC, title, message);
    question.buttons = buttons;
    if (text)
        Equip(&question, *text, maxLength);
    return Ask(question, text);
}

int FileSelectPopup(const std::string &directory, const std::string &spec, const std::string &types,
                    const std::string &title, int mode, std::string *path)
{
    VIEW_Question question = MakeQuestion(VIEW_FILE, title, "");
    question.directory = directory;
    question.spec = spec;
    question.types = types;
    question.mode = mode;
    std::string chosen;
    if (Ask(question, &chosen) != 1 || chosen.empty())
        return CON_NO_FILE_SELECTED;
    // A terminal and the tests answer with any name; a window's dialog has looked already.
    const bool exists = PLT_FileExists(chosen);
    if (!exists && mode == FILE_LOAD)
        return CON_NO_FILE_SELECTED;
    *path = chosen;
    return exists ? CON_EXISTING_FILE_SELECTED : CON_NEW_FILE_SELECTED;
}

int CreateProgressDialog(const std::string &title, const std::string &text)
{
    MDL_State &state = MDL_GetState();
    VIEW_Progress box;
    box.id = state.nextProgress++;
    box.title = title;
    box.text = text;
    state.progress.push_back(box);
    Show(box);
    return box.id;
}

int UpdateProgressDialog(int dialog, int percent, const std::string &text)
{
    VIEW_Progress *box = FindProgress(dialog);
    if (!box)
        return UIE_NO_CONTROL;
    box->percent = std::clamp(percent, 0, 100);
    box->text = text;
    Show(*box);
    return MDL_IsProgressCancelled(dialog) ? 1 : 0;
}

int DiscardProgressDialog(int dialog)
{
    VIEW_Progress *box = FindProgress(dialog);
    if (!box)
        return UIE_NO_CONTROL;
    box->isGone = true;
    Show(*box);
    MDL_State &state = MDL_GetState();
    state.progress.erase(state.progress.begin() + (box - state.progress.data()));
    MDL_ForgetCancel(dialog); // else whatever runs next would be broken off
    return 0;
}

int MDL_KeepLayout(const UI_Layout &layout)
{
    // The settings file has name and numbers in one line, parted by blanks.
    const bool isNameGood =
        !layout.name.empty() && layout.name.size() <= UI_LAYOUT_NAME_MAX &&
        std::all_of(layout.name.begin(), layout.name.end(), [](char c) { return c > ' '; });
    if (!isNameGood || layout.numbers.size() > UI_LAYOUT_NUMBERS_MAX)
        return UIE_BAD_INDEX;
    std::vector<UI_Layout> &kept = MDL_GetState().layouts;
    const auto known = std::find_if(kept.begin(), kept.end(), [&](const UI_Layout &other) {
        return other.name == layout.name;
    });
    if (known == kept.end() && kept.size() >= UI_LAYOUTS_MAX)
        return UIE_BAD_INDEX;
    if (known == kept.end())
        kept.push_back(layout);
    else
        *known = layout;
    return 0;
}

int SetViewLayout(const UI_Layout &layout)
{
    // Of the last run: the view has to hear of it. What the view itself reports is only kept.
    const int result = MDL_KeepLayout(layout);
    if (result == 0)
        MDL_GetState().extra.layouts.push_back(layout);
    return result;
}

int GetViewLayouts(std::vector<UI_Layout> *layouts)
{
    MDL_CatchUp();
    *layouts = MDL_GetState().layouts;
    return 0;
}

int ShowHelpText(const std::string &path)
{
    MDL_State &state = MDL_GetState();
    state.extra.helpFile = path;
    if (state.depth == 0)
        MDL_Flush();
    return 0;
}

int Beep()
{
    MDL_GetState().extra.isBeep = true; // heard with the next batch, once
    return 0;
}

int ClipboardGetText(std::string *text)
{
    return Ask(MakeQuestion(VIEW_CLIPBOARD, "", ""), text) == 1 ? 0 : -1;
}

int ClipboardPutText(const std::string &text)
{
    MDL_State &state = MDL_GetState();
    state.extra.hasClipboard = true;
    state.extra.clipboard = text;
    if (state.depth == 0)
        MDL_Flush();
    return 0;
}
