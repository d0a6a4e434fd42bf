// The window of an array inspector: pages of at most 1000 lines, of which only those in view are
// read. What concerns all of an array at once stands in array_transfer.cpp.
#include "inspect/array_inspector.h"

#include <algorithm>

#include "inspect/array_view.h"
#include "inspect/element.h"
#include "inspect/inspectors.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr double PERIOD_S = 0.3;
constexpr uint32_t PAUSE_MS = 3000;  // after a refresh that failed
constexpr uint32_t PAGE_ROWS = 1000; // lines of the list
// A single column has the room for 20 digits; of several, the numbers are short as a rule.
constexpr int WIDTH_ALONE = 140, WIDTH_BESIDE_OTHERS = 80;

INS_ArrayView *FindView(int panel)
{
    const INS_Inspector *inspector = INS_Find(panel);
    return inspector != nullptr ? inspector->array.get() : nullptr;
}

uint32_t RowBytes(const INS_ArrayView &view)
{
    return view.array.columns * view.array.type->size;
}

// The last page may be shorter.
uint32_t PageRows(const INS_ArrayView &view)
{
    return std::min(PAGE_ROWS, view.array.rows - view.firstRow);
}

// --- table ------------------------------------------------------------------------------

// In parts, because live reads give numbers of at most 4 bytes.
bool GetElement(const INS_ArrayView &view, uint32_t address, uint8_t *bytes)
{
    constexpr uint32_t PART = 4;
    for (uint32_t at = 0; at < view.array.type->size; at += PART) {
        const uint32_t size = std::min(PART, view.array.type->size - at);
        uint32_t bits = 0;
        if (!CODE_GetLive(view.live, address + at, size, &bits))
            return false;
        TXT_PutLittle(bytes + at, size, bits);
    }
    return true;
}

std::vector<UI_Cell> MakeCells(const INS_ArrayView *view, uint32_t row)
{
    const uint32_t start = view->array.address + row * RowBytes(*view);
    std::vector<UI_Cell> cells(1);
    cells[0].text = "[" + std::to_string(row) + "]";
    const std::string name = SYM_AddressToName(start);
    cells[0].tip = "0x" + SEL_AddressText(start) + (name.empty() ? "" : "  " + name);
    for (uint32_t i = 0; i < view->array.columns; ++i) {
        uint8_t bytes[INS_ELEMENT_BYTES_MAX] = {};
        UI_Cell cell;
        if (GetElement(*view, start + i * view->array.type->size, bytes))
            cell.text = INS_FormatElement(*view->array.type, bytes);
        cells.push_back(cell);
    }
    return cells; // an element that was not read has an empty cell
}

void SetColumns(const INS_ArrayView *view)
{
    UI_Column value;
    value.width = view->array.columns == 1 ? WIDTH_ALONE : WIDTH_BESIDE_OTHERS;
    value.align = UIA_RIGHT;
    value.isEditable = true;
    // Set anew for each array: the number of columns is its own.
    std::vector<UI_Column> columns = {{"Index", 80, UIA_LEFT}};
    for (uint32_t i = 0; i < view->array.columns; ++i) {
        value.title = view->array.columns == 1 ? "Value" : "[" + std::to_string(i) + "]";
        columns.push_back(value);
    }
    SetListColumns(view->panel, ARRAY_LIST, columns);
}

void ShowState(const INS_ArrayView *view)
{
    std::string text = "Name an array: awTable, or with type and count: $8140, u2, 32.";
    if (view->array.type != nullptr) {
        text = std::string(view->array.type->name) + " ";
        for (size_t i = 0; i < view->array.outer.size(); ++i)
            text += "[" + std::to_string(view->array.slice[i]) + " of " +
                    std::to_string(view->array.outer[i]) + "]";
        text += "[" + std::to_string(view->array.rows) + "]";
        if (view->array.columns > 1)
            text += "[" + std::to_string(view->array.columns) + "]";
        text += " at 0x" + SEL_AddressText(view->array.address);
        // The name that was typed need not be told again.
        const std::string name = SYM_AddressToName(view->array.address);
        if (!name.empty() && view->array.place.compare(0, name.size(), name) != 0)
            text += " " + name;
        if (view->array.rows > PAGE_ROWS)
            text += ", lines " + std::to_string(view->firstRow) + " to " +
                    std::to_string(view->firstRow + PageRows(*view) - 1);
    }
    SetCtrlVal(view->panel, ARRAY_STATE, text);
    // Without an array there is nothing to turn, draw, copy or fill.
    const bool isShown = view->array.type != nullptr;
    SetCtrlAttribute(view->panel, ARRAY_PREVIOUS, ATTR_DIMMED, !isShown || view->firstRow == 0);
    SetCtrlAttribute(view->panel, ARRAY_NEXT, ATTR_DIMMED,
                     !isShown || view->firstRow + PAGE_ROWS >= view->array.rows);
    for (const int control : {ARRAY_CURVE, ARRAY_COPY, ARRAY_SAVE, ARRAY_LOAD})
        SetCtrlAttribute(view->panel, control, ATTR_DIMMED, !isShown);
}

void ShowPage(INS_ArrayView *view)
{
    // The values in hand are another page's: the cells stay empty until these are read.
    view->live = CODE_LiveReads();
    ClearListCtrl(view->panel, ARRAY_LIST);
    for (uint32_t i = 0; i < PageRows(*view); ++i) {
        InsertListItem(view->panel, ARRAY_LIST, -1, std::to_string(view->firstRow + i), 0);
        SetListCells(view->panel, ARRAY_LIST, static_cast<int>(i),
                     MakeCells(view, view->firstRow + i));
    }
    ShowState(view);
}

void Inspect(INS_ArrayView *view, const std::string &text, const std::string &slice)
{
    INS_Array fresh;
    std::string cause;
    if (INS_ParsePlace(text, slice, &fresh, &cause) != 0) { // what is shown stays
        INS_ShowArrayOutcome(*view, "Not shown: " + cause + ".", COLOR_BAD);
        return;
    }
    view->array = fresh;
    SetPanelAttribute(view->panel, ATTR_TITLE, "Array " + TXT_Visible(fresh.place));
    SetCtrlVal(view->panel, ARRAY_SLICE, INS_FormatSlice(fresh));
    SetCtrlAttribute(view->panel, ARRAY_SLICE, ATTR_VISIBLE, fresh.outer.empty() ? 0 : 1);
    view->firstRow = 0;
    DeleteGraphPlot(view->panel, ARRAY_GRAPH, 0); // a curve of another array would deceive
    SetColumns(view);
    ShowPage(view);
    INS_ShowArrayOutcome(*view, "");
    if (isTimer != 0)
        INS_RefreshArray(view);
}

// The curve is of the whole array and stays.
void TurnPage(INS_ArrayView *view, bool isForward)
{
    if (view->array.type == nullptr)
        return;
    if (isForward && view->firstRow + PAGE_ROWS < view->array.rows)
        view->firstRow += PAGE_ROWS;
    else if (!isForward && view->firstRow >= PAGE_ROWS)
        view->firstRow -= PAGE_ROWS;
    ShowPage(view);
    if (isTimer != 0)
        INS_RefreshArray(view);
}

// The next slice or the one before, through all outer dimensions: the last index runs fastest and
// carries into the one in front of it, and the last slice is followed by the first.
void StepSlice(INS_ArrayView *view, int step)
{
    INS_Array next = view->array;
    std::vector<uint32_t> &slice = next.slice;
    const std::vector<uint32_t> &outer = next.outer;
    for (size_t i = slice.size(); i-- > 0;) {
        const uint32_t last = outer[i] - 1;
        const bool isCarried = slice[i] == (step > 0 ? last : 0);
        slice[i] = !isCarried ? slice[i] + static_cast<uint32_t>(step) : step > 0 ? 0 : last;
        if (!isCarried)
            break;
    }
    Inspect(view, next.place, INS_FormatSlice(next));
}

// What a new window shows, and a window of an array that is gone.
void ShowNothing(INS_ArrayView *view)
{
    view->array = INS_Array();
    view->firstRow = 0;
    ClearListCtrl(view->panel, ARRAY_LIST);
    DeleteGraphPlot(view->panel, ARRAY_GRAPH, 0);
    SetPanelAttribute(view->panel, ATTR_TITLE, "Array");
    SetCtrlAttribute(view->panel, ARRAY_SLICE, ATTR_VISIBLE, 0);
    INS_ShowArrayOutcome(*view, "");
    ShowState(view);
}

} // namespace

void INS_ShowArrayOutcome(const INS_ArrayView &view, const std::string &text, int color)
{
    SetCtrlAttribute(view.panel, ARRAY_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(view.panel, ARRAY_MESSAGE, text);
}

uint32_t INS_CountElements(const INS_ArrayView &view)
{
    return view.array.rows * view.array.columns;
}

bool INS_RefreshArray(INS_ArrayView *view)
{
    int first = 0, end = 0;
    std::string cause;
    INS_GetLinesInView(view->panel, ARRAY_LIST, static_cast<int>(PageRows(*view)), &first, &end);
    // Rows lie one behind the other: what is in view is one stretch.
    view->live = CODE_LiveReads();
    if (first < end)
        CODE_WantLive(&view->live,
                      view->array.address +
                          (view->firstRow + static_cast<uint32_t>(first)) * RowBytes(*view),
                      static_cast<uint32_t>(end - first) * RowBytes(*view));
    const bool isGood = CODE_ReadLive(&view->live, STATION, &cause) == 0;
    const bool wasFailing = view->failedMs != 0;
    view->failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u); // the clock may stand at 0
    for (int i = first; i < end; ++i)
        SetListCells(view->panel, ARRAY_LIST, i,
                     MakeCells(view, view->firstRow + static_cast<uint32_t>(i)));
    // A good refresh takes its own failure away and leaves every other message standing.
    if (!isGood)
        INS_ShowArrayOutcome(*view, "Not read: " + cause + ".", COLOR_BAD);
    else if (wasFailing)
        INS_ShowArrayOutcome(*view, "");
    return isGood;
}

void INS_OpenArray(const std::string &text)
{
    // A window of the same array, or one that shows none yet.
    INS_Inspector *inspector =
        INS_Open(PANEL_ARRAY, PANEL_ARRAY_MORE, ARRAY_PLACE, [&](const INS_Inspector &open) {
            return open.array != nullptr &&
                   (open.array->array.type == nullptr || open.array->array.place == text);
        });
    if (inspector == nullptr)
        return;
    // A new inspector, perhaps in a window that an earlier one has left as it was.
    if (inspector->array == nullptr) {
        inspector->array = std::make_shared<INS_ArrayView>();
        inspector->array->panel = inspector->panel;
        SetCtrlCompletion(inspector->panel, ARRAY_PLACE, WIN_CompleteNameCB);
        SetCtrlAttribute(inspector->panel, ARRAY_TIMER, ATTR_INTERVAL, PERIOD_S);
        SetCtrlVal(inspector->panel, ARRAY_PLACE, "");
        ShowNothing(inspector->array.get());
    }
    if (text.empty())
        return;
    SetCtrlVal(inspector->panel, ARRAY_PLACE, text);
    Inspect(inspector->array.get(), text, INS_FormatSlice(inspector->array->array));
}

void INS_ArrayNamesChanged()
{
    for (INS_Inspector *inspector : Inspectors) {
        INS_ArrayView *view = inspector != nullptr ? inspector->array.get() : nullptr;
        if (view == nullptr || view->array.type == nullptr)
            continue;
        INS_Array now;
        std::string cause;
        const std::string place = view->array.place, slice = INS_FormatSlice(view->array);
        // One that is the same as before keeps its page and its curve.
        if (INS_ParsePlace(place, slice, &now, &cause) == 0 && now.address == view->array.address &&
            now.type == view->array.type && now.rows == view->array.rows &&
            now.columns == view->array.columns)
            continue;
        ShowNothing(view);
        Inspect(view, place, slice);
    }
}

void INS_ArrayOpenCB(int, int)
{
    int line = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &line);
    // A name of the TMS320 behind the station lies in a memory that live reads do not reach.
    const bool isItem = line >= 0 && line < nLItems && !LIT_IsTMS(aLItems[line]);
    const std::string name = isItem ? aLItems[line].name : "";
    INS_Array found;
    std::string cause;
    // Of an element, the whole array; of anything else nothing.
    const std::string whole = name.substr(0, name.find_first_of("[+ "));
    INS_OpenArray(INS_ParsePlace(whole, "", &found, &cause) == 0 ? whole : "");
}

int INS_ArrayPlaceCB(int panel, int control, int event, int)
{
    std::string text;
    INS_ArrayView *view = FindView(panel);
    if (view != nullptr && event == EVENT_COMMIT && GetCtrlVal(panel, control, &text) >= 0)
        // Another array begins with its first slice.
        Inspect(view, text, "");
    return 0;
}

int INS_ArraySliceCB(int panel, int control, int event, int data)
{
    std::string text;
    INS_ArrayView *view = FindView(panel);
    if (view == nullptr || view->array.outer.empty() || GetCtrlVal(panel, control, &text) < 0)
        return 0;
    if (event == EVENT_COMMIT)
        Inspect(view, std::string(view->array.place), text); // a copy: the array is replaced
    else if (event == EVENT_KEYPRESS)
        StepSlice(view, data == KEY_UP ? 1 : -1);
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int INS_ArrayListCB(int panel, int, int event, int)
{
    INS_ArrayView *view = FindView(panel);
    if (view != nullptr && event == EVENT_CELL_EDITED)
        INS_EditCell(view);
    return 0;
}

int INS_ArrayButtonCB(int panel, int control, int event, int)
{
    constexpr struct {
        int control;
        void (*act)(INS_ArrayView *view);
    } ACTIONS[] = {{ARRAY_CURVE, INS_ShowCurve},
                   {ARRAY_COPY, INS_CopyAll},
                   {ARRAY_SAVE, INS_SaveCsv},
                   {ARRAY_LOAD, INS_LoadCsv},
                   {ARRAY_PREVIOUS, [](INS_ArrayView *view) { TurnPage(view, false); }},
                   {ARRAY_NEXT, [](INS_ArrayView *view) { TurnPage(view, true); }}};
    INS_ArrayView *view = FindView(panel);
    for (const auto &row : ACTIONS)
        if (view != nullptr && event == EVENT_COMMIT && row.control == control)
            row.act(view);
    return 0;
}

int INS_ArrayTimerCB(int panel, int, int, int)
{
    INS_ArrayView *view = FindView(panel);
    // The timer runs in every loaded window, also while communication is off.
    if (view == nullptr || isTimer == 0 || view->array.type == nullptr)
        return 0;
    const bool isPausing = view->failedMs != 0 && PLT_TickMs() - view->failedMs < PAUSE_MS;
    if (!isPausing)
        INS_RefreshArray(view);
    return 0;
}
