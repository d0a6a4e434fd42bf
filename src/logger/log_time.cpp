// Times that somebody is typing: each beginning of a full one means something, so that a filter can
// follow the keys.
#include "logger/log_view.h"

#include <cstdio>

namespace {

constexpr int PARTS = 6;                        // year to second
constexpr int YEAR_MIN = 2000, YEAR_MAX = 2135; // that local time can be told of

// The parts that are there, or -1 when something else stands in the text. A separator that
// nothing follows yet is what a user has typed so far.
int SplitTime(const char *text, int *parts)
{
    const char *const separators[PARTS] = {"-", "-", " ", ":", ":", ""};
    int count = 0, length = 0;
    while (*text == ' ')
        text++;
    while (count < PARTS && *text >= '0' && *text <= '9') {
        if (std::sscanf(text, "%4d%n", &parts[count], &length) != 1)
            return -1;
        text += length;
        if (*separators[count] != '\0' && *text == *separators[count])
            text++;
        count++;
    }
    while (*text == ' ')
        text++;
    return *text == '\0' && count > 0 ? count : -1;
}

} // namespace

int LOGV_ParseTime(const LOGV_View &view, const std::string &text, bool isEnd, uint32_t *stamp)
{
    const int earliest[PARTS] = {0, 1, 1, 0, 0, 0}, latest[PARTS] = {0, 12, 31, 23, 59, 59};
    int parts[PARTS];
    const int count = SplitTime(text.c_str(), parts);
    if (count < 0)
        return -1;
    for (int i = count; i < PARTS; i++)
        parts[i] = isEnd ? latest[i] : earliest[i];
    DateTime time = {parts[0], parts[1], parts[2], parts[3], parts[4], parts[5], DTTM_DECODED};
    // The last day of a month that was named without one.
    while (isEnd && count < 3 && !IsDtTmOk(&time) && time.day > 28)
        time.day--;
    if (!IsDtTmOk(&time) || time.year < YEAR_MIN || time.year > YEAR_MAX)
        return -1;
    *stamp = LOGV_ToStamp(view, time, isEnd);
    // Stamps count two seconds: what begins at an odd one begins with the next stamp.
    if (!isEnd && time.second % 2 != 0)
        ++*stamp;
    return 0;
}
