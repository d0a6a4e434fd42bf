// What a terminal showed, line by line with the time into a text file: each line reaches the
// system at once, so that a crash loses none. Bounded; a full disk ends it and leaves what is
// there.
#ifndef TERMINAL_LOG_H
#define TERMINAL_LOG_H

#include <cstdint>
#include <cstdio>
#include <string>

constexpr uint64_t TRM_LOG_BYTES_MAX = 0x4000000; // 64 MiB

struct TRM_Log {
    std::FILE *file = nullptr; // null: nothing is logged
    std::string path;
    uint64_t bytes = 0;
};

// 0, or -1 with the reason in *problem. A file that exists has been confirmed by the user.
int TRM_OpenLog(TRM_Log *log, const std::string &path, std::string *problem);
// One line; nothing when no log is open. 0, or -1: it has ended, with the reason in *problem.
int TRM_PutLogLine(TRM_Log *log, const std::string &line, std::string *problem);
// 0, or -1: not all of it has reached the disk.
int TRM_CloseLog(TRM_Log *log);

#endif
