// The table of open texts and the operations on their lines. Each line is a heap copy of
// its own, so that a pointer to it stays good while other lines come and go.
#include "text/txfrw.h"

#include "text/txfrw_slot.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

TxfrwSlot txfrwSlots[TXFRW_MAX];

TxfrwSlot *TXFRW_SlotOf(int handle)
{
    if (handle < 0 || handle >= TXFRW_MAX || txfrwSlots[handle].mode == 0)
        return nullptr;
    return &txfrwSlots[handle];
}

int TXFRW_NewSlot(const char *fileName, const char *mode)
{
    int handle = 0;
    while (handle < TXFRW_MAX && txfrwSlots[handle].mode != 0)
        ++handle;
    if (handle == TXFRW_MAX)
        return -1;
    txfrwSlots[handle] = TxfrwSlot{};
    txfrwSlots[handle].mode = TXFRW_MODE_READ; // taken, so that the accessors work on it
    if (TXFRW_SetFileMode(handle, mode) < 0 || TXFRW_SetFileName(handle, fileName) < 0) {
        TXFRW_Close(handle);
        return -1;
    }
    return handle;
}

TxfrwLine TXFRW_CopyLine(const char *text, size_t length)
{
    TxfrwLine line(new (std::nothrow) char[length + 1]);
    if (line != nullptr) {
        std::memcpy(line.get(), text, length);
        line[length] = '\0';
    }
    return line;
}

namespace {

constexpr size_t PRINT_SIZE = 1000; // formatted text of one call, its NUL included

int LineCount(const TxfrwSlot *slot)
{
    return static_cast<int>(slot->lines.size());
}

// Inserts before `line`, which lies within 0 .. line count.
int InsertCopy(TxfrwSlot *slot, int line, const char *text, size_t length)
{
    if (LineCount(slot) >= TXFRW_LINES_MAX)
        return -1;
    TxfrwLine copy = TXFRW_CopyLine(text, length);
    if (copy == nullptr)
        return -1;
    try { // the table may have to grow; its lines are only moved
        slot->lines.insert(slot->lines.begin() + line, std::move(copy));
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return 0;
}

int AppendToWorkingLine(TxfrwSlot *slot, const char *text, size_t length)
{
    TxfrwLine &line = slot->lines[static_cast<size_t>(slot->workingLine)];
    const size_t before = std::strlen(line.get());
    TxfrwLine longer(new (std::nothrow) char[before + length + 1]);
    if (longer == nullptr)
        return -1;
    std::memcpy(longer.get(), line.get(), before);
    std::memcpy(longer.get() + before, text, length);
    longer[before + length] = '\0';
    line = std::move(longer);
    return 0;
}

// Line ends in the text start new lines and close none: what is printed next goes on behind it.
int PrintText(TxfrwSlot *slot, const char *text)
{
    // Lines may have been deleted since the working line was set.
    slot->workingLine = std::min(slot->workingLine, LineCount(slot));
    const bool isNewLine = slot->workingLine == LineCount(slot);
    // Counted before anything is changed: a text that does not fit leaves no part. CR LF is one
    // end.
    int newLines = isNewLine ? 1 : 0;
    for (const char *c = text; *c != '\0'; ++c)
        newLines += *c == '\n' || (*c == '\r' && c[1] != '\n') ? 1 : 0;
    if (LineCount(slot) + newLines > TXFRW_LINES_MAX)
        return -1;
    if (isNewLine && InsertCopy(slot, slot->workingLine, "", 0) != 0)
        return -1;
    for (;;) {
        const size_t length = std::strcspn(text, "\r\n");
        if (length > 0 && AppendToWorkingLine(slot, text, length) != 0)
            return -1;
        text += length;
        if (*text == '\0')
            return 0;
        text += text[0] == '\r' && text[1] == '\n' ? 2 : 1;
        if (InsertCopy(slot, slot->workingLine + 1, "", 0) != 0)
            return -1;
        ++slot->workingLine;
    }
}

} // namespace

int TXFRW_SetFileMode(int handle, const char *mode)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || mode == nullptr || mode[0] == '\0')
        return -1;
    const auto bitOf = [](char c) {
        return c == 'r' || c == 'R' ? TXFRW_MODE_READ : c == 'w' || c == 'W' ? TXFRW_MODE_WRITE : 0;
    };
    // The second letter may be any; a third is a mistake.
    if (bitOf(mode[0]) == 0 || (mode[1] != '\0' && mode[2] != '\0'))
        return -1;
    slot->mode = bitOf(mode[0]) | bitOf(mode[1]);
    return slot->mode;
}

int TXFRW_SetFileName(int handle, const char *fileName)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || fileName == nullptr || std::strlen(fileName) > TXFRW_NAME_MAX)
        return -1;
    slot->fileName = fileName;
    return 0;
}

const char *TXFRW_GetFileNamePtr(int handle)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    return slot == nullptr ? nullptr : slot->fileName.c_str();
}

int TXFRW_GetCnLines(int handle)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    return slot == nullptr ? -1 : LineCount(slot);
}

int TXFRW_IsOpened(int handle)
{
    return TXFRW_SlotOf(handle) != nullptr ? 1 : 0;
}

const char *TXFRW_GetLinePtr(int handle, int line)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || line < 0 || line >= LineCount(slot))
        return nullptr;
    return slot->lines[static_cast<size_t>(line)].get();
}

int TXFRW_SetLine(int handle, int line, const char *text)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || text == nullptr || line < 0 || line > LineCount(slot))
        return -1;
    if (line == LineCount(slot))
        return InsertCopy(slot, line, text, std::strlen(text));
    TxfrwLine copy = TXFRW_CopyLine(text, std::strlen(text));
    if (copy == nullptr)
        return -1;
    slot->lines[static_cast<size_t>(line)] = std::move(copy);
    return 0;
}

int TXFRW_AppendLine(int handle, const char *text)
{
    return TXFRW_SetLine(handle, TXFRW_GetCnLines(handle), text);
}

int TXFRW_InsertLine(int handle, int line, const char *text)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || text == nullptr || line > LineCount(slot))
        return -1;
    if (line >= 0)
        return InsertCopy(slot, line, text, std::strlen(text));
    // The working line stays the line it was, one further down.
    const int at = std::min(slot->workingLine, LineCount(slot));
    if (InsertCopy(slot, at, text, std::strlen(text)) != 0)
        return -1;
    slot->workingLine = at + 1;
    return 0;
}

int TXFRW_DeleteLine(int handle, int line)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || line < 0 || line >= LineCount(slot))
        return -1;
    slot->lines.erase(slot->lines.begin() + line);
    return 0;
}

int TXFRW_SetWrkLineNo(int handle, int line)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr)
        return -1;
    slot->workingLine = std::max(line, 0); // beyond the end is taken to the end when it is used
    return slot->workingLine;
}

int TXFRW_GetWrkLineNo(int handle)
{
    const TxfrwSlot *slot = TXFRW_SlotOf(handle);
    return slot == nullptr ? -1 : slot->workingLine;
}

int TXFRW_ReadLine(int handle, char *buffer, int size)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr || buffer == nullptr || size < 1)
        return -1;
    const char *line = TXFRW_GetLinePtr(handle, slot->workingLine);
    buffer[0] = '\0';
    if (line == nullptr) { // at the end: a line that is appended later is read next
        slot->workingLine = LineCount(slot);
        return -1;
    }
    const size_t length = std::min(std::strlen(line), static_cast<size_t>(size) - 1);
    std::memcpy(buffer, line, length);
    buffer[length] = '\0';
    ++slot->workingLine;
    return static_cast<int>(length);
}

int TXFRW_printf(int handle, const char *format, ...)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr)
        return -1;
    char text[PRINT_SIZE];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < 0 || PrintText(slot, text) != 0)
        return -1;
    return std::min(length, static_cast<int>(PRINT_SIZE) - 1);
}

int TXFRW_Close(int handle)
{
    TxfrwSlot *slot = TXFRW_SlotOf(handle);
    if (slot == nullptr)
        return -1;
    *slot = TxfrwSlot{};
    return 0;
}
