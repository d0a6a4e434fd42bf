// One key a line, numbers of curves as people count. A curve's own line comes before the lines
// that say more of it; what a later version may add is kept.
#include "graphs/graph_setup.h"

#include "platform/safe_file.h"
#include "sampler/trigger.h"
#include "scope/setup.h"
#include "text/csv_row.h"
#include "text/numbers.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/list/item_names.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr const char *FIRST_LINE = "; Vireo2 graph 1";
constexpr size_t LINES_MAX = 1000;
constexpr double SCALE_MAX = 1e100;

// name, type letter, size, station, and the address where no name gives it.
bool ParseCurve(const std::vector<std::string> &cells, GRA_Curve *curve)
{
    SMP_Item item;
    uint32_t address = SMP_NO_ADDRESS;
    const std::string name = cells.size() > 2 ? TXT_WithoutCsvMark(cells[2]) : "";
    if (cells.size() < 6 || name.empty() || name.size() > LITEM_FIELD_MAX || cells[3].size() != 1 ||
        !TXT_ParseNumber(cells[4], 1, 8, &item.size) ||
        !TXT_ParseNumber(cells[5], 0, 15, &item.station))
        return false;
    if (cells.size() > 6) {
        const char *end = cells[6].data() + cells[6].size();
        if (std::from_chars(cells[6].data(), end, address, 16).ptr != end)
            return false;
    }
    item.name = name;
    item.type = cells[3][0];
    item.isTMS = item.name[0] == '&';
    item.address = address;
    // Letter and size may each be good and not go together: asked of the table of types.
    LItem typed;
    typed.type = item.type;
    typed.size = item.size;
    if (!VAL_IsTypeField(VAL_TypeField(typed)))
        return false;
    curve->item = item;
    return true;
}

// The rest of a line behind "trigger,": one or more, parted by ';'.
int ParseTriggers(const std::string &line, GRA_Setup *setup)
{
    const std::string text = TXT_Trim(line.substr(std::min(line.find(','), line.size() - 1) + 1));
    // Together, so that their number is bounded over all lines.
    const std::string both = setup->triggers.empty() ? text : setup->triggers + "; " + text;
    std::vector<SMP_Trigger> parsed;
    std::string problem;
    if (text.empty() || SMP_ParseTriggers(both, &parsed, &problem) != 0)
        return -1;
    setup->triggers = both;
    return 1;
}

// 1 a line of ours, 0 another's, -1 a bad value.
int ParseLine(const std::string &line, GRA_Setup *setup)
{
    std::vector<std::string> cells;
    if (line.empty() || line[0] == ';' || !TXT_SplitCsvRow(line, &cells))
        return 0;
    for (std::string &cell : cells)
        cell = TXT_Trim(cell);
    const std::string &key = cells[0];
    const std::string second = cells.size() > 1 ? cells[1] : "";
    int layout = 0;
    if (key == "period")
        return TXT_ParseNumber(second, 0, 24 * 3600 * 1000, &setup->periodMs) ? 1 : -1;
    if (key == "window")
        return TXT_ParseNumber(second, GRA_WINDOW_MIN_S, GRA_WINDOW_MAX_S, &setup->windowS) ? 1
                                                                                            : -1;
    if (key == "layout") {
        if (!TXT_ParseNumber(second, 0, static_cast<int>(GRAPH_STACKED), &layout))
            return -1;
        setup->layout = static_cast<UI_GraphLayout>(layout);
        return 1;
    }
    if (key == "trigger")
        return ParseTriggers(line, setup);
    if (key != "curve" && key != "unit" && key != "scale" && key != "pane")
        return 0;
    // A new curve is the next one; all else is about one that is there. Changed as a copy, so that
    // half a line leaves nothing behind.
    size_t number = 0;
    const bool isNew = key == "curve";
    const size_t last = setup->curves.size() + (isNew ? 1 : 0);
    if (!TXT_ParseNumber(second, size_t{1}, std::min(last, GRA_CURVES_MAX), &number) ||
        (isNew && number != last))
        return -1;
    GRA_Curve curve = isNew ? GRA_Curve() : setup->curves[number - 1];
    bool isGood = cells.size() > 2;
    if (isNew)
        isGood = ParseCurve(cells, &curve);
    else if (key == "unit" && isGood)
        curve.unit = TXT_WithoutCsvMark(cells[2]);
    else if (key == "pane" && isGood)
        isGood = TXT_ParseNumber(cells[2], 0, static_cast<int>(GRA_CURVES_MAX) - 1, &curve.pane);
    else if (isGood)
        isGood = cells.size() > 3 &&
                 TXT_ParseNumber(cells[2], -SCALE_MAX, SCALE_MAX, &curve.scale.factor) &&
                 TXT_ParseNumber(cells[3], -SCALE_MAX, SCALE_MAX, &curve.scale.offset) &&
                 curve.scale.factor != 0;
    if (!isGood)
        return -1;
    if (isNew)
        setup->curves.push_back(curve);
    else
        setup->curves[number - 1] = curve;
    return 1;
}

std::string CurveLines(const GRA_Curve &curve, size_t number)
{
    const std::string at = ", " + std::to_string(number) + ","; // a quote must follow at once
    const SMP_Item &item = curve.item;
    std::string text = "curve" + at + TXT_QuoteCsv(item.name) + ", " + item.type + ", " +
                       std::to_string(item.size) + ", " + std::to_string(item.station);
    // A name is looked up at loading, in the map of that day; only an address is written as one.
    if (item.address != SMP_NO_ADDRESS && item.name[0] == '[') {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, item.address, 16).ptr;
        text += ", " + std::string(digits, end);
    }
    text += "\r\n";
    if (!curve.unit.empty())
        text += "unit" + at + TXT_QuoteCsv(curve.unit) + "\r\n";
    if (curve.scale.factor != 1 || curve.scale.offset != 0)
        text += "scale" + at + " " + SCP_NumberText(curve.scale.factor) + ", " +
                SCP_NumberText(curve.scale.offset) + "\r\n";
    if (curve.pane != 0)
        text += "pane" + at + " " + std::to_string(curve.pane) + "\r\n";
    return text;
}

} // namespace

bool GRA_Resolve(SMP_Item *item)
{
    if (item->name.empty() || item->name[0] == '[') // an address: there is nothing to look up
        return item->address != SMP_NO_ADDRESS;
    // As a watch item is resolved: members, registers and the TMS320's names, too.
    LItem watched;
    watched.name = item->name;
    watched.type = item->type;
    watched.size = item->size;
    watched.station = item->station;
    LIT_Resolve(&watched);
    item->address = LIT_HasAddress(watched) ? watched.address : SMP_NO_ADDRESS;
    return item->address != SMP_NO_ADDRESS;
}

int GRA_LoadSetup(const std::string &path, GRA_Setup *setup, std::vector<std::string> *problems)
{
    const int file = TXFR_Open(path.c_str());
    if (file < 0)
        return -1;
    GRA_Setup loaded;
    std::string line;
    for (size_t number = 1; TXFR_RdNewLine(file, &line, -1) >= 0; ++number) {
        const int result = ParseLine(line, &loaded);
        if (result < 0)
            problems->push_back("line " + std::to_string(number) + ": " + TXT_Visible(line));
        else if (result == 0 && line != FIRST_LINE && loaded.foreign.size() < LINES_MAX)
            loaded.foreign.push_back(line);
    }
    // A name that no map knows stays: the map may be loaded later.
    for (GRA_Curve &curve : loaded.curves)
        GRA_Resolve(&curve.item);
    *setup = loaded;
    return 0;
}

int GRA_SaveSetup(const std::string &path, const GRA_Setup &setup)
{
    std::string text = std::string(FIRST_LINE) + "\r\nperiod, " + std::to_string(setup.periodMs) +
                       "\r\nwindow, " + SCP_NumberText(setup.windowS) + "\r\nlayout, " +
                       std::to_string(static_cast<int>(setup.layout)) + "\r\n";
    for (size_t i = 0; i < setup.curves.size(); ++i)
        text += CurveLines(setup.curves[i], i + 1);
    if (!setup.triggers.empty())
        text += "trigger, " + setup.triggers + "\r\n";
    // Behind all of ours, whatever they stood between.
    for (const std::string &line : setup.foreign)
        text += line + "\r\n";
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    if (std::fwrite(text.data(), 1, text.size(), safe.file) == text.size())
        return PLT_CommitSave(&safe);
    PLT_CancelSave(&safe);
    return -1;
}
