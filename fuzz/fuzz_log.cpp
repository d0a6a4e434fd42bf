// Log buffers as they come from a target or a file: listings, table, filter, sorting and
// comparing. The first byte describes one of the types or none.
#include "logger/dlld.h"
#include "logger/dlld_print.h"
#include "logger/dlld_record.h"
#include "logger/log_view.h"
#include "scratch_folder.h"

namespace {

// Messages lie one behind the other, parted by zeros, and none is lost.
void CheckRows(const LOGV_Log &log)
{
    int32_t at = DLLD_HEADER_WORDS;
    for (const LOGV_Row &row : log.rows) {
        for (; at < row.start; at++)
            FUZ_Check(log.words[static_cast<size_t>(at)] == 0);
        FUZ_Check(row.start >= at && row.length > 0);
        at += row.length;
    }
    for (; at < static_cast<int32_t>(log.words.size()); at++)
        FUZ_Check(log.words[static_cast<size_t>(at)] == 0);
}

void CheckView(const LOGV_Log &log)
{
    LOGV_View view;
    LOGV_Attach(&view, &log);
    LOGV_Sort(&view, LOGV_TEXT, true);
    for (size_t line = 0; line < view.shown.size(); line++)
        FUZ_Check(LOGV_GetCell(view, line, LOGV_TEXT).find('\n') == std::string::npos);
    LOGV_Filter filter = view.filter;
    filter.text = "a";
    LOGV_SetFilter(&view, filter);
    for (const LOGV_Pair &pair : LOGV_Compare(log, log))
        FUZ_Check(pair.rowA >= 0 && pair.rowB >= 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    DLLD_ClearRecIds();
    DLLD_SetRecId(0, data[0], "R;a:u1;b:i4/10 V;c:x2(p,3-5=q);d:f4;e:i2{x,-1=y}");
    DLLD_Log words(DLLD_HEADER_WORDS, 0);
    for (size_t i = 1; i + 1 < size; i += 2)
        words.push_back(static_cast<uint16_t>(data[i] | data[i + 1] << 8));
    words[2] = static_cast<uint16_t>(words.size() & 0xFFFF);
    words[3] = static_cast<uint16_t>(words.size() >> 16);
    words[4] = 0x4F4C;
    words[5] = 0x4F47;
    words[6] = 0x3A53;
    LOGV_Log log;
    FUZ_Check(LOGV_Decode(words, "", &log) == 0);
    CheckRows(log);
    CheckView(log);
    std::string text;
    for (const LOGV_Row &row : log.rows) {
        LOGV_GetDetails(log, row);
        DLLD_FPrintMsgHdr(LOGV_GetMsg(log, row), &text);
        DLLD_FPrintMsgCts(LOGV_GetMsg(log, row), &text);
        DLLD_FPrintMsgHexCts(LOGV_GetMsg(log, row), &text);
    }
    return 0;
}
