#include "inspect/array_inspector.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "code/live_reads.h"
#include "comm/communication.h"
#include "console/commands/array_types.h"
#include "console/commands/transfer.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/csv_row.h"
#include "text/txfr.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr int PANEL = PANEL_ARRAY;
constexpr double PERIOD_S = 0.3;
constexpr uint32_t PAUSE_MS = 3000;  // after a refresh that failed
constexpr uint32_t PAGE_ROWS = 1000; // lines of the list
constexpr int LINES_WITHOUT_VIEW = 40;
constexpr uint32_t ALL_ELEMENTS_MAX = 65536; // of curve, copy and files
constexpr uint32_t BLOCK_BYTES = 64;
constexpr int LINE_SIZE = 4000; // of a CSV file

typedef std::vector<uint8_t> Bytes;

ARI_Array array;
uint32_t firstRow = 0; // of the page
LVR_Set live;          // of the lines in view
uint32_t failedMs = 0;

void ShowOutcome(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, ARRAY_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, ARRAY_MESSAGE, text);
}

uint32_t CountElements()
{
    return array.rows * array.columns;
}

uint32_t RowBytes()
{
    return array.columns * array.type->size;
}

uint32_t PageRows()
{
    return std::min(PAGE_ROWS, array.rows - firstRow);
}

// --- table ------------------------------------------------------------------------------

std::string FormatElement(const uint8_t *bytes)
{
    return WRD_Trim(ARR_FormatElement(*array.type, bytes));
}

std::vector<UI_Cell> MakeCells(uint32_t row)
{
    const uint32_t start = array.address + row * RowBytes();
    std::vector<UI_Cell> cells(1);
    cells[0].text = "[" + std::to_string(row) + "]";
    cells[0].tip = "0x" + SEL_AddressText(start);
    for (uint32_t i = 0; i < array.columns; ++i) {
        uint32_t bits = 0;
        UI_Cell cell;
        if (LVR_Get(live, start + i * array.type->size, array.type->size, &bits)) {
            uint8_t bytes[ELEMENT_BYTES_MAX];
            for (uint32_t b = 0; b < ELEMENT_BYTES_MAX; ++b)
                bytes[b] = static_cast<uint8_t>(bits >> 8 * b);
            cell.text = FormatElement(bytes);
        }
        cells.push_back(cell);
    }
    return cells;
}

void SetColumns()
{
    UI_Column value;
    value.width = array.columns == 1 ? 140 : 80;
    value.align = UIA_RIGHT;
    value.isEditable = true;
    std::vector<UI_Column> columns = {{"Index", 80, UIA_LEFT}};
    for (uint32_t i = 0; i < array.columns; ++i) {
        value.title = array.columns == 1 ? "Value" : "[" + std::to_string(i) + "]";
        columns.push_back(value);
    }
    SetListColumns(PANEL, ARRAY_LIST, columns);
}

void ShowState()
{
    std::string text = "Name an array: awTable, or with type and count: $8140, u2, 32.";
    if (array.type != nullptr) {
        text = std::string(array.type->name) + " [" + std::to_string(array.rows) + "]";
        if (array.columns > 1)
            text += "[" + std::to_string(array.columns) + "]";
        text += " at 0x" + SEL_AddressText(array.address);
        if (array.rows > PAGE_ROWS)
            text += ", lines " + std::to_string(firstRow) + " to " +
                    std::to_string(firstRow + PageRows() - 1);
    }
    SetCtrlVal(PANEL, ARRAY_STATE, text);
    const bool isShown = array.type != nullptr;
    SetCtrlAttribute(PANEL, ARRAY_PREVIOUS, ATTR_DIMMED, !isShown || firstRow == 0);
    SetCtrlAttribute(PANEL, ARRAY_NEXT, ATTR_DIMMED,
                     !isShown || firstRow + PAGE_ROWS >= array.rows);
    for (const int control : {ARRAY_CURVE, ARRAY_COPY, ARRAY_SAVE, ARRAY_LOAD})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, !isShown);
}

void ShowPage()
{
    live = LVR_Set();
    ClearListCtrl(PANEL, ARRAY_LIST);
    for (uint32_t i = 0; i < PageRows(); ++i) {
        InsertListItem(PANEL, ARRAY_LIST, -1, std::to_string(firstRow + i), 0);
        SetListCells(PANEL, ARRAY_LIST, static_cast<int>(i), MakeCells(firstRow + i));
    }
    ShowState();
}

// Reads the lines in view and no other.
bool Refresh()
{
    int first = 0, lines = 0;
    std::string cause;
    GetCtrlAttribute(PANEL, ARRAY_LIST, ATTR_FIRST_VISIBLE_LINE, &first);
    GetCtrlAttribute(PANEL, ARRAY_LIST, ATTR_LINES_IN_VIEW, &lines);
    first = std::max(first, 0);
    const int end =
        std::min(first + (lines > 0 ? lines : LINES_WITHOUT_VIEW), static_cast<int>(PageRows()));
    live = LVR_Set();
    if (first < end)
        LVR_Want(&live, array.address + (firstRow + static_cast<uint32_t>(first)) * RowBytes(),
                 static_cast<uint32_t>(end - first) * RowBytes());
    const bool isGood = LVR_Read(&live, STATION, &cause) == 0;
    const bool wasFailing = failedMs != 0;
    failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u);
    for (int i = first; i < end; ++i)
        SetListCells(PANEL, ARRAY_LIST, i, MakeCells(firstRow + static_cast<uint32_t>(i)));
    if (!isGood)
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
    else if (wasFailing)
        ShowOutcome("");
    return isGood;
}

void Inspect(const std::string &text)
{
    ARI_Array fresh;
    std::string cause;
    if (ARI_Parse(text, &fresh, &cause) != 0) {
        ShowOutcome("Not shown: " + cause + ".", COLOR_BAD);
        return;
    }
    array = fresh;
    firstRow = 0;
    DeleteGraphPlot(PANEL, ARRAY_GRAPH, 0);
    SetColumns();
    ShowPage();
    ShowOutcome("");
    if (isTimer != 0)
        Refresh();
}

// --- all of it --------------------------------------------------------------------------

bool MayTransfer()
{
    if (array.type == nullptr)
        return false;
    if (CountElements() > ALL_ELEMENTS_MAX)
        ShowOutcome("More than " + std::to_string(ALL_ELEMENTS_MAX) +
                        " elements: name a part of the array.",
                    COLOR_BAD);
    else if (!VR_EnsureCom())
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
    else
        return true;
    return false;
}

bool ReadAll(Bytes *bytes)
{
    if (!MayTransfer())
        return false;
    const TransferPlan plan = {array.address, CountElements() * array.type->size, BLOCK_BYTES,
                               TRF_METER_ARRAY};
    const TransferReport report = TRF_Read(plan, [&](uint32_t, const uint8_t *block, uint32_t n) {
        bytes->insert(bytes->end(), block, block + n);
        return true;
    });
    if (report.result == TRANSFER_DONE)
        return true;
    ShowOutcome(report.result == TRANSFER_CANCELLED ? "Cancelled."
                                                    : "Not read: " + report.cause + ".",
                COLOR_BAD);
    return false;
}

double GetNumber(const uint8_t *bytes)
{
    const uint32_t bits = ARR_GetElement(*array.type, bytes);
    if (array.type->isFloat) {
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return std::isfinite(value) ? static_cast<double>(value) : NAN; // a gap
    }
    return array.type->isSigned ? static_cast<double>(static_cast<int32_t>(bits))
                                : static_cast<double>(bits);
}

// One curve a column.
void ShowCurve()
{
    Bytes bytes;
    if (!ReadAll(&bytes))
        return;
    std::vector<double> x(array.rows);
    for (uint32_t row = 0; row < array.rows; ++row)
        x[row] = row;
    const UI_Samples shared = std::make_shared<const std::vector<double>>(x);
    DeleteGraphPlot(PANEL, ARRAY_GRAPH, 0);
    for (uint32_t column = 0; column < array.columns; ++column) {
        std::vector<double> y(array.rows);
        for (uint32_t row = 0; row < array.rows; ++row)
            y[row] = GetNumber(&bytes[row * RowBytes() + column * array.type->size]);
        UI_Plot plot;
        plot.x = shared;
        plot.y = std::make_shared<const std::vector<double>>(std::move(y));
        plot.name = array.columns == 1 ? array.place : "[" + std::to_string(column) + "]";
        PlotXY(PANEL, ARRAY_GRAPH, plot);
    }
    ShowOutcome("Read: " + std::to_string(CountElements()) + " elements.");
}

std::string FormatRows(const Bytes &bytes, const char *separator)
{
    std::string text;
    for (uint32_t i = 0; i < CountElements(); ++i) {
        text += FormatElement(&bytes[i * array.type->size]);
        text += (i + 1) % array.columns == 0 ? "\n" : separator;
    }
    return text;
}

void CopyAll()
{
    Bytes bytes;
    if (ReadAll(&bytes) && ClipboardPutText(FormatRows(bytes, "\t")) == 0)
        ShowOutcome("Copied: " + std::to_string(CountElements()) + " elements.");
}

void SaveCsv()
{
    Bytes bytes;
    std::string path;
    SafeFile file;
    if (!ReadAll(&bytes) || FileSelectPopup("", "array.csv", "*.csv", "Save the array", FILE_SAVE,
                                            &path) == VAL_NO_FILE_SELECTED)
        return;
    const bool isOpen = SAF_Open(&file, path, "wb") == 0;
    if (isOpen)
        SAF_PutText(file.file,
                    "; " + array.place + ", " + array.type->name + "\n" + FormatRows(bytes, ","));
    if (isOpen && SAF_Commit(&file) == 0)
        ShowOutcome("Saved: " + WRD_Visible(path));
    else
        ShowOutcome("'" + WRD_Visible(path) + "' cannot be written.", COLOR_BAD);
}

// --- writing ----------------------------------------------------------------------------

// Each text to the bytes of an element. "" or what is wrong with which.
std::string ParseElements(const std::vector<std::string> &texts, Bytes *bytes)
{
    for (size_t i = 0; i < texts.size(); ++i) {
        uint8_t element[ELEMENT_BYTES_MAX] = {};
        const ArrayParse result = ARR_ParseElement(*array.type, texts[i].c_str(), element);
        if (result != ARRAY_OK)
            return "value " + std::to_string(i + 1) + ", '" + WRD_Visible(texts[i].substr(0, 40)) +
                   (result == ARRAY_NO_VALUE ? "', is no number" : "', is out of range for ") +
                   (result == ARRAY_NO_VALUE ? "" : array.type->name);
        bytes->insert(bytes->end(), element, element + array.type->size);
    }
    return "";
}

// Written, read back and compared.
void WriteElements(uint32_t first, const Bytes &bytes)
{
    const auto count = static_cast<uint32_t>(bytes.size());
    const uint32_t address = array.address + first * array.type->size;
    const TransferPlan plan = {address, count, BLOCK_BYTES, TRF_METER_ARRAY};
    std::string cause;
    Bytes held(bytes.size());
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not written: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    const TransferReport report = TRF_Write(plan, bytes.data());
    if (report.result != TRANSFER_DONE) {
        cause = report.result == TRANSFER_CANCELLED ? "cancelled" : report.cause;
        ShowOutcome("FAILED: " + TRF_WrittenText(report, count, 1) + ": " + cause + ".", COLOR_BAD);
    } else if (RDI_ReadBytes(STATION, address, count, held.data(), &cause) != 0) {
        ShowOutcome("NOT VERIFIED: Written, but not read back: " + cause + ".", COLOR_WARN);
    } else if (held != bytes) {
        const auto at = std::mismatch(held.begin(), held.end(), bytes.begin()).first;
        const auto element = first + static_cast<uint32_t>(at - held.begin()) / array.type->size;
        ShowOutcome("DIFFERENT: Written, but element " + std::to_string(element) +
                        " holds another value now.",
                    COLOR_WARN);
    } else {
        ShowOutcome(
            "OK: Elements written and read back: " + std::to_string(count / array.type->size) + ".",
            COLOR_GOOD);
    }
    Refresh();
}

// One value, or several as a spreadsheet gives them: they go on with the elements behind.
void EditCell()
{
    int line = -1, column = -1;
    std::string text;
    if (array.type == nullptr || GetEditedCell(PANEL, ARRAY_LIST, &line, &column, &text) < 0 ||
        line < 0 || column < 1)
        return;
    std::vector<std::string> texts;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find_first_of(" \t\r\n;", begin), text.size());
        if (end > begin)
            texts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    const uint32_t first = (firstRow + static_cast<uint32_t>(line)) * array.columns +
                           static_cast<uint32_t>(column - 1);
    Bytes bytes;
    const std::string error = ParseElements(texts, &bytes);
    if (!error.empty() || texts.empty())
        ShowOutcome(
            "REFUSED: Nothing was written: " + (error.empty() ? "there is no value" : error) + ".",
            COLOR_BAD);
    else if (texts.size() > CountElements() - first)
        ShowOutcome("REFUSED: Nothing was written: " + std::to_string(texts.size()) +
                        " values do not fit behind this element.",
                    COLOR_BAD);
    else
        WriteElements(first, bytes);
}

// "" or the reason; lines that begin with ";" are comments.
std::string ReadCsv(const std::string &path, std::vector<std::string> *texts)
{
    const int handle = TXFR_Open(path.c_str());
    std::string error;
    if (handle < 0)
        return "the file cannot be read";
    char line[LINE_SIZE];
    while (error.empty() && texts->size() <= CountElements() &&
           TXFR_RdLine(handle, line, LINE_SIZE) >= 0) {
        std::vector<std::string> cells;
        const std::string row = WRD_Trim(line);
        if (TXFR_IsBrokenLine(handle) == 1)
            error = "a line is too long";
        else if (!row.empty() && row[0] != ';' && !CSV_SplitRow(row, &cells))
            error = "a quote is not closed";
        texts->insert(texts->end(), cells.begin(), cells.end());
    }
    TXFR_Close(handle);
    if (error.empty() && texts->size() != CountElements())
        error = "the file holds another number of values than " + std::to_string(CountElements());
    return error;
}

void LoadCsv()
{
    std::string path;
    std::vector<std::string> texts;
    Bytes bytes;
    if (!MayTransfer() || FileSelectPopup("", "*.csv", "*.csv", "Load values into the array",
                                          FILE_LOAD, &path) == VAL_NO_FILE_SELECTED)
        return;
    std::string error = ReadCsv(path, &texts);
    if (error.empty())
        error = ParseElements(texts, &bytes);
    if (error.empty())
        WriteElements(0, bytes);
    else
        ShowOutcome("REFUSED: Nothing was written: " + error + ".", COLOR_BAD);
}

void TurnPage(bool isForward)
{
    if (array.type == nullptr)
        return;
    if (isForward && firstRow + PAGE_ROWS < array.rows)
        firstRow += PAGE_ROWS;
    else if (!isForward && firstRow >= PAGE_ROWS)
        firstRow -= PAGE_ROWS;
    ShowPage();
    if (isTimer != 0)
        Refresh();
}

} // namespace

void ARI_Open(const std::string &text)
{
    SetCtrlCompletion(PANEL, ARRAY_PLACE, NCM_CompleteCB);
    SetCtrlAttribute(PANEL, ARRAY_TIMER, ATTR_INTERVAL, PERIOD_S);
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, ARRAY_PLACE);
    ShowState();
    if (text.empty())
        return;
    SetCtrlVal(PANEL, ARRAY_PLACE, text);
    Inspect(text);
}

void ARI_NamesChanged()
{
    ARI_Array now;
    std::string cause;
    if (array.type == nullptr)
        return;
    const int result = ARI_Parse(array.place, &now, &cause);
    if (result == 0 && now.address == array.address && now.type == array.type &&
        now.rows == array.rows && now.columns == array.columns)
        return;
    const std::string place = array.place;
    array = ARI_Array();
    ClearListCtrl(PANEL, ARRAY_LIST);
    DeleteGraphPlot(PANEL, ARRAY_GRAPH, 0);
    ShowState();
    Inspect(place);
}

void ARI_OpenCB(int, int)
{
    int line = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &line);
    const bool isItem = line >= 0 && line < nLItems && !LIT_IsTMS(aLItems[line]);
    const std::string name = isItem ? aLItems[line].name : "";
    ARI_Array found;
    std::string cause;
    const std::string whole = name.substr(0, name.find_first_of("[+ "));
    ARI_Open(ARI_Parse(whole, &found, &cause) == 0 ? whole : "");
}

int ARI_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}

int ARI_PlaceCB(int, int, int event, int)
{
    std::string text;
    if (event == EVENT_COMMIT && GetCtrlVal(PANEL, ARRAY_PLACE, &text) >= 0)
        Inspect(text);
    return 0;
}

int ARI_ListCB(int, int, int event, int)
{
    if (event == EVENT_CELL_EDITED)
        EditCell();
    return 0;
}

int ARI_ButtonCB(int, int control, int event, int)
{
    constexpr struct {
        int control;
        void (*act)();
    } ACTIONS[] = {{ARRAY_CURVE, ShowCurve},
                   {ARRAY_COPY, CopyAll},
                   {ARRAY_SAVE, SaveCsv},
                   {ARRAY_LOAD, LoadCsv},
                   {ARRAY_PREVIOUS, [] { TurnPage(false); }},
                   {ARRAY_NEXT, [] { TurnPage(true); }}};
    for (const auto &row : ACTIONS)
        if (event == EVENT_COMMIT && row.control == control)
            row.act();
    return 0;
}

int ARI_TimerCB(int, int, int, int)
{
    int isVisible = 0;
    GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible);
    const bool isPausing = failedMs != 0 && PLT_TickMs() - failedMs < PAUSE_MS;
    if (isVisible != 0 && isTimer != 0 && !isPausing && array.type != nullptr)
        Refresh();
    return 0;
}
