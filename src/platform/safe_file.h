// Saving a file so that a crash or a full disk never loses the old one: the new
// text is written beside the target and renamed over it only when it is whole.
#ifndef PLATFORM_SAFE_FILE_H
#define PLATFORM_SAFE_FILE_H

#include <cstdio>
#include <string>

struct SafeFile {
    std::FILE *file = nullptr; // write here
    std::string path;          // final name
    std::string tempPath;      // name while being written
};

// Opens a new file beside `path` ("wb" or "wt"). 0, or -1 (nothing created).
int SAF_Open(SafeFile *safe, const std::string &path, const char *mode);
// Flushes, closes and renames. 0, or -1: the old file is untouched and the new one removed.
int SAF_Commit(SafeFile *safe);
// Gives up: the old file stays as it was.
void SAF_Cancel(SafeFile *safe);

#endif
