// An escape is read as a whole or not at all: labels come from files and from the target too.
#include "runtime/list_columns.h"

#include <cstdlib>

namespace {

constexpr size_t DIGITS_MAX = 5; // of a place in pixels; more would not fit a number

// The escape at `at`: its pixel and its length, or false.
bool ParseEscape(const std::string &label, size_t at, int *pixels, size_t *length)
{
    if (label.compare(at, 2, "\033p") != 0)
        return false;
    const size_t first = at + 2;
    const size_t end = label.find_first_not_of("0123456789", first);
    if (end == std::string::npos || end == first || end - first > DIGITS_MAX || label[end] != 'l')
        return false;
    *pixels = std::atoi(label.substr(first, end - first).c_str());
    *length = end + 1 - at;
    return true;
}

} // namespace

std::vector<UI_LabelColumn> UI_SplitColumns(const std::string &label)
{
    std::vector<UI_LabelColumn> columns(1);
    size_t at = 0;
    while (at < label.size()) {
        int pixels = 0;
        size_t length = 0;
        if (label[at] == '\033' && ParseEscape(label, at, &pixels, &length)) {
            columns.push_back({pixels, ""});
            at += length;
        } else {
            columns.back().text += label[at++];
        }
    }
    return columns;
}

std::string UI_JoinColumns(const std::string &label, const char *separator)
{
    const std::vector<UI_LabelColumn> columns = UI_SplitColumns(label);
    std::string text = columns.front().text;
    for (size_t i = 1; i < columns.size(); i++)
        text += separator + columns[i].text;
    return text;
}
