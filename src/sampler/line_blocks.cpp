// A block holds at least one line of the longest that is allowed; a line is never copied.
#include "sampler/line_blocks.h"

#include "platform/system.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t BLOCK_BYTES = 1 << 17;

bool IsLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

// Moves what is left to the front and reads on behind it.
void Refill(REC_LineReader *reader)
{
    const size_t left = reader->filled - reader->at;
    std::memmove(reader->block.data(), reader->block.data() + reader->at, left);
    reader->blockOffset += static_cast<int64_t>(reader->at);
    reader->at = 0;
    const size_t got =
        std::fread(reader->block.data() + left, 1, reader->block.size() - left, reader->file);
    reader->filled = left + got;
    reader->isEnd = got == 0;
}

} // namespace

bool REC_StartLines(REC_LineReader *reader, std::FILE *file, int64_t offset)
{
    *reader = REC_LineReader();
    reader->file = file;
    reader->blockOffset = offset;
    reader->block.resize(BLOCK_BYTES);
    return PLT_Seek(file, offset) == 0;
}

bool REC_NextLine(REC_LineReader *reader, size_t lengthMax, REC_FileLine *line)
{
    lengthMax = std::min(lengthMax, BLOCK_BYTES / 2);
    for (;;) {
        const char *block = reader->block.data();
        // Line ends in front of the line, and the rest of one that was too long.
        while (reader->at < reader->filled &&
               (IsLineEnd(block[reader->at]) || reader->isSkipping)) {
            reader->isSkipping = reader->isSkipping && !IsLineEnd(block[reader->at]);
            ++reader->at;
        }
        // A line that reaches the end of the block may go on in the file: read on, then look again.
        const char *begin = block + reader->at;
        const char *most = block + std::min(reader->filled, reader->at + lengthMax);
        const char *end = std::find_if(begin, most, IsLineEnd);
        const bool isTooLong = static_cast<size_t>(end - begin) == lengthMax;
        if (end == block + reader->filled && !isTooLong && !reader->isEnd) {
            Refill(reader);
            continue;
        }
        if (begin == end)
            return false;
        line->begin = begin;
        line->end = end;
        line->offset = reader->blockOffset + static_cast<int64_t>(reader->at);
        line->isWhole = end < block + reader->filled && IsLineEnd(*end);
        line->isTooLong = isTooLong && !line->isWhole;
        reader->isSkipping = line->isTooLong;
        reader->at += static_cast<size_t>(end - begin);
        return true;
    }
}
