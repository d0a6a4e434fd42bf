// Types come from a cast, from the naming convention of the target's sources or from
// the caller, in this order. The tables are searched from the top: the first row wins.
#include "symbols/assignment.h"

#include <cstring>

#include "comm/sysaddr.h"
#include "symbols/varnode.h"
#include "text/tokens.h"
#include "text/words.h"

namespace {

struct TypeWord {
    const char *word;
    int32_t code;
};

// "word" is one byte: old files use it so.
const TypeWord CASTS[] = {{"u1", ATP_U1}, {"byte", ATP_U1}, {"word", ATP_U1},
                          {"u2", ATP_U2}, {"u4", ATP_U4},   {"i1", ATP_I1},
                          {"i2", ATP_I2}, {"i4", ATP_I4},   {"float", ATP_F4}};

// Prefixes in small letters up to the next capital: "dwMask", "nnCounter".
const TypeWord PREFIXES[] = {{"dw", ATP_U4}, {"u4", ATP_U4}, {"nn", ATP_I4}, {"i4", ATP_I4},
                             {"by", ATP_U1}, {"u1", ATP_U1}, {"i2", ATP_I2}, {"i1", ATP_I1},
                             {"u2", ATP_U2}, {"f4", ATP_F4}, {"f", ATP_F4},  {"rs", ATP_RS},
                             {"sz", ATP_SZ}};

// One letter in front of a capital: "nSpeed".
const TypeWord LETTER_PREFIXES[] = {{"n", ATP_I2}, {"f", ATP_F4}, {"w", ATP_U2}};

const TypeWord TYPE_NAMES[] = {{"i1", ATP_I1}, {"i2", ATP_I2}, {"i4", ATP_I4}, {"u1", ATP_U1},
                               {"u2", ATP_U2}, {"u4", ATP_U4}, {"f4", ATP_F4}};

struct TypeSize {
    uint32_t bit;
    int size;
};
// The first bit that is set decides.
const TypeSize SIZES[] = {{PAR_BYTE, 1}, {PAR_WORD, 2}, {PAR_LONG, 4}, {PAR_FLOAT, 4}};

template <size_t N> int32_t FindPrefix(const TypeWord (&table)[N], const char *text)
{
    for (const TypeWord &row : table)
        if (std::strncmp(text, row.word, std::strlen(row.word)) == 0)
            return row.code;
    return 0;
}

const char *FindTypeName(uint32_t code)
{
    if (code == static_cast<uint32_t>(ATP_RS) || code == static_cast<uint32_t>(ATP_SZ))
        return code == static_cast<uint32_t>(ATP_RS) ? "rs" : "sz";
    for (const TypeWord &row : TYPE_NAMES)
        if (static_cast<uint32_t>(row.code) == (code & ATP_MASK))
            return row.word;
    return "";
}

// Past the ")" that closes the "(" at the cursor; false when there is none.
// Counts the brackets: what stands between them is judged by StrToATP alone.
bool SkipCast(const char **cursor)
{
    int depth = 0;
    for (const char *c = *cursor; *c != '\0'; c++) {
        depth += *c == '(' ? 1 : *c == ')' ? -1 : 0;
        if (depth == 0) {
            *cursor = TXT_SkipBlanks(c + 1);
            return true;
        }
    }
    return false;
}

// "= value" and the target in front of it, with its members. Each record is cleared before its
// try: what a failed one left in it would be taken for parsed.
bool ParseTargetAndValue(const char *cursor, ScrPar *records, int32_t type)
{
    ClrScrPar(records, SYM_ASSIGN_RECORDS);
    if (ScrGetPar(&cursor, &records[0], PAR_NAME | PAR_INDEX | PAR_OFFSET) < 0)
        return false;
    records[0].flags |= static_cast<uint32_t>(type);
    cursor = TXT_SkipBlanks(cursor);
    if (*cursor != '=')
        return false;
    cursor = TXT_SkipBlanks(cursor + 1);
    // A name first; what is none must be a number of the line's type.
    const char *value = cursor;
    if (ScrGetPar(&cursor, &records[1], PAR_NAME | PAR_OFFSET) < 0) {
        cursor = value;
        ClrScrPar(&records[1], 1);
        if (ScrGetPar(&cursor, &records[1], static_cast<uint32_t>(type)) < 0)
            return false;
    }
    return *TXT_SkipBlanks(cursor) == '\0';
}

// A run of letters and digits, as a number or a register's name is one.
bool SkipRun(const char **cursor)
{
    const char *begin = TXT_SkipBlanks(*cursor);
    const char *end = begin;
    while (SYM_IsNameChar(*end))
        end++;
    *cursor = end;
    return end != begin;
}

bool SkipSelection(const char **cursor)
{
    const bool isIndex = **cursor == '[';
    ++*cursor;
    if (!SkipRun(cursor))
        return false;
    *cursor = TXT_SkipBlanks(*cursor);
    if (!isIndex)
        return true;
    return *(*cursor)++ == ']';
}

// "&name.member[2][3]+4", or "$8100". What stands behind it is not looked at.
bool SkipPath(const char **cursor)
{
    const char *c = *cursor + (**cursor == '&' ? 1 : 0);
    c = TXT_SkipBlanks(c);
    c += *c == '$' ? 1 : 0;
    if (TXT_IsBlank(*c) || !SkipRun(&c))
        return false;
    for (const char *next = TXT_SkipBlanks(c); *next == '.' || *next == '['; next = c) {
        if (!SkipSelection(&next))
            return false;
        c = TXT_SkipBlanks(next);
    }
    const char *sign = TXT_SkipBlanks(c);
    if (*sign == '+' || *sign == '-') {
        c = sign + 1;
        if (!SkipRun(&c))
            return false;
    }
    *cursor = c;
    return true;
}

} // namespace

int32_t StrToATP(const char *text)
{
    if (*text != '(')
        return -1;
    text = TXT_SkipBlanks(text + 1);
    for (const TypeWord &row : CASTS) {
        const size_t length = std::strlen(row.word);
        if (std::strncmp(text, row.word, length) == 0 && *TXT_SkipBlanks(text + length) == ')')
            return row.code;
    }
    return -1;
}

int32_t GetPfxType(const char *name)
{
    if (*name == '\0')
        return 0;
    const char second = name[1];
    // "f" is both: a letter in front of a capital, and a prefix of its own, so that a name such
    // as "flags" counts as a float.
    const bool isLetterPrefix =
        (second >= 'A' && second <= 'Z') || second == '_' || !TXT_IsNameChar(second);
    return isLetterPrefix ? FindPrefix(LETTER_PREFIXES, name) : FindPrefix(PREFIXES, name);
}

int32_t GetPfx2Type(const char *text)
{
    if (*text == '(')
        return StrToATP(text);
    if (*text == '&' || *text == '@')
        text++;
    const char *component = text;
    // Of a path the last member decides: "stMotor.nSpeed" is a word with a sign.
    for (; TXT_IsNameChar(*text) || *text == '.'; text++)
        if (*text == '.')
            component = text + 1;
    return GetPfxType(component);
}

int ATP_SizeOf(uint32_t code)
{
    for (const TypeSize &row : SIZES)
        if (code & row.bit)
            return row.size;
    return 0;
}

void ATP_toStr(uint32_t code, std::string *text)
{
    *text = std::string("(") + FindTypeName(code);
    if (code & PAR_NAME)
        *text += text->size() > 1 ? " ID" : "ID";
    *text += ")";
}

int ParseAssn2(const char *line, ScrPar *records, int32_t defaultType)
{
    ClrScrPar(records, SYM_ASSIGN_RECORDS);
    const char *cursor = TXT_SkipBlanks(line);
    int32_t type = GetPfx2Type(cursor);
    if (type < 1)
        type = defaultType;
    const bool isCast = *cursor == '(';
    if (isCast && !SkipCast(&cursor))
        return SYM_ASSIGN_NONE;
    const char *name = cursor;
    if (ScrGetPar(&cursor, &records[0], PAR_NAME) < 0)
        return SYM_ASSIGN_NONE;
    // A cast in front of a label would mean nothing: such a line is none.
    cursor = TXT_SkipBlanks(cursor);
    if (!isCast && *cursor == ':' && *TXT_SkipBlanks(cursor + 1) == '\0')
        return SYM_ASSIGN_LABEL;
    return ParseTargetAndValue(name, records, type) ? SYM_ASSIGN_VALUE : SYM_ASSIGN_NONE;
}

int ParseAssn(const char *line, ScrPar *records, int32_t defaultType)
{
    return ParseAssn2(line, records, defaultType);
}

int SYM_SplitAssignment(const char *line, AssnLine *parts)
{
    *parts = AssnLine();
    const char *cursor = TXT_SkipBlanks(line);
    if (*cursor == '(') {
        const char *begin = cursor + 1;
        if (!SkipCast(&cursor))
            return -1;
        parts->cast = TXT_Trim(std::string(begin, std::strcspn(begin, ")")));
    }
    const char *target = cursor;
    parts->station = GetStationModifier(&cursor);
    cursor = TXT_SkipBlanks(cursor);
    const char *path = cursor;
    if (!SkipPath(&cursor))
        return -1;
    parts->target = TXT_Trim(std::string(target, cursor));
    // Without its blanks: look-ups take them for the end of a name.
    for (const char *c = path; c != cursor; c++)
        if (!TXT_IsBlank(*c))
            parts->path += *c;
    cursor = TXT_SkipBlanks(cursor);
    parts->hasValue = *cursor == '=';
    if (!parts->hasValue)
        return *cursor == '\0' ? 0 : -1;
    parts->value = TXT_Trim(cursor + 1);
    return parts->value.empty() ? -1 : 0;
}
