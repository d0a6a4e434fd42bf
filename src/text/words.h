// Small things with words that several rooms need.
#ifndef TEXT_WORDS_H
#define TEXT_WORDS_H

#include <cstdarg>
#include <string>

// As printf, of any length; "" where the system cannot.
std::string TXT_Format(const char *format, ...) __attribute__((format(printf, 1, 2)));
std::string TXT_FormatList(const char *format, va_list arguments)
    __attribute__((format(printf, 1, 0)));
// Without white space (blank, tab, line ends, vertical tab, form feed) at either end.
std::string TXT_Trim(const std::string &text);
// The text as one cell of a CSV line: in quotes only where CSV asks for it. One that a
// spreadsheet would run as a formula (it begins with "=", "+", "-" or "@" and is no number,
// with or without a unit) gets an apostrophe in front, which keeps it text.
std::string TXT_QuoteCsv(const std::string &text);
std::string TXT_WithoutCsvMark(const std::string &cell); // the text, from a cell without quotes
// The text with a dot for every control character: names from files must not steer a
// terminal or a list.
std::string TXT_Visible(std::string text);
std::string TXT_VisibleLines(std::string text); // the same, but line feeds stay

#endif
