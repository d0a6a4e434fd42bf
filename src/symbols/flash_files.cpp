#include "symbols/flash_files.h"

#include "comm/ucm.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/txfrw.h"
#include "text/xscan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char SIGNATURE[] = "MFSv1.00;";
constexpr char TRAILER_SIGNATURE[] = "MFSv1.00.";
constexpr size_t SIGNATURE_SIZE = 9;
constexpr size_t FLAGS_AT = 15;
constexpr size_t NAME_AT = 16;
constexpr uint32_t PROBE_SIZE = 48; // a trailer and what follows it
constexpr uint32_t RANGE_MIN = 65;
constexpr uint8_t ERASED = 0xFF;
constexpr uint32_t LOAD_BLOCK = 1024; // bytes between two signs of progress

int readTarget(uint32_t address, uint32_t count, void *buffer)
{
    return UCM_Read(STATION, address, count, buffer);
}

struct FileInfo {
    std::string name;
    int32_t length = -1;
    uint8_t flags = MFS_FLAGS_BAD;
};

bool isSame(const FileInfo &a, const FileInfo &b)
{
    return a.name == b.name && a.length == b.length;
}

bool parseInfo(const uint8_t *bytes, const char *signature, FileInfo *info)
{
    char text[MFS_HEADER_SIZE + 1]; // the scanner needs its NUL
    std::memcpy(text, bytes, MFS_HEADER_SIZE);
    text[MFS_HEADER_SIZE] = '\0';
    const char *cursor = text + SIGNATURE_SIZE;
    if (std::memcmp(bytes, signature, SIGNATURE_SIZE) != 0 || xscan("@@6#0-9A-F.", &cursor) < 0)
        return false;
    const char *name = text + NAME_AT;
    cursor = name;
    const int length = xscan("*@16#A-Za-z0-9_/-/..", &cursor);
    const uint8_t *const end = bytes + MFS_HEADER_SIZE;
    if (length < 1 || length > MFS_NAME_MAX ||
        std::any_of(bytes + NAME_AT + length, end, [](uint8_t byte) { return byte != ERASED; }))
        return false;
    cursor = name;
    if (xscan("/.^#A-Za-z0-9_/-/..", &cursor) > 0 || xscan("/./.", &cursor) > 0)
        return false; // "." and names that begin with ".."
    info->name.assign(name, static_cast<size_t>(length));
    info->flags = bytes[FLAGS_AT];
    // The six digits end where the flags begin, which may look like a seventh.
    text[FLAGS_AT] = '\0';
    info->length = static_cast<int32_t>(std::strtol(text + SIGNATURE_SIZE, nullptr, 16));
    return true;
}

// Reads and checks one header or trailer. 0 or a negative code.
int readInfo(uint32_t address, const char *signature, FileInfo *info)
{
    uint8_t bytes[MFS_HEADER_SIZE];
    if (MFS_reader(address, MFS_HEADER_SIZE, bytes) < 0)
        return MFS_ERR_COMMUNICATION;
    return parseInfo(bytes, signature, info) ? 0 : -1;
}

// The next header at or shortly behind *address, which is set to where it stands.
int findHeader(uint32_t *address, FileInfo *info)
{
    uint8_t bytes[PROBE_SIZE];
    if (MFS_reader(*address, PROBE_SIZE, bytes) < 0)
        return MFS_ERR_COMMUNICATION;
    const uint8_t *const end = bytes + PROBE_SIZE;
    const uint8_t *const begin = bytes;
    const uint8_t *found = std::search(begin, end, SIGNATURE, SIGNATURE + SIGNATURE_SIZE);
    if (found == end)
        return -1;
    *address += static_cast<uint32_t>(found - bytes);
    if (found + MFS_HEADER_SIZE <= end)
        return parseInfo(found, SIGNATURE, info) ? 0 : -1;
    return readInfo(*address, SIGNATURE, info);
}

// Reads a found file block by block; the size was checked against the range.
int loadBlocks(int dialog, const std::string &text, uint32_t address, std::string *content)
{
    for (size_t done = 0; done < content->size();) {
        const size_t block = std::min<size_t>(content->size() - done, LOAD_BLOCK);
        if (MFS_reader(address + static_cast<uint32_t>(done), static_cast<uint32_t>(block),
                       &(*content)[done]) < 0)
            return MFS_ERR_COMMUNICATION;
        done += block;
        const int percent = static_cast<int>(done * 100 / content->size());
        if (UpdateProgressDialog(dialog, percent, text + ": " + std::to_string(percent) + " %") > 0)
            return MFS_ERR_CANCELLED;
    }
    return 0;
}

} // namespace

MFS_Reader MFS_reader = readTarget;

int GetHeaderInfo(const uint8_t *header, std::string *name, int32_t *length, uint8_t *flags)
{
    FileInfo info;
    const bool isValid = parseInfo(header, SIGNATURE, &info);
    *name = info.name;
    *length = info.length;
    *flags = info.flags;
    return isValid ? 0 : -1;
}

int32_t MFS_FindFile(const char *name, uint32_t start, uint32_t end, int32_t *length)
{
    *length = -1;
    if (end < start || end - start < RANGE_MIN)
        return -1;
    uint32_t address = start;
    while (address < end - PROBE_SIZE) {
        FileInfo header, trailer;
        int result = findHeader(&address, &header);
        if (result != 0)
            return result;
        const uint32_t data = address + MFS_HEADER_SIZE;
        const uint32_t size = static_cast<uint32_t>(header.length);
        if (data > end || size > end - data)
            return -1;
        address = data + size;
        if ((header.flags & MFS_FLAG_VALID) == 0 || header.name != name)
            continue;
        if (end - address < MFS_HEADER_SIZE)
            return -1;
        result = readInfo(address, TRAILER_SIGNATURE, &trailer);
        if (result != 0 || !isSame(header, trailer))
            return std::min(result, -1);
        *length = header.length;
        return static_cast<int32_t>(data);
    }
    return -1;
}

int32_t MFS_FindDirectory(uint32_t limit, uint32_t end)
{
    uint32_t start = end;
    int result = 0;
    while (result == 0 && start >= limit && start - limit >= 2 * MFS_HEADER_SIZE) {
        FileInfo header, trailer;
        result = readInfo(start - MFS_HEADER_SIZE, TRAILER_SIGNATURE, &trailer);
        const uint32_t size = 2 * MFS_HEADER_SIZE + static_cast<uint32_t>(trailer.length);
        if (result != 0 || size > start - limit)
            break;
        result = readInfo(start - size, SIGNATURE, &header);
        if (result != 0 || !isSame(header, trailer))
            break;
        start -= size;
    }
    if (result == MFS_ERR_COMMUNICATION)
        return result;
    return start != end ? static_cast<int32_t>(start) : -1;
}

int MFS_Load(const char *name, uint32_t start, uint32_t end, std::string *content)
{
    content->clear();
    int32_t length = -1;
    const int32_t address = MFS_FindFile(name, start, end, &length);
    if (address < 0)
        return address;
    const std::string text = std::string("Loading flash-file '") + name + "'";
    const int dialog = CreateProgressDialog("Flash", text + ".");
    content->resize(static_cast<size_t>(length));
    const int result = loadBlocks(dialog, text, static_cast<uint32_t>(address), content);
    DiscardProgressDialog(dialog);
    if (result != 0)
        content->clear();
    return result;
}

int MFS_LoadFrw(const char *name, uint32_t start, uint32_t end)
{
    std::string content;
    const int result = MFS_Load(name, start, end, &content);
    return result < 0 ? result : TXFRW_Create(name, "r", content.data(), content.size());
}
