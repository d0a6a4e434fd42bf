// A file is read whole and taken apart before it touches the list: whatever is wrong with it,
// the list is the old one or the new one.
#include "watch/list/list_file.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "comm/sysaddr.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/list/item_names.h"
#include "watch/list/list_layout.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"

namespace {

constexpr int LINE_FIELDS = 3;
constexpr int64_t FILE_SIZE_MAX = 4 << 20; // bytes; comments included
constexpr size_t BAD_LINES_NAMED = 10;     // of a file that is no debug file: all are bad

// The hexadecimal number behind "["; 0 without a digit, which *isNumber tells. *isGood: it is
// all that stands in the brackets and within the address range.
uint32_t BracketAddress(const std::string &field, bool *isNumber, bool *isGood)
{
    const char *digits = field.c_str() + 1;
    char *end = nullptr;
    const unsigned long long number = std::strtoull(digits, &end, 16);
    *isNumber = end != digits;
    end += std::strspn(end, " \t");
    *isGood = *isGood && *isNumber && number < ADDR_LIMIT && (*end == ']' || *end == '\0');
    return number > 0xFFFFFFFFull ? LITEM_NO_ADDRESS : static_cast<uint32_t>(number);
}

// The fields of one line, the "&" of a TMS320 line taken off.
struct LineFields {
    int count = 0;
    bool isTMS = false;
    int station = -1;
    std::string field[LINE_FIELDS];
};

// 1 with the fields, 0 for a line without any, -1 for one with too many.
int SplitLine(std::string line, LineFields *fields)
{
    line.resize(line.find(';') == std::string::npos ? line.size() : line.find(';'));
    std::string copy = line; // the prefix stays part of the first field
    fields->station = parseStationModifier(copy.data());
    if (!parseLine(line.c_str(), LINE_FIELDS, &fields->count, fields->field))
        return -1;
    if (fields->count == 0) // blank, or a comment only
        return 0;
    fields->isTMS = fields->field[0][0] == '&';
    if (fields->isTMS)
        fields->field[0].erase(0, 1);
    return 1;
}

// The item of a line. False when it gives none; *isGood is cleared when it gives one by
// falling back on something: an unknown type, half an address.
bool BuildItem(const LineFields &line, LItem *item, bool *isGood)
{
    *item = LItem();
    item->station = line.station;
    item->name = line.isTMS ? "&" : "";
    bool isNumber = false;
    if (line.field[0][0] == '[') {
        item->givenAddress = BracketAddress(line.field[0], &isNumber, isGood);
        if (!isNumber)
            return false;
    } else {
        item->name += line.field[0];
    }
    if (line.count == 3) {
        if (line.field[1][0] != '[')
            return false;
        item->givenAddress = BracketAddress(line.field[1], &isNumber, isGood);
        item->explicitAddress = 1;
    }
    const bool isAnonymous = line.field[0][0] == '[';
    const std::string &type = line.field[isAnonymous && line.count < 3 ? 1 : line.count - 1];
    VAL_SetFromField(item, type.c_str());
    item->address = item->givenAddress;
    // Only the first two characters of a type count, and "b4" says what it gives all the same.
    // "u3" and "q" do not.
    const VAL_TypeRow *row = VAL_FindType(type[0]);
    const bool isSizeOpen = TXT_Trim(type.substr(std::min<size_t>(1, type.size()), 1)).empty();
    const bool isTypeMeant =
        type.empty() || (row != nullptr &&
                         (row->onlySize != 0 || isSizeOpen || VAL_IsTypeField(type.substr(0, 2))));
    *isGood = *isGood && isTypeMeant;
    return line.count >= 2;
}

// A debug file as it was read, before it takes the list's place.
struct ReadFile {
    std::vector<LItem> items;
    LIT_FileLayout layout;
    std::vector<int> badLines; // their numbers, from 1
    bool isFull = false;       // more items than the list holds
};

// One line of the text: its item, if it gives one, and what kind of line it is.
LIT_FileLineKind ReadItemLine(const char *text, int number, ReadFile *file)
{
    LineFields line;
    LItem item;
    const int split = SplitLine(text, &line);
    if (split == 0)
        return LIT_FILE_OTHER;
    bool isGood = true;
    const bool isItem = split > 0 && BuildItem(line, &item, &isGood);
    if (isItem) {
        item.fileLine = static_cast<int32_t>(file->layout.lines.size());
        file->items.push_back(item);
    }
    if (!isItem || !isGood)
        file->badLines.push_back(number);
    // Also for a TMS320 line that gave no item: it then marks the item before it, and
    // lists written with that in mind must keep their sizes.
    if (line.isTMS && !file->items.empty())
        file->items.back().size = 4;
    return isItem ? LIT_FILE_ITEM : line.isTMS ? LIT_FILE_WIDENER : LIT_FILE_OTHER;
}

// Reads every line, those behind the last item that the list can hold for the layout only.
int ReadDebugFile(const std::string &path, ReadFile *file)
{
    if (PLT_ReadFile(path, FILE_SIZE_MAX, &file->layout.content) != PLT_FILE_OK)
        return LIT_FILE_ERR_OPEN;
    const std::string &content = file->layout.content;
    const int reader = TXFR_OpenMemory(content.data(), content.size());
    if (reader < 0)
        return LIT_FILE_ERR_OPEN;
    char text[LITEM_LINE_MAX + 1];
    int number = 1;
    for (;;) {
        const size_t begin = static_cast<size_t>(TXFR_GetFilePos(reader));
        const bool isRest = TXFR_IsBrokenLine(reader) == 1;
        const int length = TXFR_RdLine(reader, text, sizeof text);
        if (length < 0) {
            if (isRest && begin < content.size()) // dropped bytes at the end
                file->layout.lines.back().end = content.size();
            else if (begin < content.size())
                file->layout.lines.push_back({begin, content.size(), LIT_FILE_OTHER});
            break;
        }
        file->isFull = file->isFull || file->items.size() >= LITEMS_MAX;
        const LIT_FileLineKind kind =
            file->isFull ? LIT_FILE_OTHER : ReadItemLine(text, number, file);
        const long position = TXFR_GetFilePos(reader); // negative: the file ends here
        const size_t end = position < 0 ? content.size() : static_cast<size_t>(position);
        const bool isBroken = TXFR_IsBrokenLine(reader) == 1;
        if (isRest && length == 0) // the line's end alone, or what a NUL in it drops
            file->layout.lines.back().end = end;
        else
            file->layout.lines.push_back({begin, end, kind});
        number += isBroken ? 0 : 1;
    }
    return 0;
}

// "list.dbg: lines 3, 7 give no item or have a bad type or address."
std::string BadLinesText(const std::string &path, const std::vector<int> &lines)
{
    const size_t cut = path.find_last_of("/\\");
    std::string text = path.substr(cut == std::string::npos ? 0 : cut + 1) +
                       (lines.size() == 1 ? ": line " : ": lines ");
    for (size_t i = 0; i < lines.size() && i < BAD_LINES_NAMED; ++i)
        text += (i > 0 ? ", " : "") + std::to_string(lines[i]);
    if (lines.size() > BAD_LINES_NAMED)
        text += " and " + std::to_string(lines.size() - BAD_LINES_NAMED) + " more";
    return text + (lines.size() == 1 ? " gives" : " give") + " no item or a bad type or address.";
}

struct FileTime {
    int hour, minute, second;
};
FileTime lastSeen = {0, 0, 0}; // of the file of the present list

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
    while (std::isspace(static_cast<unsigned char>(*begin)))
        ++begin;
    if (*begin == '\0') {
        *count = 0;
        return 1;
    }
    while (true) {
        const char *end = begin + std::strcspn(begin, ",");
        if (found == maxFields)
            return 0;
        // Once more behind the cut: what is saved must be read as the same field.
        fields[found++] = TXT_Trim(TXT_Trim(std::string(begin, end)).substr(0, LITEM_FIELD_MAX));
        if (*end == '\0')
            break;
        begin = end + 1;
    }
    *count = found;
    return 1;
}

void getTypeLItem(int /*count*/, const char *typeField)
{
    VAL_SetFromField(&aLItems[nLItems], typeField);
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

int LIT_LoadFile(const std::string &path, bool (*mayEmpty)(const std::string &path))
{
    ReadFile file;
    const int result = ReadDebugFile(path, &file);
    if (result != 0)
        return result;
    if (file.items.empty() && nLItems > 0 && mayEmpty != nullptr && !mayEmpty(path))
        return LIT_FILE_ERR_KEPT;
    LIT_RememberFileStamp(path);
    nLItems = static_cast<int>(file.items.size());
    std::move(file.items.begin(), file.items.end(), aLItems);
    LIT_SetLayout(std::move(file.layout));
    for (int i = 0; i < nLItems; ++i)
        aLItems[i].comment = LIT_FileComment(aLItems[i].fileLine);
    // The items that fit stay as they are in the file, and the box says why they are not all.
    if (file.isFull) {
        MessagePopup("Error", LIT_FULL);
        return 0;
    }
    openLItems = 1;
    if (openStruct166)
        completeLItems(aVarNode166, nNodes166);
    if (openStruct)
        completeLItems(aVarNode, nNodes);
    if (openTMSStruct)
        completeTMSLItems(aVarTMSNode, nTMSNodes);
    readLItems = 0;
    if (!file.badLines.empty())
        VR_ShowMessage(BadLinesText(path, file.badLines), WIN_TOPIC_LIST);
    return 0;
}

int dat2litems(const char *path)
{
    return LIT_LoadFile(path, nullptr);
}

void LIT_RememberFileStamp(const std::string &path)
{
    ReadTime(path, &lastSeen);
}

int IsDbgFileChanged()
{
    FileTime time;
    if (!ReadTime(szDebugFileName, &time))
        return 0;
    // Remembered whatever the answer: who was asked once is not asked about the same change.
    const bool isSame = time.hour == lastSeen.hour && time.minute == lastSeen.minute &&
                        time.second == lastSeen.second;
    lastSeen = time;
    return isSame ? 0 : 1;
}

int LIT_WriteFile(const std::string &path)
{
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    const std::string text = LIT_ComposeFile(LIT_FileLine);
    if (std::fwrite(text.data(), 1, text.size(), safe.file) != text.size()) {
        PLT_CancelSave(&safe);
        return -2;
    }
    return PLT_CommitSave(&safe) == 0 ? 0 : -2;
}

std::string LIT_FileLine(const LItem &item)
{
    return LIT_LabelAndPlace(item) + ", " + VAL_TypeField(item);
}
