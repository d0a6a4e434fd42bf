#include "watch/value/value_types.h"

#include <cstring>

#include "watch/list/litem.h"
#include "watch/value/format.h"
#include "watch/value/parse.h"

namespace {

const char INTEGER_FORM[] = "a decimal number, or hexadecimal as 0x1F or 1Fh";
constexpr int DURATION_BYTES = 3; // the fourth is none of its minutes and stays as it is
constexpr int SIZE_DEFAULT = 2;
const char SIZES[] = "1248";

} // namespace

// clang-format off
const VTY_Row VTY_aRows[] = {
    {'i', "signed", 0, true, true, 'i', "int:  ",
     FMT_Signed, PRS_Integer, INTEGER_FORM, PRS_SignedRange, 0, 'i'},
    {'u', "unsigned", 0, true, true, 'u', "uns:  ",
     FMT_Unsigned, PRS_Integer, INTEGER_FORM, PRS_UnsignedRange, 0, 'u'},
    {'x', "hexadecimal", 0, true, true, 'x', "hex:  ",
     FMT_Hex, PRS_Integer, "a hexadecimal number", PRS_HexRange, 0, 'x'},
    {'b', "bits", 1, true, false, 'x', "hex:  ",
     FMT_Bits, PRS_Bits, "eight binary digits, or hexadecimal as 0x5C or 5Ch", PRS_BitRange, 0, 'b'},
    {'f', "float", 4, false, true, 'f', "float:",
     FMT_Float, PRS_Float, "a decimal number", PRS_FloatRange, 0, 'f'},
    {'p', "rate", 0, true, true, 'u', "uns p:",
     FMT_Rate, PRS_Integer, INTEGER_FORM, PRS_UnsignedRange, 0, 'u'},
    {'t', "days, hours, min", 4, false, true, 'u', "uns t:",
     FMT_Duration, PRS_Duration, "minutes, or days, hours and minutes as 1d 2h 3m",
     PRS_DurationRange, DURATION_BYTES, 't'},
};
// clang-format on
const int VTY_cnRows = sizeof VTY_aRows / sizeof VTY_aRows[0];

const VTY_Row *VTY_Find(char letter)
{
    for (const VTY_Row &row : VTY_aRows)
        if (row.letter == letter)
            return &row;
    return nullptr;
}

bool VTY_IsField(const std::string &field)
{
    const VTY_Row *row = field.empty() ? nullptr : VTY_Find(field[0]);
    if (row == nullptr)
        return false;
    if (row->onlySize != 0)
        return field.size() == 1 || field.substr(1) == std::to_string(row->onlySize);
    return field.size() == 2 && field[1] != '\0' && std::strchr(SIZES, field[1]) != nullptr;
}

void VTY_SetFromField(LItem *item, const char *field)
{
    const VTY_Row *row = VTY_Find(*field);
    item->type = row != nullptr ? row->letter : 'i';
    item->size = SIZE_DEFAULT;
    if (row != nullptr && row->onlySize != 0)
        item->size = row->onlySize;
    else if (row != nullptr && field[1] != '\0' && std::strchr(SIZES, field[1]) != nullptr)
        item->size = field[1] - '0';
}

std::string VTY_Field(const LItem &item)
{
    const VTY_Row *row = VTY_Find(item.type);
    const bool isSizeSaved = row == nullptr || row->isSizeSaved;
    return item.type + (isSizeSaved ? std::to_string(item.size) : "");
}

int FormatLItemVal(std::string *text, const LItem &item)
{
    char buffer[FMT_TEXT_MAX] = "";
    const VTY_Row *row = VTY_Find(item.type);
    if (row != nullptr)
        row->format(buffer, item);
    *text += buffer;
    return static_cast<int>(std::strlen(buffer));
}
