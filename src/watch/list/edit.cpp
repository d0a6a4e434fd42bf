#include "watch/list/edit.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/typemap_list.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit_history.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/type_by_name.h"
#include "watch/value/value_types.h"

namespace {

bool IsIndex(int index)
{
    return index >= 0 && index < nLItems;
}

void Changed(int line)
{
    IsDBGChange = 1;
    MWN_Outdate(MWN_LIST);
    SetMainPanelTitle();
    if (readLItems && nLItems > 0)
        LSV_ShowValues();
    else
        ResetLItemsDisplay();
    LSV_Select(line);
    VR_EnableControls(); // undo and redo among them
}

// Does the steps of one edit, which undo takes back as a whole.
void MakeEdit(const HIS_Edit &edit, int line)
{
    for (const HIS_Step &step : edit.steps)
        HIS_Apply(step);
    HIS_Record(edit);
    Changed(line);
}

HIS_Step StepOf(HIS_Kind kind, int index)
{
    HIS_Step step;
    step.kind = kind;
    step.index = index;
    if (kind == HIS_REMOVE || kind == HIS_REPLACE)
        step.before = aLItems[index];
    return step;
}

void Replace(int index, const LItem &item)
{
    HIS_Step step = StepOf(HIS_REPLACE, index);
    step.after = item;
    MakeEdit({"change " + LIT_Label(step.before), {step}}, index);
}

// Sorted, each once. False when one is no line of the list, or there is none.
bool NormalLines(std::vector<int> *lines)
{
    std::sort(lines->begin(), lines->end());
    lines->erase(std::unique(lines->begin(), lines->end()), lines->end());
    return !lines->empty() && IsIndex(lines->front()) && IsIndex(lines->back());
}

// After an edit was taken back or done again: the line that it was about.
int ShowAgain(const HIS_Edit &edit, std::string *what)
{
    *what = edit.what;
    const int line = std::clamp(edit.steps.back().index, 0, std::max(nLItems - 1, 0));
    Changed(line);
    return line;
}

std::string CountOrLabel(const std::vector<int> &lines)
{
    return lines.size() == 1 ? LIT_Label(aLItems[lines[0]])
                             : std::to_string(lines.size()) + " items";
}

// A name must survive a debug file: one field, no comment, no address form.
bool IsName(const std::string &name)
{
    const size_t start = !name.empty() && name[0] == '&';
    if (name.size() <= start || name.size() > LITEM_FIELD_MAX || name[start] == '[' ||
        name[start] == ' ')
        return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return c == ',' || c == ';' || std::iscntrl(static_cast<unsigned char>(c));
    });
}

int ApplyType(LItem *item, const std::string &typeField)
{
    const std::string field = typeField.empty() ? EDT_SuggestType(item->name) : typeField;
    const bool isTMS = LIT_IsTMS(*item);
    if (!VTY_IsField(field) || (isTMS && !VTY_Find(field[0])->isForTMS))
        return EDT_ERR_TYPE;
    VTY_SetFromField(item, field.c_str());
    if (isTMS)
        item->size = 4;
    return 0;
}

// Values of another type or variable say nothing about this one.
void ForgetValue(LItem *item)
{
    item->value = item->valueHigh = item->previousValue = 0;
    item->readTick = item->previousReadTick = 0;
    item->readError = 0;
    item->isValueGood = item->isHeld = false;
    item->reason.clear();
}

int InsertItem(const LItem &item, int position)
{
    if (nLItems >= LITEMS_MAX)
        return EDT_ERR_FULL;
    if (position == EDT_AT_END)
        position = nLItems;
    if (position < 0 || position > nLItems)
        return EDT_ERR_INDEX;
    HIS_Step step = StepOf(HIS_INSERT, position);
    step.after = item;
    MakeEdit({"add " + LIT_Label(item), {step}}, position);
    return position;
}

int NameItem(LItem *item, const std::string &text)
{
    const std::string name = WRD_Trim(text);
    if (!IsName(name))
        return EDT_ERR_NAME;
    item->name = name;
    std::string prefix = name;
    item->station = parseStationModifier(prefix.data());
    item->address = item->givenAddress = LITEM_NO_ADDRESS;
    item->explicitAddress = 0;
    LIT_Resolve(item);
    return 0;
}

int PlaceItem(LItem *item, uint32_t address, bool isTMS)
{
    if (address >= ADDR_LIMIT)
        return EDT_ERR_ADDRESS;
    item->name = isTMS ? "&" : "";
    item->address = item->givenAddress = address;
    return 0;
}

// As a user writes it: types of one size only go without.
std::string TypeFieldOf(const LItem &item)
{
    const bool isOneSize = std::strchr("bft", item.type) != nullptr;
    return isOneSize ? std::string(1, item.type) : item.type + std::to_string(item.size);
}

// "[1F00]", "$1F00" and "0x1F00". Whether the text has one of these forms.
bool IsAddressText(std::string text, uint32_t *address)
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
        return LIT_NO_LINE;
    case EDT_ERR_FULL:
        return LIT_FULL;
    case EDT_ERR_NAME:
        return "A name has 1 to 120 characters, no comma or semicolon, and does not begin with "
               "\"[\".";
    case EDT_ERR_TYPE:
        return "The type is b, f, t, or one of i, u, x, p with a size of 1, 2, 4 or 8 bytes; "
               "TMS320 items have 4 bytes.";
    case EDT_ERR_ADDRESS:
        return "The address must be a hexadecimal number below 0x1000000.";
    case EDT_ERR_COMMENT:
        return "The comment is too long for a line of the watch list's file.";
    case EDT_ERR_NOTHING:
        return "There is nothing to undo or to redo.";
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
        return TypeFieldOf(known);
    member.resize(std::min(member.find_first_of(" +-["), member.size()));
    const size_t dot = member.rfind('.');
    LItem item;
    DetectTypeByName(&item, member.c_str() + (dot == std::string::npos ? 0 : dot + 1));
    return TypeFieldOf(item);
}

int EDT_AddByName(const std::string &name, const std::string &typeField, int position)
{
    LItem item;
    int result = NameItem(&item, name);
    if (result == 0)
        result = ApplyType(&item, typeField);
    return result == 0 ? InsertItem(item, position) : result;
}

int EDT_Parse(const std::string &text, const std::string &typeField, LItem *item)
{
    const std::string what = WRD_Trim(text);
    const bool isTMS = !what.empty() && what[0] == '&';
    LItem built;
    uint32_t address;
    int result = IsAddressText(what.substr(isTMS), &address) ? PlaceItem(&built, address, isTMS)
                                                             : NameItem(&built, what);
    if (result == 0)
        result = ApplyType(&built, typeField);
    if (result == 0)
        *item = built;
    return result;
}

int EDT_AddText(const std::string &text, const std::string &typeField, int position)
{
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    return result == 0 ? InsertItem(item, position) : result;
}

int EDT_Change(int index, const std::string &text, const std::string &typeField)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    if (WRD_Trim(text) == LIT_Label(aLItems[index]))
        return typeField == TypeFieldOf(aLItems[index]) ? 0 : EDT_SetType(index, typeField);
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    if (result != 0)
        return result;
    item.fileLine = aLItems[index].fileLine; // the comment there is still its own
    item.comment = aLItems[index].comment;
    Replace(index, item);
    return 0;
}

EDT_Reference EDT_Refer(int index)
{
    EDT_Reference reference;
    if (IsIndex(index))
        reference = {index, LIT_Label(aLItems[index])};
    return reference;
}

int EDT_Find(const EDT_Reference &reference)
{
    if (IsIndex(reference.index) && LIT_Label(aLItems[reference.index]) == reference.label)
        return reference.index;
    for (int i = 0; i < nLItems; ++i)
        if (LIT_Label(aLItems[i]) == reference.label)
            return i;
    return -1;
}

int EDT_Remove(int index)
{
    return EDT_RemoveLines({index});
}

int EDT_RemoveLines(std::vector<int> lines)
{
    if (!NormalLines(&lines))
        return EDT_ERR_INDEX;
    HIS_Edit edit;
    edit.what = "remove " + CountOrLabel(lines);
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) // the last first: indices hold
        edit.steps.push_back(StepOf(HIS_REMOVE, *line));
    MakeEdit(edit, lines.front());
    return 0;
}

int EDT_Move(int from, int to)
{
    if (!IsIndex(from) || !IsIndex(to))
        return EDT_ERR_INDEX;
    if (from == to)
        return 0;
    HIS_Step step = StepOf(HIS_MOVE, from);
    step.to = to;
    MakeEdit({"move " + LIT_Label(aLItems[from]), {step}}, to);
    return 0;
}

int EDT_MoveLines(std::vector<int> lines, int by)
{
    if ((by != 1 && by != -1) || !NormalLines(&lines) || !IsIndex(lines.front() + by) ||
        !IsIndex(lines.back() + by))
        return EDT_ERR_INDEX;
    HIS_Edit edit;
    edit.what = "move " + CountOrLabel(lines);
    if (by > 0)
        std::reverse(lines.begin(), lines.end());
    for (const int line : lines) {
        HIS_Step step = StepOf(HIS_MOVE, line);
        step.to = line + by;
        edit.steps.push_back(step);
    }
    MakeEdit(edit, lines.front() + by);
    for (int &line : lines)
        line += by;
    LSV_SelectLines(lines);
    VR_EnableControls();
    return 0;
}

int EDT_GatherLines(std::vector<int> lines, int gap)
{
    if (!NormalLines(&lines) || gap < 0 || gap > nLItems)
        return EDT_ERR_INDEX;
    HIS_Edit edit;
    edit.what = "move " + CountOrLabel(lines);
    const auto addMove = [&edit](int from, int to) {
        HIS_Step step = StepOf(HIS_MOVE, from);
        step.to = to;
        if (from != to)
            edit.steps.push_back(step);
    };
    // From the gap outwards: a move leaves the places of those that follow alone.
    const auto behind = std::lower_bound(lines.begin(), lines.end(), gap);
    int to = gap;
    for (auto line = behind; line != lines.begin();)
        addMove(*--line, --to);
    const int first = to;
    to = gap;
    for (auto line = behind; line != lines.end(); ++line)
        addMove(*line, to++);
    if (edit.steps.empty())
        return 0;
    MakeEdit(edit, first);
    for (size_t i = 0; i < lines.size(); ++i)
        lines[i] = first + static_cast<int>(i);
    LSV_SelectLines(lines);
    VR_EnableControls();
    return 0;
}

int EDT_Undo(std::string *what)
{
    const HIS_Edit *edit = HIS_Undo();
    return edit != nullptr ? ShowAgain(*edit, what) : EDT_ERR_NOTHING;
}

int EDT_Redo(std::string *what)
{
    const HIS_Edit *edit = HIS_Redo();
    return edit != nullptr ? ShowAgain(*edit, what) : EDT_ERR_NOTHING;
}

bool EDT_CanUndo()
{
    return HIS_CanUndo();
}

bool EDT_CanRedo()
{
    return HIS_CanRedo();
}

void EDT_ForgetEdits()
{
    HIS_Forget();
}

int EDT_SetType(int index, const std::string &typeField)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    const int result = ApplyType(&item, typeField);
    if (result != 0)
        return result;
    ForgetValue(&item);
    Replace(index, item);
    return 0;
}

int EDT_Rename(int index, const std::string &name)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    int result = NameItem(&item, name);
    const VTY_Row *row = VTY_Find(item.type);
    if (result == 0 && LIT_IsTMS(item) && row != nullptr && !row->isForTMS)
        result = EDT_ERR_TYPE;
    if (result != 0)
        return result;
    if (LIT_IsTMS(item))
        item.size = 4;
    ForgetValue(&item);
    Replace(index, item);
    return 0;
}

int EDT_SetComment(int index, const std::string &comment)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    item.comment = comment;
    for (char &c : item.comment)
        if (std::iscntrl(static_cast<unsigned char>(c)))
            c = ' ';
    item.comment = WRD_Trim(item.comment);
    constexpr size_t AROUND_MAX = 16; // semicolon and blanks
    if (LIT_FileLine(item).size() + AROUND_MAX + item.comment.size() > LITEM_LINE_MAX)
        return EDT_ERR_COMMENT;
    if (item.comment != aLItems[index].comment)
        Replace(index, item);
    return 0;
}
