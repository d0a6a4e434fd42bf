#include "watch/value/type_names.h"

const TYN_Row TYN_aRows[] = {
    {'i', "signed", 0}, {'u', "unsigned", 0}, {'x', "hexadecimal", 0},      {'b', "bits", 1},
    {'f', "float", 4},  {'p', "rate", 0},     {'t', "days, hours, min", 4},
};
const int TYN_cnRows = sizeof TYN_aRows / sizeof TYN_aRows[0];

const TYN_Row *TYN_Find(char type)
{
    for (const TYN_Row &row : TYN_aRows)
        if (row.type == type)
            return &row;
    return nullptr;
}
