// Descriptions of records as a target may hold them, and contents that fit them or not: the
// first byte says how many bytes are the description as it stands in memory.
#include "fuzz_check.h"
#include "logger/dlld_print.h"
#include "logger/dlld_record.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    const size_t length = std::min<size_t>({data[0], size - 1, DLLD_DESCRIPTION_BYTES});
    std::string text;
    const int reduced = DLLD_ReduceStr(data + 1, length, &text);
    FUZ_Check(text.size() <= length && text.find('\0') == std::string::npos);
    DLLD_ClearRecIds();
    int errorAt = 0;
    DLLD_Record record;
    const int result = DLLD_CreateRecordDescriptor(text, &record, &errorAt);
    // A refusal names a place in the text or right behind it.
    FUZ_Check(result < 0 ? errorAt >= 1 && errorAt <= static_cast<int>(text.size()) + 1
                         : errorAt == 0);
    DLLD_SetRecId(0, 0x20, reduced < 0 ? "" : text);
    DLLD_SetRecId(1, 0x20, ";" + text);
    std::vector<uint16_t> words = {0x0520, 1, 1};
    for (size_t i = 1 + length; i + 1 < size; i += 2)
        words.push_back(static_cast<uint16_t>(data[i] | data[i + 1] << 8 | 0x0100));
    std::string out;
    const DLLD_Msg msg = {words.data(), static_cast<int32_t>(words.size())};
    DLLD_FPrintMsgRecCts(msg, &out);
    DLLD_FPrintRecordCts(record, msg, &out);
    return 0;
}
