// The scanner walks pattern and text once. An element is decoded when its turn comes:
// a set that stands once is tested member by member, a set that repeats becomes a
// table of 256 bits on the stack, so that a long run costs one look-up a character.
#include "text/xscan.h"

#include <climits>
#include <cstdint>
#include <cstring>

namespace {

enum ElementKind : uint8_t {
    ELEMENT_LITERAL,
    ELEMENT_BLANK,
    ELEMENT_SET,
    ELEMENT_NOT_SET,
    ELEMENT_ANY,
    ELEMENT_END_OF_TEXT,
    ELEMENT_NEVER
};

struct Element {
    ElementKind kind;
    unsigned char literal;
    const char *members; // of a set: its first member
    const char *next;    // what follows the element; null for a set until it is read
};

struct Quantifier {
    int least;
    int most;
    bool present;
};

struct Bits256 {
    uint64_t word[4] = {0, 0, 0, 0};
};

constexpr unsigned CASE_DISTANCE = 'a' - 'A';
constexpr uint64_t UPPER_LETTERS = 0x7FFFFFEull; // "A".."Z" in the second word of a table
constexpr uint64_t LOWER_LETTERS = UPPER_LETTERS << CASE_DISTANCE;

inline unsigned char asciiUpper(unsigned char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<unsigned char>(c - CASE_DISTANCE) : c;
}

inline unsigned char asciiLower(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + CASE_DISTANCE) : c;
}

inline unsigned char byteAt(const char *position)
{
    return static_cast<unsigned char>(*position);
}

inline bool isBlank(unsigned char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// One member of a set, its escape taken off; false where the set ends.
inline bool readMember(const char **position, unsigned char *member)
{
    const char *p = *position;
    if (*p == '/')
        ++p;
    else if (*p == '.')
        return false;
    if (*p == '\0') {
        *position = p;
        return false;
    }
    *member = byteAt(p);
    *position = p + 1;
    return true;
}

// Calls visit(low, high) for each member or range and returns what follows the set.
// A "-" just before the end of the set has nothing to range to and is a member.
template <typename Visit> inline const char *readSet(const char *p, bool fold, Visit visit)
{
    unsigned char low, high;
    while (readMember(&p, &low)) {
        if (fold)
            low = asciiUpper(low);
        if (*p != '-' || p[1] == '.' || p[1] == '\0') {
            visit(low, low);
            continue;
        }
        while (*p == '-' && p[1] != '.' && p[1] != '\0') {
            ++p;
            if (!readMember(&p, &high))
                high = low;
            if (fold)
                high = asciiUpper(high);
            visit(low, high);
            low = high;
        }
    }
    return *p == '.' ? p + 1 : p;
}

// Whether a character that is not the end of the text belongs to the set.
inline bool testSet(Element *element, unsigned char c, bool fold)
{
    bool found = false;
    if (fold)
        c = asciiUpper(c);
    element->next = readSet(element->members, fold, [&](unsigned char low, unsigned char high) {
        found |= c >= low && c <= high;
    });
    return found;
}

inline void setRange(Bits256 *bits, unsigned low, unsigned high)
{
    if (low == high) {
        bits->word[low >> 6] |= 1ull << (low & 63);
        return;
    }
    if (low > high)
        return;
    for (unsigned word = low >> 6; word <= high >> 6; word++) {
        uint64_t mask = ~0ull;
        if (word == low >> 6)
            mask &= ~0ull << (low & 63);
        if (word == high >> 6)
            mask &= ~0ull >> (63 - (high & 63));
        bits->word[word] |= mask;
    }
}

// The characters a set element matches, case folding and negation worked in: the end of
// the text is never among them.
inline void tabulateSet(Element *element, bool fold, Bits256 *bits)
{
    element->next = readSet(element->members, fold, [&](unsigned char low, unsigned char high) {
        setRange(bits, low, high);
    });
    if (fold) { // each lower-case letter answers as its upper-case one
        uint64_t letters = bits->word[1];
        bits->word[1] = (letters & ~LOWER_LETTERS) | ((letters & UPPER_LETTERS) << CASE_DISTANCE);
    }
    if (element->kind == ELEMENT_NOT_SET) {
        for (uint64_t &word : bits->word)
            word = ~word;
    }
    bits->word[0] &= ~1ull;
}

inline Element readElement(const char *p, bool fold)
{
    Element element{ELEMENT_LITERAL, byteAt(p), nullptr, p + 1};
    switch (*p) {
    case '/':
        element.literal = byteAt(p + 1);
        element.kind = element.literal != '\0' ? ELEMENT_LITERAL : ELEMENT_NEVER;
        element.next = element.literal != '\0' ? p + 2 : p + 1;
        break;
    case ' ':
        element.kind = ELEMENT_BLANK;
        break;
    case '#':
    case '^':
        element.members = p + 1;
        if (p[1] != '\0')
            element.kind = *p == '#' ? ELEMENT_SET : ELEMENT_NOT_SET;
        else
            element.kind = *p == '#' ? ELEMENT_END_OF_TEXT : ELEMENT_ANY;
        break;
    default: // an escaped letter stays as written, a bare one is folded
        if (fold)
            element.literal = asciiUpper(element.literal);
        break;
    }
    return element;
}

// Whether the element matches one character; the end of the text counts as one here.
inline bool matchOne(Element *element, unsigned char c, bool fold)
{
    switch (element->kind) {
    case ELEMENT_LITERAL:
        return (fold ? asciiUpper(c) : c) == element->literal;
    case ELEMENT_BLANK:
        return isBlank(c);
    case ELEMENT_SET:
        return testSet(element, c, fold) && c != '\0';
    case ELEMENT_NOT_SET:
        return !testSet(element, c, fold) && c != '\0';
    case ELEMENT_ANY:
        return c != '\0';
    case ELEMENT_END_OF_TEXT:
        return c == '\0';
    default:
        return false;
    }
}

// End of the run of matching characters from `text` on, at most `most` of them. The end
// of the text never counts inside a repetition.
inline const char *matchRun(Element *element, const char *text, int most, bool fold)
{
    // An unbounded run ends at the NUL at the latest, which no element accepts here.
    const char *limit = nullptr;
    if (most != INT_MAX) {
        size_t left = strnlen(text, static_cast<size_t>(most));
        limit = text + left;
    }
    switch (element->kind) {
    case ELEMENT_LITERAL:
        while (text != limit &&
               (fold ? asciiUpper(byteAt(text)) : byteAt(text)) == element->literal)
            ++text;
        return text;
    case ELEMENT_BLANK:
        while (text != limit && isBlank(byteAt(text)))
            ++text;
        return text;
    case ELEMENT_ANY:
        return limit != nullptr ? limit : text + std::strlen(text);
    case ELEMENT_SET:
    case ELEMENT_NOT_SET: {
        Bits256 bits;
        tabulateSet(element, fold, &bits);
        while (text != limit && (bits.word[byteAt(text) >> 6] >> (byteAt(text) & 63) & 1) != 0)
            ++text;
        return text;
    }
    default:
        return text;
    }
}

// The quantifier at *pattern, which is advanced past it. False when its count is missing or 0.
inline bool readQuantifier(const char **pattern, Quantifier *quantifier)
{
    const char *p = *pattern;
    *quantifier = Quantifier{1, 1, false};
    if (*p != '*' && *p != '@' && *p != '?')
        return true;
    quantifier->present = true;
    const char first = *p++;
    if (first != '@')
        quantifier->least = 0;
    if (first != '?')
        quantifier->most = INT_MAX;
    if (first != '?' && (*p == '*' || *p == '@')) {
        const char second = *p++;
        const int count = GetLimit(&p);
        if (count < 1)
            return false;
        if (first == '*') { // "*@" at most but at least one, "**" at most
            quantifier->most = count;
            quantifier->least = second == '@' ? 1 : 0;
        } else { // "@@" exactly, "@*" or more
            quantifier->least = count;
            quantifier->most = second == '@' ? count : INT_MAX;
        }
    }
    *pattern = p;
    return true;
}

inline void copyOut(char **output, const char *from, const char *to, unsigned flags)
{
    const size_t length = static_cast<size_t>(to - from);
    char *out = *output;
    if ((flags & (XSCAN_UPPER | XSCAN_LOWER)) == 0) {
        std::memcpy(out, from, length);
    } else {
        for (size_t i = 0; i < length; i++) {
            const unsigned char c = byteAt(from + i);
            out[i] = static_cast<char>((flags & XSCAN_UPPER) != 0 ? asciiUpper(c) : asciiLower(c));
        }
    }
    out[length] = '\0';
    *output = out + length;
}

// Matches one element with its quantifier: the end of what it took, or null.
inline const char *matchElement(Element *element, Quantifier quantifier, const char *text,
                                bool fold)
{
    if (!quantifier.present && element->kind == ELEMENT_BLANK) { // stands for all that follow, too
        quantifier.present = true;
        quantifier.most = INT_MAX;
    }
    if (!quantifier.present) {
        if (!matchOne(element, byteAt(text), fold))
            return nullptr;
        return *text != '\0' ? text + 1 : text;
    }
    if (quantifier.most == 1) {
        if (element->kind != ELEMENT_END_OF_TEXT && matchOne(element, byteAt(text), fold))
            return text + 1;
        return quantifier.least == 0 ? text : nullptr;
    }
    const char *end = matchRun(element, text, quantifier.most, fold);
    return end - text >= quantifier.least ? end : nullptr;
}

inline int measure(const char *pattern, const char **cursor, char **output, unsigned flags)
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
    const bool fold = (flags & XSCAN_NOCASE) != 0;
    const char *text = *cursor;
    char *out = output != nullptr ? *output : nullptr;
    if (out != nullptr)
        *out = '\0';
    while (*pattern != '\0') {
        Quantifier quantifier;
        if (!readQuantifier(&pattern, &quantifier))
            return -1;
        if (*pattern == '\0') // a quantifier with nothing to repeat ends the pattern
            break;
        Element element = readElement(pattern, fold);
        const char *end = matchElement(&element, quantifier, text, fold);
        if (out != nullptr && end != nullptr && end != text)
            copyOut(&out, text, end, flags);
        if (end == nullptr)
            return -1;
        text = end;
        pattern = element.next;
    }
    *cursor = text;
    if (output != nullptr)
        *output = out;
    return 0;
}

int xscan(const char *pattern, const char **cursor, char **output)
{
    return measure(pattern, cursor, output, 0);
}

int xscani(const char *pattern, const char **cursor, char **output)
{
    return measure(pattern, cursor, output, XSCAN_NOCASE);
}

int xscaniu(const char *pattern, const char **cursor, char **output)
{
    return measure(pattern, cursor, output, XSCAN_NOCASE | XSCAN_UPPER);
}

int xscanil(const char *pattern, const char **cursor, char **output)
{
    return measure(pattern, cursor, output, XSCAN_NOCASE | XSCAN_LOWER);
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
