#include "watch/windows/item_panel.h"

#include <cstdio>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/value/type_names.h"
#include "watch/windows/name_completion.h"

namespace {

constexpr int PANEL = PANEL_ITEM;
const char ANY_TYPE[] = "u4"; // where only the place counts

bool isTypeChosen = false; // by the user: the name no longer suggests one
bool isAdding = true;
EDT_Reference edited;

struct PositionRow {
    ITP_Position position;
    const char *text;
};
const PositionRow positionRows[] = {
    {ITP_AFTER, "after the selected line"},
    {ITP_BEFORE, "before the selected line"},
    {ITP_AT_END, "at the end"},
};

std::string typedName()
{
    std::string text;
    GetCtrlVal(PANEL, WITEM_NAME, &text);
    return text;
}

int ringValue(int control)
{
    int value = 0;
    GetCtrlVal(PANEL, control, &value);
    return value;
}

std::string typeField()
{
    const char type = static_cast<char>(ringValue(WITEM_TYPE));
    const TYN_Row *row = TYN_Find(type);
    const bool hasSize = row != nullptr && row->onlySize == 0;
    return hasSize ? type + std::to_string(ringValue(WITEM_SIZE)) : std::string(1, type);
}

void fillRings()
{
    int count = 0;
    GetNumListItems(PANEL, WITEM_TYPE, &count);
    if (count > 0)
        return;
    for (int i = 0; i < TYN_cnRows; ++i)
        InsertListItem(PANEL, WITEM_TYPE, -1,
                       std::string(1, TYN_aRows[i].type) + "   " + TYN_aRows[i].name,
                       TYN_aRows[i].type);
    for (const int size : {1, 2, 4, 8})
        InsertListItem(PANEL, WITEM_SIZE, -1,
                       std::to_string(size) + (size == 1 ? " byte" : " bytes"), size);
    for (const PositionRow &row : positionRows)
        InsertListItem(PANEL, WITEM_POSITION, -1, row.text, row.position);
}

// Sizes that the type, or a TMS320 item, does not leave open.
void limitSize()
{
    const TYN_Row *row = TYN_Find(static_cast<char>(ringValue(WITEM_TYPE)));
    LItem item;
    const bool isTMS = EDT_Parse(typedName(), ANY_TYPE, &item) == 0 && LIT_IsTMS(item);
    const int onlySize = isTMS ? 4 : row != nullptr ? row->onlySize : 0;
    if (onlySize != 0)
        SetCtrlVal(PANEL, WITEM_SIZE, onlySize);
    SetCtrlAttribute(PANEL, WITEM_SIZE, ATTR_DIMMED, onlySize != 0);
}

void showType(char type, int size)
{
    SetCtrlVal(PANEL, WITEM_TYPE, type);
    SetCtrlVal(PANEL, WITEM_SIZE, size);
    limitSize();
}

void suggestType()
{
    if (isTypeChosen)
        return;
    LItem item;
    LIT_SetType(&item, EDT_SuggestType(typedName()).c_str());
    showType(item.type, item.size);
}

std::string placeText()
{
    LItem item;
    if (typedName().find_first_not_of(' ') == std::string::npos)
        return "A name from the map, or an address such as $1F00; 3: in front for station 3.";
    const int result = EDT_Parse(typedName(), ANY_TYPE, &item);
    if (result != 0)
        return EDT_ErrorText(result);
    if (item.address == LITEM_NO_ADDRESS)
        return "No loaded map knows this name. The item stays without an address until one does.";
    char text[96];
    if (LIT_IsTMS(item))
        std::snprintf(text, sizeof text, "TMS320 word address 0x%X", item.address);
    else if (IsWordAddressing(Procesor))
        std::snprintf(text, sizeof text, "Word address 0x%06X%s (byte address 0x%06X)",
                      item.address / 2, item.address % 2 ? ", upper half" : "", item.address);
    else
        std::snprintf(text, sizeof text, "Address 0x%06X", item.address);
    if (!LIT_HasAddress(item))
        return std::string(text) + " is outside the target's memory.";
    return item.station < 0 ? text : text + (" in station " + std::to_string(item.station));
}

void nameChanged()
{
    SetCtrlVal(PANEL, WITEM_PLACE, placeText());
    SetCtrlVal(PANEL, WITEM_ERROR, "");
    suggestType();
    limitSize();
}

void open(const std::string &name, const char *title, const char *button)
{
    SetPanelAttribute(PANEL, ATTR_TITLE, title);
    SetCtrlAttribute(PANEL, WITEM_OK, ATTR_LABEL_TEXT, button);
    SetCtrlAttribute(PANEL, WITEM_POSITION, ATTR_DIMMED, !isAdding);
    SetCtrlVal(PANEL, WITEM_NAME, name);
    SetCtrlCompletion(PANEL, WITEM_NAME, NCM_CompleteCB);
    nameChanged();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, WITEM_NAME);
}

int addPosition()
{
    const int position = ringValue(WITEM_POSITION);
    if (nLItems == 0 || position == ITP_AT_END)
        return EDT_AT_END;
    return LSV_Selected() + (position == ITP_AFTER ? 1 : 0);
}

void accept()
{
    const int result = isAdding ? EDT_AddText(typedName(), typeField(), addPosition())
                                : EDT_Change(EDT_Find(edited), typedName(), typeField());
    if (result >= 0) {
        HidePanel(PANEL);
        return;
    }
    SetCtrlVal(PANEL, WITEM_ERROR, EDT_ErrorText(result));
    SetActiveCtrl(PANEL, WITEM_NAME);
}

bool isEnter(int event, int data)
{
    return event == EVENT_KEYPRESS && data == KEY_ENTER;
}

} // namespace

void ITP_OpenAdd()
{
    fillRings();
    isAdding = true;
    isTypeChosen = false;
    SetCtrlVal(PANEL, WITEM_POSITION, nLItems > 0 ? ITP_AFTER : ITP_AT_END);
    open("", "Add watch item", "__Add");
}

void ITP_OpenEdit(int index)
{
    if (index < 0 || index >= nLItems)
        return;
    fillRings();
    isAdding = false;
    isTypeChosen = true;
    edited = EDT_Refer(index);
    SetCtrlVal(PANEL, WITEM_NAME, edited.label);
    showType(aLItems[index].type, aLItems[index].size);
    open(edited.label, "Edit watch item", "C__hange");
}

int ITP_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}

int ITP_NameCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED)
        nameChanged();
    else if (event == EVENT_COMMIT)
        accept();
    return 0;
}

int ITP_TypeCB(int panel, int control, int event, int data)
{
    if (event == EVENT_COMMIT || event == EVENT_VAL_CHANGED) {
        isTypeChosen = true;
        SetCtrlVal(PANEL, WITEM_ERROR, "");
        limitSize();
    }
    return ITP_RingCB(panel, control, event, data);
}

int ITP_RingCB(int /*panel*/, int /*control*/, int event, int data)
{
    if (!isEnter(event, data))
        return 0;
    accept();
    return 1;
}

int ITP_OkCB(int /*panel*/, int /*control*/, int event, int data)
{
    if (event != EVENT_COMMIT && !isEnter(event, data))
        return 0;
    accept();
    return 1;
}

int ITP_CancelCB(int panel, int /*control*/, int event, int data)
{
    if (event != EVENT_COMMIT && !isEnter(event, data))
        return 0;
    HidePanel(panel);
    return 1;
}
