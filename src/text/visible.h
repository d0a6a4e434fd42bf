// Text that came from files, on its way to a screen or into a table for other programs: it
// must neither steer a terminal or a list nor run in a spreadsheet.
#ifndef TEXT_VISIBLE_H
#define TEXT_VISIBLE_H

#include <string>

// The text with a dot for every control character.
std::string TXT_Visible(std::string text);
std::string TXT_VisibleLines(std::string text); // the same, but line feeds stay
// The text as one cell of a CSV line: in quotes where it holds what parts cells or lines. One
// that a spreadsheet would take for a formula (it begins with "=", "+", "-" or "@" and is no
// number, with or without a unit) gets an apostrophe in front, which keeps it text.
std::string TXT_CsvCell(const std::string &text);

#endif
