// What leaves a log's table as text: cells, copied lines, CSV, the details of one message. Cells
// are made when they are asked for: a list draws a page of them, and a log has a hundred thousand.
#include <cstdio>

#include "logger/dlld_print.h"
#include "logger/dlld_record.h"
#include "logger/log_view.h"
#include "platform/safe_file.h"
#include "text/words.h"

namespace {

std::string FormatTime(uint32_t stamp, bool isLocal)
{
    std::string text;
    if (stamp == 0)
        return text;
    DateTime time;
    CvtAMCBIOS_time(stamp, &time);
    if (isLocal)
        StdTm2SezTm(&time); // what is no real time stays as it was logged
    DLLD_AppendTime(time, &text);
    return text;
}

// Always in quotes: a column of texts looks the same from its first line to its last. What a
// spreadsheet would run as a formula, a target may have logged as well.
void AppendQuoted(const std::string &text, std::string *out)
{
    const std::string cell = TXT_QuoteCsv(text);
    const bool isQuoted = !cell.empty() && cell.front() == '"';
    *out += isQuoted ? cell : '"' + cell + '"';
}

void AddStampFields(const DLLD_Msg &msg, std::vector<LOGV_Detail> *details)
{
    DLLD_Stamp stamp;
    if (!DLLD_GetBStamp(msg, &stamp))
        return;
    details->push_back({"S", DLLD_FormatState(stamp.state)});
    details->push_back({"t", std::to_string(stamp.seconds) + " s"});
    const struct {
        const char *name;
        uint32_t value;
    } masks[] = {{"Err", stamp.errors}, {"IErr", stamp.internalErrors}, {"Warn", stamp.warnings}};
    for (const auto &mask : masks)
        details->push_back(
            {mask.name, TXT_Format("%08lXh", static_cast<unsigned long>(mask.value))});
}

} // namespace

std::string LOGV_GetCell(const LOGV_View &view, size_t line, LOGV_Column column)
{
    const LOGV_Row &row = view.log->rows[view.shown[line]];
    switch (column) {
    case LOGV_TIME:
        return FormatTime(row.stamp, view.isLocalTime);
    case LOGV_TYPE:
        return view.log->typeNames[row.type];
    case LOGV_TEXT:
        return std::string(LOGV_GetText(*view.log, row));
    default:
        return std::to_string(row.start);
    }
}

std::string LOGV_CopyLines(const LOGV_View &view, const std::vector<size_t> &lines)
{
    std::string text;
    for (const size_t line : lines)
        text += LOGV_GetCell(view, line, LOGV_TIME) + "\t" + LOGV_GetCell(view, line, LOGV_TYPE) +
                "\t" + LOGV_GetCell(view, line, LOGV_TEXT) + "\n";
    return text;
}

int LOGV_SaveCsv(const LOGV_View &view, const std::string &path)
{
    std::string text = "; log " + view.log->name + "\r\n; " + std::to_string(view.shown.size()) +
                       " of " + std::to_string(view.log->rows.size()) + " messages, ";
    // Which of both clocks, or a file could not be compared with another one.
    text += view.isLocalTime ? "local time\r\n" : "time as logged\r\n";
    text += "time,type,text\r\n";
    for (size_t line = 0; line < view.shown.size(); line++) {
        text += LOGV_GetCell(view, line, LOGV_TIME) + ",";
        AppendQuoted(LOGV_GetCell(view, line, LOGV_TYPE), &text);
        text += ',';
        AppendQuoted(LOGV_GetCell(view, line, LOGV_TEXT), &text);
        text += "\r\n";
    }
    SafeFile file;
    if (PLT_BeginSave(&file, path, "wb") < 0)
        return -1;
    if (std::fwrite(text.data(), 1, text.size(), file.file) != text.size()) {
        PLT_CancelSave(&file);
        return -1;
    }
    return PLT_CommitSave(&file);
}

std::vector<LOGV_Detail> LOGV_GetDetails(const LOGV_Log &log, const LOGV_Row &row)
{
    const DLLD_Msg msg = LOGV_GetMsg(log, row);
    const DLLD_Record *record = DLLD_FindRecord(row.type);
    std::vector<LOGV_Detail> details;
    details.push_back({"Local time", FormatTime(row.stamp, true)});
    details.push_back({"Time as logged", FormatTime(row.stamp, false)});
    const unsigned type = row.type;
    details.push_back({"Type", log.typeNames[type] + TXT_Format(" (%02Xh)", type)});
    details.push_back({"Place", TXT_Format("word %d, %d words", row.start, row.length)});
    if (row.type == DLLD_BSTAMP) {
        AddStampFields(msg, &details);
    } else if (row.type == DLLD_TEXT) {
        details.push_back({"Text", std::string(LOGV_GetText(log, row))});
    } else if (record != nullptr && row.type != DLLD_JUNK && row.length >= DLLD_HEAD_WORDS) {
        // Filler is read over, so that the fields behind it stand at their place.
        DLLD_Cursor cursor;
        for (const DLLD_Field &field : record->fields) {
            const std::string value = DLLD_FormatItem(field, msg, &cursor);
            if (!field.name.empty())
                details.push_back({field.name, value});
        }
    }
    // As they stand in the log, replaced zeros included.
    std::string words;
    for (int32_t i = 0; i < msg.length; i++)
        DLLD_Print(&words, i == 0 ? "%04X" : " %04X", msg.words[i]);
    details.push_back({"Words", words});
    return details;
}
