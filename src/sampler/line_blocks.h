// The lines of a large text file one after the other, from any place in it, without holding
// more of it than a block. Any of CR LF, LF and CR ends a line; empty lines are left out.
#ifndef SAMPLER_LINE_BLOCKS_H
#define SAMPLER_LINE_BLOCKS_H

#include <cstdint>
#include <cstdio>
#include <vector>

struct REC_LineReader {
    std::FILE *file = nullptr; // the caller's
    std::vector<char> block;
    size_t at = 0, filled = 0;
    int64_t blockOffset = 0; // of the block, in the file
    bool isEnd = false;
    bool isSkipping = false; // the rest of a line that was too long
};
struct REC_FileLine {
    const char *begin = nullptr, *end = nullptr; // valid until the next one is read
    int64_t offset = 0;                          // of its first character
    bool isWhole = true;                         // a line end follows it
    bool isTooLong = false;                      // only its beginning is here
};

// False when there is no such place.
bool REC_StartLines(REC_LineReader *reader, std::FILE *file, int64_t offset);
// False at the end. Of a line longer than `lengthMax` comes the beginning.
bool REC_NextLine(REC_LineReader *reader, size_t lengthMax, REC_FileLine *line);

#endif
