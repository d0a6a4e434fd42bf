// What is typed is parsed at every key (EDT_Parse), so that the window says where the item
// would be, and what is wrong, before it is added.
#include "watch/windows/item_panel.h"

#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"
#include "watch/windows/name_completion.h"

namespace {

constexpr int PANEL = PANEL_ITEM;
const char ANY_TYPE[] = "u4"; // where only the place counts

bool isTypeChosen = false; // by the user: the name no longer suggests one
bool isAdding = true;      // else `edited` is changed
EDT_Reference edited;

struct PositionRow {
    WIN_ItemPosition position;
    const char *text;
};
const PositionRow positionRows[] = {
    {WIN_ITEM_AFTER, "after the selected line"},
    {WIN_ITEM_BEFORE, "before the selected line"},
    {WIN_ITEM_AT_END, "at the end"},
};

std::string TypedName()
{
    std::string text;
    GetCtrlVal(PANEL, WITEM_NAME, &text);
    return text;
}

int RingValue(int control)
{
    int value = 0;
    GetCtrlVal(PANEL, control, &value);
    return value;
}

// The type field of the two rings. Where a type has one size the size ring says nothing.
std::string TypeField()
{
    const char type = static_cast<char>(RingValue(WITEM_TYPE));
    const VAL_TypeRow *row = VAL_FindType(type);
    const bool hasSize = row != nullptr && row->onlySize == 0;
    return hasSize ? type + std::to_string(RingValue(WITEM_SIZE)) : std::string(1, type);
}

// When the window is opened for the first time.
void FillRings()
{
    int count = 0;
    GetNumListItems(PANEL, WITEM_TYPE, &count);
    if (count > 0)
        return;
    for (int i = 0; i < VAL_cnTypeRows; ++i)
        InsertListItem(PANEL, WITEM_TYPE, -1,
                       std::string(1, VAL_aTypeRows[i].letter) + "   " + VAL_aTypeRows[i].name,
                       VAL_aTypeRows[i].letter);
    for (const int size : {1, 2, 4, 8})
        InsertListItem(PANEL, WITEM_SIZE, -1,
                       std::to_string(size) + (size == 1 ? " byte" : " bytes"), size);
    for (const PositionRow &row : positionRows)
        InsertListItem(PANEL, WITEM_POSITION, -1, row.text, row.position);
}

// Sizes that the type, or a TMS320 item, does not leave open.
void LimitSize()
{
    const VAL_TypeRow *row = VAL_FindType(static_cast<char>(RingValue(WITEM_TYPE)));
    LItem item;
    const bool isTMS = EDT_Parse(TypedName(), ANY_TYPE, &item) == 0 && LIT_IsTMS(item);
    const int onlySize = isTMS ? 4 : row != nullptr ? row->onlySize : 0;
    if (onlySize != 0)
        SetCtrlVal(PANEL, WITEM_SIZE, onlySize);
    SetCtrlAttribute(PANEL, WITEM_SIZE, ATTR_DIMMED, onlySize != 0);
}

void ShowType(char type, int size)
{
    SetCtrlVal(PANEL, WITEM_TYPE, type);
    SetCtrlVal(PANEL, WITEM_SIZE, size);
    LimitSize();
}

std::string PlaceText()
{
    LItem item;
    if (TypedName().find_first_not_of(' ') == std::string::npos)
        return COM_ADDRESS_HINT; // nothing typed is no error yet
    const int result = EDT_Parse(TypedName(), ANY_TYPE, &item);
    if (result != 0)
        return EDT_ErrorText(result);
    if (item.address == LITEM_NO_ADDRESS)
        return "No loaded map knows this name. The item stays without an address until one does.";
    std::string text = TXT_Format("Address 0x%06X", item.address);
    if (LIT_IsTMS(item))
        text = TXT_Format("TMS320 word address 0x%X", item.address);
    else if (IsWordAddressing(Procesor))
        text = TXT_Format("Word address 0x%06X%s (byte address 0x%06X)", item.address / 2,
                          item.address % 2 ? ", upper half" : "", item.address);
    if (!LIT_HasAddress(item))
        return text + " is outside the target's memory.";
    return item.station < 0 ? text : text + " in station " + std::to_string(item.station);
}

void NameChanged()
{
    SetCtrlVal(PANEL, WITEM_PLACE, PlaceText());
    SetCtrlVal(PANEL, WITEM_ERROR, ""); // it was about another text
    if (!isTypeChosen) {
        LItem item;
        VAL_SetFromField(&item, EDT_SuggestType(TypedName()).c_str());
        ShowType(item.type, item.size);
    }
    LimitSize();
}

// One window for both: adding asks where, changing knows it.
void Open(const std::string &name, const char *title, const char *button)
{
    SetPanelAttribute(PANEL, ATTR_TITLE, title);
    SetCtrlAttribute(PANEL, WITEM_OK, ATTR_LABEL_TEXT, button);
    SetCtrlAttribute(PANEL, WITEM_POSITION, ATTR_DIMMED, !isAdding);
    SetCtrlVal(PANEL, WITEM_NAME, name);
    SetCtrlCompletion(PANEL, WITEM_NAME, WIN_CompleteNameCB);
    NameChanged();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, WITEM_NAME);
}

void Accept()
{
    int result;
    if (isAdding) {
        const int position = RingValue(WITEM_POSITION);
        const bool isAtEnd = nLItems == 0 || position == WIN_ITEM_AT_END;
        const int selected = LSV_Selected() + (position == WIN_ITEM_AFTER ? 1 : 0);
        result = EDT_AddText(TypedName(), TypeField(), isAtEnd ? EDT_AT_END : selected);
    } else { // wherever it stands by now; an item that is gone is a line that does not exist
        result = EDT_Change(EDT_Find(edited), TypedName(), TypeField());
    }
    if (result >= 0) {
        HidePanel(PANEL);
        return;
    }
    // The window stays, with what was typed, and says why.
    SetCtrlVal(PANEL, WITEM_ERROR, EDT_ErrorText(result));
    SetActiveCtrl(PANEL, WITEM_NAME);
}

} // namespace

void WIN_OpenAddItem()
{
    FillRings();
    isAdding = true;
    isTypeChosen = false;
    SetCtrlVal(PANEL, WITEM_POSITION, nLItems > 0 ? WIN_ITEM_AFTER : WIN_ITEM_AT_END);
    Open("", "Add watch item", "__Add");
}

void WIN_OpenEditItem(int index)
{
    if (index < 0 || index >= nLItems)
        return;
    FillRings();
    isAdding = false;
    isTypeChosen = true; // the item's own: a name that is corrected keeps it
    edited = EDT_Refer(index);
    SetCtrlVal(PANEL, WITEM_NAME, edited.label); // first: the sizes depend on it
    ShowType(aLItems[index].type, aLItems[index].size);
    Open(edited.label, "Edit watch item", "C__hange");
}

int WIN_ItemNameCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED)
        NameChanged();
    else if (event == EVENT_COMMIT)
        Accept();
    return 0;
}

int WIN_ItemTypeCB(int panel, int control, int event, int data)
{
    if (event == EVENT_COMMIT || event == EVENT_VAL_CHANGED) {
        isTypeChosen = true;
        SetCtrlVal(PANEL, WITEM_ERROR, "");
        LimitSize();
    }
    return WIN_ItemRingCB(panel, control, event, data); // Enter accepts, here as there
}

int WIN_ItemRingCB(int /*panel*/, int /*control*/, int event, int data)
{
    if (event != EVENT_KEYPRESS || data != KEY_ENTER)
        return 0;
    Accept();
    return 1;
}

int WIN_ItemButtonCB(int panel, int control, int event, int data)
{
    // A click, or Enter while the button has the keyboard.
    if (event != EVENT_COMMIT && !(event == EVENT_KEYPRESS && data == KEY_ENTER))
        return 0;
    if (control == WITEM_OK)
        Accept();
    else
        HidePanel(panel);
    return 1;
}
