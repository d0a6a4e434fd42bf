// The window holds no item but a reference to one: each time something is shown or done it is
// looked up again, for the list may have been edited meanwhile.
#include "watch/windows/value_panel.h"

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/age.h"
#include "watch/list/edit.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/value/value_types.h"
#include "watch/value/write_value.h"
#include "watch/windows/outcome_colors.h"

namespace {

constexpr int PANEL = PANEL_VALUE;
const char ITEM_GONE[] = "The item is no longer in the watch list.";

EDT_Reference shown; // the item that the window is about

struct OutcomeRow {
    int result; // of VAL_Write
    const char *word;
    int color;
};
const OutcomeRow outcomeRows[] = {
    {VAL_WRITE_OK, "OK: ", COLOR_GOOD},
    {VAL_WRITE_DIFFERENT, "DIFFERENT: ", COLOR_WARN},
    {VAL_WRITE_ERR_READ_BACK, "NOT VERIFIED: ", COLOR_WARN},
    {VAL_WRITE_ERR_WRITE, "FAILED: ", COLOR_BAD},
};
// Everything else was refused before anything was sent.
const OutcomeRow refusedRow = {VAL_WRITE_ERR_TEXT, "REFUSED: ", COLOR_BAD};

const OutcomeRow &OutcomeOf(int result)
{
    for (const OutcomeRow &row : outcomeRows)
        if (row.result == result)
            return row;
    return refusedRow;
}

void ShowOutcome(const std::string &text, int color)
{
    SetCtrlAttribute(PANEL, VALUE_RESULT, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, VALUE_RESULT, text);
}

bool IsOpen()
{
    int isVisible = 0;
    return GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible) >= 0 && isVisible != 0;
}

// The item's index now; -1, said in the window, when it is gone.
int CurrentIndex()
{
    const int index = EDT_Find(shown);
    if (index < 0) {
        ShowOutcome(ITEM_GONE, COLOR_BAD);
        return index;
    }
    // It may come back: by undo, or with a list that is loaded again.
    std::string said;
    GetCtrlVal(PANEL, VALUE_RESULT, &said);
    if (said == ITEM_GONE)
        ShowOutcome("", COLOR_PLAIN);
    shown.index = index;
    return index;
}

std::string AddressText(const LItem &item)
{
    if (item.address == LITEM_NO_ADDRESS)
        return RFR_NOT_RESOLVED;
    if (LIT_IsTMS(item))
        return TXT_Format("0x%X, a word address of the TMS320", item.address);
    if (!IsWordAddressing(Procesor))
        return TXT_Format("0x%06X", item.address);
    return TXT_Format("word 0x%06X%s (byte address 0x%06X)", item.address / 2,
                      item.address % 2 ? ", upper half" : "", item.address);
}

// As the list shows it, or why it cannot.
std::string ListText(const LItem &item)
{
    if (!item.isValueGood)
        return item.reason.empty() ? "not read yet" : item.reason;
    // Its bits are known, but not how fast they change.
    if (!LIT_HasNumber(item))
        return "a rate takes two reads";
    std::string text;
    FormatLItemVal(&text, item);
    return TXT_Trim(text);
}

// Goes over the screen four times a second: what is the same stays untouched.
void SetText(int control, const std::string &text)
{
    std::string before;
    if (GetCtrlVal(PANEL, control, &before) < 0 || before != text)
        SetCtrlVal(PANEL, control, text);
}

void ShowItem(const LItem &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    const bool hasStation = item.station >= 0 && item.station <= STATION_MAX;
    SetText(VALUE_NAME, LIT_Label(item));
    SetText(VALUE_ADDRESS, AddressText(item));
    SetText(VALUE_STATION,
            std::to_string(LIT_Station(item)) + (hasStation ? "" : " (the selected one)"));
    SetText(VALUE_TYPE, std::string(row ? row->name : "?") + ", " + std::to_string(item.size) +
                            (item.size == 1 ? " byte" : " bytes"));
    SetText(VALUE_SHOWN, ListText(item));
    SetText(VALUE_DECIMAL, VAL_DecimalForm(item));
    SetText(VALUE_HEX, VAL_HexForm(item));
    SetText(VALUE_BINARY, VAL_BinaryForm(item));
    SetText(VALUE_FLOAT, VAL_FloatForm(item));
    SetText(VALUE_HINT, "Type " + VAL_GetHint(item) + ".");
    // Red has failed, grey was not read yet or is no value of now.
    int color = COLOR_PLAIN;
    if (!item.isValueGood)
        color = item.reason.empty() ? COLOR_OLD : COLOR_BAD;
    else if (RFR_IsOld(item) || !LIT_HasNumber(item))
        color = COLOR_OLD;
    SetCtrlAttribute(PANEL, VALUE_SHOWN, ATTR_TEXT_COLOR, color);
    SetCtrlAttribute(PANEL, VALUE_SHOWN, ATTR_TOOLTIP_TEXT, RFR_AgeTip(item));
    for (const int control : {VALUE_READ, VALUE_WRITE})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, !LIT_HasAddress(item));
}

// Reads the item and shows it; false when it could not be read.
bool ReadItem(int index)
{
    const bool isGood = RFR_ReadItemNow(index) == 0;
    if (readLItems) // else the list shows names only so far
        LSV_ShowValues();
    WIN_RefreshValue();
    return isGood;
}

void ReadAndShow()
{
    const int index = CurrentIndex();
    if (index < 0)
        return;
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    if (ReadItem(index))
        ShowOutcome("", COLOR_PLAIN);
    else
        ShowOutcome("Not read: " + aLItems[index].reason + ".", COLOR_BAD);
}

// What cannot be a value is refused before anybody is asked about communication.
void WriteAndShow()
{
    const int index = CurrentIndex();
    if (index < 0)
        return;
    std::string text, message;
    GetCtrlVal(PANEL, VALUE_NEW, &text);
    uint64_t bits = 0;
    int result = VAL_ParseFor(aLItems[index], text, &bits, &message);
    // Without an address the write itself refuses, and needs nobody's permission.
    if (result == VAL_WRITE_OK && LIT_HasAddress(aLItems[index]) && !VR_EnsureCom()) {
        ShowOutcome(std::string("REFUSED: The value was not written: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    if (result == VAL_WRITE_OK)
        result = VAL_Write(index, text, &message);
    WIN_RefreshValue();
    ShowOutcome(OutcomeOf(result).word + message, OutcomeOf(result).color);
    if (result == VAL_WRITE_OK)
        SetCtrlVal(PANEL, VALUE_NEW, ""); // for the next one
    SetActiveCtrl(PANEL, VALUE_NEW);
}

} // namespace

void WIN_OpenValue(int index)
{
    if (index < 0 || index >= nLItems)
        return;
    shown = EDT_Refer(index);
    ShowOutcome("", COLOR_PLAIN);
    SetCtrlVal(PANEL, VALUE_NEW, "");
    SetCtrlAttribute(PANEL, VALUE_TIMER, ATTR_INTERVAL, VALUE_PERIOD_S);
    ShowItem(aLItems[index]);
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, VALUE_NEW);
    // At once, for it may not be in view; but nobody is asked about communication for it.
    if (isTimer && LIT_HasAddress(aLItems[index]))
        ReadItem(index);
}

void WIN_RefreshValue()
{
    if (!IsOpen())
        return;
    const int index = CurrentIndex();
    if (index >= 0) {
        ShowItem(aLItems[index]);
        return;
    }
    // Name and type of the item that is gone stay: they say what the window was about.
    for (const int control :
         {VALUE_SHOWN, VALUE_DECIMAL, VALUE_HEX, VALUE_BINARY, VALUE_FLOAT, VALUE_HINT})
        SetText(control, "-");
    for (const int control : {VALUE_READ, VALUE_WRITE})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, 1);
}

int WIN_ValueNewCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        WriteAndShow();
    return 0;
}

int WIN_ValueButtonCB(int panel, int control, int event, int data)
{
    // A click, or Enter while the button has the keyboard.
    if (event != EVENT_COMMIT && !(event == EVENT_KEYPRESS && data == KEY_ENTER))
        return 0;
    if (control == VALUE_READ)
        ReadAndShow();
    else if (control == VALUE_WRITE)
        WriteAndShow();
    else
        HidePanel(panel);
    return 1;
}

int WIN_ValueTimerCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event != EVENT_TIMER_TICK || !IsOpen() || !isTimer)
        return 0;
    const int index = EDT_Find(shown);
    // The sweep reads only what is in view; what it reads is not asked for twice.
    const int first = LSV_FirstVisible();
    const bool isSwept = index >= first && index < first + LSV_LinesInView();
    if (index >= 0 && !isSwept && LIT_HasAddress(aLItems[index]))
        RFR_ReadItemNow(index);
    WIN_RefreshValue();
    return 0;
}
