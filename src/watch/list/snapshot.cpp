#include "watch/list/snapshot.h"

#include <algorithm>
#include <cstdio>

#include "platform/safe_file.h"
#include "text/words.h"
#include "watch/list/age.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"

namespace {

std::string AddressOf(const LItem &item)
{
    if (item.address == LITEM_NO_ADDRESS)
        return "";
    char text[16];
    std::snprintf(text, sizeof text, "0x%06X", item.address);
    return text;
}

// A value that was never read, or not the last time, is no value.
std::string ValueOf(const LItem &item)
{
    std::string text;
    if (LIT_HasNumber(item))
        FormatLItemVal(&text, item);
    return WRD_Trim(text);
}

std::string StateOf(const LItem &item)
{
    if (item.isValueGood)
        return AGE_IsOld(item) ? AGE_Tip(item) : "ok";
    return item.reason.empty() ? "not read" : item.reason;
}

} // namespace

std::string SNP_Text(const std::vector<int> &lines)
{
    std::string text = "Name\tAddress\tType\tValue\tState\n";
    for (const int index : lines) {
        const LItem &item = aLItems[index];
        text += WRD_Visible(item.name) + '\t' + AddressOf(item) + '\t' + item.type +
                std::to_string(item.size) + '\t' + ValueOf(item) + '\t' +
                WRD_Visible(StateOf(item)) + '\n';
    }
    return text;
}

std::string SNP_Csv()
{
    std::string text = "name,address,type,size,value,raw,state\r\n";
    for (int i = 0; i < nLItems; ++i) {
        const LItem &item = aLItems[i];
        const std::string raw = item.isValueGood ? std::to_string(LIT_Bits(item)) : "";
        text += WRD_QuoteCsv(item.name) + ',' + AddressOf(item) + ',' + item.type + ',' +
                std::to_string(item.size) + ',' + WRD_QuoteCsv(ValueOf(item)) + ',' + raw + ',' +
                WRD_QuoteCsv(StateOf(item)) + "\r\n";
    }
    return text;
}

int SNP_SaveCsv(const std::string &path)
{
    SafeFile safe;
    if (SAF_Open(&safe, path, "wb") != 0)
        return -1;
    const std::string text = SNP_Csv();
    if (std::fwrite(text.data(), 1, text.size(), safe.file) != text.size()) {
        SAF_Cancel(&safe);
        return -2;
    }
    return SAF_Commit(&safe) == 0 ? 0 : -2;
}
