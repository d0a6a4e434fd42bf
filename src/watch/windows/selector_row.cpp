#include "watch/windows/selector_row.h"

#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/typemap_list.h"
#include "text/words.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"

std::string SEL_AddressText(uint32_t address)
{
    if (!IsWordAddressing(Procesor))
        return TXT_Format("%06X", address);
    return TXT_Format("%06X%s", address / 2, address % 2 != 0 ? ".hi" : ""); // half of a word
}

std::string SEL_SizeText(int size)
{
    return size > 0 ? TXT_Format("%6d", size) : "";
}

std::string SEL_Column(int pixel, const std::string &text)
{
    return "\033p" + std::to_string(pixel) + "l" + text;
}

std::string SEL_TypeField(const std::string &expression)
{
    char type = 0;
    int size = 0;
    if (TMF_SuggestItem(expression.c_str(), &type, &size) != 0)
        return "";
    return type == 'f' ? "f" : type + std::to_string(size); // as the user would write it
}

bool SEL_CanWatch(const TMF_ListRow &row)
{
    return !row.hasParts || !SEL_TypeField(row.expression).empty();
}

std::string SEL_Describe(const TMF_ListRow &row)
{
    std::string text = row.expression;
    if (row.declaration != row.expression && !row.declaration.empty())
        text += ":  " + row.declaration;
    if (!SEL_CanWatch(row))
        return text + "  (Enter shows its members)";
    std::string field = SEL_TypeField(row.expression);
    if (field.empty())
        field = EDT_SuggestType(row.expression); // as adding it will
    if (row.expression[0] == '&' && field.size() > 1)
        field[1] = '4'; // whatever the name says
    return text + "  (adds as " + field + ")";
}

void SEL_AddToWatch(const std::string &expression, int panel, int messageControl)
{
    // By name: whatever an expression looks like, it came out of a table of names.
    const int line = EDT_AddByName(expression, SEL_TypeField(expression), EDT_AT_END);
    if (line < 0) {
        SetCtrlVal(panel, messageControl, EDT_ErrorText(line));
        return;
    }
    const LItem &item = aLItems[line];
    SetCtrlVal(panel, messageControl,
               "Added as line " + std::to_string(line + 1) + " of the watch list: " + expression +
                   ", " + item.type + std::to_string(item.size));
}
