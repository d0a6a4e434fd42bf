// Any bytes as code, cut anywhere: the decoder comes to their end without reading beyond it,
// and every line is short, printable text.
#include "code/listing.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>

namespace {

constexpr size_t LINE_MAX_CHARS = 200;

void Require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CODE_Pages pages;
    pages.isKnown = true;
    for (uint16_t i = 0; i < 4; ++i)
        pages.pages[i] = static_cast<uint16_t>(size * (i + 1u));
    CODE_Scope scope;
    for (size_t at = 0; at < size;) {
        // A copy of its own, so that the sanitizer sees a look beyond the end.
        const size_t left = size - at;
        const std::unique_ptr<uint8_t[]> bytes(new uint8_t[left]);
        std::copy(data + at, data + size, bytes.get());
        CODE_Instruction instruction;
        const auto address = static_cast<uint32_t>(at) & 0xFFFFFE;
        CODE_Decode(bytes.get(), left, address, pages, &scope, &instruction);
        Require(instruction.length >= 1 && instruction.length <= left);
        Require(scope.left >= 0 && scope.left <= 4);
        Require(instruction.target == CODE_NO_ADDRESS || instruction.target <= 0xFFFFFF);
        const std::string line = CODE_FormatLine(instruction);
        Require(!line.empty() && line.size() < LINE_MAX_CHARS);
        for (const char c : line)
            Require(std::isprint(static_cast<unsigned char>(c)) != 0);
        at += instruction.length;
    }
    return 0;
}
