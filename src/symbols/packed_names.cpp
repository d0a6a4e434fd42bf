// Codes of six bits are packed from the low bits of each byte up, four codes in three bytes; a
// name begins on a byte of its own.
#include "symbols/packed_names.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr const char *ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
constexpr unsigned CODE_BITS = 6;
constexpr unsigned CODES = 64; // the alphabet's 63 and the end
constexpr uint8_t SHARED_FLAG = 0x80;

int AppendPlain(std::string *name, const uint8_t *source, size_t size)
{
    const void *end = size > 0 ? std::memchr(source, '\0', size) : nullptr;
    if (end == nullptr)
        return -1;
    const size_t length = static_cast<size_t>(static_cast<const uint8_t *>(end) - source);
    name->append(reinterpret_cast<const char *>(source), length);
    return static_cast<int>(length) + 1;
}

int Append6b(std::string *name, const uint8_t *packed, size_t size)
{
    unsigned bits = 0, count = 0;
    for (size_t used = 0; used < size;) {
        bits |= static_cast<unsigned>(packed[used++]) << count;
        for (count += 8; count >= CODE_BITS; count -= CODE_BITS) {
            const unsigned code = bits % CODES;
            bits /= CODES;
            if (code == 0)
                return static_cast<int>(used);
            name->push_back(Decode6b(code));
        }
    }
    return -1;
}

} // namespace

char Decode6b(unsigned code)
{
    return code == 0 || code >= CODES ? '\0' : ALPHABET[code - 1];
}

int DecodeStr6b(std::string *destination, const uint8_t *packed, size_t size)
{
    destination->clear();
    return Append6b(destination, packed, size);
}

int UnpackVarName(std::string *destination, const uint8_t *source, size_t size, int form)
{
    if (size == 0)
        return -1;
    // The first byte counts the characters shared with the name before, or is the first character
    // in plain text; 0 stands for the empty name.
    const uint8_t first = source[0];
    const bool isShared = form != NAME_PLAIN && (first & SHARED_FLAG) != 0;
    const size_t shared = isShared ? first & ~SHARED_FLAG & 0xFFu : 0u;
    destination->resize(std::min(shared, destination->size()));
    if (form != NAME_SHARED_6BIT && !isShared)
        return AppendPlain(destination, source, size);
    if (!isShared && first == 0)
        return 1; // the empty name
    if (!isShared)
        destination->push_back(static_cast<char>(first));
    const int rest = form == NAME_SHARED_6BIT ? Append6b(destination, source + 1, size - 1)
                                              : AppendPlain(destination, source + 1, size - 1);
    return rest < 0 ? -1 : rest + 1;
}
