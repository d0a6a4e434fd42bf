#include "watch/list/list_file.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "comm/sysaddr.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"

namespace {

constexpr int LINE_FIELDS = 3;

bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::string Trimmed(const char *begin, const char *end)
{
    return WRD_Trim(std::string(begin, end)).substr(0, LITEM_FIELD_MAX);
}

// The hexadecimal number behind "["; 0 without a digit, which *isNumber tells.
uint32_t BracketAddress(const std::string &field, bool *isNumber)
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

bool SplitLine(std::string line, LineFields *fields)
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
bool BuildItem(const LineFields &line)
{
    LItem &item = aLItems[nLItems];
    item = LItem();
    item.station = line.station;
    item.name = line.isTMS ? "&" : "";
    bool isNumber = false;
    if (line.field[0][0] == '[') {
        item.givenAddress = BracketAddress(line.field[0], &isNumber);
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
        item.givenAddress = BracketAddress(line.field[1], &isNumber);
        item.explicitAddress = 1;
        getTypeLItem(line.count, line.field[2].c_str());
    }
    item.address = item.givenAddress;
    return line.count >= 2;
}

void TakeLine(const char *text)
{
    LineFields line;
    if (!SplitLine(text, &line))
        return;
    if (BuildItem(line))
        ++nLItems;
    // Also for a TMS320 line that gave no item: it then marks the item before it, and
    // lists written with that in mind must keep their sizes.
    if (line.isTMS && nLItems > 0)
        aLItems[nLItems - 1].size = 4;
}

struct FileTime {
    int hour, minute, second;
};
FileTime lastSeen = {0, 0, 0};

bool ReadTime(const std::string &path, FileTime *time)
{
    PLT_FileStamp stamp;
    if (path.empty() || PLT_GetFileStamp(path, &stamp) != 0)
        return false;
    *time = {stamp.hour, stamp.minute, stamp.second};
    return true;
}

} // namespace

int parseLine(const char *line, int maxFields, int *count, std::string *fields)
{
    int found = 0;
    const char *begin = line;
    while (*begin != '\0' && IsSpace(*begin))
        ++begin;
    if (*begin == '\0') {
        *count = 0;
        return 1;
    }
    while (true) {
        const char *end = begin + std::strcspn(begin, ",");
        if (found == maxFields)
            return 0;
        fields[found++] = Trimmed(begin, end);
        if (*end == '\0')
            break;
        begin = end + 1;
    }
    *count = found;
    return 1;
}

void getTypeLItem(int /*count*/, const char *typeField)
{
    VTY_SetFromField(&aLItems[nLItems], typeField);
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
        TakeLine(line);
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

void DBG_RememberStamp(const std::string &path)
{
    ReadTime(path, &lastSeen);
}

int IsDbgFileChanged()
{
    FileTime time;
    if (!ReadTime(szDebugFileName, &time))
        return 0;
    const bool isSame = time.hour == lastSeen.hour && time.minute == lastSeen.minute &&
                        time.second == lastSeen.second;
    lastSeen = time;
    return isSame ? 0 : 1;
}

int DBG_WriteFile(const std::string &path)
{
    SafeFile safe;
    if (SAF_Open(&safe, path, "wb") != 0)
        return -1;
    bool isWritten = true;
    for (int i = 0; i < nLItems; ++i) {
        const std::string line = LIT_FileLine(aLItems[i]) + "\r\n";
        isWritten &= std::fwrite(line.data(), 1, line.size(), safe.file) == line.size();
    }
    if (!isWritten) {
        SAF_Cancel(&safe);
        return -2;
    }
    return SAF_Commit(&safe) == 0 ? 0 : -2;
}

std::string LIT_FileLine(const LItem &item)
{
    return LIT_LabelAndPlace(item) + ", " + VTY_Field(item);
}
