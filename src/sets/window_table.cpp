// The table of parameters and the list of their groups. A line's value is the index of its entry;
// headings have -1.
#include "sets/window_table.h"

#include "runtime/userint.h"
#include "sets/value.h"
#include "ui/resource.h"

#include <algorithm>
#include <set>

namespace {

constexpr int INDENT_BLANKS = 3; // of a group inside of another

std::vector<std::string> groupNames; // of the lines of the list; the first is "", all of them

// Every group with the groups above it, also those that hold no value themselves, each behind the
// others of the group that it lies in, wherever the header names it.
std::vector<std::string> AllGroups(const PST_Form &form)
{
    std::vector<std::string> names = {""};
    std::set<std::string> seen = {""};
    for (const std::string &group : form.set.groups) {
        // "A/B/C" names A, A/B and itself.
        for (size_t end = 0; end < group.size();) {
            end = std::min(group.find('/', end + 1), group.size());
            const std::string name = group.substr(0, end);
            if (!seen.insert(name).second)
                continue;
            auto at = names.end();
            const size_t slash = name.rfind('/');
            while (slash != std::string::npos && at != names.begin() &&
                   !PST_IsInGroup(*(at - 1), name.substr(0, slash)))
                --at;
            names.insert(at, name);
        }
    }
    return names;
}

// A line without a value: -1 stands for the entry that a selected line would name.
void AddHeading(const std::string &text)
{
    int lines = 0;
    InsertListItem(PANEL_CONFIG, CONFIG_LIST, -1, text, -1);
    GetNumListItems(PANEL_CONFIG, CONFIG_LIST, &lines);
    SetListCells(PANEL_CONFIG, CONFIG_LIST, lines - 1, {{text, UIS_BOLD, ""}});
}

// By CFW_Column. The form's units everywhere, so that columns can be compared by eye.
std::vector<UI_Cell> MakeCells(const PST_Form &form, uint32_t index)
{
    const PST_Entry &entry = form.set.entries[index];
    const PST_Attributes &a = PST_AttributesOf(form.set, entry);
    const PST_Held &value = PST_FormValue(form, index);
    const bool isChanged = PST_IsChanged(form, index);
    const unsigned valueStyle = isChanged      ? UIS_BOLD | UIS_GOOD
                                : a.isReadOnly ? UIS_DIM
                                               : UIS_NORMAL;
    // Red only where both are known and differ: a value that nobody has read is no difference.
    const unsigned fileStyle = PST_IsOther(form, index) ? UIS_BOLD | UIS_WARNING : UIS_DIM;
    // Only the first value of an array has the meaning in its column; the tip says it for each.
    std::string tip = a.text;
    if (a.isReadOnly)
        tip += (tip.empty() ? "" : "; ") + std::string("read-only");
    if (a.needsStop)
        tip += (tip.empty() ? "" : "; ") + std::string("only while the machine stands");
    return {{entry.name, UIS_NORMAL, tip},
            {(isChanged ? "* " : "") + CFW_HeldText(form, index, value), valueStyle,
             isChanged ? "typed, not written yet" : ""},
            {a.unit, UIS_NORMAL, ""},
            {CFW_HeldText(form, index, form.device[index]), UIS_NORMAL, ""},
            {(PST_IsOther(form, index) ? "≠ " : "") + CFW_HeldText(form, index, form.file[index]),
             fileStyle, ""},
            {CFW_LimitsText(a), UIS_DIM, ""},
            {CFW_DefaultText(a), UIS_DIM, ""},
            {(index == form.set.items[entry.item].firstEntry ? a.text : "") +
                 (a.needsStop    ? " (stop)"
                  : a.isReadOnly ? " (read-only)"
                                 : ""),
             UIS_NORMAL, tip}};
}

} // namespace

void CFW_PrepareTable()
{
    SetListColumns(PANEL_CONFIG, CONFIG_LIST,
                   {{"Name", 220},
                    {"Value", 90, UIA_RIGHT, true},
                    {"Unit", 50},
                    {"Device", 90, UIA_RIGHT},
                    {"File", 90, UIA_RIGHT},
                    {"Limits", 100, UIA_RIGHT},
                    {"Default", 60, UIA_RIGHT},
                    {"Meaning", 220}});
    SetListColumns(PANEL_CONFIG, CONFIG_GROUPS, {{"Group", 120}, {"Differ", 50, UIA_RIGHT}});
}

void CFW_ShowGroups(const PST_Form &form)
{
    // The list is filled anew after every edit: the group stays selected by its name.
    const std::string chosen = CFW_GetGroup();
    groupNames = form.isOpen ? AllGroups(form) : std::vector<std::string>();
    ClearListCtrl(PANEL_CONFIG, CONFIG_GROUPS);
    int selected = 0;
    for (size_t i = 0; i < groupNames.size(); ++i) {
        const std::string &name = groupNames[i];
        // Indented below the groups they lie in, by the last part of their name.
        const size_t depth = static_cast<size_t>(std::count(name.begin(), name.end(), '/'));
        const size_t slash = name.rfind('/');
        const std::string last = name.empty()                 ? "All"
                                 : slash == std::string::npos ? name
                                                              : name.substr(slash + 1);
        const std::string label = std::string(depth * INDENT_BLANKS, ' ') + last;
        const size_t marked = PST_ListEntries(form, name, true).size();
        const int line = static_cast<int>(i);
        InsertListItem(PANEL_CONFIG, CONFIG_GROUPS, -1, label, line);
        SetListCells(PANEL_CONFIG, CONFIG_GROUPS, line,
                     {{label, name.empty() ? UIS_BOLD : UIS_NORMAL, name},
                      {marked > 0 ? std::to_string(marked) : "", UIS_WARNING, ""}});
        selected = name == chosen ? line : selected;
    }
    if (!groupNames.empty())
        SetCtrlIndex(PANEL_CONFIG, CONFIG_GROUPS, selected);
}

std::string CFW_GetGroup()
{
    int line = -1;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_GROUPS, &line);
    return line >= 0 && static_cast<size_t>(line) < groupNames.size()
               ? groupNames[static_cast<size_t>(line)]
               : "";
}

size_t CFW_ShowEntries(const PST_Form &form, bool isOnlyMarked)
{
    int selected = -1;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, &selected);
    ClearListCtrl(PANEL_CONFIG, CONFIG_LIST);
    if (!form.isOpen)
        return 0;
    const std::string chosen = CFW_GetGroup();
    const std::vector<uint32_t> entries = PST_ListEntries(form, chosen, isOnlyMarked);
    std::string group = chosen, heading;
    int line = 0;
    for (const uint32_t index : entries) {
        const PST_Item &item = form.set.items[form.set.entries[index].item];
        // A table of more lines would be filled for a second; groups are quicker to look at.
        if (static_cast<size_t>(line) >= CFW_ROWS_MAX)
            break;
        if (form.set.groups[item.group] != group) {
            group = form.set.groups[item.group];
            heading.clear();
            AddHeading(group);
            ++line;
        }
        if (item.heading != heading && !item.heading.empty()) {
            AddHeading("  " + item.heading);
            ++line;
        }
        heading = item.heading;
        InsertListItem(PANEL_CONFIG, CONFIG_LIST, -1, form.set.entries[index].name,
                       static_cast<int>(index));
        SetListCells(PANEL_CONFIG, CONFIG_LIST, line++, MakeCells(form, index));
    }
    // Headings are no values: the first time the selection begins below them.
    selected = std::clamp(selected, 0, std::max(line - 1, 0));
    while (selected + 1 < line && CFW_GetEntry(selected) < 0)
        ++selected;
    if (line > 0)
        SetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, selected);
    return entries.size();
}

int CFW_GetEntry(int line)
{
    int entry = -1;
    if (line < 0 || GetValueFromIndex(PANEL_CONFIG, CONFIG_LIST, line, &entry) < 0)
        return -1;
    return entry;
}

std::string CFW_LimitsText(const PST_Attributes &a)
{
    if (!a.hasMin && !a.hasMax)
        return "";
    // A negative factor turns the limits round.
    double low = a.min * a.factor, high = a.max * a.factor;
    bool hasLow = a.hasMin, hasHigh = a.hasMax;
    if (a.factor < 0) {
        std::swap(low, high);
        std::swap(hasLow, hasHigh);
    }
    return (hasLow ? PST_ShownNumber(low) : "") + " … " + (hasHigh ? PST_ShownNumber(high) : "");
}

std::string CFW_DefaultText(const PST_Attributes &a)
{
    return a.hasDefault ? PST_ShownNumber(a.defaultValue * a.factor) : "";
}

std::string CFW_HeldText(const PST_Form &form, uint32_t entry, const PST_Held &held)
{
    const PST_Entry &at = form.set.entries[entry];
    return held.isThere ? PST_ShownText(at, PST_AttributesOf(form.set, at).factor, held.bytes) : "";
}
