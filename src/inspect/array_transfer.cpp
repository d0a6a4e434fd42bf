// All of an array at once: read for curve, copy and files, written from a file or from what
// was typed, and read back. Nothing is written before every value has been parsed.
#include "inspect/array_view.h"

#include <algorithm>
#include <memory>

#include "comm/communication.h"
#include "console/commands/transfer.h"
#include "inspect/element.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/csv_row.h"
#include "text/txfr.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/read_item.h"

namespace {

constexpr uint32_t ALL_ELEMENTS_MAX = 65536;
constexpr uint32_t BLOCK_BYTES = 64; // of an mr166 message; progress and breaking off go by it
constexpr int LINE_SIZE = 4000;      // of a CSV file
constexpr size_t SHOWN_MAX = 40;     // characters of a bad value that a message repeats

typedef std::vector<uint8_t> Bytes;

bool MayTransfer(const INS_ArrayView *view)
{
    if (view->array.type == nullptr)
        return false;
    if (INS_CountElements(*view) > ALL_ELEMENTS_MAX)
        INS_ShowArrayOutcome(*view,
                             "More than " + std::to_string(ALL_ELEMENTS_MAX) +
                                 " elements: name a part of the array.",
                             COLOR_BAD);
    else if (!VR_EnsureCom())
        INS_ShowArrayOutcome(*view, std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
    else
        return true;
    return false;
}

// False after a message. What was read of a transfer that failed is not for use.
bool ReadAll(const INS_ArrayView *view, Bytes *bytes)
{
    if (!MayTransfer(view))
        return false;
    const TransferPlan plan = {view->array.address,
                               INS_CountElements(*view) * view->array.type->size, BLOCK_BYTES,
                               SCR_METER_ARRAY};
    const TransferReport report =
        SCR_ReadTransfer(plan, [&](uint32_t, const uint8_t *block, uint32_t n) {
            bytes->insert(bytes->end(), block, block + n);
            return true;
        });
    if (report.result == TRANSFER_DONE)
        return true;
    INS_ShowArrayOutcome(*view,
                         report.result == TRANSFER_CANCELLED ? "Cancelled."
                                                             : "Not read: " + report.cause + ".",
                         COLOR_BAD);
    return false;
}

// A line for each row, as a spreadsheet wants it, also in the clipboard.
std::string FormatRows(const INS_ArrayView *view, const Bytes &bytes, const char *separator)
{
    std::string text;
    for (uint32_t i = 0; i < INS_CountElements(*view); ++i) {
        text += INS_FormatElement(*view->array.type, &bytes[i * view->array.type->size]);
        text += (i + 1) % view->array.columns == 0 ? "\n" : separator;
    }
    return text;
}

// Each text to the bytes of an element. "" or what is wrong with which.
std::string ParseElements(const INS_ArrayView *view, const std::vector<std::string> &texts,
                          Bytes *bytes)
{
    for (size_t i = 0; i < texts.size(); ++i) {
        uint8_t element[INS_ELEMENT_BYTES_MAX] = {};
        const ArrayParse result = INS_ParseElement(*view->array.type, texts[i], element);
        if (result != ARRAY_OK)
            return "value " + std::to_string(i + 1) + ", '" +
                   TXT_Visible(texts[i].substr(0, SHOWN_MAX)) +
                   (result == ARRAY_NO_VALUE ? "', is no number" : "', is out of range for ") +
                   (result == ARRAY_NO_VALUE ? "" : view->array.type->name);
        bytes->insert(bytes->end(), element, element + view->array.type->size);
    }
    return "";
}

// Written, read back and compared. Each of the four ends has a word of its own in front, because
// after three of them the target holds something else than what was asked for.
void WriteElements(INS_ArrayView *view, uint32_t first, const Bytes &bytes)
{
    const auto count = static_cast<uint32_t>(bytes.size());
    const uint32_t address = view->array.address + first * view->array.type->size;
    const TransferPlan plan = {address, count, BLOCK_BYTES, SCR_METER_ARRAY};
    std::string cause;
    Bytes held(bytes.size());
    if (!VR_EnsureCom()) {
        INS_ShowArrayOutcome(*view, std::string("Not written: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    // The elements that were written before a failure stay written; the text counts them.
    const TransferReport report = SCR_WriteTransfer(plan, bytes.data());
    if (report.result != TRANSFER_DONE) {
        cause = report.result == TRANSFER_CANCELLED ? "cancelled" : report.cause;
        INS_ShowArrayOutcome(
            *view, "FAILED: " + SCR_WrittenText(report, count, 1) + ": " + cause + ".", COLOR_BAD);
    } else if (RFR_ReadItemBytes(STATION, address, count, held.data(), &cause) != 0) {
        INS_ShowArrayOutcome(*view, "NOT VERIFIED: Written, but not read back: " + cause + ".",
                             COLOR_WARN);
    } else if (held != bytes) {
        const auto at = std::mismatch(held.begin(), held.end(), bytes.begin()).first;
        const auto element =
            first + static_cast<uint32_t>(at - held.begin()) / view->array.type->size;
        INS_ShowArrayOutcome(*view,
                             "DIFFERENT: Written, but element " + std::to_string(element) +
                                 " holds another value now.",
                             COLOR_WARN);
    } else {
        INS_ShowArrayOutcome(*view,
                             "OK: Elements written and read back: " +
                                 std::to_string(count / view->array.type->size) + ".",
                             COLOR_GOOD);
    }
    INS_RefreshArray(view);
}

// "" or the reason; lines that begin with ";" are comments.
std::string ReadCsv(const INS_ArrayView *view, const std::string &path,
                    std::vector<std::string> *texts)
{
    const int handle = TXFR_Open(path.c_str());
    std::string error;
    if (handle < 0)
        return "the file cannot be read";
    char line[LINE_SIZE];
    // One value too many is enough to know that the file is not for this array.
    while (error.empty() && texts->size() <= INS_CountElements(*view) &&
           TXFR_RdLine(handle, line, LINE_SIZE) >= 0) {
        std::vector<std::string> cells;
        const std::string row = TXT_Trim(line);
        if (TXFR_IsBrokenLine(handle) == 1)
            error = "a line is too long";
        else if (!row.empty() && row[0] != ';' && !TXT_SplitCsvRow(row, &cells))
            error = "a quote is not closed";
        texts->insert(texts->end(), cells.begin(), cells.end());
    }
    TXFR_Close(handle);
    if (error.empty() && texts->size() != INS_CountElements(*view))
        error = "the file holds another number of values than " +
                std::to_string(INS_CountElements(*view));
    return error;
}

} // namespace

// One curve a column.
void INS_ShowCurve(INS_ArrayView *view)
{
    Bytes bytes;
    if (!ReadAll(view, &bytes))
        return;
    std::vector<double> x(view->array.rows);
    for (uint32_t row = 0; row < view->array.rows; ++row)
        x[row] = row;
    // The view keeps what it is given, and all curves have the same x.
    const UI_Samples shared = std::make_shared<const std::vector<double>>(x);
    DeleteGraphPlot(view->panel, ARRAY_GRAPH, 0);
    for (uint32_t column = 0; column < view->array.columns; ++column) {
        std::vector<double> y(view->array.rows);
        for (uint32_t row = 0; row < view->array.rows; ++row)
            y[row] = INS_GetElementNumber(
                *view->array.type,
                &bytes[(row * view->array.columns + column) * view->array.type->size]);
        UI_Plot plot;
        plot.x = shared;
        plot.y = std::make_shared<const std::vector<double>>(std::move(y));
        plot.name =
            view->array.columns == 1 ? view->array.place : "[" + std::to_string(column) + "]";
        PlotXY(view->panel, ARRAY_GRAPH, plot);
    }
    INS_ShowArrayOutcome(*view, "Read: " + std::to_string(INS_CountElements(*view)) + " elements.");
}

void INS_CopyAll(INS_ArrayView *view)
{
    Bytes bytes;
    if (ReadAll(view, &bytes) && ClipboardPutText(FormatRows(view, bytes, "\t")) == 0)
        INS_ShowArrayOutcome(*view,
                             "Copied: " + std::to_string(INS_CountElements(*view)) + " elements.");
}

void INS_SaveCsv(INS_ArrayView *view)
{
    Bytes bytes;
    std::string path;
    SafeFile file;
    // Read first: a name is not asked for in vain.
    if (!ReadAll(view, &bytes) || FileSelectPopup("", "array.csv", "*.csv", "Save the array",
                                                  FILE_SAVE, &path) == CON_NO_FILE_SELECTED)
        return;
    // The first line says what it was; the reader takes it as a comment.
    const std::string slice = INS_FormatSlice(view->array);
    const std::string sliced = slice.empty() ? "" : ", slice " + slice;
    const bool isOpen = PLT_BeginSave(&file, path, "wb") == 0;
    if (isOpen)
        PLT_SaveText(file.file, "; " + view->array.place + sliced + ", " + view->array.type->name +
                                    "\n" + FormatRows(view, bytes, ","));
    if (isOpen && PLT_CommitSave(&file) == 0)
        INS_ShowArrayOutcome(*view, "Saved: " + TXT_Visible(path));
    else
        INS_ShowArrayOutcome(*view, "'" + TXT_Visible(path) + "' cannot be written.", COLOR_BAD);
}

// One value, or several as a spreadsheet gives them: they go on with the elements behind.
void INS_EditCell(INS_ArrayView *view)
{
    int line = -1, column = -1;
    std::string text;
    if (view->array.type == nullptr ||
        GetEditedCell(view->panel, ARRAY_LIST, &line, &column, &text) < 0 || line < 0 || column < 1)
        return;
    // No comma: in many countries' spreadsheets it is the point of a number, and is refused as
    // such.
    std::vector<std::string> texts;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find_first_of(" \t\r\n;", begin), text.size());
        if (end > begin)
            texts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    const uint32_t first = (view->firstRow + static_cast<uint32_t>(line)) * view->array.columns +
                           static_cast<uint32_t>(column - 1);
    Bytes bytes;
    const std::string error = ParseElements(view, texts, &bytes);
    if (!error.empty() || texts.empty())
        INS_ShowArrayOutcome(
            *view,
            "REFUSED: Nothing was written: " + (error.empty() ? "there is no value" : error) + ".",
            COLOR_BAD);
    else if (texts.size() > INS_CountElements(*view) - first)
        INS_ShowArrayOutcome(*view,
                             "REFUSED: Nothing was written: " + std::to_string(texts.size()) +
                                 " values do not fit behind this element.",
                             COLOR_BAD);
    else
        WriteElements(view, first, bytes);
}

void INS_LoadCsv(INS_ArrayView *view)
{
    std::string path;
    std::vector<std::string> texts;
    Bytes bytes;
    if (!MayTransfer(view) || FileSelectPopup("", "*.csv", "*.csv", "Load values into the array",
                                              FILE_LOAD, &path) == CON_NO_FILE_SELECTED)
        return;
    // File and values are checked whole; a fault in the last one leaves the target as it was.
    std::string error = ReadCsv(view, path, &texts);
    if (error.empty())
        error = ParseElements(view, texts, &bytes);
    if (error.empty())
        WriteElements(view, 0, bytes);
    else
        INS_ShowArrayOutcome(*view, "REFUSED: Nothing was written: " + error + ".", COLOR_BAD);
}
