#include "terminal/log.h"

#include "calendar/datetime.h"
#include "platform/safe_file.h"
#include "platform/system.h"

#include <cerrno>
#include <cstring>

int TRM_OpenLog(TRM_Log *log, const std::string &path, std::string *problem)
{
    std::string real;
    TRM_CloseLog(log);
    errno = 0;
    if (PLT_ResolveFile(path, &real) != 0) {
        *problem = "Not a file to write to: " + path + ".";
        return -1;
    }
    // Not through safe saving: what is logged is to be there when the program is killed.
    log->file = PLT_OpenFile(real, "wb");
    log->path = path;
    log->bytes = 0;
    if (log->file == nullptr)
        *problem = "Cannot write " + path + ": " + std::strerror(errno) + ".";
    return log->file == nullptr ? -1 : 0;
}

int TRM_PutLogLine(TRM_Log *log, const std::string &line, std::string *problem)
{
    if (log->file == nullptr)
        return 0;
    PLT_Date now;
    PLT_LocalTime(&now);
    const std::string text = IsoDateText(now) + "  " + line + "\n";
    log->bytes += text.size() + 1; // CR LF
    if (log->bytes > TRM_LOG_BYTES_MAX) {
        *problem = "The log is full: " + log->path + ".";
        TRM_CloseLog(log);
        return -1;
    }
    // A line at once: without the flush the last ones would be lost, and they are wanted most.
    PLT_SaveText(log->file, text);
    if (std::fflush(log->file) == 0 && std::ferror(log->file) == 0)
        return 0;
    *problem = "The log has ended: " + PLT_SaveFailureText(log->path);
    TRM_CloseLog(log);
    return -1;
}

int TRM_CloseLog(TRM_Log *log)
{
    if (log->file == nullptr)
        return 0;
    const bool isBad = std::ferror(log->file) != 0;
    const int result = std::fclose(log->file);
    log->file = nullptr;
    return isBad || result != 0 ? -1 : 0;
}
