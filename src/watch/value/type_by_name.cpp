// The type of a variable from the prefix of its name: names follow a convention with a
// short type prefix behind an optional module prefix ("DLLD_wCount", "abyBuf").
#include <cctype>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

constexpr int PREFIXES_MAX = 6;

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

bool isUpper(char c)
{
    return std::isupper(static_cast<unsigned char>(c)) != 0;
}

bool isLower(char c)
{
    return std::islower(static_cast<unsigned char>(c)) != 0;
}

// Where the type prefix begins: a lower-case letter at the start or right after an
// underscore. Null when the module prefix ends elsewhere.
const char *typePrefix(const char *name)
{
    const char *c = name;
    for (; *c != '\0'; ++c) {
        const bool isFirst = c == name || c[-1] == '_';
        const bool isInRun = isUpper(*c) || std::isdigit(static_cast<unsigned char>(*c)) ||
                             *c == '_' || (isLower(*c) && !isFirst);
        if (!isInRun)
            break;
    }
    return c == name || c[-1] == '_' ? c : nullptr;
}

bool isInGroup(const TypeGroup &group, const char *name)
{
    for (const char *prefix : group.prefixes) {
        if (prefix && is_id_type(name, prefix))
            return true;
    }
    return false;
}

} // namespace

int is_id_type(const char *name, const char *prefix)
{
    const size_t length = std::strlen(prefix);
    const char *start = typePrefix(name);
    if (!start || length == 0 || std::strncmp(start, prefix, length) != 0)
        return 0;
    const char next = start[length];
    return next == '\0' || next == '_' || isUpper(next);
}

int DetectTypeByName(LItem *item, const char *name)
{
    for (const TypeGroup &group : groups) {
        if (!isInGroup(group, name))
            continue;
        if (!std::strchr(group.keptTypes, item->type))
            item->type = group.type;
        item->size = group.size;
        return 1;
    }
    return 0;
}
