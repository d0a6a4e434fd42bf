#include "support/scan_patterns.h"

#include <gtest/gtest.h>
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <climits>
#include <cstring>
#include <random>
#include <string>

namespace {

struct ScanCase {
    const char *pattern;
    const char *text;
    int result; // characters consumed, -1 for no match
    const char *copied;
    unsigned flags = 0;
};

const ScanCase SCAN_CASES[] = {
    // quantifiers and their counts
    {"@@6#0-9A-F.", "00C0FFx", 6, "00C0FF"},
    {"@@6#0-9A-F.", "00C0F", -1, "00C0F"},
    {"@@6/1", "1111111", 6, "111111"},
    {"**3#0-9.", "12345", 3, "123"},
    {"**3#0-9.", "abc", 0, ""},
    {"*@3#0-9.", "abc", -1, ""},
    {"*@1#0-9.", "12", 1, "1"},
    {"@*2#0-9.", "1x", -1, "1"},
    {"@*2#0-9.", "123", 3, "123"},
    {"@@0#0-9.", "123", -1, ""},
    {"@@#0-9.", "123", -1, ""},
    {"**#0-9.", "123", -1, ""},
    {"*@99999999999999999999x", "xxy", 2, "xx"},
    {"?x", "y", 0, ""},
    {"?xx", "x", -1, "x"},
    {"*#0-9.5", "12345", -1, "12345"}, // no backtracking
    {"a*", "ab", 1, "a"},              // nothing to repeat
    // end of text
    {"* #", "   ", 3, "   "},
    {"* #", "  x", -1, "  "},
    {"*##", "", 0, ""},
    {"@#", "", -1, ""},
    {"?#", "", 0, ""},
    {"^", "", -1, ""},
    {"^", "a", 1, "a"},
    {"#a.", "", -1, ""},
    {"^a.", "", -1, ""},
    {"*^", "a.#", 3, "a.#"},
    // blanks
    {"a b", "a \t\r\n\v\fb", 8, "a \t\r\n\v\fb"},
    {"a b", "ab", -1, "a"},
    {"? b", "  b", -1, " "},
    {"@@2 x", " \tx", 3, " \tx"},
    // sets
    {"^#[ .", "#", -1, ""},
    {"^#[ .", "a", 1, "a"},
    {"#.", "a", -1, ""},
    {"@#a-c-e-/g-.x", "abcdefg-x", 9, "abcdefg-x"},
    {"@#-+.", "-+,", 2, "-+"},
    {"@#+-.", "+-,", 2, "+-"},
    {"@#/./-//@?*^# .", ".-/@?*^# a", 9, ".-/@?*^# "},
    {"@#0-9* #", "12* #x", 5, "12* #"},
    {"#a/", "/", -1, ""},
    {"#z-a.", "m", -1, ""},
    {"@#\x80-\xFF.", "\x80\xC3\xFFz", 3, "\x80\xC3\xFF"},
    {"@^a-y0.", "z1z0", 3, "z1z"},
    // escapes
    {"/@/*/?/#/^/ //", "@*?#^ /", 7, "@*?#^ /"},
    {"a/", "a", -1, "a"},
    {"*/", "a", 0, ""},
    // case
    {"VARS", "vars", -1, ""},
    {"VARS", "vars", 4, "vars", XSCAN_NOCASE},
    {"vars", "VaRs", 4, "VARS", XSCAN_NOCASE | XSCAN_UPPER},
    {"/v", "v", -1, "", XSCAN_NOCASE},
    {"/v", "V", -1, "", XSCAN_NOCASE},
    {"@#A-Z.", "ABC", 3, "abc", XSCAN_NOCASE | XSCAN_LOWER},
    {"@#/a-/f.", "aBFG", 3, "aBF", XSCAN_NOCASE},
    {"@^a-f.", "xYzA", 3, "xYz", XSCAN_NOCASE},
    {"@@3a", "aAaA", 3, "AAA", XSCAN_UPPER | XSCAN_LOWER | XSCAN_NOCASE},
    {"@#[.", "{[", -1, "", XSCAN_NOCASE}, // only letters have a case
};

TEST(Xscan, ConsumesAndCopiesWhatThePatternSays)
{
    for (const ScanCase &c : SCAN_CASES) {
        SCOPED_TRACE(std::string(c.pattern) + " on " + c.text);
        char buffer[64] = "untouched";
        const char *cursor = c.text;
        char *out = buffer;
        const int result = xscan1(c.pattern, &cursor, &out, c.flags);
        EXPECT_EQ(result, c.result < 0 ? -1 : 0);
        EXPECT_EQ(cursor - c.text, c.result < 0 ? 0 : c.result);
        EXPECT_EQ(out - buffer, c.result < 0 ? 0 : c.result);
        EXPECT_STREQ(buffer, c.copied); // without a match: what was taken until then
        cursor = c.text;
        EXPECT_EQ(xscan1(c.pattern, &cursor, nullptr, c.flags), result);
    }
}

TEST(Xscan, EntryPointsFoldCopyAndAppend)
{
    const char *text = "Abc12";
    const char *cursor = text;
    char buffer[32];
    char *out = buffer;
    EXPECT_EQ(xscani("abc", &cursor, &out), 3);
    EXPECT_EQ(xscan("@#0-9.", &cursor, &out), 2); // the same output goes on
    EXPECT_STREQ(buffer, "Abc12");
    cursor = text, out = buffer;
    EXPECT_EQ(xscaniu("@#a-z.", &cursor, &out), 3);
    EXPECT_STREQ(buffer, "ABC");
    cursor = text, out = buffer;
    EXPECT_EQ(xscanil("@#a-z.", &cursor, &out), 3);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(xscan_strcpy(buffer, text, "@#A-Za-z."), 3);
    EXPECT_STREQ(buffer, "Abc");
    EXPECT_EQ(xscan_strcpy(buffer, text, "?x"), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(xscan_strcpy(buffer, text, "Ab@#0-9."), 0);
    EXPECT_STREQ(buffer, "");
}

// Texts near what a pattern accepts: pieces of its sample with some characters exchanged.
std::string VaryText(std::mt19937 &random, const ScanPattern &pattern)
{
    static const char ALPHABET[] = "0123456789abfhxzABFHXZ_.,:;=+-*/#?@^[]<>\"'% \t\r\n\x80\xFF";
    const auto below = [&random](size_t n) { return static_cast<size_t>(random()) % n; };
    std::string text = below(8) == 0 ? pattern.noMatch : pattern.match;
    for (size_t changes = below(5); changes > 0; changes--) {
        const char c = ALPHABET[below(sizeof ALPHABET - 1)];
        const size_t at = below(text.size() + 1);
        if (at == text.size() || below(2) == 0)
            text.insert(at, 1 + below(3), c);
        else
            text[at] = c;
    }
    if (below(4) == 0)
        text.resize(below(text.size() + 1));
    return text;
}

TEST(Xscan, AgreesWithPcre2OnThePatternsInUse)
{
    std::mt19937 random(20150307);
    int matched = 0, failed = 0;
    for (const ScanPattern &pattern : SCAN_PATTERNS) {
        int error;
        PCRE2_SIZE offset;
        const uint32_t options = PCRE2_ANCHORED | PCRE2_DOTALL |
                                 ((pattern.flags & XSCAN_NOCASE) != 0 ? PCRE2_CASELESS : 0);
        pcre2_code *code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.perl),
                                         PCRE2_ZERO_TERMINATED, options, &error, &offset, nullptr);
        ASSERT_NE(code, nullptr) << pattern.perl;
        pcre2_match_data *data = pcre2_match_data_create_from_pattern(code, nullptr);
        for (int round = 0; round < 2000; round++) {
            std::string text = VaryText(random, pattern);
            text = text.c_str();
            const int found = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()),
                                          text.size(), 0, 0, data, nullptr);
            const int expected =
                found > 0 ? static_cast<int>(pcre2_get_ovector_pointer(data)[1]) : -1;
            const char *cursor = text.c_str();
            const int result = xscan1(pattern.pattern, &cursor, nullptr, pattern.flags);
            const int consumed = result < 0 ? -1 : static_cast<int>(cursor - text.c_str());
            ASSERT_EQ(consumed, expected) << pattern.pattern << " on \"" << text << "\"";
            ++(expected < 0 ? failed : matched);
        }
        pcre2_match_data_free(data);
        pcre2_code_free(code);
    }
    EXPECT_GT(matched, 10000); // both answers must occur often for the comparison to mean much
    EXPECT_GT(failed, 10000);
}

} // namespace
