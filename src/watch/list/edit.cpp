#include "watch/list/edit.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "app/VR.h"
#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "symbols/typemap_list.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

LItem removedItem;
int removedFrom = -1; // -1 = nothing to undo

bool isIndex(int index)
{
    return index >= 0 && index < nLItems;
}

void setRemovedFrom(int index)
{
    removedFrom = index;
    const int menuBar = GetPanelMenuBar(mainPanel);
    SetMenuBarAttribute(menuBar, ITEM_UNDO, ATTR_DIMMED, index < 0);
}

void changed(int line)
{
    IsDBGChange = 1;
    SetMainPanelTitle();
    if (readLItems && nLItems > 0)
        LSV_ShowValues();
    else
        ResetLItemsDisplay();
    VR_EnableControls();
    LSV_Select(line);
}

std::string trimmed(const std::string &text)
{
    const char blanks[] = " \t\r\n\v\f";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// A name must survive a debug file: one field, no comment, no address form.
bool isName(const std::string &name)
{
    const size_t start = !name.empty() && name[0] == '&';
    if (name.size() <= start || name.size() > LITEM_FIELD_MAX || name[start] == '[' ||
        name[start] == ' ')
        return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return c == ',' || c == ';' || std::iscntrl(static_cast<unsigned char>(c));
    });
}

bool isTypeField(const std::string &field)
{
    if (field.empty())
        return false;
    if (std::strchr("bft", field[0]))
        return field.size() == 1 ||
               field == (field[0] == 'b' ? "b1" : std::string(1, field[0]) + "4");
    return field.size() == 2 && std::strchr("iuxp", field[0]) && std::strchr("1248", field[1]);
}

int applyType(LItem *item, const std::string &typeField)
{
    const std::string field = typeField.empty() ? EDT_SuggestType(item->name) : typeField;
    const bool isTMS = LIT_IsTMS(*item);
    if (!isTypeField(field) || (isTMS && field[0] == 'b'))
        return EDT_ERR_TYPE;
    LIT_SetType(item, field.c_str());
    if (isTMS)
        item->size = 4;
    return 0;
}

// Values of another type or variable say nothing about this one.
void forgetValue(LItem *item)
{
    item->value = item->valueHigh = item->previousValue = 0;
    item->readTick = item->previousReadTick = 0;
    item->readError = 0;
    item->isValueGood = false;
    item->reason.clear();
}

int insertItem(const LItem &item, int position)
{
    if (nLItems >= LITEMS_MAX)
        return EDT_ERR_FULL;
    if (position == EDT_AT_END)
        position = nLItems;
    if (position < 0 || position > nLItems)
        return EDT_ERR_INDEX;
    std::move_backward(aLItems + position, aLItems + nLItems, aLItems + nLItems + 1);
    aLItems[position] = item;
    ++nLItems;
    changed(position);
    return position;
}

int nameItem(LItem *item, const std::string &text)
{
    const std::string name = trimmed(text);
    if (!isName(name))
        return EDT_ERR_NAME;
    item->name = name;
    std::string prefix = name;
    item->station = parseStationModifier(prefix.data());
    item->address = item->givenAddress = LITEM_NO_ADDRESS;
    item->explicitAddress = 0;
    LIT_Resolve(item);
    return 0;
}

int placeItem(LItem *item, uint32_t address, bool isTMS)
{
    if (address >= ADDR_LIMIT)
        return EDT_ERR_ADDRESS;
    item->name = isTMS ? "&" : "";
    item->address = item->givenAddress = address;
    return 0;
}

// As a user writes it: types of one size only go without.
std::string typeFieldOf(const LItem &item)
{
    const bool isOneSize = std::strchr("bft", item.type) != nullptr;
    return isOneSize ? std::string(1, item.type) : item.type + std::to_string(item.size);
}

// "[1F00]", "$1F00" and "0x1F00". Whether the text has one of these forms.
bool isAddressText(std::string text, uint32_t *address)
{
    if (text.empty() || !std::strchr("[$0", text[0]))
        return false;
    if (text[0] == '[') {
        if (text.back() == ']')
            text.pop_back();
        text.replace(0, 1, text.size() > 2 && (text[2] == 'x' || text[2] == 'X') ? "" : "$");
    }
    *address = GetSysAddrWk(text.c_str());
    return true;
}

} // namespace

const char *EDT_ErrorText(int result)
{
    switch (result) {
    case EDT_ERR_INDEX:
        return "There is no such line in the watch list.";
    case EDT_ERR_FULL:
        return "Too many debug vars.";
    case EDT_ERR_NAME:
        return "A name has 1 to 120 characters, no comma or semicolon, and does not begin with "
               "\"[\".";
    case EDT_ERR_TYPE:
        return "The type is b, f, t, or one of i, u, x, p with a size of 1, 2, 4 or 8 bytes; "
               "TMS320 items have 4 bytes.";
    case EDT_ERR_ADDRESS:
        return "The address must be a hexadecimal number below 0x1000000.";
    case EDT_ERR_NOTHING:
        return "There is nothing to undo.";
    default:
        return "";
    }
}

std::string EDT_SuggestType(const std::string &name)
{
    std::string member = name;
    parseStationModifier(member.data());
    member = member.c_str();
    if (!member.empty() && member[0] == '&')
        member.erase(0, 1);
    LItem known;
    if (TMF_SuggestItem(member.c_str(), &known.type, &known.size) == 0)
        return typeFieldOf(known);
    member.resize(std::min(member.find_first_of(" +-["), member.size()));
    const size_t dot = member.rfind('.');
    LItem item;
    DetectTypeByName(&item, member.c_str() + (dot == std::string::npos ? 0 : dot + 1));
    return typeFieldOf(item);
}

int EDT_AddByName(const std::string &name, const std::string &typeField, int position)
{
    LItem item;
    int result = nameItem(&item, name);
    if (result == 0)
        result = applyType(&item, typeField);
    return result == 0 ? insertItem(item, position) : result;
}

int EDT_AddByAddress(uint32_t address, bool isTMS, const std::string &typeField, int position)
{
    LItem item;
    int result = placeItem(&item, address, isTMS);
    if (result == 0)
        result = applyType(&item, typeField);
    return result == 0 ? insertItem(item, position) : result;
}

int EDT_Parse(const std::string &text, const std::string &typeField, LItem *item)
{
    const std::string what = trimmed(text);
    const bool isTMS = !what.empty() && what[0] == '&';
    LItem built;
    uint32_t address;
    int result = isAddressText(what.substr(isTMS), &address) ? placeItem(&built, address, isTMS)
                                                             : nameItem(&built, what);
    if (result == 0)
        result = applyType(&built, typeField);
    if (result == 0)
        *item = built;
    return result;
}

int EDT_AddText(const std::string &text, const std::string &typeField, int position)
{
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    return result == 0 ? insertItem(item, position) : result;
}

int EDT_Change(int index, const std::string &text, const std::string &typeField)
{
    if (!isIndex(index))
        return EDT_ERR_INDEX;
    if (trimmed(text) == LIT_Label(aLItems[index]))
        return typeField == typeFieldOf(aLItems[index]) ? 0 : EDT_SetType(index, typeField);
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    if (result != 0)
        return result;
    aLItems[index] = item;
    changed(index);
    return 0;
}

EDT_Reference EDT_Refer(int index)
{
    EDT_Reference reference;
    if (isIndex(index))
        reference = {index, LIT_Label(aLItems[index])};
    return reference;
}

int EDT_Find(const EDT_Reference &reference)
{
    if (isIndex(reference.index) && LIT_Label(aLItems[reference.index]) == reference.label)
        return reference.index;
    for (int i = 0; i < nLItems; ++i)
        if (LIT_Label(aLItems[i]) == reference.label)
            return i;
    return -1;
}

int EDT_Remove(int index)
{
    if (!isIndex(index))
        return EDT_ERR_INDEX;
    removedItem = aLItems[index];
    std::move(aLItems + index + 1, aLItems + nLItems, aLItems + index);
    aLItems[--nLItems] = LItem();
    setRemovedFrom(index);
    changed(index);
    return 0;
}

int EDT_UndoRemove()
{
    if (removedFrom < 0)
        return EDT_ERR_NOTHING;
    const int result = insertItem(removedItem, std::min(removedFrom, nLItems));
    if (result >= 0) {
        setRemovedFrom(-1);
        removedItem = LItem();
    }
    return result;
}

bool EDT_CanUndo()
{
    return removedFrom >= 0;
}

void EDT_ForgetUndo()
{
    setRemovedFrom(-1);
    removedItem = LItem();
}

int EDT_Move(int from, int to)
{
    if (!isIndex(from) || !isIndex(to))
        return EDT_ERR_INDEX;
    if (from == to)
        return 0;
    LItem *const begin = aLItems;
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
    changed(to);
    return 0;
}

int EDT_SetType(int index, const std::string &typeField)
{
    if (!isIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    const int result = applyType(&item, typeField);
    if (result != 0)
        return result;
    forgetValue(&item);
    aLItems[index] = item;
    changed(index);
    return 0;
}

int EDT_Rename(int index, const std::string &name)
{
    if (!isIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    int result = nameItem(&item, name);
    if (result == 0 && LIT_IsTMS(item) && item.type == 'b')
        result = EDT_ERR_TYPE;
    if (result != 0)
        return result;
    if (LIT_IsTMS(item))
        item.size = 4;
    forgetValue(&item);
    aLItems[index] = item;
    changed(index);
    return 0;
}

void UndoRemoveCB(int /*menuBar*/, int /*item*/)
{
    const int result = EDT_UndoRemove();
    VR_ShowMessage(result < 0 ? EDT_ErrorText(result) : "Put back: " + LIT_Label(aLItems[result]));
}
