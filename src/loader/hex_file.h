// A whole Intel HEX file, read and checked before anything is done with it, and the way to
// write one. The record keeps its own copy of the data: what happens to the file on the
// disk afterwards changes nothing in it.
#ifndef LOADER_HEX_FILE_H
#define LOADER_HEX_FILE_H

#include "loader/ihex_line.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

constexpr size_t HEX_PROBLEMS_MAX = 100; // kept in words; further ones are counted

struct HEX_Problem {
    int line = 0;        // from 1; 0 when it is about the whole file
    bool isFatal = true; // the file must not be programmed; else a remark
    std::string text;
};

// One data record.
struct HEX_Record {
    uint32_t address = 0;
    uint32_t dataAt = 0; // index of its first byte in HEX_File::data
    uint16_t length = 0;
    int line = 0;
};

struct HEX_Range {
    uint32_t first = 0, last = 0; // both belong to it
};

struct HEX_File {
    std::string path;
    std::vector<HEX_Record> records;   // by ascending address
    std::vector<uint8_t> data;         // in the order of the file
    std::vector<HEX_Range> ranges;     // without gaps in one, ascending
    std::vector<HEX_Problem> problems; // by line
    size_t fatal = 0, remarks = 0;     // how many there are of each
};

enum { HEX_ERR_OPEN = -1, HEX_ERR_PROBLEMS = -2 };

// Reads and checks a file: each line, overlaps, addresses beyond 24 bits, a missing end
// record. 0 (there may be remarks), HEX_ERR_OPEN, or HEX_ERR_PROBLEMS.
int HEX_Read(const std::string &path, HEX_File *file);
// Whether the file on the disk still holds the same data: 1, or 0 also when it is gone.
int HEX_IsUnchanged(const HEX_File &file);
void HEX_GetBlock(const HEX_File &file, const HEX_Record &record, IHEX167_Block *block);
std::string HEX_FormatProblem(const HEX_Problem &problem); // "line 12: wrong check sum ..."
std::string HEX_FormatRange(const HEX_Range &range);       // "0x010000-0x0103FF, 1024 bytes"

// Writes `count` bytes from an address on: records of 16 bytes that end at multiples of 16,
// a base address record (type 4) for each 64 KiB, upper case. 0, or -1: a file that was
// there is untouched.
int HEX_Save(const std::string &path, uint32_t address, const uint8_t *bytes, size_t count);

#endif
