#include "watch/list/litem.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "watch/list/debug_file.h"

LItem aLItems[LITEMS_MAX];
int nLItems = 0;
int openLItems = 0;
int readLItems = 0;

namespace {

constexpr int LINE_FIELDS = 3;

bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isAnonymous(const LItem &item)
{
    return item.name.empty() || item.name == "&";
}

// An item whose address is forgotten for now keeps the one it was given.
uint32_t addressToKeep(const LItem &item)
{
    return item.address != LITEM_NO_ADDRESS ? item.address : item.givenAddress;
}

std::string trimmed(const char *begin, const char *end)
{
    while (begin < end && isSpace(*begin))
        ++begin;
    while (begin < end && isSpace(end[-1]))
        --end;
    std::string field(begin, static_cast<size_t>(end - begin));
    if (field.size() > LITEM_FIELD_MAX)
        field.resize(LITEM_FIELD_MAX);
    return field;
}

// The hexadecimal number behind "["; 0 without a digit, which *isNumber tells.
uint32_t bracketAddress(const std::string &field, bool *isNumber)
{
    const char *digits = field.c_str() + 1;
    char *end = nullptr;
    const unsigned long long number = std::strtoull(digits, &end, 16);
    *isNumber = end != digits;
    return number > 0xFFFFFFFFull ? LITEM_NO_ADDRESS : static_cast<uint32_t>(number);
}

// The fields of one line, the "&" of a TMS320 line taken off.
struct LineFields {
    int count = 0;
    bool isTMS = false;
    int station = -1;
    std::string field[LINE_FIELDS];
};

bool splitLine(std::string line, LineFields *fields)
{
    line.resize(line.find(';') == std::string::npos ? line.size() : line.find(';'));
    std::string copy = line; // the prefix stays part of the first field
    fields->station = parseStationModifier(copy.data());
    if (!parseLine(line.c_str(), LINE_FIELDS, &fields->count, fields->field) || !fields->count)
        return false;
    fields->isTMS = fields->field[0][0] == '&';
    if (fields->isTMS)
        fields->field[0].erase(0, 1);
    return true;
}

// Builds the item at nLItems from the fields. Whether the line gives an item.
bool buildItem(const LineFields &line)
{
    LItem &item = aLItems[nLItems];
    item = LItem();
    item.station = line.station;
    item.name = line.isTMS ? "&" : "";
    bool isNumber = false;
    if (line.field[0][0] == '[') {
        item.givenAddress = bracketAddress(line.field[0], &isNumber);
        if (!isNumber)
            return false;
        getTypeLItem(line.count, line.field[1].c_str());
    } else {
        item.name += line.field[0];
        getTypeLItem(line.count, line.field[line.count - 1].c_str());
    }
    if (line.count == 3) {
        if (line.field[1][0] != '[')
            return false;
        item.givenAddress = bracketAddress(line.field[1], &isNumber);
        item.explicitAddress = 1;
        getTypeLItem(line.count, line.field[2].c_str());
    }
    item.address = item.givenAddress;
    return line.count >= 2;
}

void takeLine(const char *text)
{
    LineFields line;
    if (!splitLine(text, &line))
        return;
    if (buildItem(line))
        ++nLItems;
    // Also for a TMS320 line that gave no item: it then marks the item before it, and
    // lists written with that in mind must keep their sizes.
    if (line.isTMS && nLItems > 0)
        aLItems[nLItems - 1].size = 4;
}

// Looks a name up in one table. A found name replaces an address that was given; an
// address that was forgotten comes back when the table does not know the name.
void resolve(LItem *item, const VarNode *nodes, int count)
{
    const uint32_t address = inStruct(item->name.c_str(), nodes, count);
    if (address != LITEM_NO_ADDRESS) {
        item->address = address;
        item->explicitAddress = 0;
        item->givenAddress = LITEM_NO_ADDRESS;
    } else if (item->address == LITEM_NO_ADDRESS && item->givenAddress != LITEM_NO_ADDRESS) {
        item->address = item->givenAddress;
        item->explicitAddress = !isAnonymous(*item);
    }
}

void complete(const VarNode *nodes, int count, bool isTMS)
{
    for (int i = 0; i < nLItems; ++i) {
        if (LIT_IsTMS(aLItems[i]) == isTMS)
            resolve(&aLItems[i], nodes, count);
    }
}

} // namespace

int parseLine(const char *line, int maxFields, int *count, std::string *fields)
{
    int found = 0;
    const char *begin = line;
    while (*begin != '\0' && isSpace(*begin))
        ++begin;
    if (*begin == '\0') {
        *count = 0;
        return 1;
    }
    while (true) {
        const char *end = begin + std::strcspn(begin, ",");
        if (found == maxFields)
            return 0;
        fields[found++] = trimmed(begin, end);
        if (*end == '\0')
            break;
        begin = end + 1;
    }
    *count = found;
    return 1;
}

void LIT_SetType(LItem *item, const char *typeField)
{
    item->type = 'i';
    item->size = 2;
    if (*typeField == '\0' || !std::strchr("bftiuxp", *typeField))
        return;
    item->type = *typeField;
    if (item->type == 'b')
        item->size = 1;
    else if (item->type == 'f' || item->type == 't')
        item->size = 4;
    else if (typeField[1] != '\0' && std::strchr("1248", typeField[1]))
        item->size = typeField[1] - '0';
}

void getTypeLItem(int /*count*/, const char *typeField)
{
    LIT_SetType(&aLItems[nLItems], typeField);
}

int parseStationModifier(char *text)
{
    const char *cursor = text;
    const int station = GetStationModifier(&cursor);
    if (station < 0 || station > STATION_MAX)
        return -1;
    std::memmove(text, cursor, std::strlen(cursor) + 1);
    return station;
}

int dat2litems(const char *path)
{
    const int file = TXFR_Open(path);
    if (file < 0)
        return -2;
    DBG_RememberStamp(path);
    nLItems = 0;
    char line[LITEM_LINE_MAX + 1];
    while (TXFR_RdLine(file, line, sizeof line) >= 0) {
        if (nLItems >= LITEMS_MAX) {
            TXFR_Close(file);
            MessagePopup("Error", "Too many debug vars.");
            return 0;
        }
        takeLine(line);
    }
    openLItems = 1;
    if (openStruct166)
        completeLItems(aVarNode166, nNodes166);
    if (openStruct)
        completeLItems(aVarNode, nNodes);
    if (openTMSStruct)
        completeTMSLItems(aVarTMSNode, nTMSNodes);
    readLItems = 0;
    return 0;
}

void LIT_Resolve(LItem *item)
{
    if (openStruct166 && !LIT_IsTMS(*item))
        resolve(item, aVarNode166, nNodes166);
    if (openStruct && !LIT_IsTMS(*item))
        resolve(item, aVarNode, nNodes);
    if (openTMSStruct && LIT_IsTMS(*item))
        resolve(item, aVarTMSNode, nTMSNodes);
}

void LIT_ResolveAll(bool isTMS)
{
    for (int i = 0; i < nLItems; ++i) {
        LItem &item = aLItems[i];
        if (LIT_IsTMS(item) != isTMS)
            continue;
        const uint32_t before = item.address;
        item.address = item.givenAddress;
        item.explicitAddress = item.address != LITEM_NO_ADDRESS && !isAnonymous(item);
        LIT_Resolve(&item);
        item.isValueGood &= item.address == before;
    }
}

void completeLItems(const VarNode *nodes, int count)
{
    complete(nodes, count, false);
}

void completeTMSLItems(const VarNode *nodes, int count)
{
    complete(nodes, count, true);
}

void CleanLItems()
{
    for (int i = 0; i < nLItems; ++i) {
        aLItems[i].address = LITEM_NO_ADDRESS;
        aLItems[i].explicitAddress = 0;
        aLItems[i].isValueGood = false; // what was read elsewhere gives no rate
    }
}

bool LIT_IsTMS(const LItem &item)
{
    return !item.name.empty() && item.name[0] == '&';
}

bool LIT_HasAddress(const LItem &item)
{
    return item.address < ADDR_LIMIT;
}

std::string LIT_Label(const LItem &item)
{
    if (!isAnonymous(item))
        return item.name;
    char place[24];
    std::snprintf(place, sizeof place, "[0x%X]", addressToKeep(item));
    return item.name + place;
}

std::string LIT_FileLine(const LItem &item)
{
    std::string line = LIT_Label(item);
    const bool isForgotten = item.address == LITEM_NO_ADDRESS;
    if (!isAnonymous(item) &&
        (item.explicitAddress || (isForgotten && item.givenAddress != LITEM_NO_ADDRESS))) {
        char place[24];
        std::snprintf(place, sizeof place, ", [0x%X]", addressToKeep(item));
        line += place;
    }
    line += ", ";
    line += item.type;
    if (item.type != 't' && item.type != 'f')
        line += std::to_string(item.size);
    return line;
}
