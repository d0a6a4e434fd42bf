// The window keeps no picture of its own: it shows the session's, and lets go of keys that nobody
// presses any more, for a keyboard does not say so.
#include "terminal/window.h"

#include "comm/communication.h"
#include "platform/system.h"
#include "runtime/lcd_text.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "terminal/code_pages.h"
#include "terminal/lcd.h"
#include "terminal/window_parts.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"

#include <algorithm>

namespace {

constexpr int PANEL = PANEL_LCD;
constexpr char PLACE_AT_FIRST[] = "LcdTerm";
constexpr double PERIOD_S = 0.05;        // of the timer: how late a key is released at most
constexpr uint32_t LOOK_PERIOD_MS = 150; // a display of the target is hardly faster
constexpr uint32_t PAUSE_MS = 2000;      // after a look that nobody answered
constexpr uint32_t RELEASE_MS = 250; // after the last press of a key; its repetitions come faster
constexpr int PAGE_OF_TARGET = -1;

// Which of the target's keys a key of the keyboard is; buttons are numbered as the keys.
constexpr struct {
    int first, last, key;
} KEYBOARD[] = {{'0', '9', 0},           {KEY_ENTER, KEY_ENTER, 10},
                {KEY_ESC, KEY_ESC, 11},  {KEY_UP, KEY_RIGHT, 12},
                {'+', '+', 16},          {'-', '-', 17},
                {'.', '.', 18},          {KEY_BACKSPACE, KEY_BACKSPACE, 19},
                {KEY_F1, KEY_F1 + 3, 20}};

TRM_LcdSession session;
std::string problem;  // why there is no place to look at
bool isWrong = false; // what the message says, until the next good look
uint32_t lookedMs = 0, failedMs = 0;
uint32_t pressedMs[TRM_LCD_KEY_COUNT] = {};
bool isPressed[TRM_LCD_KEY_COUNT] = {};

void ShowMessage(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, LCD_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, LCD_MESSAGE, text);
}

int GetPage()
{
    int page = PAGE_OF_TARGET;
    GetCtrlVal(PANEL, LCD_PAGE, &page);
    return page == PAGE_OF_TARGET ? static_cast<int>(session.picture.block.codePage) : page;
}

// A cursor that lies outside is not seen; a display that is off shows nothing.
UI_LcdPicture MakePicture()
{
    const TRM_LcdBlock &block = session.picture.block;
    UI_LcdPicture picture;
    const bool isShown = session.isOpen && (block.flags & TRM_DISPLAY_ON) != 0;
    picture.rows.assign(block.rows, std::u32string(block.columns, ' '));
    for (uint32_t i = 0; isShown && i < session.picture.characters.size(); ++i) {
        // What a code page has for control characters is no picture.
        const char32_t code = TRM_ToCode(GetPage(), session.picture.characters[i]);
        picture.rows[i / block.columns][i % block.columns] = code < ' ' ? TRM_PAGE_UNKNOWN : code;
    }
    picture.cursorRow = static_cast<int>(block.cursorRow);
    picture.cursorColumn = static_cast<int>(block.cursorColumn);
    picture.cursor = !isShown || (block.flags & (TRM_CURSOR_ON | TRM_CURSOR_BLINKS)) == 0
                         ? UI_LCD_NO_CURSOR
                     : (block.flags & TRM_CURSOR_BLINKS) != 0 ? UI_LCD_CURSOR_BLINKING
                                                              : UI_LCD_CURSOR_UNDERLINE;
    picture.isLit = session.isOpen && (block.flags & TRM_LIGHT_ON) != 0;
    picture.glyphs = session.picture.glyphs;
    return picture;
}

void ShowPicture()
{
    SetCtrlVal(PANEL, LCD_SCREEN, UI_FormatLcd(MakePicture()));
    for (int key = 0; key <= LCD_KEY_LAST - LCD_KEY_FIRST; ++key)
        SetCtrlAttribute(PANEL, LCD_KEY_FIRST + key, ATTR_DIMMED,
                         !session.isOpen || (session.picture.block.keyMask >> key & 1) == 0);
}

void ShowState()
{
    const TRM_LcdBlock &block = session.picture.block;
    std::string text =
        "COM" + std::to_string(ncom) + ", station " + std::to_string(session.place.station) + ". ";
    if (isTimer == 0)
        text += "Communication is off.";
    else if (!session.isOpen)
        text += "Looking for the display.";
    else
        text += std::to_string(block.rows) + " rows, " + std::to_string(block.columns) +
                " columns, " + TRM_PageName(GetPage()) + ".";
    SetCtrlVal(PANEL, LCD_STATE, text);
}

// Where the fields say. Another place is another display.
void FindPlace()
{
    std::string text;
    TRM_BlockPlace place;
    GetCtrlVal(PANEL, LCD_PLACE, &text);
    problem.clear();
    // The same place may have moved with another map, or have none any more.
    const int result =
        TRM_FindBlockPlace(text, TRM_GetStation(PANEL, LCD_STATION), &place, &problem);
    if (result != 0)
        ShowMessage(problem, COLOR_BAD);
    if (result == 0 && place.address == session.place.address &&
        place.station == session.place.station)
        return;
    // Keys that were pressed on the other display are not released on this one.
    std::fill(std::begin(isPressed), std::end(isPressed), false);
    TRM_BeginLcd(&session, result == 0 ? place : TRM_BlockPlace());
    failedMs = 0;
    if (result == 0)
        ShowMessage("");
    ShowPicture();
}

void Press(int key)
{
    if (!TRM_AddLcdKey(&session, key, false))
        return;
    isPressed[key] = true;
    pressedMs[key] = PLT_TickMs();
    lookedMs -= LOOK_PERIOD_MS; // it is sent at the next tick
}

void ReleaseKeys()
{
    for (int key = 0; key < static_cast<int>(TRM_LCD_KEY_COUNT); ++key) {
        if (!isPressed[key] || PLT_TickMs() - pressedMs[key] < RELEASE_MS)
            continue;
        // Sent even when too many keys wait: no key stays pressed in the target.
        TRM_AddLcdKey(&session, key, true);
        isPressed[key] = false;
    }
}

void Look()
{
    TRM_LcdNews news;
    const bool wasOpen = session.isOpen;
    TRM_StepLcd(&session, &news);
    lookedMs = PLT_TickMs();
    failedMs = news.isLineBad ? std::max(lookedMs, 1u) : 0; // 0 stands for none
    const bool isBad = news.isLineBad || !session.isOpen || session.unsteady > 0;
    if (!news.message.empty())
        ShowMessage(news.message, isBad ? COLOR_BAD : COLOR_WARN);
    else if (isWrong && !isBad)
        ShowMessage("");
    isWrong = isBad;
    if (news.isNew || wasOpen != session.isOpen)
        ShowPicture();
    ShowState();
}

} // namespace

void TRM_SetLcdPanelAttributes()
{
    if (!TRM_IsShown(PANEL))
        return;
    if (isTimer == 0 && session.isOpen) { // what stands there now is not known any more
        TRM_BeginLcd(&session, session.place);
        ShowPicture();
    }
    FindPlace();
    ShowState();
}

void TRM_LcdOpenCB(int, int)
{
    std::string place;
    TRM_FillStations(PANEL, LCD_STATION);
    TRM_FillPages(PANEL, LCD_PAGE, "of the target", PAGE_OF_TARGET);
    GetCtrlVal(PANEL, LCD_PLACE, &place);
    if (place.empty())
        SetCtrlVal(PANEL, LCD_PLACE, PLACE_AT_FIRST);
    SetCtrlCompletion(PANEL, LCD_PLACE, WIN_CompleteNameCB);
    SetCtrlAttribute(PANEL, LCD_TIMER, ATTR_INTERVAL, PERIOD_S);
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    VR_ComRequest();
    FindPlace();
    ShowPicture();
    ShowState();
    SetActiveCtrl(PANEL, LCD_SCREEN);
}

int TRM_LcdPanelCB(int panel, int event, int)
{
    if (event != EVENT_CLOSE)
        return 0;
    // Nothing is known of a display that nobody looks at; the next look begins anew.
    std::fill(std::begin(isPressed), std::end(isPressed), false);
    TRM_BeginLcd(&session, session.place);
    HidePanel(panel);
    return 1;
}

int TRM_LcdScreenCB(int, int, int event, int key)
{
    if (event != EVENT_KEYPRESS)
        return 0;
    for (const auto &row : KEYBOARD)
        if (key >= row.first && key <= row.last)
            Press(row.key + key - row.first);
    return 1;
}

int TRM_LcdKeyCB(int, int control, int event, int)
{
    if (event == EVENT_COMMIT)
        Press(control - LCD_KEY_FIRST);
    return 0;
}

int TRM_LcdCopyCB(int, int, int event, int)
{
    // As it is seen: in the chosen code page, the target's own characters as private ones.
    std::string text;
    if (event != EVENT_COMMIT)
        return 0;
    for (const std::u32string &row : MakePicture().rows) {
        for (const char32_t code : row)
            text += TRM_ToUtf8(code);
        text += "\n";
    }
    ClipboardPutText(text);
    return 0;
}

int TRM_LcdPlaceCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    FindPlace();
    ShowPicture();
    ShowState();
    return 0;
}

int TRM_LcdTimerCB(int, int, int event, int)
{
    if (event != EVENT_TIMER_TICK || isTimer == 0 || !TRM_IsShown(PANEL) || !problem.empty())
        return 0;
    const uint32_t pauseMs = failedMs != 0 ? PAUSE_MS : LOOK_PERIOD_MS;
    ReleaseKeys();
    if (PLT_TickMs() - lookedMs >= pauseMs)
        Look();
    return 0;
}
