// Names follow a convention with a short type prefix behind an optional module prefix
// ("DLLD_wCount", "abyBuf"): where no type map knows a name, its prefix says the type.
#include "watch/list/typed_item.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>

#include "comm/sysaddr.h"
#include "symbols/typemap_list.h"
#include "text/words.h"
#include "watch/list/item_names.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"

namespace {

constexpr int PREFIXES_MAX = 6;

// The first group that matches counts: a prefix is found only with a capital, "_" or nothing
// behind it, so that "n" does not take what "nn" or "nx" stands for.
struct TypeGroup {
    const char *prefixes[PREFIXES_MAX]; // ends at the first null
    char type;
    const char *keptTypes; // an item that has one of these keeps it
    int size;
};
const TypeGroup groups[] = {
    {{"by", "aby", "u1", "au1"}, 'u', "pxb", 1},
    {{"i1", "ai1", "c", "ac"}, 'i', "pxb", 1},
    {{"w", "aw", "u2", "au2"}, 'u', "px", 2},
    {{"n", "an", "i2", "ai2"}, 'i', "px", 2},
    {{"dw", "adw", "u4", "au4", "wx", "awx"}, 'u', "px", 4},
    {{"nn", "ann", "i4", "ai4", "nx", "anx"}, 'i', "px", 4},
    {{"f", "af", "f4", "af4"}, 'f', "", 4},
};

bool IsUpper(char c)
{
    return std::isupper(static_cast<unsigned char>(c)) != 0;
}

// Where the type prefix begins: a lower-case letter at the start or right after an
// underscore. Null when the module prefix ends elsewhere.
const char *TypePrefix(const char *name)
{
    const char *c = name;
    for (; *c != '\0'; ++c) {
        const auto letter = static_cast<unsigned char>(*c);
        const bool isFirst = c == name || c[-1] == '_';
        const bool isInRun =
            IsUpper(*c) || std::isdigit(letter) || *c == '_' || (std::islower(letter) && !isFirst);
        if (!isInRun)
            break;
    }
    return c == name || c[-1] == '_' ? c : nullptr;
}

// A name must survive a debug file: one field, no comment, no address form.
bool IsName(const std::string &name)
{
    const size_t start = !name.empty() && name[0] == '&';
    if (name.size() <= start || name.size() > LITEM_FIELD_MAX || name[start] == '[' ||
        name[start] == ' ')
        return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return c == ',' || c == ';' || std::iscntrl(static_cast<unsigned char>(c));
    });
}

// "[1F00]", "$1F00" and "0x1F00". Whether the text has one of these forms.
bool IsAddressText(std::string text, uint32_t *address)
{
    if (text.empty() || !std::strchr("[$0", text[0]))
        return false;
    if (text[0] == '[') { // as a debug file has it: always hexadecimal, with "0x" or without
        if (text.back() == ']')
            text.pop_back();
        text.replace(0, 1, text.size() > 2 && (text[2] == 'x' || text[2] == 'X') ? "" : "$");
    }
    *address = GetSysAddrWk(text.c_str());
    return true;
}

} // namespace

const char *EDT_ErrorText(int result)
{
    switch (result) {
    case EDT_ERR_INDEX:
        return LIT_NO_LINE;
    case EDT_ERR_FULL:
        return LIT_FULL;
    case EDT_ERR_NAME:
        return "A name has 1 to 120 characters, no comma or semicolon, and does not begin with "
               "\"[\".";
    case EDT_ERR_TYPE:
        return "The type is b, f, t, or one of i, u, x, p with a size of 1, 2, 4 or 8 bytes; "
               "TMS320 items have 4 bytes.";
    case EDT_ERR_ADDRESS:
        return "The address must be a hexadecimal number below 0x1000000.";
    case EDT_ERR_COMMENT:
        return "The comment is too long for a line of the watch list's file.";
    case EDT_ERR_NOTHING:
        return "There is nothing to undo or to redo.";
    default:
        return "";
    }
}

int EDT_Parse(const std::string &text, const std::string &typeField, LItem *item)
{
    const std::string what = TXT_Trim(text);
    const bool isTMS = !what.empty() && what[0] == '&';
    uint32_t address;
    if (!IsAddressText(what.substr(isTMS), &address))
        return EDT_ParseName(what, typeField, item);
    if (address >= ADDR_LIMIT) // also what is no number behind such a mark
        return EDT_ERR_ADDRESS;
    LItem built;
    built.name = isTMS ? "&" : "";
    built.address = built.givenAddress = address;
    const int result = EDT_ApplyType(&built, typeField);
    if (result == 0)
        *item = built;
    return result;
}

int EDT_ParseName(const std::string &text, const std::string &typeField, LItem *item)
{
    LItem built;
    built.name = TXT_Trim(text);
    if (!IsName(built.name))
        return EDT_ERR_NAME;
    std::string prefix = built.name; // which stays a part of the name, as in a debug file
    built.station = parseStationModifier(prefix.data());
    LIT_Resolve(&built);
    const int result = EDT_ApplyType(&built, typeField);
    if (result == 0)
        *item = built;
    return result;
}

int EDT_ApplyType(LItem *item, const std::string &typeField)
{
    const std::string field = typeField.empty() ? EDT_SuggestType(item->name) : typeField;
    const bool isTMS = LIT_IsTMS(*item);
    if (!VAL_IsTypeField(field) || (isTMS && !VAL_FindType(field[0])->isForTMS))
        return EDT_ERR_TYPE;
    VAL_SetFromField(item, field.c_str());
    if (isTMS) // its mailbox moves whole words of 32 bits
        item->size = 4;
    return 0;
}

std::string EDT_TypeField(const LItem &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    const bool isOneSize = row != nullptr && row->onlySize != 0;
    return isOneSize ? std::string(1, item.type) : item.type + std::to_string(item.size);
}

std::string EDT_SuggestType(const std::string &name)
{
    std::string member = name;
    parseStationModifier(member.data());
    member = member.c_str(); // what the prefix has left behind goes
    if (!member.empty() && member[0] == '&')
        member.erase(0, 1);
    LItem known;
    if (TMF_SuggestItem(member.c_str(), &known.type, &known.size) == 0)
        return EDT_TypeField(known);
    // "rec.aItems[3].wCount + 2": the name that counts is the last member's.
    member.resize(std::min(member.find_first_of(" +-["), member.size()));
    const size_t dot = member.rfind('.');
    LItem item;
    DetectTypeByName(&item, member.c_str() + (dot == std::string::npos ? 0 : dot + 1));
    return EDT_TypeField(item);
}

int DetectTypeByName(LItem *item, const char *name)
{
    for (const TypeGroup &group : groups) {
        const bool isMatch = std::any_of(
            std::begin(group.prefixes), std::end(group.prefixes),
            [name](const char *prefix) { return prefix != nullptr && is_id_type(name, prefix); });
        if (!isMatch)
            continue;
        if (!std::strchr(group.keptTypes, item->type))
            item->type = group.type;
        item->size = group.size;
        return 1;
    }
    return 0;
}

int is_id_type(const char *name, const char *prefix)
{
    const size_t length = std::strlen(prefix);
    const char *start = TypePrefix(name);
    if (!start || length == 0 || std::strncmp(start, prefix, length) != 0)
        return 0;
    const char next = start[length];
    return next == '\0' || next == '_' || IsUpper(next);
}
