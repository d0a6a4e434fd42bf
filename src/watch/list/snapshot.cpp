#include "watch/list/snapshot.h"

#include <algorithm>
#include <cstdio>

#include "platform/safe_file.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

std::string addressOf(const LItem &item)
{
    if (item.address == LITEM_NO_ADDRESS)
        return "";
    char text[16];
    std::snprintf(text, sizeof text, "0x%06X", item.address);
    return text;
}

std::string typeOf(const LItem &item)
{
    return item.type + std::to_string(item.size);
}

// A value that was never read, or not the last time, is no value.
std::string valueOf(const LItem &item)
{
    std::string text;
    if (item.isValueGood)
        FormatLItemVal(&text, item);
    const size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin);
}

std::string rawOf(const LItem &item)
{
    const uint64_t raw = static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
    return item.isValueGood ? std::to_string(raw) : "";
}

std::string stateOf(const LItem &item)
{
    if (item.isValueGood)
        return "ok";
    return item.reason.empty() ? "not read" : item.reason;
}

std::string oneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\t' || c == '\n'; }, ' ');
    return text;
}

std::string quoted(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string result = "\"";
    for (const char c : text)
        result += c == '"' ? std::string("\"\"") : std::string(1, c);
    return result + '"';
}

} // namespace

std::string SNP_Text()
{
    std::string text = "Name\tAddress\tType\tValue\tState\n";
    for (int i = 0; i < nLItems; ++i) {
        const LItem &item = aLItems[i];
        text += oneLine(item.name) + '\t' + addressOf(item) + '\t' + typeOf(item) + '\t' +
                valueOf(item) + '\t' + oneLine(stateOf(item)) + '\n';
    }
    return text;
}

std::string SNP_Csv()
{
    std::string text = "name,address,type,size,value,raw,state\r\n";
    for (int i = 0; i < nLItems; ++i) {
        const LItem &item = aLItems[i];
        text += quoted(item.name) + ',' + addressOf(item) + ',' + item.type + ',' +
                std::to_string(item.size) + ',' + quoted(valueOf(item)) + ',' + rawOf(item) + ',' +
                quoted(stateOf(item)) + "\r\n";
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
