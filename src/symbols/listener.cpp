// Every entry may be missing: tests and the fuzzers run the readers without a program around
// them. Nobody there to cancel means to go on.
#include "symbols/listener.h"

namespace {

SYM_Listener listener = {};

} // namespace

void SYM_SetListener(const SYM_Listener &newListener)
{
    listener = newListener;
}

void SYM_NamesChanged(SYM_Change change)
{
    if (listener.namesChanged != nullptr)
        listener.namesChanged(change);
}

void SYM_ShowMessage(const std::string &text)
{
    if (listener.showMessage != nullptr)
        listener.showMessage(text);
}

void SYM_Warn(const std::string &title, const std::string &text)
{
    if (listener.warn != nullptr)
        listener.warn(title, text);
}

void SYM_BeginProgress(const std::string &title, const std::string &text)
{
    if (listener.beginProgress != nullptr)
        listener.beginProgress(title, text);
}

bool SYM_AdvanceProgress(int percent, const std::string &text)
{
    return listener.advanceProgress == nullptr || listener.advanceProgress(percent, text);
}

void SYM_EndProgress()
{
    if (listener.endProgress != nullptr)
        listener.endProgress();
}
