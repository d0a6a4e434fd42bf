// The one way to open a file for reading. Devices, pipes and folders are refused before a
// byte of them is read: they may have no end, or block whoever opens them. Every reader of
// the program comes through here.
#ifndef PLATFORM_PLAIN_FILE_H
#define PLATFORM_PLAIN_FILE_H

#include <cstdint>
#include <cstdio>
#include <string>

constexpr int64_t PLF_SIZE_MAX = 0x8000000; // bytes of a file that is read whole, 128 MiB
constexpr int64_t PLF_ANY_SIZE = INT64_MAX;

enum { PLF_OK = 0, PLF_ERR_OPEN = -1, PLF_ERR_SPECIAL = -2, PLF_ERR_LARGE = -3 };

// Opens a plain file of at most `sizeMax` bytes for binary reading: the caller closes it.
// PLF_OK, or a code with *file null.
int PLF_Open(const std::string &path, int64_t sizeMax, std::FILE **file);
bool PLF_Exists(const std::string &path); // anything of that name, a folder too
// The whole of a file, or a code and "". A file that grows while it is read ends at its bound.
int PLF_ReadAll(const std::string &path, int64_t sizeMax, std::string *content);
// Why a file cannot be read: "cannot be opened", "is a folder, device or pipe", "is too large".
const char *PLF_ErrorText(int result);
// The same for a file as it is now, for callers whose reader only says that it failed.
const char *PLF_WhyUnreadable(const std::string &path);
// "Could not read the file NAME.", where the reason is of no use to the user.
std::string PLF_FailureText(const std::string &path);

#endif
