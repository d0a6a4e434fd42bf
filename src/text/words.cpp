#include "text/words.h"

namespace {

const char WHITE[] = " \t\r\n\v\f";

} // namespace

std::string WRD_Trim(const std::string &text)
{
    const size_t begin = text.find_first_not_of(WHITE);
    if (begin == std::string::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(WHITE) - begin + 1);
}

std::string WRD_QuoteCsv(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}
