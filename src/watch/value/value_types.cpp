#include "watch/value/value_types.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/value/format.h"
#include "watch/value/parse.h"

namespace {

const char INTEGER_FORM[] = "a decimal number, or hexadecimal as 0x1F or 1Fh";
constexpr int DURATION_BYTES = 3; // the fourth is none of its minutes and stays as it is
constexpr int SIZE_DEFAULT = 2;
const char SIZES[] = "1248";
const char NO_VALUE[] = "-";
constexpr int BITS_PER_LINE = 32; // of a binary text

} // namespace

// By row: letter, name, its only size, what a debug file writes and a TMS320 can have, the
// plain form, then how it is shown, typed, ranged and written.
// clang-format off
const VAL_TypeRow VAL_aTypeRows[] = {
    {'i', "signed", 0, true, true, 'i', "int:  ",
     VAL_FormatSigned, VAL_ParseInteger, INTEGER_FORM, nullptr, 0, 'i'},
    {'u', "unsigned", 0, true, true, 'u', "uns:  ",
     VAL_FormatUnsigned, VAL_ParseInteger, INTEGER_FORM, nullptr, 0, 'u'},
    {'x', "hexadecimal", 0, true, true, 'x', "hex:  ",
     VAL_FormatHex, VAL_ParseInteger, "a hexadecimal number", nullptr, 0, 'x'},
    {'b', "bits", 1, true, false, 'x', "hex:  ",
     VAL_FormatBits, VAL_ParseBits, "eight binary digits, or hexadecimal as 0x5C or 5Ch", "0000 0000 to 1111 1111", 0, 'b'},
    {'f', "float", 4, false, true, 'f', "float:",
     VAL_FormatFloat, VAL_ParseFloat, "a decimal number", "-3.40282e+38 to 3.40282e+38", 0, 'f'},
    {'p', "rate", 0, true, true, 'u', "uns p:",
     VAL_FormatRate, VAL_ParseInteger, INTEGER_FORM, nullptr, 0, 'u'},
    {'t', "days, hours, min", 4, false, true, 'u', "uns t:",
     VAL_FormatDuration, VAL_ParseDuration, "minutes, or days, hours and minutes as 1d 2h 3m",
     "0 to 16777215 minutes (11650d 20h 15m)", DURATION_BYTES, 't'},
};
// clang-format on
const int VAL_cnTypeRows = sizeof VAL_aTypeRows / sizeof VAL_aTypeRows[0];

const VAL_TypeRow *VAL_FindType(char letter)
{
    for (const VAL_TypeRow &row : VAL_aTypeRows)
        if (row.letter == letter)
            return &row;
    return nullptr;
}

bool VAL_IsTypeField(const std::string &field)
{
    const VAL_TypeRow *row = field.empty() ? nullptr : VAL_FindType(field[0]);
    if (row == nullptr)
        return false;
    if (row->onlySize != 0) // may stand there, but need not: "f" and "f4"
        return field.size() == 1 || field.substr(1) == std::to_string(row->onlySize);
    // strchr would find the NUL as well.
    return field.size() == 2 && field[1] != '\0' && std::strchr(SIZES, field[1]) != nullptr;
}

void VAL_SetFromField(LItem *item, const char *field)
{
    // Lists written by hand have stray letters and sizes: these lines keep a value to look at.
    const VAL_TypeRow *row = VAL_FindType(*field);
    item->type = row != nullptr ? row->letter : 'i';
    item->size = SIZE_DEFAULT;
    if (row != nullptr && row->onlySize != 0)
        item->size = row->onlySize;
    else if (row != nullptr && field[1] != '\0' && std::strchr(SIZES, field[1]) != nullptr)
        item->size = field[1] - '0';
}

std::string VAL_TypeField(const LItem &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    const bool isSizeSaved = row == nullptr || row->isSizeSaved;
    return item.type + (isSizeSaved ? std::to_string(item.size) : "");
}

int FormatLItemVal(std::string *text, const LItem &item)
{
    char buffer[VAL_TEXT_MAX] = "";
    const VAL_TypeRow *row = VAL_FindType(item.type);
    if (row != nullptr)
        row->format(buffer, item);
    *text += buffer;
    return static_cast<int>(std::strlen(buffer));
}

std::string VAL_DecimalForm(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    const VAL_TypeRow *row = VAL_FindType(item.type);
    const char form = row != nullptr ? row->plainForm : 'u';
    if (form == 'f')
        return VAL_FloatForm(item);
    return form == 'i' ? std::to_string(LIT_SignedBits(item)) : std::to_string(LIT_Bits(item));
}

std::string VAL_FloatForm(const LItem &item)
{
    if (!item.isValueGood || item.size != 4)
        return NO_VALUE;
    char text[40];
    // Nine digits: every single has a text of its own, and what is typed back is the same bits.
    std::snprintf(text, sizeof text, "%.9g", VAL_FloatOf(item));
    return text;
}

std::string VAL_HexForm(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*" PRIX64, 2 * item.size, LIT_Bits(item));
    return text;
}

std::string VAL_BinaryForm(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    const uint64_t bits = LIT_Bits(item);
    std::string text;
    for (int bit = 8 * item.size - 1; bit >= 0; --bit) {
        text += (bits >> bit & 1) != 0 ? '1' : '0';
        if (bit != 0 && bit % 4 == 0)
            text += bit % BITS_PER_LINE == 0 ? '\n' : ' ';
    }
    return text;
}
