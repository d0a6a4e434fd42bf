// A directory has no table: a file is found by going from header to header, each of which says
// where the next one stands. Whatever is read may be anything: every step is bounded.
#include "symbols/flash_files.h"
#include "symbols/listener.h"

#include "comm/ucm.h"
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
constexpr int FILES_SHOWN_FROM = 8;   // a walk that takes longer shows its progress

int ReadTarget(uint32_t address, uint32_t count, void *buffer)
{
    return UCM_ReadProven(STATION, address, count, buffer);
}

struct FileInfo {
    std::string name;
    int32_t length = -1;
    uint8_t flags = MFS_FLAGS_BAD;
};

bool IsSame(const FileInfo &a, const FileInfo &b)
{
    return a.name == b.name && a.length == b.length;
}

bool ParseInfo(const uint8_t *bytes, const char *signature, FileInfo *info)
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
int ReadInfo(uint32_t address, const char *signature, FileInfo *info)
{
    uint8_t bytes[MFS_HEADER_SIZE];
    if (MFS_reader(address, MFS_HEADER_SIZE, bytes) < 0)
        return MFS_ERR_COMMUNICATION;
    return ParseInfo(bytes, signature, info) ? 0 : -1;
}

// The next header at or shortly behind *address, which is set to where it stands.
int FindHeader(uint32_t *address, FileInfo *info)
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
    // Most headers lie whole in the probe; one at its end costs another read.
    if (found + MFS_HEADER_SIZE <= end)
        return ParseInfo(found, SIGNATURE, info) ? 0 : -1;
    return ReadInfo(*address, SIGNATURE, info);
}

// How far a walk over a directory has come. Real directories hold a handful of files; one
// that does not end (empty files as far as the flash goes) would cost an exchange for every
// 64 bytes of it.
struct Walk {
    int files = 0;
    bool isShown = false;
};

// Counts one more file. 0, or a code: too many of them, or the user has cancelled.
int StepWalk(Walk *walk, uint32_t done, uint32_t all)
{
    if (++walk->files > MFS_FILES_MAX)
        return MFS_ERR_TOO_MANY;
    if (walk->files < FILES_SHOWN_FROM)
        return 0;
    const std::string text = "Searching the flash directory: file " + std::to_string(walk->files);
    if (!walk->isShown)
        SYM_BeginProgress("Flash", text);
    walk->isShown = true;
    const int percent = static_cast<int>(static_cast<uint64_t>(done) * 100 / all);
    return SYM_AdvanceProgress(percent, text) ? 0 : MFS_ERR_CANCELLED;
}

void EndWalk(const Walk &walk)
{
    if (walk.isShown)
        SYM_EndProgress();
}

// From file to file until the wanted one. 0 with the address of its data and its length, or
// a negative code.
int WalkToFile(const char *name, uint32_t start, uint32_t end, Walk *walk, uint32_t *data,
               int32_t *length)
{
    uint32_t address = start;
    while (address < end - PROBE_SIZE) {
        FileInfo header, trailer;
        int result = StepWalk(walk, address - start, end - start);
        if (result == 0)
            result = FindHeader(&address, &header);
        if (result != 0)
            return result;
        *data = address + MFS_HEADER_SIZE;
        const uint32_t size = static_cast<uint32_t>(header.length);
        if (*data > end || size > end - *data)
            return -1;
        address = *data + size;
        // Deleted files stay in the flash until it is erased.
        if ((header.flags & MFS_FLAG_VALID) == 0 || header.name != name)
            continue;
        if (end - address < MFS_HEADER_SIZE)
            return -1;
        result = ReadInfo(address, TRAILER_SIGNATURE, &trailer);
        if (result != 0 || !IsSame(header, trailer))
            return std::min(result, -1);
        *length = header.length;
        return 0;
    }
    return -1;
}

// From the last trailer back to the first header. 0 with *start, or a negative code.
int WalkBack(uint32_t limit, uint32_t end, Walk *walk, uint32_t *start)
{
    *start = end;
    while (*start >= limit && *start - limit >= 2 * MFS_HEADER_SIZE) {
        FileInfo header, trailer;
        int result = StepWalk(walk, end - *start, end - limit);
        if (result == 0)
            result = ReadInfo(*start - MFS_HEADER_SIZE, TRAILER_SIGNATURE, &trailer);
        if (result == 0) {
            const uint32_t size = 2 * MFS_HEADER_SIZE + static_cast<uint32_t>(trailer.length);
            if (size > *start - limit)
                return 0;
            result = ReadInfo(*start - size, SIGNATURE, &header);
            if (result == 0 && IsSame(header, trailer)) {
                *start -= size;
                continue;
            }
        }
        return result < -1 ? result : 0; // something else stands here: the directory begins
    }
    return 0;
}

} // namespace

MFS_Reader MFS_reader = ReadTarget;

int GetHeaderInfo(const uint8_t *header, std::string *name, int32_t *length, uint8_t *flags)
{
    FileInfo info;
    const bool isValid = ParseInfo(header, SIGNATURE, &info);
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
    Walk walk;
    uint32_t data = 0;
    const int result = WalkToFile(name, start, end, &walk, &data, length);
    EndWalk(walk);
    return result != 0 ? result : static_cast<int32_t>(data);
}

int32_t MFS_FindDirectory(uint32_t limit, uint32_t end)
{
    Walk walk;
    uint32_t start = end;
    const int result = WalkBack(limit, end, &walk, &start);
    EndWalk(walk);
    if (result != 0)
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
    SYM_BeginProgress("Flash", text + ".");
    content->resize(static_cast<size_t>(length)); // checked against the directory's range
    int result = 0;
    for (size_t done = 0; done < content->size() && result == 0;) {
        const size_t block = std::min<size_t>(content->size() - done, LOAD_BLOCK);
        if (MFS_reader(static_cast<uint32_t>(address) + static_cast<uint32_t>(done),
                       static_cast<uint32_t>(block), &(*content)[done]) < 0) {
            result = MFS_ERR_COMMUNICATION;
            break;
        }
        done += block;
        const int percent = static_cast<int>(done * 100 / content->size());
        if (!SYM_AdvanceProgress(percent, text + ": " + std::to_string(percent) + " %"))
            result = MFS_ERR_CANCELLED;
    }
    SYM_EndProgress();
    if (result != 0)
        content->clear(); // a beginning would pass for the file
    return result;
}

int MFS_LoadFrw(const char *name, uint32_t start, uint32_t end)
{
    std::string content;
    const int result = MFS_Load(name, start, end, &content);
    return result < 0 ? result : TXFRW_Create(name, "r", content.data(), content.size());
}
