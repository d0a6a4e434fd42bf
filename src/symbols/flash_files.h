// The directory of files in the target's flash: finding a file and loading it. Each file
// is a 32-byte header, its data and a 32-byte trailer that repeats the header; see
// docs/manual/reference/formats.md. Memory is read at the current station.
#ifndef SYMBOLS_FLASH_FILES_H
#define SYMBOLS_FLASH_FILES_H

#include <cstdint>
#include <string>

constexpr uint32_t MFS_HEADER_SIZE = 32;
constexpr int MFS_NAME_MAX = 15;
constexpr uint8_t MFS_FLAG_VALID = 0x01;  // a file that was not deleted
constexpr uint8_t MFS_FLAGS_BAD = 0xFE;   // flags of a header that is none
constexpr int MFS_ERR_COMMUNICATION = -2; // beside -1: not found, or damaged
constexpr int MFS_ERR_CANCELLED = -3;     // by the user
constexpr int MFS_ERR_TOO_MANY = -6;      // no end after MFS_FILES_MAX files
constexpr int MFS_FILES_MAX = 1000;       // of a directory, deleted ones among them

// Where the bytes come from: `count` bytes at a byte address; negative is a failure. The
// target by default; tests put a memory image in its place.
using MFS_Reader = int (*)(uint32_t address, uint32_t count, void *buffer);
extern MFS_Reader MFS_reader;

// Checks a header of MFS_HEADER_SIZE bytes. 0, or -1 with an empty name, length -1 and
// MFS_FLAGS_BAD.
int GetHeaderInfo(const uint8_t *header, std::string *name, int32_t *length, uint8_t *flags);
// The address of the file's data and its length, or a negative code. `start` .. `end` (not
// included) is a directory with its first header at most 39 bytes behind `start`. A long walk
// shows its progress and can be cancelled.
int32_t MFS_FindFile(const char *name, uint32_t start, uint32_t end, int32_t *length);
// Start of the directory whose last trailer ends at `end`, not below `limit`; negative: none.
// A walk as above.
int32_t MFS_FindDirectory(uint32_t limit, uint32_t end);
// A file's bytes, with a progress box that can be cancelled. 0 or a negative code.
int MFS_Load(const char *name, uint32_t start, uint32_t end, std::string *content);
// The same as a text for reading: its handle or a negative code.
int MFS_LoadFrw(const char *name, uint32_t start, uint32_t end);

#endif
