// The scanner walks pattern and text once. What a call consumes is one stretch of the
// text, so matching only finds its end and the copy to the output is made in one go.
// A set is decoded when its turn comes: into 64-bit masks,
// so that a long run costs a shift and a test a character.
#include "text/xscan.h"

#include <climits>
#include <cstdint>
#include <cstring>

namespace {

#define SCAN_INLINE inline __attribute__((always_inline))

constexpr size_t UNBOUNDED = SIZE_MAX;
constexpr unsigned CASE_DISTANCE = 'a' - 'A';
constexpr uint64_t UPPER_LETTERS = 0x7FFFFFEull; // "A".."Z" in the mask of 64..127
constexpr uint64_t LOWER_LETTERS = UPPER_LETTERS << CASE_DISTANCE;

// The characters of a set below 128 as masks; `wide` when it names others, which are
// then looked for in the pattern itself.
struct SetMasks {
    uint64_t low = 0;  // characters 0..63
    uint64_t high = 0; // characters 64..127
    const char *next;  // what follows the set in the pattern
    bool wide = false;
};

struct Repeat {
    size_t least;
    size_t most;
};

SCAN_INLINE unsigned char ByteAt(const char *position)
{
    return static_cast<unsigned char>(*position);
}

SCAN_INLINE unsigned char AsciiUpper(unsigned char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<unsigned char>(c - CASE_DISTANCE) : c;
}

SCAN_INLINE unsigned char AsciiLower(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + CASE_DISTANCE) : c;
}

template <bool FOLD> SCAN_INLINE unsigned char Folded(unsigned char c)
{
    return FOLD ? AsciiUpper(c) : c;
}

SCAN_INLINE bool IsBlank(unsigned char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The upper bound behind the "-" at *position, which is moved behind it. False when the
// set ends there: the "-" has nothing to range to and is a member.
SCAN_INLINE bool ReadBound(const char **position, unsigned char *bound)
{
    const char *p = *position + 1;
    if (ByteAt(p) <= '/') { // rarely more than a plain member
        if (*p == '.' || *p == '\0' || (*p == '/' && *++p == '\0'))
            return false;
    }
    *bound = ByteAt(p);
    *position = p + 1;
    return true;
}

// Calls visit(low, high) for each member or range of the set and returns what follows it.
template <bool FOLD, typename Visit> SCAN_INLINE const char *ReadSet(const char *p, Visit visit)
{
    for (;;) {
        unsigned char low = ByteAt(p), high;
        if (low <= '/') {
            if (low == '.')
                return p + 1;
            if (low == '/')
                low = ByteAt(++p);
            if (low == '\0')
                return p;
        }
        ++p;
        if (*p != '-' || !ReadBound(&p, &high)) {
            visit(Folded<FOLD>(low), Folded<FOLD>(low));
            continue;
        }
        do { // a further "-" ranges on from the bound reached
            visit(Folded<FOLD>(low), Folded<FOLD>(high));
            low = high;
        } while (*p == '-' && ReadBound(&p, &high));
    }
}

// Bits low..high of one word; the upper power of two wraps to 0 above bit 63.
SCAN_INLINE uint64_t MaskBetween(unsigned low, unsigned high)
{
    return (2ull << (high & 63)) - (1ull << (low & 63));
}

template <bool FOLD> SCAN_INLINE SetMasks ReadMasks(const char *members)
{
    SetMasks set;
    set.next = ReadSet<FOLD>(members, [&set](unsigned low, unsigned high) {
        const bool isOneMask = (low & 0xC0) == (high & 0xC0) && low <= high;
        if (isOneMask && high < 64) {
            set.low |= MaskBetween(low, high);
        } else if (isOneMask && high < 128) {
            set.high |= MaskBetween(low, high);
        } else if (low <= high) { // over the border between the masks, or beyond them
            set.wide |= high > 127;
            set.low |= low < 64 ? MaskBetween(low, 63) : 0;
            set.high |= low < 64 ? MaskBetween(64, high < 128 ? high : 127) : 0;
        }
    });
    if (FOLD) // each lower-case letter answers as its upper-case one
        set.high = (set.high & ~LOWER_LETTERS) | (set.high & UPPER_LETTERS) << CASE_DISTANCE;
    return set;
}

// Sets of one plain range, such as "0-9", are most of all sets.
SCAN_INLINE bool IsOneRange(const char *members)
{
    return members[0] > '/' && members[1] == '-' && members[2] > '/' && members[3] == '.';
}

// Whether one character that is not the end of the text is named by the set.
template <bool FOLD>
SCAN_INLINE bool IsMember(const char *members, unsigned char c, const char **next)
{
    bool found = false;
    c = Folded<FOLD>(c);
    if (IsOneRange(members)) {
        *next = members + 4;
        return c >= Folded<FOLD>(ByteAt(members)) && c <= Folded<FOLD>(ByteAt(members + 2));
    }
    *next = ReadSet<FOLD>(members, [&found, c](unsigned char low, unsigned char high) {
        found |= c >= low && c <= high;
    });
    return found;
}

// Number of characters from `text` on, at most `most`, that satisfy `matches`, which
// must refuse the end of the text.
template <typename Matches>
SCAN_INLINE size_t CountWhile(const char *text, size_t most, Matches matches)
{
    size_t count = 0;
    while (count < most && matches(ByteAt(text + count)))
        ++count;
    return count;
}

template <bool FOLD>
SCAN_INLINE size_t CountSet(const char **pattern, const char *text, Repeat repeat, bool negated)
{
    const char *members = *pattern + 1;
    if (!negated && IsOneRange(members)) {
        const unsigned char low = Folded<FOLD>(ByteAt(members));
        const unsigned char high = Folded<FOLD>(ByteAt(members + 2));
        *pattern = members + 4;
        return CountWhile(text, repeat.most, [low, high](unsigned char c) {
            return Folded<FOLD>(c) >= low && Folded<FOLD>(c) <= high;
        });
    }
    // The first character alone often decides, and costs less than the masks.
    if (repeat.least > 0 || repeat.most == 1) {
        const bool isFirst = IsMember<FOLD>(members, ByteAt(text), pattern) != negated;
        if (!isFirst || *text == '\0' || repeat.most == 1)
            return isFirst && *text != '\0' ? 1 : 0;
    }
    const SetMasks set = ReadMasks<FOLD>(members);
    *pattern = set.next;
    if (set.wide)
        return CountWhile(text, repeat.most, [members, negated](unsigned char c) {
            const char *next;
            return c != '\0' && IsMember<FOLD>(members, c, &next) != negated;
        });
    const uint64_t flip = negated ? ~0ull : 0;
    const uint64_t masks[4] = {(set.low ^ flip) & ~1ull, set.high ^ flip, flip, flip};
    return CountWhile(text, repeat.most,
                      [&masks](unsigned char c) { return (masks[c >> 6] >> (c & 63) & 1) != 0; });
}

// Repetitions of the element at *pattern, which is advanced past it. The end of the text
// never counts as one.
template <bool FOLD>
SCAN_INLINE size_t CountElement(const char **pattern, const char *text, Repeat repeat)
{
    const char *p = *pattern;
    unsigned char literal = Folded<FOLD>(ByteAt(p));
    switch (*p) {
    case ' ':
        *pattern = p + 1;
        return CountWhile(text, repeat.most, IsBlank);
    case '#':
    case '^':
        if (p[1] != '\0')
            return CountSet<FOLD>(pattern, text, repeat, *p == '^');
        *pattern = p + 1;
        return *p == '#' ? 0
                         : CountWhile(text, repeat.most, [](unsigned char c) { return c != '\0'; });
    case '/': // an escaped letter stays as written, a bare one is folded
        literal = ByteAt(++p);
        if (literal == '\0') {
            *pattern = p;
            return 0;
        }
        [[fallthrough]];
    default:
        *pattern = p + 1;
        return CountWhile(text, repeat.most,
                          [literal](unsigned char c) { return Folded<FOLD>(c) == literal; });
    }
}

// The quantifier at *pattern, which is advanced past it. False when its count is missing or 0.
SCAN_INLINE bool ReadRepeat(const char **pattern, Repeat *repeat)
{
    const char first = *(*pattern)++;
    const char second = **pattern;
    *repeat = Repeat{first == '@' ? size_t{1} : size_t{0}, first == '?' ? size_t{1} : UNBOUNDED};
    if (first == '?' || (second != '*' && second != '@'))
        return true;
    ++*pattern;
    const int limit = GetLimit(pattern);
    if (limit < 1)
        return false;
    const size_t count = static_cast<size_t>(limit);
    if (first == '*') // "*@" at most but at least one, "**" at most
        *repeat = Repeat{second == '@' ? size_t{1} : size_t{0}, count};
    else // "@@" exactly, "@*" or more
        *repeat = Repeat{count, second == '@' ? count : UNBOUNDED};
    return true;
}

// One element that stands without a quantifier.
template <bool FOLD> SCAN_INLINE bool MatchOne(const char **pattern, const char **text)
{
    const char *p = *pattern;
    const unsigned char c = ByteAt(*text);
    unsigned char literal = Folded<FOLD>(ByteAt(p));
    switch (*p) {
    case '#':
    case '^':
        if (p[1] != '\0') {
            if (IsMember<FOLD>(p + 1, c, pattern) == (*p == '^') || c == '\0')
                return false;
            ++*text;
            return true;
        }
        *pattern = p + 1;
        if ((c == '\0') == (*p == '^'))
            return false;
        *text += c != '\0' ? 1 : 0;
        return true;
    case '/':
        literal = ByteAt(++p);
        if (literal == '\0')
            return false;
        [[fallthrough]];
    default:
        if (Folded<FOLD>(c) != literal)
            return false;
        *pattern = p + 1;
        ++*text;
        return true;
    }
}

// Matches the whole pattern; *text ends behind what was matched, on failure too.
template <bool FOLD> SCAN_INLINE bool MatchPattern(const char *pattern, const char **text)
{
    const char *at = *text;
    bool good = true;
    while (good && *pattern != '\0') {
        Repeat repeat{1, UNBOUNDED};
        switch (*pattern) {
        case '*':
        case '@':
        case '?':
            if (!ReadRepeat(&pattern, &repeat)) {
                good = false;
                break;
            }
            if (*pattern == '\0') // nothing to repeat: the pattern ends here
                break;
            [[fallthrough]];
        case ' ': { // a bare blank takes all blanks there are
            const size_t count = CountElement<FOLD>(&pattern, at, repeat);
            at += count;
            good = count >= repeat.least;
            break;
        }
        default:
            good = MatchOne<FOLD>(&pattern, &at);
            break;
        }
    }
    *text = at;
    return good;
}

char *CopyOut(char *output, const char *from, const char *to, unsigned flags)
{
    for (; from != to; ++from, ++output) {
        const unsigned char c = ByteAt(from);
        if ((flags & XSCAN_UPPER) != 0)
            *output = static_cast<char>(AsciiUpper(c));
        else
            *output = static_cast<char>((flags & XSCAN_LOWER) != 0 ? AsciiLower(c) : c);
    }
    *output = '\0';
    return output;
}

int Measure(const char *pattern, const char **cursor, char **output, unsigned flags)
{
    const char *start = *cursor;
    const int result = xscan1(pattern, cursor, output, flags);
    return result < 0 ? result : static_cast<int>(*cursor - start);
}

} // namespace

int GetLimit(const char **position)
{
    const char *p = *position;
    if (*p < '0' || *p > '9')
        return -1;
    int limit = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        const int digit = *p - '0';
        limit = limit > (INT_MAX - digit) / 10 ? INT_MAX : limit * 10 + digit;
    }
    *position = p;
    return limit;
}

int xscan1(const char *pattern, const char **cursor, char **output, unsigned flags)
{
    const char *start = *cursor;
    const char *end = start;
    const bool matched = (flags & XSCAN_NOCASE) != 0 ? MatchPattern<true>(pattern, &end)
                                                     : MatchPattern<false>(pattern, &end);
    char *outputEnd = output != nullptr ? CopyOut(*output, start, end, flags) : nullptr;
    if (!matched)
        return -1;
    *cursor = end;
    if (output != nullptr)
        *output = outputEnd;
    return 0;
}

int xscan(const char *pattern, const char **cursor, char **output)
{
    return Measure(pattern, cursor, output, 0);
}

int xscani(const char *pattern, const char **cursor, char **output)
{
    return Measure(pattern, cursor, output, XSCAN_NOCASE);
}

int xscaniu(const char *pattern, const char **cursor, char **output)
{
    return Measure(pattern, cursor, output, XSCAN_NOCASE | XSCAN_UPPER);
}

int xscanil(const char *pattern, const char **cursor, char **output)
{
    return Measure(pattern, cursor, output, XSCAN_NOCASE | XSCAN_LOWER);
}

int xscan_strcpy(char *destination, const char *source, const char *pattern)
{
    const char *cursor = source;
    *destination = '\0';
    if (xscan(pattern, &cursor) <= 0)
        return 0;
    cursor = source;
    char *out = destination;
    return xscan(pattern, &cursor, &out);
}
