// Cells are marked against spreadsheets: they run what begins like a formula, wherever the file
// came from.
#include "text/words.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

const char WHITE[] = " \t\r\n\v\f";

// UTF-8 beyond ASCII is text; only the control characters of ASCII steer a terminal.
bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

// "-12.5", "+3", "-12.500 Hz".
bool IsNumber(const std::string &text)
{
    char *end = nullptr;
    (void)std::strtod(text.c_str(), &end);
    if (end == text.c_str())
        return false;
    const std::string unit(end);
    return unit.find_first_not_of(" ") == std::string::npos ||
           (unit[0] == ' ' && std::all_of(unit.begin(), unit.end(), [](char c) {
                return c == ' ' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
            }));
}

// With apostrophes of its own in front it gets one more, so that taking one off gives it back.
bool IsFormulaBehindMarks(const std::string &cell)
{
    const size_t begin = cell.find_first_not_of('\'');
    if (begin == std::string::npos)
        return false;
    const std::string text = cell.substr(begin);
    // Blanks and tabs in front are skipped by those who run it.
    const size_t start = text.find_first_not_of(" \t\r\n");
    return start != std::string::npos &&
           std::string("=+-@").find(text[start]) != std::string::npos && !IsNumber(text);
}

} // namespace

std::string TXT_FormatList(const char *format, va_list arguments)
{
    va_list copy; // the first look only measures, and uses its list up
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (length < 0)
        return "";
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(&text[0], text.size(), format, arguments);
    text.pop_back();
    return text;
}

std::string TXT_Format(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = TXT_FormatList(format, arguments);
    va_end(arguments);
    return text;
}

std::string TXT_Trim(const std::string &text)
{
    const size_t begin = text.find_first_not_of(WHITE);
    if (begin == std::string::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(WHITE) - begin + 1);
}

std::string TXT_QuoteCsv(const std::string &text)
{
    const std::string cell = (IsFormulaBehindMarks(text) ? "'" : "") + text;
    if (cell.find_first_of(",\"\r\n") == std::string::npos)
        return cell;
    std::string quoted = "\"";
    for (const char c : cell)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

std::string TXT_WithoutCsvMark(const std::string &cell)
{
    const bool isMarked = !cell.empty() && cell[0] == '\'' && IsFormulaBehindMarks(cell);
    return isMarked ? cell.substr(1) : cell;
}

std::string TXT_Visible(std::string text)
{
    std::replace_if(text.begin(), text.end(), IsControl, '.');
    return text;
}

std::string TXT_VisibleLines(std::string text)
{
    const auto isHidden = [](char c) { return IsControl(c) && c != '\n'; };
    std::replace_if(text.begin(), text.end(), isHidden, '.');
    return text;
}
