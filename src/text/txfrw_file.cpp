// Whole texts and the disk: loading from a file or from memory, comparing, saving.
// Line ends separate lines and do not close them: a text whose last line is empty ends
// in one, every other text does not.
#include "platform/safe_file.h"
#include "text/txfr.h"
#include "text/txfrw.h"
#include "text/txfrw_slot.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int LINE_SIZE = 999;          // buffer of a line read from disk
constexpr size_t MEMORY_LINE_MAX = 999; // characters of a line taken from memory

enum ReadResult { READ_LINE, READ_END, READ_TOO_LONG };

// Next line of a file. One that just fills the buffer is whole when nothing follows it.
ReadResult ReadLine(int reader, char *buffer)
{
    if (TXFR_RdLine(reader, buffer, LINE_SIZE) < 0)
        return READ_END;
    if (TXFR_IsBrokenLine(reader) != 1)
        return READ_LINE;
    char rest[2];
    const int length = TXFR_RdLine(reader, rest, sizeof rest);
    return length <= 0 && TXFR_IsBrokenLine(reader) != 1 ? READ_LINE : READ_TOO_LONG;
}

int AddLine(TxfrwSlot *slot, const char *text, size_t length)
{
    TxfrwLine line = TXFRW_CopyLine(text, length);
    if (line == nullptr)
        return -1;
    slot->lines.push_back(std::move(line));
    return 0;
}

int LoadFile(TxfrwSlot *slot)
{
    const int reader = TXFR_Open(slot->fileName.c_str());
    if (reader < 0)
        return -1;
    char buffer[LINE_SIZE];
    int result = 0;
    // What a file has beyond the table is left out; readers look at the count.
    while (result == 0 && slot->lines.size() < TXFRW_LINES_MAX) {
        const ReadResult read = ReadLine(reader, buffer);
        if (read == READ_END)
            break;
        // A line cut in two would be saved as two: such a file is not opened.
        result = read == READ_LINE ? AddLine(slot, buffer, std::strlen(buffer)) : -1;
    }
    TXFR_Close(reader); // already closed at the end of the file
    return result;
}

// One line of a text in memory, cut where it is too long; false when the table is full.
bool AddPieces(TxfrwSlot *slot, const char *text, size_t length)
{
    const void *nul = length > 0 ? std::memchr(text, '\0', length) : nullptr;
    if (nul != nullptr)
        length = static_cast<size_t>(static_cast<const char *>(nul) - text);
    do {
        const size_t piece = std::min(length, MEMORY_LINE_MAX);
        if (slot->lines.size() >= TXFRW_LINES_MAX || AddLine(slot, text, piece) != 0)
            return false;
        text += piece;
        length -= piece;
    } while (length > 0);
    return true;
}

void LoadMemory(TxfrwSlot *slot, const char *buffer, size_t length)
{
    const char *const end = buffer + length;
    const bool isMarked = length >= 3 && std::memcmp(buffer, "\xEF\xBB\xBF", 3) == 0;
    const char *line = buffer + (isMarked ? 3 : 0); // a byte order mark is no text
    while (line != end) {
        const char *lineEnd =
            std::find_if(line, end, [](char c) { return c == '\r' || c == '\n'; });
        if (!AddPieces(slot, line, static_cast<size_t>(lineEnd - line)) || lineEnd == end)
            return;
        const bool isPair = *lineEnd == '\r' && lineEnd + 1 != end && lineEnd[1] == '\n';
        line = lineEnd + (isPair ? 2 : 1);
    }
}

} // namespace

int TXFRW_Open(const char *fileName, const char *mode)
{
    const int handle = TXFRW_NewSlot(fileName, mode);
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot != nullptr && (slot->mode & TXFRW_MODE_READ) != 0 && LoadFile(slot) != 0) {
        TXFRW_Close(handle);
        return -1;
    }
    return handle;
}

int TXFRW_Create(const char *fileName, const char *mode, const char *buffer, size_t length)
{
    const int handle = TXFRW_NewSlot(fileName, mode);
    if (handle >= 0 && length > 0)
        LoadMemory(TXFRW_SlotOf(handle), buffer, length);
    return handle;
}

int TXFRW_IsCtsOnDisk(int handle)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    const int reader = slot != nullptr ? TXFR_Open(slot->fileName.c_str()) : -1;
    if (reader < 0)
        return -1;
    char buffer[LINE_SIZE];
    size_t line = 0;
    ReadResult read = READ_LINE;
    while ((read = ReadLine(reader, buffer)) == READ_LINE && line < slot->lines.size() &&
           std::strcmp(buffer, slot->lines[line].get()) == 0)
        ++line;
    TXFR_Close(reader);
    // A last line that is empty is only a line end on the disk, where no line follows it.
    const size_t left = slot->lines.size() - line;
    return read == READ_END && (left == 0 || (left == 1 && slot->lines[line][0] == '\0')) ? 1 : 0;
}

int TXFRW_Save(int handle)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    SafeFile safe;
    if (slot == nullptr || (slot->mode & TXFRW_MODE_WRITE) == 0 ||
        PLT_BeginSave(&safe, slot->fileName, "wb") != 0)
        return -1;
    const char *separator = "";
    for (const TxfrwLine &line : slot->lines) {
        std::fputs(separator, safe.file);
        std::fputs(line.get(), safe.file);
        separator = "\r\n";
    }
    return PLT_CommitSave(&safe);
}
