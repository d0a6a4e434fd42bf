// Pop-ups: said on standard error; questions are answered from the queue, by the
// user's standing answer, or safely.
#include "runtime/headless/hl_state.h"

#include <cstdio>

#include "platform/system.h"

namespace {

void Say(const std::string &title, const std::string &message)
{
    HL_State &state = HL_GetState();
    state.popups.push_back(title + ": " + message);
    if (!state.err)
        return;
    if (state.out)
        std::fflush(state.out);
    std::fprintf(state.err, "%s: %s\n", title.c_str(), message.c_str());
    std::fflush(state.err);
}

bool TakeAnswer(HL_Answer *answer)
{
    HL_State &state = HL_GetState();
    if (state.answers.empty())
        return false;
    *answer = state.answers.front();
    state.answers.pop_front();
    return true;
}

bool IsFile(const std::string &path)
{
    PLT_FileStamp stamp;
    return PLT_GetFileStamp(path, &stamp) == 0;
}

// What the standing answer presses in a box of `count` buttons.
int StandingButton(int count)
{
    switch (HL_GetState().defaultAnswer) {
    case HL_ANSWER_YES:
        return 1;
    case HL_ANSWER_NO:
        return count > 1 ? 2 : 1;
    default:
        return 0;
    }
}

} // namespace

void HL_SetDefaultAnswer(HL_DefaultAnswer answer)
{
    HL_GetState().defaultAnswer = answer;
}

void HL_PushAnswer(int button, const std::string &text)
{
    HL_GetState().answers.push_back({button, text});
}

int HL_CountAnswers()
{
    return static_cast<int>(HL_GetState().answers.size());
}

const std::vector<std::string> &HL_GetPopups()
{
    return HL_GetState().popups;
}

int MessagePopup(const std::string &title, const std::string &message)
{
    Say(title, message);
    return 0;
}

int ConfirmPopup(const std::string &title, const std::string &message)
{
    Say(title, message);
    HL_Answer answer;
    if (TakeAnswer(&answer))
        return answer.button == 1;
    return HL_GetState().defaultAnswer == HL_ANSWER_YES;
}

int PromptPopup(const std::string &title, const std::string &message, std::string *text,
                size_t maxLength)
{
    Say(title, message);
    HL_Answer answer;
    if (!TakeAnswer(&answer) || answer.button != 1)
        return -1;
    *text = answer.text.substr(0, maxLength);
    return 0;
}

int GenericMessagePopup(const std::string &title, const std::string &message,
                        const std::vector<std::string> &buttons, std::string *text,
                        size_t maxLength)
{
    Say(title, message);
    HL_Answer answer;
    if (TakeAnswer(&answer)) {
        if (text)
            *text = answer.text.substr(0, maxLength);
        return answer.button;
    }
    // Nobody is there to type: pressing "again" with the old text could go on for ever.
    return text ? 0 : StandingButton(static_cast<int>(buttons.size()));
}

int FileSelectPopup(const std::string &directory, const std::string &spec, const std::string &types,
                    const std::string &title, int mode, std::string *path)
{
    (void)directory;
    (void)spec;
    (void)types;
    HL_GetState().popups.push_back(title + ": ");
    HL_Answer answer;
    if (!TakeAnswer(&answer) || answer.button != 1)
        return VAL_NO_FILE_SELECTED;
    if (IsFile(answer.text)) {
        *path = answer.text;
        return VAL_EXISTING_FILE_SELECTED;
    }
    if (mode == FILE_LOAD)
        return VAL_NO_FILE_SELECTED;
    *path = answer.text;
    return VAL_NEW_FILE_SELECTED;
}
