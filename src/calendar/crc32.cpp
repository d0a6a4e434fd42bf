// Long data goes through five interleaved lanes of eight bytes: what a lane's word does to
// the register is carried straight to the lane's next word, forty bytes on, so that the
// look-ups of the lanes do not wait for each other. The last round brings them together.
#include "calendar/crc32.h"

#include <initializer_list>

namespace {

constexpr size_t WORD = 8;
constexpr size_t LANES = 5;
constexpr size_t ROUND = LANES * WORD;
constexpr size_t BYTE_VALUES = 256;

struct Table {
    uint32_t value[BYTE_VALUES];
};

struct Tables {
    bool isBuilt = false;
    uint32_t polynomial = 0;
    Table near[WORD]; // near[k]: what byte k of a word does to the register behind that word
    Table far[WORD];  // far[k]: the same up to the lane's next word
};

Tables tables;

void BuildTables(uint32_t polynomial)
{
    Table table; // what a byte does when `behind` more bytes follow it
    for (size_t byte = 0; byte < BYTE_VALUES; byte++) {
        uint32_t value = static_cast<uint32_t>(byte);
        for (int bit = 0; bit < 8; bit++)
            value = (value >> 1) ^ ((value & 1) != 0 ? polynomial : 0);
        table.value[byte] = value;
    }
    const Table one = table;
    // Each round of the loop puts one more zero byte behind.
    for (size_t behind = 0; behind < ROUND; behind++) {
        if (behind < WORD)
            tables.near[WORD - 1 - behind] = table;
        if (behind >= ROUND - WORD)
            tables.far[ROUND - 1 - behind] = table;
        for (uint32_t &value : table.value)
            value = (value >> 8) ^ one.value[value & 0xFF];
    }
    tables.polynomial = polynomial;
    tables.isBuilt = true;
}

inline uint64_t WordAt(const unsigned char *p)
{
    uint64_t word = 0;
    for (size_t k = 0; k < WORD; k++)
        word |= static_cast<uint64_t>(p[k]) << (8 * k);
    return word;
}

inline uint32_t LookUp(const Table *table, uint64_t word)
{
    return table[0].value[word & 0xFF] ^ table[1].value[word >> 8 & 0xFF] ^
           table[2].value[word >> 16 & 0xFF] ^ table[3].value[word >> 24 & 0xFF] ^
           table[4].value[word >> 32 & 0xFF] ^ table[5].value[word >> 40 & 0xFF] ^
           table[6].value[word >> 48 & 0xFF] ^ table[7].value[word >> 56];
}

// Whole rounds of the data, at least one.
uint32_t RunLanes(uint32_t value, const unsigned char *p, size_t rounds)
{
    uint32_t a = value, b = 0, c = 0, d = 0, e = 0;
    for (; rounds > 1; --rounds, p += ROUND) {
        a = LookUp(tables.far, WordAt(p) ^ a);
        b = LookUp(tables.far, WordAt(p + WORD) ^ b);
        c = LookUp(tables.far, WordAt(p + 2 * WORD) ^ c);
        d = LookUp(tables.far, WordAt(p + 3 * WORD) ^ d);
        e = LookUp(tables.far, WordAt(p + 4 * WORD) ^ e);
    }
    value = 0;
    for (const uint32_t lane : {a, b, c, d, e}) {
        value = LookUp(tables.near, WordAt(p) ^ lane ^ value);
        p += WORD;
    }
    return value;
}

} // namespace

uint32_t Crc32_LSBNext(uint32_t value, const void *data, size_t length, uint32_t polynomial)
{
    if (!tables.isBuilt || tables.polynomial != polynomial)
        BuildTables(polynomial);
    const unsigned char *p = static_cast<const unsigned char *>(data);
    const size_t rounds = length / ROUND;
    if (rounds > 0)
        value = RunLanes(value, p, rounds);
    p += rounds * ROUND;
    for (length %= ROUND; length > 0; --length, ++p)
        value = (value >> 8) ^ tables.near[WORD - 1].value[(value ^ *p) & 0xFF];
    return value;
}

uint32_t Crc32_LSB(const void *data, size_t length, uint32_t polynomial)
{
    return Crc32_LSBNext(0, data, length, polynomial);
}
