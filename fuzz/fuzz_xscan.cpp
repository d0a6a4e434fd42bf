// The pattern scanner: the patterns in use on any text, and any pattern on any text. The
// first byte chooses; for a free pattern a NUL parts it from the text.
#include "../tests/support/scan_patterns.h"
#include "fuzz_check.h"
#include "text/xscan.h"

#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace {

void ScanText(const char *pattern, const std::string &text, unsigned flags)
{
    // Room for exactly what can be consumed: a byte more is the sanitizer's.
    const size_t length = std::strlen(text.c_str());
    std::vector<char> buffer(length + 1, 'x');
    const char *cursor = text.c_str();
    char *out = buffer.data();
    const int result = xscan1(pattern, &cursor, &out, flags);
    const size_t consumed = static_cast<size_t>(cursor - text.c_str());
    FUZ_Check(result == 0 || result == -1);
    FUZ_Check(consumed <= length && (result == 0 || consumed == 0));
    FUZ_Check(static_cast<size_t>(out - buffer.data()) == consumed);
    FUZ_Check(result != 0 || *out == '\0');
    const bool isConverted = (flags & (XSCAN_UPPER | XSCAN_LOWER)) != 0;
    FUZ_Check(result != 0 || isConverted || std::memcmp(buffer.data(), text.data(), consumed) == 0);
    cursor = text.c_str();
    FUZ_Check(xscan1(pattern, &cursor, nullptr, flags) == result);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    constexpr size_t PATTERNS = std::size(SCAN_PATTERNS);
    if (size < 1)
        return 0;
    const std::string rest(reinterpret_cast<const char *>(data) + 1, size - 1);
    if (data[0] < PATTERNS) {
        ScanText(SCAN_PATTERNS[data[0]].pattern, rest, SCAN_PATTERNS[data[0]].flags);
        return 0;
    }
    const std::string pattern = rest.c_str();
    const std::string text = pattern.size() < rest.size() ? rest.substr(pattern.size() + 1) : "";
    ScanText(pattern.c_str(), text, data[0] % 8u);
    return 0;
}
