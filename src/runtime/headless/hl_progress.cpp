// The progress box as a line on standard error, and only when a person watches it.
#include "runtime/headless/hl_state.h"

namespace {

std::string *FindTitle(int dialog)
{
    std::vector<std::string> &titles = HL_GetState().progressTitles;
    if (dialog < 1 || dialog > static_cast<int>(titles.size()))
        return nullptr;
    std::string *title = &titles[static_cast<size_t>(dialog - 1)];
    return title->empty() ? nullptr : title;
}

void Show(const std::string &title, int percent, const std::string &text, const char *end)
{
    HL_State &state = HL_GetState();
    if (!state.err || !state.isProgressShown)
        return;
    std::fprintf(state.err, "\r%s %3d %% %-40s%s", title.c_str(), percent, text.c_str(), end);
    std::fflush(state.err);
}

} // namespace

void HL_ShowProgress(bool isShown)
{
    HL_GetState().isProgressShown = isShown;
}

void HL_CancelProgressAt(int update)
{
    HL_GetState().cancelAt = update;
}

int CreateProgressDialog(const std::string &title, const std::string &text)
{
    std::vector<std::string> &titles = HL_GetState().progressTitles;
    titles.push_back(title.empty() ? "Progress" : title);
    Show(titles.back(), 0, text, "");
    return static_cast<int>(titles.size());
}

int UpdateProgressDialog(int dialog, int percent, const std::string &text)
{
    const std::string *title = FindTitle(dialog);
    if (!title)
        return UIE_NO_PANEL;
    Show(*title, percent, text, "");
    HL_State &state = HL_GetState();
    if (state.cancelAt == 0)
        return 0;
    // Stays at 1: a cancelled box remains cancelled.
    if (state.cancelAt > 1) {
        state.cancelAt--;
        return 0;
    }
    return 1;
}

int DiscardProgressDialog(int dialog)
{
    std::string *title = FindTitle(dialog);
    if (!title)
        return UIE_NO_PANEL;
    Show(*title, 100, "", "\n");
    title->clear();
    return 0;
}
