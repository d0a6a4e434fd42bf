// The grammar that headers and data files share. Messages name what is wrong in the user's words:
// these files are written by hand.
#include "sets/line.h"

#include "sets/value.h"
#include "symbols/assignment.h"
#include "text/words.h"
#include "text/xscan.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// Where the first of `marks` stands outside of quotes, or npos.
size_t FindOutside(const std::string &text, const char *marks)
{
    bool isQuoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && std::strchr(marks, text[i]) != nullptr)
            return i;
    }
    return std::string::npos;
}

// Blanks around brackets, dots and signs do not part a reference.
std::string JoinReference(const std::string &text)
{
    std::string joined;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ' ' && text[i] != '\t') {
            joined += text[i];
            continue;
        }
        const size_t next = text.find_first_not_of(" \t", i);
        const bool isInside = next == std::string::npos || joined.empty() ||
                              std::strchr("[].+-", text[next]) != nullptr ||
                              std::strchr("[.+-", joined.back()) != nullptr;
        if (!isInside)
            joined += ' ';
        i = next == std::string::npos ? text.size() : next - 1;
    }
    return joined;
}

// A match that leaves something over is none.
bool IsWhole(const std::string &text, const char *pattern)
{
    const char *cursor = text.c_str();
    return xscan(pattern, &cursor) > 0 && *cursor == '\0';
}

// "text" in quotes and nothing behind it.
bool Unquote(const std::string &quoted, std::string *text)
{
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.find('"', 1) != quoted.size() - 1)
        return false;
    *text = TXT_Visible(quoted.substr(1, quoted.size() - 2));
    return text->size() <= PST_WORDS_MAX;
}

// "" with the number and *isThere set, or what is wrong.
std::string ReadNumber(const std::string &text, double *number, bool *isThere)
{
    if (!PST_ParseNumber(text, number))
        return "'" + text + "' is no number.";
    *isThere = true;
    return "";
}

std::string ReadCount(const std::string &text, uint32_t *count)
{
    double number = 0;
    if (count == nullptr)
        return "A count or length cannot stand here.";
    if (!PST_ParseNumber(text, &number) || number < 1 ||
        number > static_cast<double>(PST_VALUES_MAX) * PST_PIECE_MAX ||
        // Whole: half an element is a slip of the pen.
        number != static_cast<double>(static_cast<uint32_t>(number)))
        return "'" + text + "' is no count.";
    *count = static_cast<uint32_t>(number);
    return "";
}

// One of "unit "A"", "min 0", "readonly"; what has no value must not be given one.
std::string ReadAttribute(const std::string &word, const std::string &value, PST_Attributes *a,
                          uint32_t *count, uint32_t *length)
{
    bool isFactor = false;
    std::string why;
    if (word == "unit" || word == "text") {
        if (!Unquote(value, word == "unit" ? &a->unit : &a->text))
            return "Behind '" + word + "' stands a text in quotes of at most " +
                   std::to_string(PST_WORDS_MAX) + " characters.";
    } else if (word == "factor") {
        why = ReadNumber(value, &a->factor, &isFactor);
        if (why.empty() && a->factor == 0)
            why = "The factor cannot be 0.";
    } else if (word == "min") {
        why = ReadNumber(value, &a->min, &a->hasMin);
    } else if (word == "max") {
        why = ReadNumber(value, &a->max, &a->hasMax);
    } else if (word == "default") {
        why = ReadNumber(value, &a->defaultValue, &a->hasDefault);
    } else if (word == "count") {
        why = ReadCount(value, count);
    } else if (word == "length") {
        why = ReadCount(value, length);
    } else if (word == "readonly" && value.empty()) {
        a->isReadOnly = true;
    } else if (word == "stop" && value.empty()) {
        a->needsStop = true;
    } else {
        why = "'" + word + (value.empty() ? "" : " " + value) +
              "' is not known: unit, factor, min, max, default, text, count, readonly or stop.";
    }
    return why;
}

// The shortest text that is read back as the same number.
std::string NumberText(double number)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", number);
    double back = 0;
    for (int digits = 6; digits < 17; ++digits) {
        char shorter[40];
        std::snprintf(shorter, sizeof shorter, "%.*g", digits, number);
        if (PST_ParseNumber(shorter, &back) && back == number)
            return shorter;
    }
    return text;
}

// Quotes would end the text early.
std::string Quoted(std::string text)
{
    std::replace(text.begin(), text.end(), '"', '\'');
    return "\"" + text + "\"";
}

} // namespace

std::string PST_LongLineText()
{
    return "The line has more than " + std::to_string(PST_LINE_MAX) + " characters.";
}

void PST_CutComment(const std::string &line, std::string *text, std::string *comment)
{
    comment->clear();
    // A single slash divides words in texts; two of them begin a comment.
    size_t end = FindOutside(line, ";");
    for (size_t slash = 0; slash < std::min(line.size(), end);) {
        const size_t found = FindOutside(line.substr(slash), "/");
        if (found == std::string::npos)
            break;
        if (line.compare(slash + found, 2, "//") == 0) {
            end = std::min(end, slash + found);
            break;
        }
        slash += found + 1;
    }
    if (end != std::string::npos)
        *comment = TXT_Trim(line.substr(end + (line[end] == '/' ? 2 : 1)));
    *text = TXT_Trim(line.substr(0, end));
}

std::string PST_SplitLine(const std::string &text, PST_Line *line)
{
    // From the outside in: the type in front, attributes behind the comma, the value behind "=".
    *line = PST_Line();
    std::string left = text;
    if (left.front() == '(') {
        const size_t close = left.find(')');
        line->cast = left.substr(0, close == std::string::npos ? 0 : close + 1);
        if (StrToATP(line->cast.c_str()) < 0)
            return "'" + (line->cast.empty() ? left : line->cast) +
                   "' is no type: u1, u2, u4, i1, i2, i4, float.";
        left = TXT_Trim(left.substr(close + 1));
    }
    const size_t comma = FindOutside(left, ",");
    if (comma != std::string::npos) {
        line->rest = TXT_Trim(left.substr(comma + 1));
        left = TXT_Trim(left.substr(0, comma));
        if (line->rest.empty())
            return "Something is missing behind the comma.";
    }
    const size_t equals = FindOutside(left, "=");
    if (equals != std::string::npos) {
        line->value = TXT_Trim(left.substr(equals + 1));
        left = TXT_Trim(left.substr(0, equals));
        if (line->value.empty())
            return "The value behind '=' is missing.";
    }
    line->reference = JoinReference(left);
    // A digit first, the suffix last: "0A140h".
    line->isAddress = IsWhole(line->reference, "#0-9.*#0-9a-fA-F.#hH.");
    if (line->reference.size() > PST_REFERENCE_MAX ||
        (!line->isAddress &&
         !IsWhole(line->reference, "#_a-zA-Z.*#_0-9a-zA-Z/./[/].?#+/-.*#0-9a-fA-FxXhH.")))
        return "'" + left.substr(0, PST_WORDS_MAX) + "' is no variable or address.";
    return "";
}

std::string PST_ParseAttributes(const std::string &text, PST_Attributes *attributes,
                                uint32_t *count, uint32_t *length)
{
    for (std::string rest = text; !rest.empty();) {
        const size_t comma = FindOutside(rest, ",");
        const std::string part = TXT_Trim(rest.substr(0, comma));
        rest = comma == std::string::npos ? "" : TXT_Trim(rest.substr(comma + 1));
        if (part.empty() || (comma != std::string::npos && rest.empty()))
            return "Something is missing beside a comma.";
        const size_t blank = std::min(part.find_first_of(" \t\""), part.size());
        const std::string why = ReadAttribute(part.substr(0, blank), TXT_Trim(part.substr(blank)),
                                              attributes, count, length);
        if (!why.empty())
            return why;
    }
    // Only when all are read: they come in any order.
    if (attributes->hasMin && attributes->hasMax && attributes->min > attributes->max)
        return "The lower limit lies above the upper one.";
    return "";
}

std::string PST_FormatAttributes(const PST_Attributes &attributes)
{
    // Only what says something: a factor of 1 is no factor.
    std::string text;
    const auto add = [&text](const std::string &part) {
        text += (text.empty() ? "" : ", ") + part;
    };
    if (!attributes.unit.empty())
        add("unit " + Quoted(attributes.unit));
    if (attributes.factor != 1)
        add("factor " + NumberText(attributes.factor));
    if (attributes.hasMin)
        add("min " + NumberText(attributes.min));
    if (attributes.hasMax)
        add("max " + NumberText(attributes.max));
    if (attributes.hasDefault)
        add("default " + NumberText(attributes.defaultValue));
    if (!attributes.text.empty())
        add("text " + Quoted(attributes.text));
    if (attributes.isReadOnly)
        add("readonly");
    if (attributes.needsStop)
        add("stop");
    return text;
}

bool PST_ParseKeyword(const std::string &text, const char *keyword, std::string *quoted)
{
    // A blank or the quote must follow: "devices" is a name.
    const size_t length = std::strlen(keyword);
    return text.compare(0, length, keyword) == 0 && text.size() > length &&
           std::strchr(" \t\"", text[length]) != nullptr &&
           Unquote(TXT_Trim(text.substr(length)), quoted);
}

bool PST_ParseLabel(const std::string &text, std::string *name)
{
    ScrPar records[SYM_ASSIGN_RECORDS];
    if (ParseAssn2(text.c_str(), records, ATP_I2) != SYM_ASSIGN_LABEL)
        return false;
    // A label is one word of the grammar: underscores stand for the blanks of a heading.
    *name = records[0].text;
    std::replace(name->begin(), name->end(), '_', ' ');
    return true;
}
