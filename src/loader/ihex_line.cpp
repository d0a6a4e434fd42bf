// All numbers of a line are read with upper-case digits only: a tool that writes others
// has been edited by hand, and then the check sum is the only other witness.
#include "loader/ihex_line.h"

#include "text/txfr.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int LINE_SIZE = 256; // buffer of a line with its end
// ":" count(2) offset(4) type(2) data check(2)
constexpr size_t COUNT_AT = 1, OFFSET_AT = 3, TYPE_AT = 7, FRAME_CHARS = 11;
constexpr uint32_t FRAME_BYTES = 5; // count, offset, type, check
constexpr uint32_t TYPE_DATA = 0, TYPE_END = 1, TYPE_SEGMENT = 2, TYPE_LINEAR = 4;
constexpr uint8_t NO_DIGIT = 0xFF;
constexpr uint8_t LOWER_CASE = 0x10;

// A digit's value, with LOWER_CASE for a to f, or NO_DIGIT.
constexpr std::array<uint8_t, 256> MakeDigits()
{
    std::array<uint8_t, 256> digits = {};
    for (uint8_t &digit : digits)
        digit = NO_DIGIT;
    for (uint8_t i = 0; i < 16; ++i) {
        if (i < 10) {
            digits[static_cast<size_t>('0' + i)] = i;
        } else {
            digits[static_cast<size_t>('A' + i - 10)] = i;
            digits[static_cast<size_t>('a' + i - 10)] = i | LOWER_CASE;
        }
    }
    return digits;
}
constexpr std::array<uint8_t, 256> DIGITS = MakeDigits();

int ParseDigits(const char *text, int n, bool isLowerAllowed, uint32_t *result)
{
    // A table instead of comparisons: files of a megabyte are read twice for each programming.
    uint32_t value = 0;
    for (int i = 0; i < n; ++i) {
        const uint8_t digit = DIGITS[static_cast<unsigned char>(text[i])];
        if (digit == NO_DIGIT)
            return -1;
        if ((digit & LOWER_CASE) != 0 && !isLowerAllowed)
            return -2;
        value = value * 16 + (digit & 0x0Fu);
    }
    *result = value;
    return 0;
}

// The bytes from the count to the check byte add up to 0. The data bytes are left in the block.
int CheckSum(IHEX167_Block *block, const char *line, uint32_t count)
{
    uint32_t sum = 0;
    for (uint32_t i = 0; i < count + FRAME_BYTES; ++i) {
        uint32_t byte = 0;
        if (ParseDigits(line + COUNT_AT + 2 * i, 2, false, &byte) < 0)
            return IHEX_ERR_DIGIT;
        sum += byte;
        if (i >= FRAME_BYTES - 1 && i < count + FRAME_BYTES - 1)
            block->data[i - (FRAME_BYTES - 1)] = static_cast<uint8_t>(byte);
    }
    return (sum & 0xFFu) == 0 ? 0 : IHEX_ERR_SUM;
}

// The base in units of `factor` bytes, high byte first.
int SetBase(const IHEX167_Block &block, uint32_t count, uint32_t factor, uint32_t *base)
{
    if (count != 2)
        return IHEX_ERR_SUM;
    *base = (uint32_t{block.data[0]} << 8 | block.data[1]) * factor;
    return IHEX_BASE;
}

} // namespace

int IHEX167_GetUHEXN(const char *text, int n, uint32_t *result)
{
    return ParseDigits(text, n, false, result);
}

int IHEX167_GetUHEXNi(const char *text, int n, uint32_t *result)
{
    return ParseDigits(text, n, true, result);
}

int IHEX167_Is_block_ok(const IHEX167_Block *block)
{
    return block != nullptr && block->length >= 1 && block->length <= IHEX167_DATA_MAX ? 1 : 0;
}

int IHEX167_Is_block_eq(const IHEX167_Block *a, const IHEX167_Block *b)
{
    const size_t count = std::min<size_t>(a->length, sizeof a->data);
    return a->address == b->address && a->length == b->length &&
                   std::memcmp(a->data, b->data, count) == 0
               ? 1
               : 0;
}

int IHEX167_Join_block(IHEX167_Block *destination, const IHEX167_Block *source)
{
    if (!IHEX167_Is_block_ok(source))
        return -1;
    // The first block of a group.
    if (destination->length == 0) {
        *destination = *source;
        return 0;
    }
    if (!IHEX167_Is_block_ok(destination) ||
        destination->address + destination->length != source->address ||
        destination->length + source->length > IHEX167_DATA_MAX)
        return -1;
    std::memcpy(destination->data + destination->length, source->data, source->length);
    destination->length = static_cast<uint16_t>(destination->length + source->length);
    return 0;
}

int IHEX167_Parse_text(IHEX167_Block *block, const char *line, size_t length, uint32_t *base)
{
    // Empty until the line has proven good: a caller that looks at the block anyway finds nothing.
    block->length = 0;
    if (length == 0 || line[0] != ':')
        return IHEX_ERR_LINE;
    uint32_t count = 0, offset = 0, type = 0;
    if (IHEX167_GetUHEXN(line + COUNT_AT, 2, &count) < 0)
        return IHEX_ERR_COUNT;
    if (length != FRAME_CHARS + 2 * count)
        return IHEX_ERR_LENGTH;
    if (IHEX167_GetUHEXN(line + OFFSET_AT, 4, &offset) < 0)
        return IHEX_ERR_OFFSET;
    if (IHEX167_GetUHEXN(line + TYPE_AT, 2, &type) < 0)
        return IHEX_ERR_TYPE;
    const int sum = CheckSum(block, line, count);
    if (sum < 0)
        return sum;
    switch (type) {
    case TYPE_DATA:
        block->length = static_cast<uint16_t>(count);
        block->address = *base + offset;
        return IHEX_DATA;
    case TYPE_END:
        return count == 0 ? IHEX_END : IHEX_ERR_END;
    case TYPE_SEGMENT:
        return SetBase(*block, count, 16, base);
    case TYPE_LINEAR:
        return SetBase(*block, count, 0x10000, base);
    default:
        return IHEX_ERR_UNKNOWN;
    }
}

int IHEX167_Parse_line(IHEX167_Block *block, int textFile, uint32_t *base)
{
    char line[LINE_SIZE];
    block->length = 0;
    const int length = TXFR_RdLine(textFile, line, LINE_SIZE);
    if (length < 0)
        return IHEX_FILE_END;
    if (TXFR_IsBrokenLine(textFile) == 1)
        return IHEX_ERR_LINE;
    return IHEX167_Parse_text(block, line, static_cast<size_t>(length), base);
}
