// The description's parser, one token a step, and the table of record ids. The parser's cursor
// stands where a description stops being one: that is the place a message names.
#include "logger/dlld_record.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "text/xscan.h"

std::vector<DLLD_RecId> DLLD_paRecId;
int32_t DLLD_nDimARecId = 0;

namespace {

// Longest token a pattern below allows, and its end.
constexpr size_t TOKEN_SIZE = DLLD_DESCRIPTION_BYTES + 1;
constexpr int64_t CHOICE_MIN = INT32_MIN, CHOICE_MAX = UINT32_MAX;

// Entry of the table that describes a type, from 1; 0 for none. Listings ask for each message.
uint16_t entryOfType[256] = {};

struct Parser {
    const char *cursor;
    char token[TOKEN_SIZE];
};

// A token into parser->token; the patterns bound its length by that of the text.
bool Scan(Parser *parser, const char *pattern)
{
    char *output = parser->token;
    return xscan(pattern, &parser->cursor, &output) >= 0;
}

bool ScanNumber(Parser *parser, const char *pattern, int64_t *number)
{
    if (!Scan(parser, pattern))
        return false;
    // Choices are compared with signed and unsigned four bytes alike.
    errno = 0;
    *number = std::strtoll(parser->token, nullptr, 10);
    return errno == 0 && *number >= CHOICE_MIN && *number <= CHOICE_MAX;
}

// "u2" and the like. f4 is the IEEE single that these processors calculate with.
bool ParseType(Parser *parser, DLLD_Field *field)
{
    if (Scan(parser, "f4")) {
        field->form = DLLD_FLOAT;
        field->bytes = 4;
        return true;
    }
    if (!Scan(parser, "#iux.#124."))
        return false;
    field->isSigned = parser->token[0] == 'i';
    field->form = field->isSigned ? DLLD_SIGNED : DLLD_UNSIGNED;
    if (parser->token[0] == 'x')
        field->form = DLLD_HEX;
    field->bytes = parser->token[1] - '0';
    return true;
}

// "*0.1" or "/10". Dividing keeps tenths exact where multiplying by 0.1 would not.
bool ParseScale(Parser *parser, DLLD_Field *field)
{
    const bool isDivided = *parser->cursor == '/';
    parser->cursor++;
    if (!Scan(parser, "@#0-9.?/.*#0-9."))
        return false;
    const double number = std::strtod(parser->token, nullptr);
    (isDivided ? field->divisor : field->scale) = number;
    return number > 0;
}

// Value "3=", bit "3=" or bits "3-5=" in front of a text; without, the one after the last.
bool ParsePlace(Parser *parser, const DLLD_Field &field, int64_t next, DLLD_Choice *choice)
{
    choice->low = choice->high = next;
    const char *ahead = parser->cursor;
    if (xscan("?-@#0-9.=", &ahead) >= 0) {
        if (!ScanNumber(parser, "?-@#0-9.", &choice->low))
            return false;
        choice->high = choice->low;
    } else if (ahead = parser->cursor;
               field.form == DLLD_BITS && xscan("@#0-9.-@#0-9.=", &ahead) >= 0) {
        if (!ScanNumber(parser, "@#0-9.", &choice->low) || !Scan(parser, "-") ||
            !ScanNumber(parser, "@#0-9.", &choice->high))
            return false;
    } else {
        ahead = nullptr;
    }
    if (ahead != nullptr)
        parser->cursor++; // the "="
    const bool isInside = choice->low >= 0 && choice->high < 8 * field.bytes;
    return field.form != DLLD_BITS || (isInside && choice->low <= choice->high);
}

// "{off,run,5=fault}" names values, "(rdy,run,4-6=mode)" names bits.
bool ParseChoices(Parser *parser, DLLD_Field *field)
{
    const bool isEnum = *parser->cursor == '{';
    if (!isEnum && *parser->cursor != '(')
        return true;
    // A fraction has no names, and bits of a signed number would hide its sign.
    if (field->form == DLLD_FLOAT || (!isEnum && field->isSigned))
        return false;
    field->form = isEnum ? DLLD_ENUM : DLLD_BITS;
    int64_t next = 0;
    do {
        parser->cursor++; // the bracket or the comma
        DLLD_Choice choice;
        if (!ParsePlace(parser, *field, next, &choice) || !Scan(parser, "*^,;(){}."))
            return false;
        choice.text = parser->token;
        next = choice.high + 1;
        if (!choice.text.empty())
            field->choices.push_back(choice);
    } while (*parser->cursor == ',');
    return Scan(parser, isEnum ? "}" : ")");
}

// "name:type", then scale or texts, then a blank and the unit.
bool ParseField(Parser *parser, DLLD_Field *field)
{
    if (!Scan(parser, "*^:;."))
        return false;
    field->name = parser->token;
    if (!Scan(parser, ":") || !ParseType(parser, field))
        return false;
    const bool hasScale = *parser->cursor == '*' || *parser->cursor == '/';
    if (hasScale ? !ParseScale(parser, field) : !ParseChoices(parser, field))
        return false;
    if (Scan(parser, " ")) {
        if (!Scan(parser, "*^;."))
            return false;
        field->unit = parser->token;
    }
    // Anything else is an error at this very character.
    return *parser->cursor == ';' || *parser->cursor == '\0';
}

// The entry that a text beginning with ";" continues: the first of its id. Null for none.
DLLD_RecId *FindContinued(int index, int16_t id, const std::string &text)
{
    if (text.empty() || text[0] != ';')
        return nullptr;
    for (int i = 0; i < index; i++)
        if (DLLD_paRecId[static_cast<size_t>(i)].id == id)
            return &DLLD_paRecId[static_cast<size_t>(i)];
    return nullptr;
}

} // namespace

int DLLD_ReduceStr(const uint8_t *bytes, size_t count, std::string *text)
{
    text->clear();
    // Some targets keep a character a byte, others one a word.
    const bool isPacked = count >= 2 && bytes[1] != 0;
    for (size_t i = 0; i < count; i += isPacked ? 1 : 2) {
        if (bytes[i] == 0)
            return 0;
        text->push_back(static_cast<char>(bytes[i]));
    }
    return -1;
}

int DLLD_CreateRecordDescriptor(const std::string &text, DLLD_Record *record, int *errorAt)
{
    Parser parser;
    parser.cursor = text.c_str();
    const char *const begin = parser.cursor;
    DLLD_Record read;
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
    const auto control = std::find_if(text.begin(), text.end(), isControl);
    // Length first: the token below is as long as the longest text.
    bool isGood = !text.empty() && text.size() < TOKEN_SIZE && control == text.end();
    *errorAt = static_cast<int>(control == text.end() ? 1 : control - text.begin() + 1);
    if (!isGood)
        return -1;
    isGood = Scan(&parser, "*^:;.");
    read.name = parser.token;
    while (isGood && *parser.cursor == ';') {
        parser.cursor++;
        read.fields.emplace_back();
        isGood = ParseField(&parser, &read.fields.back());
    }
    if (!isGood || *parser.cursor != '\0') {
        *errorAt = static_cast<int>(parser.cursor - begin) + 1;
        return -1;
    }
    *record = std::move(read);
    *errorAt = 0;
    return 0;
}

void DLLD_ClearRecIds()
{
    DLLD_paRecId.clear();
    DLLD_nDimARecId = 0;
    std::fill(std::begin(entryOfType), std::end(entryOfType), uint16_t(0));
}

int DLLD_SetRecId(int index, int16_t id, const std::string &text)
{
    if (index < 0 || index >= DLLD_RECIDS_MAX)
        return -1;
    if (index >= DLLD_nDimARecId) {
        DLLD_nDimARecId = index + 1;
        DLLD_paRecId.resize(static_cast<size_t>(index) + 1);
    }
    DLLD_RecId &entry = DLLD_paRecId[static_cast<size_t>(index)];
    entry = DLLD_RecId();
    entry.id = id;
    entry.text = text;
    const int result = DLLD_CreateRecordDescriptor(text, &entry.record, &entry.errorAt);
    entry.isGood = result == 0;
    DLLD_RecId *head = FindContinued(index, id, text);
    if (head != nullptr) {
        entry.isRest = true;
        // Without its end a description would show what follows at the wrong place.
        head->isGood = head->isGood && entry.isGood;
        head->record.fields.insert(head->record.fields.end(), entry.record.fields.begin(),
                                   entry.record.fields.end());
    } else if (id >= 0 && id <= UINT8_MAX && entryOfType[id] == 0) {
        entryOfType[id] = static_cast<uint16_t>(index + 1);
    }
    return result;
}

const DLLD_Record *DLLD_FindRecord(uint8_t type)
{
    if (entryOfType[type] == 0)
        return nullptr;
    const DLLD_RecId &entry = DLLD_paRecId[entryOfType[type] - 1u];
    return entry.isGood ? &entry.record : nullptr;
}
