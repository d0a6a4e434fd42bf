// Asked of the C library byte by byte: a page's holes show as errors of single characters.
#include "platform/code_page.h"

#include <cstdint>
#include <cstring>
#include <iconv.h>

namespace {

constexpr char32_t NO_CHARACTER = 0xFFFD;

struct Row {
    unsigned number;
    const char *name;
};
const Row PAGES[] = {{852, "CP852"}, {1250, "CP1250"}, {20866, "KOI8-R"}, {28591, "ISO-8859-1"}};

} // namespace

int PLT_GetCodePage(unsigned number, char32_t table[256])
{
    // In this machine's byte order, without a mark: one converted character is one number.
    const uint16_t probe = 1;
    uint8_t first = 0;
    std::memcpy(&first, &probe, 1);
    for (const Row &row : PAGES) {
        if (row.number != number)
            continue;
        iconv_t converter = iconv_open(first == 1 ? "UTF-32LE" : "UTF-32BE", row.name);
        if (converter == reinterpret_cast<iconv_t>(-1))
            return -1;
        for (int i = 0; i < 256; ++i) {
            uint32_t code = 0;
            char byte = static_cast<char>(i);
            char *in = &byte, *out = reinterpret_cast<char *>(&code);
            size_t inLeft = 1, outLeft = sizeof code;
            // Back to the beginning: a byte that failed leaves the converter where it stood.
            iconv(converter, nullptr, nullptr, nullptr, nullptr);
            const bool isKnown =
                iconv(converter, &in, &inLeft, &out, &outLeft) == 0 && outLeft == 0;
            table[i] = isKnown ? code : NO_CHARACTER;
        }
        iconv_close(converter);
        return 0;
    }
    return -1;
}
