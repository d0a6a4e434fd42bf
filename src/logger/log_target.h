// The logger's download with everything it asks of the program: target and processor as the
// settings say, errors in pop-ups, progress in a box with Cancel. Used by whoever starts a
// download for a user: the console's commands and the log window.
#ifndef LOGGER_LOG_TARGET_H
#define LOGGER_LOG_TARGET_H

#include <string>
#include <vector>

// Before every download: the settings may have changed since the last one.
void LGT_UseTarget();
// Variables of the map that describe a log.
std::vector<std::string> LGT_FindLogs();

#endif
