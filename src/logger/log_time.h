// Times as a user types them into the log window, as stamps of what a view shows.
#ifndef LOGGER_LOG_TIME_H
#define LOGGER_LOG_TIME_H

#include <string>

#include "logger/log_view.h"

// "2015-03-01 10:20:30", or its beginning: parts that are missing are the earliest there
// are, or with `isEnd` the latest. 0, or -1: no time, or one outside 2000 to 2135.
int LGM_ParseTime(const LOGV_View &view, const std::string &text, bool isEnd, uint32_t *stamp);

#endif
