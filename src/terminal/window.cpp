// The conversation: where it is held, when the target is looked at, what is typed for it. The text
// and its log stand in window_text.cpp.
#include "terminal/window.h"

#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "terminal/code_pages.h"
#include "terminal/entry.h"
#include "terminal/service.h"
#include "terminal/window_parts.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int PANEL = PANEL_TERMINAL;
constexpr uint32_t LOOK_PERIOD_MS = 40; // while nothing comes: an echo is seen at once
constexpr uint32_t PAUSE_MS = 2000;     // after a look that nobody answered
const char *const ENDINGS[] = {"\r", "\n", "\r\n", ""}; // what Enter sends
constexpr int ENDING_COUNT = sizeof ENDINGS / sizeof ENDINGS[0];
constexpr size_t HISTORY_LINES = 50;

TRM_ServiceSession session;
bool isOn = false;
bool isWrong = false;               // what the message says, until the next good look
std::vector<std::string> sentLines; // of the field, the newest last
size_t shownLine = 0;               // of these; their number: none, the field is being typed
std::string draft;                  // what was typed there before an older line was shown
std::string problem;                // why there is no place to look at
uint32_t lookedMs = 0;              // last look
uint32_t failedMs = 0;              // 0: the last look was answered

void ShowMessage(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, TERM_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, TERM_MESSAGE, text);
}

void Report(const std::string &trouble)
{
    if (!trouble.empty())
        ShowMessage(trouble, COLOR_BAD);
}

std::string GetEnding()
{
    int ending = 0;
    GetCtrlVal(PANEL, TERM_ENDING, &ending);
    return ENDINGS[ending];
}

void ShowState()
{
    const char *state = !isOn            ? "Closed: communication is off."
                        : session.isOpen ? "Connected."
                                         : "Looking for the terminal.";
    std::string text = "COM" + std::to_string(ncom) + ", station " +
                       std::to_string(session.place.station) + ". " + state +
                       " Received: " + std::to_string(session.received) +
                       ", sent: " + std::to_string(session.sent);
    if (!session.sender.waiting.empty())
        text += ", waiting: " + std::to_string(session.sender.waiting.size());
    SetCtrlVal(PANEL, TERM_STATE, text + ".");
}

// Up to the older line, Down to the newer one and, behind the newest, to what was being typed.
void BrowseLines(int key)
{
    const size_t before = shownLine;
    if (key == KEY_UP && shownLine > 0)
        --shownLine;
    if (key == KEY_DOWN && shownLine < sentLines.size())
        ++shownLine;
    if (shownLine == before)
        return;
    if (before == sentLines.size())
        GetCtrlVal(PANEL, TERM_LINE, &draft);
    SetCtrlVal(PANEL, TERM_LINE, shownLine < sentLines.size() ? sentLines[shownLine] : draft);
}

void KeepLine(const std::string &line)
{
    // The same line once, however often it is sent; an empty one is quicker typed than found.
    if (!line.empty() && (sentLines.empty() || sentLines.back() != line))
        sentLines.push_back(line);
    if (sentLines.size() > HISTORY_LINES)
        sentLines.erase(sentLines.begin());
    shownLine = sentLines.size();
}

// Where the fields say. What was heard elsewhere has nothing to do with it.
void FindPlace()
{
    std::string text;
    TRM_BlockPlace place;
    GetCtrlVal(PANEL, TERM_PLACE, &text);
    problem.clear();
    if (TRM_FindBlockPlace(text, TRM_GetStation(PANEL, TERM_STATION), &place, &problem) != 0) {
        if (isOn)
            ShowMessage(problem, COLOR_BAD);
        TRM_BreakEntry(TRM_InterruptService(&session));
        return;
    }
    failedMs = 0;
    if (place.address == session.place.address && place.station == session.place.station)
        return;
    TRM_BreakEntry(TRM_InterruptService(&session));
    TRM_BeginService(&session, place);
    ShowMessage("");
}

void ShowNews(const TRM_ServiceNews &news, size_t forgotten)
{
    const std::string trouble = T166_ShowText(news.taken, news.received);
    if (!trouble.empty()) {
        ShowMessage(trouble, COLOR_BAD);
        isWrong = false; // stays until there is something newer
    }
    const bool isBad = news.isLineBad || !session.isOpen;
    if (!news.message.empty())
        ShowMessage(news.message, isBad ? COLOR_BAD : COLOR_WARN);
    else if (isWrong && !isBad)
        ShowMessage("");
    isWrong = isBad;
    if (forgotten > 0)
        TRM_BreakEntry(forgotten);
    else
        TRM_ShowEntryProgress();
}

void Start()
{
    isOn = isTimer != 0;
    lookedMs = failedMs = 0;
    FindPlace();
    if (isOn && problem.empty())
        ShowMessage("");
    ShowState();
}

// "" or why nothing was sent; `bytes` as the target is to have them.
std::string SendBytes(const std::string &bytes)
{
    if (!isOn)
        return std::string("Not sent: ") + COM_OFF_TEXT;
    if (!session.isOpen)
        return "Not sent: there is no terminal yet.";
    if (!TRM_AddToSender(&session.sender, bytes))
        return "Not sent: too many characters wait for room.";
    ShowState();
    return "";
}

std::string SendText(const std::string &text)
{
    std::string bytes, whole;
    const size_t absent = TRM_FromUtf8(T166_GetPage(), text, &bytes);
    if (absent > 0)
        return "Not sent: characters that " + std::string(TRM_PageName(T166_GetPage())) +
               " does not have: " + std::to_string(absent) + ".";
    // A text's lines end as the user has chosen: that is what the target takes for Enter.
    for (const char c : bytes)
        whole += c == '\n' ? GetEnding() : std::string(1, c);
    return SendBytes(whole);
}

} // namespace

void T166_Init()
{
    // What an earlier opening has filled in, or the user typed, stays.
    static const char *const NAMES[] = {"CR", "LF", "CR LF", "none"};
    int count = 0;
    std::string place;
    TRM_FillStations(PANEL, TERM_STATION);
    TRM_FillPages(PANEL, TERM_PAGE, nullptr, TRM_PAGE_LATIN_1);
    GetNumListItems(PANEL, TERM_ENDING, &count);
    for (int i = count; i < ENDING_COUNT; ++i)
        InsertListItem(PANEL, TERM_ENDING, -1, NAMES[i], i);
    GetCtrlVal(PANEL, TERM_PLACE, &place);
    if (place.empty())
        SetCtrlVal(PANEL, TERM_PLACE, TRM_SERVICE_NAME);
    SetCtrlCompletion(PANEL, TERM_PLACE, WIN_CompleteNameCB);
    TRM_EntryHost host;
    host.send = SendText;
    host.waiting = [] { return session.sender.waiting.size(); };
    host.cancel = [] { return TRM_CancelSender(&session.sender); };
    TRM_SetEntryHost(host);
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    VR_ComRequest();
    Start();
    SetActiveCtrl(PANEL, TERM_SCREEN);
}

bool T166_Read()
{
    const uint32_t nowMs = PLT_TickMs();
    if (!isOn)
        return false;
    // At once while there is something to do; seldom where nobody answers, for each look costs a
    // time-out in which everything else waits.
    const uint32_t pauseMs = failedMs != 0                ? PAUSE_MS
                             : TRM_IsServiceBusy(session) ? 0
                                                          : LOOK_PERIOD_MS;
    if (!problem.empty() || nowMs - lookedMs < pauseMs)
        return true;
    TRM_ServiceNews news;
    const size_t waiting = session.sender.waiting.size();
    TRM_StepService(&session, &news);
    lookedMs = PLT_TickMs();
    failedMs = news.isLineBad ? std::max(lookedMs, 1u) : 0; // 0 stands for none
    // What neither waits nor was taken has been forgotten: nobody can say where it went.
    ShowNews(news, waiting - news.taken.size() - session.sender.waiting.size());
    ShowState();
    return true;
}

void T166_Close()
{
    if (!isOn)
        return;
    // It may be another target that answers next: what waits is not meant for it.
    isOn = false;
    const size_t forgotten = TRM_InterruptService(&session);
    TRM_BreakEntry(forgotten);
    ShowMessage(forgotten > 0 ? "Not sent any more: " + std::to_string(forgotten) + "." : "");
    ShowState();
}

void T166_SetPanelAttributes()
{
    if (!TRM_IsShown(PANEL))
        return;
    FindPlace();
    ShowState();
}

void T166_ShowCommunication()
{
    if (isTimer == 0)
        T166_Close();
    else if (!isOn && TRM_IsShown(PANEL))
        Start();
}

bool T166_IsOn()
{
    return isOn;
}

void T166_OpenCB(int, int)
{
    T166_Init();
}

int T166_PanelCB(int panel, int event, int)
{
    if (event != EVENT_CLOSE)
        return 0;
    T166_Close();
    if (T166_EndLog() != 0)
        MessagePopup("Error", "The log of the terminal is not complete.");
    T166_ShowLog();
    HidePanel(PANEL_TERMINAL_ENTRY);
    HidePanel(panel);
    return 1;
}

int T166_ScreenCB(int, int, int event, int key)
{
    static const struct {
        int key;
        const char *bytes;
    } KEYS[] = {{KEY_BACKSPACE, "\b"}, {KEY_ESC, "\x1B"}};
    if (event != EVENT_KEYPRESS)
        return 0;
    // Each key at once, as a terminal does; keys without a character are none of the target's.
    std::string bytes = key == KEY_ENTER ? GetEnding() : "";
    for (const auto &row : KEYS)
        if (row.key == key)
            bytes = row.bytes;
    if (key < KEY_ENTER)
        bytes = std::string(1, static_cast<char>(key));
    Report(SendBytes(bytes));
    return 1;
}

int T166_LineCB(int, int, int event, int key)
{
    std::string text;
    if (event == EVENT_KEYPRESS && (key == KEY_UP || key == KEY_DOWN)) {
        BrowseLines(key);
        return 1;
    }
    if (event != EVENT_COMMIT)
        return 0;
    GetCtrlVal(PANEL, TERM_LINE, &text);
    const std::string trouble = SendText(text + "\n");
    if (trouble.empty()) { // what was not sent stays to be sent again
        KeepLine(text);
        SetCtrlVal(PANEL, TERM_LINE, "");
    }
    Report(trouble);
    return 0;
}

int T166_ButtonCB(int, int control, int event, int)
{
    std::string text;
    if (event != EVENT_COMMIT)
        return 0;
    if (control == TERM_CLEAR) {
        T166_ClearText();
    } else if (control == TERM_COPY) {
        GetCtrlVal(PANEL, TERM_SCREEN, &text);
        ClipboardPutText(text);
    } else {
        TRM_OpenEntryWithClipboard();
    }
    return 0;
}

int T166_PlaceCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT && isOn)
        Start();
    return 0;
}

int T166_LogCB(int, int, int event, int)
{
    std::string path;
    if (event != EVENT_COMMIT)
        return 0;
    int isWanted = 0;
    GetCtrlVal(PANEL, TERM_LOG, &isWanted);
    if (isWanted == 0) {
        if (T166_EndLog() != 0)
            ShowMessage("The log has not reached the disk: " + T166_GetLogPath() + ".", COLOR_BAD);
    } else if (FileSelectPopup("", "terminal.txt", "*.txt", "Log of the terminal", FILE_SAVE,
                               &path) != CON_NO_FILE_SELECTED) {
        Report(T166_BeginLog(path));
    }
    T166_ShowLog(); // off again where there is no file
    return 0;
}
