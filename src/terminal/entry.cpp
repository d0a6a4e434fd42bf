// The panel shows a text before it goes and how much of it has gone; the conversation behind it is
// the host's, which also sends what is typed meanwhile.
#include "terminal/entry.h"

#include "platform/plain_file.h"
#include "runtime/userint.h"
#include "terminal/sender.h"
#include "ui/resource.h"
#include "watch/windows/outcome_colors.h"

#include <algorithm>

namespace {

constexpr int PANEL = PANEL_TERMINAL_ENTRY;

TRM_EntryHost host;
std::string entry; // what is shown, lines ended by line feeds
size_t total = 0;  // bytes under way since Send; 0: none

void ShowState(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, ENTRY_STATE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, ENTRY_STATE, text);
}

void ShowBar(double share)
{
    UI_Segment done;
    done.last = share;
    done.style = UIS_GOOD;
    SetBarSegments(PANEL, ENTRY_BAR,
                   share > 0 ? std::vector<UI_Segment>{done} : std::vector<UI_Segment>());
}

void EnableButtons()
{
    // One text at a time: another one would have no progress of its own.
    SetCtrlAttribute(PANEL, ENTRY_SEND, ATTR_DIMMED, entry.empty() || total > 0);
    SetCtrlAttribute(PANEL, ENTRY_STOP, ATTR_DIMMED, total == 0);
    SetCtrlAttribute(PANEL, ENTRY_PASTE, ATTR_DIMMED, total > 0);
    SetCtrlAttribute(PANEL, ENTRY_FILE, ATTR_DIMMED, total > 0);
}

// From any system, and from a clipboard of one: CR LF and CR become LF.
std::string WithLineFeeds(const std::string &text)
{
    std::string lines;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        lines += text[i] == '\r' ? '\n' : text[i];
    }
    return lines;
}

void ShowEntry(const std::string &text)
{
    entry = WithLineFeeds(text);
    const auto lines = std::count(entry.begin(), entry.end(), '\n') +
                       (!entry.empty() && entry.back() != '\n' ? 1 : 0);
    // Refused, not cut: half a text may be a command.
    if (text.size() > TRM_WAITING_MAX) {
        ShowState("Too long to send: " + std::to_string(text.size()) + " bytes, at most " +
                      std::to_string(TRM_WAITING_MAX) + ".",
                  COLOR_BAD);
        entry.clear();
    } else {
        ShowState(entry.empty() ? "There is no text to send."
                                : "Lines to send: " + std::to_string(lines) + ".");
    }
    ResetTextBox(PANEL, ENTRY_TEXT, entry);
    ShowBar(0);
    EnableButtons();
}

void Paste()
{
    std::string text;
    ClipboardGetText(&text);
    ShowEntry(text);
}

void OpenFile()
{
    std::string path, text;
    if (FileSelectPopup("", "*.txt", "*.txt", "Send text file", FILE_LOAD, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    // No more is read than could be sent.
    const int result = PLT_ReadFile(path, TRM_WAITING_MAX, &text);
    if (result == PLT_FILE_OK)
        ShowEntry(text);
    else
        ShowState(path + " " + PLT_FileErrorText(result) + ".", COLOR_BAD);
}

void Send()
{
    // What waited before counts as well: the bar is full when nothing waits any more.
    const std::string problem = host.send(entry);
    total = problem.empty() ? host.waiting() : 0;
    if (!problem.empty())
        ShowState(problem, COLOR_BAD);
    EnableButtons();
}

} // namespace

void TRM_SetEntryHost(const TRM_EntryHost &newHost)
{
    host = newHost;
}

void TRM_OpenEntryWithClipboard()
{
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    if (total == 0) // else the text that is under way stays in view
        Paste();
    SetActiveCtrl(PANEL, ENTRY_SEND);
}

void TRM_ShowEntryProgress()
{
    if (total == 0)
        return;
    // What is typed meanwhile waits as well.
    const size_t left = std::min(host.waiting(), total);
    ShowBar(1 - static_cast<double>(left) / static_cast<double>(total));
    if (left > 0) {
        ShowState("Sent: " + std::to_string(total - left) + " of " + std::to_string(total) +
                  " characters.");
        return;
    }
    ShowState("All of it is sent.", COLOR_GOOD);
    total = 0;
    EnableButtons();
}

void TRM_BreakEntry(size_t forgotten)
{
    if (total == 0)
        return;
    ShowState("Stopped. Not sent: " + std::to_string(forgotten) + " of " + std::to_string(total) +
                  " characters.",
              COLOR_WARN);
    total = 0;
    EnableButtons();
}

int TRM_EntryPanelCB(int panel, int event, int)
{
    if (event != EVENT_CLOSE && event != EVENT_KEYPRESS) // Esc is the only key it has
        return 0;
    HidePanel(panel);
    return 1;
}

int TRM_EntryButtonCB(int panel, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    switch (control) {
    case ENTRY_PASTE:
        Paste();
        break;
    case ENTRY_FILE:
        OpenFile();
        break;
    case ENTRY_SEND:
        Send();
        break;
    case ENTRY_STOP:
        TRM_BreakEntry(host.cancel());
        break;
    default:
        HidePanel(panel);
    }
    return 0;
}
