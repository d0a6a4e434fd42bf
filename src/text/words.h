// Small things with words that several rooms need.
#ifndef TEXT_WORDS_H
#define TEXT_WORDS_H

#include <string>

// Without white space (blank, tab, line ends, vertical tab, form feed) at either end.
std::string WRD_Trim(const std::string &text);
std::string WRD_QuoteCsv(const std::string &text); // quoted only where CSV asks for it

#endif
