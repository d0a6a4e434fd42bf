// The one way to open a file for reading. Devices, pipes and folders are refused before a
// byte of them is read: they may have no end, or block whoever opens them. Every reader of
// the program comes through here.
#ifndef PLATFORM_PLAIN_FILE_H
#define PLATFORM_PLAIN_FILE_H

#include <cstdint>
#include <cstdio>
#include <string>

constexpr int64_t PLT_FILE_SIZE_MAX = 0x8000000; // bytes of a file that is read whole, 128 MiB
constexpr int64_t PLT_FILE_ANY_SIZE = INT64_MAX;

enum {
    PLT_FILE_OK = 0,
    PLT_FILE_ERR_OPEN = -1,
    PLT_FILE_ERR_SPECIAL = -2,
    PLT_FILE_ERR_LARGE = -3
};

// Opens a plain file of at most `sizeMax` bytes for binary reading: the caller closes it.
// PLT_FILE_OK, or a code with *file null.
int PLT_OpenForReading(const std::string &path, int64_t sizeMax, std::FILE **file);
bool PLT_FileExists(const std::string &path); // anything of that name, a folder too
// The whole of a file, or a code and "". A file that grows while it is read ends at its bound.
int PLT_ReadFile(const std::string &path, int64_t sizeMax, std::string *content);
// Why a file cannot be read: "cannot be opened", "is a folder, device or pipe", "is too large".
const char *PLT_FileErrorText(int result);
// The same for a file as it is now, for callers whose reader only says that it failed.
const char *PLT_WhyUnreadable(const std::string &path);
// "Could not read the file NAME.", where the reason is of no use to the user.
std::string PLT_ReadFailureText(const std::string &path);

#endif
