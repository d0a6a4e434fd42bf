// Sixteen bytes a step: table k holds what a byte does to the register when k more bytes
// follow it, so that the look-ups of one step do not wait for each other.
#include "calendar/crc32.h"

namespace {

constexpr int STEP = 16;
constexpr int BYTE_VALUES = 256;

struct Tables {
    uint32_t polynomial = 0; // which they were built for; 0: not built
    uint32_t value[STEP][BYTE_VALUES];
};

Tables tables;

void buildTables(uint32_t polynomial)
{
    for (uint32_t byte = 0; byte < BYTE_VALUES; byte++) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; bit++)
            value = (value >> 1) ^ ((value & 1) != 0 ? polynomial : 0);
        tables.value[0][byte] = value;
    }
    for (int k = 1; k < STEP; k++) {
        for (int byte = 0; byte < BYTE_VALUES; byte++) {
            const uint32_t before = tables.value[k - 1][byte];
            tables.value[k][byte] = (before >> 8) ^ tables.value[0][before & 0xFF];
        }
    }
    tables.polynomial = polynomial;
}

inline uint32_t wordAt(const unsigned char *p)
{
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
           static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// What the four bytes of a word do when `behind` further bytes follow them in the step.
inline uint32_t lookUp(uint32_t word, int behind)
{
    return tables.value[behind + 3][word & 0xFF] ^ tables.value[behind + 2][word >> 8 & 0xFF] ^
           tables.value[behind + 1][word >> 16 & 0xFF] ^ tables.value[behind][word >> 24];
}

} // namespace

uint32_t Crc32_LSBNext(uint32_t value, const void *data, size_t length, uint32_t polynomial)
{
    if (tables.polynomial != polynomial || polynomial == 0)
        buildTables(polynomial);
    const unsigned char *p = static_cast<const unsigned char *>(data);
    for (; length >= STEP; length -= STEP, p += STEP)
        value = lookUp(wordAt(p) ^ value, 12) ^ lookUp(wordAt(p + 4), 8) ^
                lookUp(wordAt(p + 8), 4) ^ lookUp(wordAt(p + 12), 0);
    for (; length > 0; --length, ++p)
        value = (value >> 8) ^ tables.value[0][(value ^ *p) & 0xFF];
    return value;
}

uint32_t Crc32_LSB(const void *data, size_t length, uint32_t polynomial)
{
    return Crc32_LSBNext(0, data, length, polynomial);
}
