// Compressed types of a target's flash back into the text of a type map. A line of declarations
// belongs to the line of the variable map with the same number.
#include "symbols/zip_types.h"

#include "symbols/typemap.h"
#include "text/txfrw.h"
#include "text/xscan.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace {

// At most six digits of six bits each; 24 bits are checked where they are used.
constexpr const char *DIGITS = "*@6#A-Za-z0-9+//.";
constexpr unsigned char CODE_FLAG = 0x80;
constexpr unsigned HIGH_BITS_SHIFT = 24;
constexpr uint32_t LOW_BITS = 0x00FFFFFF;

bool IsCodeByte(char c)
{
    return (static_cast<unsigned char>(c) & CODE_FLAG) != 0;
}

// Bytes with the high bit are codes, all others belong to the name.
const char *SkipName(const char *source)
{
    while (*source != '\0' && !IsCodeByte(*source))
        ++source;
    return source;
}

uint32_t DigitValue(char c)
{
    if (c >= 'A' && c <= 'Z')
        return static_cast<uint32_t>(c - 'A');
    if (c >= 'a' && c <= 'z')
        return static_cast<uint32_t>(c - 'a') + 26;
    if (c >= '0' && c <= '9')
        return static_cast<uint32_t>(c - '0') + 52;
    return c == '+' ? 62 : 63;
}

bool AppendLine(int output, const std::string &line)
{
    return TXFRW_AppendLine(output, line.c_str()) == 0;
}

// The name of a variable map line behind its hexadecimal address and a blank, or "".
std::string NameOfMapLine(const char *line)
{
    if (xscan("@#0-9a-fA-F. ", &line) < 0)
        return "";
    const char *start = line;
    if (xscan("#_a-zA-Z.*#_0-9a-zA-Z.", &line) < 0)
        return "";
    const std::string name(start, line);
    return xscan("* #", &line) >= 0 ? name : "";
}

} // namespace

int Base64ToUint32(const char **cursor, uint32_t *value)
{
    const char *digit = *cursor;
    if (xscan(DIGITS, cursor) < 0)
        return -1;
    *value = 0;
    for (; digit != *cursor; ++digit)
        *value = *value << 6 | DigitValue(*digit);
    return 0;
}

int DecodeZipDecl(std::string *destination, const char *source)
{
    source = SkipName(source);
    if (*source == '\0')
        return -1;
    while (*source != '\0') {
        // The code byte holds the derivation, the digits behind it the value below.
        const uint32_t high = static_cast<unsigned char>(*source) & ~CODE_FLAG & 0xFFu;
        uint32_t low = 0;
        if (!IsCodeByte(*source++) || Base64ToUint32(&source, &low) != 0 || low > LOW_BITS)
            return -1;
        char code[16];
        std::snprintf(code, sizeof code, "_@0x%" PRIX32, high << HIGH_BITS_SHIFT | low);
        *destination += code;
    }
    return 0;
}

int DecodeZipVar(std::string *destination, const char *source)
{
    const char *end = SkipName(source);
    if (end == source)
        return -1;
    *destination += "'" + std::string(source, end) + "' ";
    return DecodeZipDecl(destination, end);
}

int DecodeZipVars(int output, int declarations, int variableMap)
{
    const int count = TXFRW_GetCnLines(declarations);
    // More declarations than variables: the two files are not of one build.
    if (count < 0 || count > TXFRW_GetCnLines(variableMap))
        return -1;
    int variables = 0;
    for (int i = 0; i < count; i++) {
        const char *declaration = TXFRW_GetLinePtr(declarations, i);
        if (*declaration == '\0') // a symbol without a type
            continue;
        const std::string name = NameOfMapLine(TXFRW_GetLinePtr(variableMap, i));
        if (name.size() >= TMF_NAME_SIZE) // a type map cannot name it
            continue;
        std::string line = std::to_string(i) + ":'" + name + "' ";
        if (name.empty() || DecodeZipDecl(&line, declaration) != 0 || !AppendLine(output, line))
            return -1;
        ++variables;
    }
    return variables;
}

int DecodeZipStructFrw(int output, int structures)
{
    const int lines = TXFRW_GetCnLines(structures);
    int count = 0;
    // Each structure is a line "#m" and m members; a file that ends before the last one is damaged.
    for (int line = 0; line < lines;) {
        const char *heading = TXFRW_GetLinePtr(structures, line++);
        const char *cursor = heading;
        if (heading == nullptr || xscan("/##1-9.**4#0-9.* #", &cursor) < 0)
            return -1;
        const int members = std::atoi(heading + 1);
        ++count;
        if (!AppendLine(output, "#" + std::to_string(count) + "/" + std::to_string(members) + ":"))
            return -1;
        for (int i = 0; i < members; i++) {
            const char *member = TXFRW_GetLinePtr(structures, line++);
            std::string decoded;
            if (member == nullptr || DecodeZipVar(&decoded, member) != 0 ||
                !AppendLine(output, decoded))
                return -1;
        }
    }
    return lines < 0 ? -1 : count;
}

int UnzipTMF(int output, int structures, int declarations, int variableMap)
{
    for (const int handle : {output, structures, declarations, variableMap}) {
        if (TXFRW_IsOpened(handle) != 1)
            return -1;
    }
    const int variables = DecodeZipVars(output, declarations, variableMap);
    if (variables < 0)
        return -1;
    const std::string varsHeader = "## " + std::to_string(variables) + " VARS";
    // The counts stand in front of what they count and are known only afterwards.
    if (TXFRW_InsertLine(output, 0, varsHeader.c_str()) != 0)
        return -1;
    const int behindVars = TXFRW_GetCnLines(output);
    const int structs = DecodeZipStructFrw(output, structures);
    if (structs < 0)
        return -1;
    const std::string structsHeader = "## " + std::to_string(structs) + " STRUCTS";
    const bool isDone = TXFRW_InsertLine(output, behindVars, "## 0 TYPES") == 0 &&
                        TXFRW_InsertLine(output, behindVars + 1, structsHeader.c_str()) == 0;
    return isDone ? 0 : -1;
}
