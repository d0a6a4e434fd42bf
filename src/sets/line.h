// One line of a header or data file taken apart: what both formats have in common. Used by
// the readers of this room only.
#ifndef SETS_LINE_H
#define SETS_LINE_H

#include "sets/set.h"

#include <string>

struct PST_Line {
    std::string cast;      // "(u2)" or ""
    std::string reference; // "DRV_stParams.astRamp[1].nX+2", or an address "08140h"
    bool isAddress = false;
    std::string value; // behind "=", "" when there is none
    std::string rest;  // what follows the comma behind it
    std::string comment;
};

std::string PST_LongLineText(); // what is said of a line above PST_LINE_MAX
// The text in front of ";" or "//" and the one behind it; marks inside of quotes are text.
void PST_CutComment(const std::string &line, std::string *text, std::string *comment);
// "[cast] reference [= value] [, rest]". Empty, or what is wrong with the text.
std::string PST_SplitLine(const std::string &text, PST_Line *line);
// "unit "A", factor 0.1, min 0, readonly"; `count` and `length` receive those two where the
// caller allows them (not null). "" or what is wrong.
std::string PST_ParseAttributes(const std::string &text, PST_Attributes *attributes,
                                uint32_t *count, uint32_t *length);
// The way back, without `count` and `length`.
std::string PST_FormatAttributes(const PST_Attributes &attributes);
// "keyword" and a text in quotes behind it, and nothing else: the text, or false.
bool PST_ParseKeyword(const std::string &text, const char *keyword, std::string *quoted);
// "Limits :" - the label's name, its underscores as blanks; or false.
bool PST_ParseLabel(const std::string &text, std::string *name);

#endif
