// Texts are made once, when a log is decoded, and lie in one piece: a filter that follows
// the user's typing then only searches.
#include "logger/log_view.h"

#include <algorithm>
#include <numeric>

#include "logger/dlld_print.h"
#include "logger/dlld_record.h"
#include "text/words.h"

namespace {

// ASCII only, and by hand: a log of megabytes is folded whole, and a locale would be asked for
// each.
std::string Fold(const std::string &text)
{
    std::string folded = text;
    std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return folded;
}

std::string GetTypeName(uint8_t type)
{
    const DLLD_Record *record = DLLD_FindRecord(type);
    if (type == DLLD_JUNK)
        return "junk";
    if (type == DLLD_TEXT)
        return "text";
    if (type == DLLD_BSTAMP)
        return "status";
    if (record != nullptr && !record->name.empty())
        return record->name;
    return TXT_Format("%02Xh", static_cast<unsigned>(type));
}

void AppendWords(const DLLD_Msg &msg, int32_t first, std::string *out)
{
    for (int32_t i = first; i < msg.length; i++)
        DLLD_Print(out, i == first ? "%04X" : " %04X", DLLD_GetWord(msg, i));
}

// One line. Fields of a record stand apart by commas, what it does not cover follows.
void AppendRecordText(const DLLD_Record &record, const DLLD_Msg &msg, std::string *out)
{
    DLLD_Cursor cursor;
    const char *mark = "";
    for (const DLLD_Field &field : record.fields) {
        const std::string value = DLLD_FormatItem(field, msg, &cursor);
        if (field.name.empty())
            continue;
        *out += mark + field.name + " = " + value;
        mark = ", ";
    }
    if (DLLD_GetRestWord(cursor) < msg.length)
        *out += mark;
    AppendWords(msg, DLLD_GetRestWord(cursor), out);
}

// A stamp that is too short to be one is shown word by word.
void AppendStampText(const DLLD_Msg &msg, std::string *out)
{
    DLLD_Stamp stamp;
    if (!DLLD_GetBStamp(msg, &stamp)) {
        AppendWords(msg, DLLD_HEAD_WORDS, out);
        return;
    }
    *out += "S=" + DLLD_FormatState(stamp.state);
    DLLD_Print(out, ", t=%lds, Err=%08lXh, IErr=%08lXh, Warn=%08lXh",
               static_cast<long>(stamp.seconds), static_cast<unsigned long>(stamp.errors),
               static_cast<unsigned long>(stamp.internalErrors),
               static_cast<unsigned long>(stamp.warnings));
}

// What the column of texts shows: all of a message in one line, so that a search finds anything.
void AppendText(const DLLD_Msg &msg, std::string *out)
{
    const uint8_t type = DLLD_GetType(msg);
    const DLLD_Record *record = DLLD_FindRecord(type);
    if (msg.length < DLLD_HEAD_WORDS) {
        *out += "too short for a time: ";
        AppendWords(msg, 0, out);
    } else if (type == DLLD_JUNK) {
        DLLD_Print(out, "%d words", msg.length);
    } else if (type == DLLD_TEXT) {
        *out += DLLD_GetText(msg);
    } else if (type == DLLD_BSTAMP) {
        AppendStampText(msg, out);
    } else if (record != nullptr) {
        AppendRecordText(*record, msg, out);
    } else {
        AppendWords(msg, DLLD_HEAD_WORDS, out);
    }
}

// Leaves the rows that the filter lets through, in their order.
void Narrow(const LOGV_Log &log, const LOGV_Filter &filter, std::vector<uint32_t> *shown)
{
    const std::string needle = Fold(filter.text);
    // Types whose names hold what is looked for: their rows need no other reason to be shown.
    std::bitset<256> named;
    for (size_t type = 0; type < named.size(); type++)
        named[type] = Fold(log.typeNames[type]).find(needle) != std::string::npos;
    const std::string_view folded = log.folded;
    const auto isOut = [&](uint32_t index) {
        const LOGV_Row &row = log.rows[index];
        if (filter.hidden[row.type] || row.stamp < filter.from || row.stamp > filter.to)
            return true;
        return !named[row.type] &&
               folded.substr(row.textAt, row.textLength).find(needle) == std::string_view::npos;
    };
    shown->erase(std::remove_if(shown->begin(), shown->end(), isOut), shown->end());
}

// Equal ones keep the order of the buffer, also downwards.
template <typename Compare> void SortBy(std::vector<uint32_t> *shown, bool isDown, Compare isLess)
{
    std::stable_sort(shown->begin(), shown->end(),
                     [&](uint32_t a, uint32_t b) { return isDown ? isLess(b, a) : isLess(a, b); });
}

} // namespace

int LOGV_Decode(DLLD_Log words, const std::string &name, LOGV_Log *log)
{
    LOGV_Log read;
    if (DLLD_TestLogHeader(words.data(), DLLD_ANY_ADDRESS, static_cast<int64_t>(words.size())) < 0)
        return -1;
    read.name = name;
    read.words = std::move(words);
    // For every type, present or not: a filter asks by number.
    for (int type = 0; type < 256; type++)
        read.typeNames.push_back(GetTypeName(static_cast<uint8_t>(type)));
    DLLD_Msg msg;
    for (int32_t index = DLLD_HEADER_WORDS; DLLD_NextMsg(read.words, &index, &msg);) {
        LOGV_Row row;
        row.start = index - msg.length;
        row.length = msg.length;
        row.type = DLLD_GetType(msg);
        row.stamp = DLLD_GetStamp(msg);
        row.textAt = static_cast<uint32_t>(read.texts.size());
        AppendText(msg, &read.texts);
        // A row is one line: control characters of the target would break the table.
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
        std::replace_if(read.texts.begin() + row.textAt, read.texts.end(), isControl, ' ');
        row.textLength = static_cast<uint32_t>(read.texts.size()) - row.textAt;
        read.rows.push_back(row);
    }
    read.folded = Fold(read.texts);
    *log = std::move(read);
    return 0;
}

int LOGV_Open(const std::string &path, LOGV_Log *log)
{
    DLLD_Log words;
    const int result = DLLD_ReadBinLogFe(path, &words);
    return result < 0 ? result : LOGV_Decode(std::move(words), path, log);
}

std::string_view LOGV_GetText(const LOGV_Log &log, const LOGV_Row &row)
{
    return std::string_view(log.texts).substr(row.textAt, row.textLength);
}

DLLD_Msg LOGV_GetMsg(const LOGV_Log &log, const LOGV_Row &row)
{
    return {log.words.data() + row.start, row.length};
}

LOGV_Filter LOGV_MakeFilter()
{
    LOGV_Filter filter;
    filter.hidden[DLLD_JUNK] = true;
    return filter;
}

void LOGV_Attach(LOGV_View *view, const LOGV_Log *log)
{
    view->log = log;
    // Another log says nothing about the last one's filter.
    view->filter = LOGV_Filter();
    view->sortColumn = LOGV_PLACE;
    view->isDescending = false;
    view->shown.resize(log->rows.size());
    std::iota(view->shown.begin(), view->shown.end(), 0u);
    LOGV_SetFilter(view, LOGV_MakeFilter());
}

void LOGV_SetFilter(LOGV_View *view, const LOGV_Filter &filter)
{
    // A longer text that holds the shorter one lets no row through that had been out.
    const LOGV_Filter &before = view->filter;
    const bool isKept = filter.hidden == before.hidden && filter.from == before.from &&
                        filter.to == before.to &&
                        Fold(filter.text).find(Fold(before.text)) != std::string::npos;
    view->filter = filter;
    if (!isKept) {
        view->shown.resize(view->log->rows.size());
        std::iota(view->shown.begin(), view->shown.end(), 0u);
    }
    Narrow(*view->log, filter, &view->shown);
    // Rows that are only taken away leave the others in their order.
    if (!isKept)
        LOGV_Sort(view, view->sortColumn, view->isDescending);
}

void LOGV_Sort(LOGV_View *view, LOGV_Column column, bool isDescending)
{
    const LOGV_Log &log = *view->log;
    const std::string_view folded = log.folded;
    view->sortColumn = column;
    view->isDescending = isDescending;
    // Whatever the order was before, equal lines come as in the buffer.
    std::sort(view->shown.begin(), view->shown.end());
    if (column == LOGV_PLACE && isDescending)
        std::reverse(view->shown.begin(), view->shown.end());
    if (column == LOGV_TIME)
        SortBy(&view->shown, isDescending,
               [&](uint32_t a, uint32_t b) { return log.rows[a].stamp < log.rows[b].stamp; });
    if (column == LOGV_TYPE)
        SortBy(&view->shown, isDescending, [&](uint32_t a, uint32_t b) {
            return log.typeNames[log.rows[a].type] < log.typeNames[log.rows[b].type];
        });
    if (column == LOGV_TEXT)
        SortBy(&view->shown, isDescending, [&](uint32_t a, uint32_t b) {
            const LOGV_Row &rowA = log.rows[a], &rowB = log.rows[b];
            return folded.substr(rowA.textAt, rowA.textLength) <
                   folded.substr(rowB.textAt, rowB.textLength);
        });
}

int64_t LOGV_FindTime(const LOGV_View &view, uint32_t stamp)
{
    // Every line is looked at: the view may be sorted by anything.
    int64_t best = -1, latest = -1;
    uint32_t bestStamp = 0, latestStamp = 0;
    for (size_t line = 0; line < view.shown.size(); line++) {
        const uint32_t at = view.log->rows[view.shown[line]].stamp;
        if (at >= stamp && (best < 0 || at < bestStamp)) {
            best = static_cast<int64_t>(line);
            bestStamp = at;
        }
        if (latest < 0 || at > latestStamp) {
            latest = static_cast<int64_t>(line);
            latestStamp = at;
        }
    }
    return best >= 0 ? best : latest;
}

uint32_t LOGV_ToStamp(const LOGV_View &view, DateTime shownTime, bool isEnd)
{
    shownTime.kind = DTTM_DECODED;
    if (view.isLocalTime && SezTm2StdTm(&shownTime) == 0 && shownTime.kind == DTTM_SUMMER && !isEnd)
        shownTime.hour--; // the first of the hour that comes twice
    return DLLD_MakeStamp(shownTime);
}
