#include "terminal/window.h"

#include <algorithm>

#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "terminal/code_pages.h"
#include "terminal/entry.h"
#include "terminal/log.h"
#include "terminal/place_rings.h"
#include "terminal/screen.h"
#include "terminal/service.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"

namespace {

constexpr int PANEL = PANEL_TERMINAL;
constexpr uint32_t LOOK_PERIOD_MS = 40;
constexpr uint32_t PAUSE_MS = 2000; // after a look that nobody answered
const char *const ENDINGS[] = {"\r", "\n", "\r\n", ""};

TSV_Session session;
TSC_Screen screen;
TLG_Log logFile;
bool isOn = false;
bool isWrong = false;  // what the message says, until the next good look
std::string problem;   // why there is no place to look at
std::string shownTail; // of the box's last line, which may still change
char lastEcho = 0;     // of what was sent
uint32_t lookedMs = 0; // last look
uint32_t failedMs = 0; // 0: the last look was answered

void ShowMessage(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, TERM_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, TERM_MESSAGE, text);
}

int GetPage()
{
    int page = CPT_LATIN_1;
    GetCtrlVal(PANEL, TERM_PAGE, &page);
    return page;
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

void ShowLog()
{
    SetCtrlVal(PANEL, TERM_LOG, logFile.file != nullptr ? 1 : 0);
}

// --- the text ---------------------------------------------------------------------------

void LogLines(const std::vector<std::string> &lines)
{
    std::string trouble;
    for (const std::string &line : lines)
        if (TLG_PutLine(&logFile, line, &trouble) != 0) {
            ShowMessage(trouble, COLOR_BAD);
            isWrong = false; // stays until there is something newer
            ShowLog();
        }
}

// Only what is new goes to the box, unless the line that was shown last has changed.
void ShowScreen()
{
    std::string text;
    LogLines(screen.done);
    if (screen.isCleared) {
        ResetTextBox(PANEL, TERM_SCREEN, "");
        shownTail.clear();
    }
    for (const std::string &line : screen.done)
        text += line + "\n";
    const std::string tail = TSC_GetLine(screen);
    text += tail;
    if (text.compare(0, shownTail.size(), shownTail) != 0) {
        int lines = 0;
        GetNumTextBoxLines(PANEL, TERM_SCREEN, &lines);
        DeleteTextBoxLines(PANEL, TERM_SCREEN, lines - 1, 1);
        shownTail.clear();
    }
    SetCtrlVal(PANEL, TERM_SCREEN, text.substr(shownTail.size()));
    shownTail = tail;
    if (screen.isBell)
        Beep();
    screen.done.clear();
    screen.isCleared = screen.isBell = false;
}

void Echo(const std::string &taken)
{
    int isWanted = 0;
    GetCtrlVal(PANEL, TERM_ECHO, &isWanted);
    for (const char c : taken) {
        const bool isSecond = c == '\n' && lastEcho == '\r';
        if (isWanted != 0 && !isSecond)
            TSC_Put(&screen, GetPage(), std::string(1, c == '\r' ? '\n' : c));
        lastEcho = c;
    }
}

void ClearText()
{
    screen = TSC_Screen();
    screen.isCleared = true;
    ShowScreen();
}

// --- the conversation -------------------------------------------------------------------

// Where the fields say. What was heard elsewhere has nothing to do with it.
void FindPlace()
{
    std::string text;
    TBK_Place place;
    GetCtrlVal(PANEL, TERM_PLACE, &text);
    problem.clear();
    if (TBK_FindPlace(text, TRI_GetStation(PANEL, TERM_STATION), &place, &problem) != 0) {
        if (isOn)
            ShowMessage(problem, COLOR_BAD);
        TRE_Break(TSV_Interrupt(&session));
        return;
    }
    failedMs = 0;
    if (place.address == session.place.address && place.station == session.place.station)
        return;
    TRE_Break(TSV_Interrupt(&session));
    TSV_Begin(&session, place);
    ShowMessage("");
}

void ShowNews(const TSV_News &news, size_t forgotten)
{
    Echo(news.taken);
    TSC_Put(&screen, GetPage(), news.received);
    ShowScreen();
    const bool isBad = news.isLineBad || !session.isOpen;
    if (!news.message.empty())
        ShowMessage(news.message, isBad ? COLOR_BAD : COLOR_WARN);
    else if (isWrong && !isBad)
        ShowMessage("");
    isWrong = isBad;
    if (forgotten > 0)
        TRE_Break(forgotten);
    else
        TRE_ShowProgress();
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
    if (!TSN_Add(&session.sender, bytes))
        return "Not sent: too many characters wait for room.";
    ShowState();
    return "";
}

std::string SendText(const std::string &text)
{
    std::string bytes, whole;
    const size_t absent = CPT_FromUtf8(GetPage(), text, &bytes);
    if (absent > 0)
        return "Not sent: characters that " + std::string(CPT_Name(GetPage())) +
               " does not have: " + std::to_string(absent) + ".";
    for (const char c : bytes)
        whole += c == '\n' ? GetEnding() : std::string(1, c);
    return SendBytes(whole);
}

size_t CountWaiting()
{
    return session.sender.waiting.size();
}

size_t CancelWaiting()
{
    return TSN_Cancel(&session.sender);
}

void Report(const std::string &trouble)
{
    if (!trouble.empty())
        ShowMessage(trouble, COLOR_BAD);
}

void Prepare()
{
    static const char *const NAMES[] = {"CR", "LF", "CR LF", "none"};
    int count = 0;
    std::string place;
    TRI_FillStations(PANEL, TERM_STATION);
    TRI_FillPages(PANEL, TERM_PAGE, nullptr, CPT_LATIN_1);
    GetNumListItems(PANEL, TERM_ENDING, &count);
    for (int i = count; i < 4; ++i)
        InsertListItem(PANEL, TERM_ENDING, -1, NAMES[i], i);
    GetCtrlVal(PANEL, TERM_PLACE, &place);
    if (place.empty())
        SetCtrlVal(PANEL, TERM_PLACE, TSV_NAME);
    SetCtrlCompletion(PANEL, TERM_PLACE, NCM_CompleteCB);
    TRE_Host host;
    host.send = SendText;
    host.waiting = CountWaiting;
    host.cancel = CancelWaiting;
    TRE_SetHost(host);
}

bool IsShown()
{
    int isVisible = 0;
    GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible);
    return isVisible != 0;
}

} // namespace

void T166_Init()
{
    Prepare();
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
    const uint32_t pauseMs = failedMs != 0 ? PAUSE_MS : TSV_IsBusy(session) ? 0 : LOOK_PERIOD_MS;
    if (!problem.empty() || nowMs - lookedMs < pauseMs)
        return true;
    TSV_News news;
    const size_t waiting = session.sender.waiting.size();
    TSV_Step(&session, &news);
    lookedMs = PLT_TickMs();
    failedMs = news.isLineBad ? std::max(lookedMs, 1u) : 0;
    ShowNews(news, waiting - news.taken.size() - session.sender.waiting.size());
    ShowState();
    return true;
}

void T166_Close()
{
    if (!isOn)
        return;
    isOn = false;
    const size_t forgotten = TSV_Interrupt(&session);
    TRE_Break(forgotten);
    ShowMessage(forgotten > 0 ? "Not sent any more: " + std::to_string(forgotten) + "." : "");
    ShowState();
}

void T166_SetPanelAttributes()
{
    if (!IsShown())
        return;
    FindPlace();
    ShowState();
}

void T166_ShowCommunication()
{
    if (isTimer == 0)
        T166_Close();
    else if (!isOn && IsShown())
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
    std::string trouble;
    if (event != EVENT_CLOSE)
        return 0;
    T166_Close();
    if (TLG_PutLine(&logFile, shownTail, &trouble) != 0 || TLG_Close(&logFile) != 0)
        MessagePopup("Error", "The log of the terminal is not complete.");
    ShowLog();
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
    std::string bytes = key == KEY_ENTER ? GetEnding() : "";
    for (const auto &row : KEYS)
        if (row.key == key)
            bytes = row.bytes;
    if (key < KEY_ENTER)
        bytes = std::string(1, static_cast<char>(key));
    Report(SendBytes(bytes));
    return 1;
}

int T166_LineCB(int, int, int event, int)
{
    std::string text;
    if (event != EVENT_COMMIT)
        return 0;
    GetCtrlVal(PANEL, TERM_LINE, &text);
    const std::string trouble = SendText(text + "\n");
    if (trouble.empty())
        SetCtrlVal(PANEL, TERM_LINE, "");
    Report(trouble);
    return 0;
}

int T166_ButtonCB(int, int control, int event, int)
{
    std::string text;
    if (event != EVENT_COMMIT)
        return 0;
    if (control == TERM_CLEAR) {
        ClearText();
    } else if (control == TERM_COPY) {
        GetCtrlVal(PANEL, TERM_SCREEN, &text);
        ClipboardPutText(text);
    } else {
        TRE_OpenWithClipboard();
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
    std::string path, trouble;
    if (event != EVENT_COMMIT)
        return 0;
    int isWanted = 0;
    GetCtrlVal(PANEL, TERM_LOG, &isWanted);
    if (isWanted == 0) {
        if (TLG_PutLine(&logFile, shownTail, &trouble) != 0 || TLG_Close(&logFile) != 0)
            ShowMessage("The log has not reached the disk: " + logFile.path + ".", COLOR_BAD);
    } else if (FileSelectPopup("", "terminal.txt", "*.txt", "Log of the terminal", FILE_SAVE,
                               &path) != VAL_NO_FILE_SELECTED &&
               TLG_Open(&logFile, path, &trouble) != 0) {
        ShowMessage(trouble, COLOR_BAD);
    }
    ShowLog();
    return 0;
}
