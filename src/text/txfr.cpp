// Each slot reads its file in blocks of its own: the line ends are this module's, and the
// look-ahead makes one character of a two-character line end known before it is asked for.
#include "text/txfr.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/plain_file.h"

namespace {

constexpr size_t BLOCK_SIZE = 8192;
constexpr int END_OF_FILE = -1;
constexpr int PIECE_SIZE = 160; // buffer of a line of any length, grown piece by piece
const unsigned char BYTE_ORDER_MARK[] = {0xEF, 0xBB, 0xBF}; // of UTF-8: no text

struct Slot {
    bool isOpen = false;
    std::FILE *file = nullptr; // null: the whole text is in the block
    std::unique_ptr<unsigned char[]> block;
    size_t blockLength = 0;
    size_t blockPosition = 0;
    int lookAhead = END_OF_FILE; // first character of the next line
    bool firstRead = true;       // the look-ahead has still to be fetched
    bool brokenLine = false;
    bool dropping = false; // behind a NUL, until the line ends
    int lineNo = 0;
    long consumed = 0; // characters fetched, the look-ahead included
};

Slot slots[TXFR_MAX];

Slot *SlotOf(int handle)
{
    if (handle < 0 || handle >= TXFR_MAX || !slots[handle].isOpen)
        return nullptr;
    return &slots[handle];
}

bool FillBlock(Slot *slot)
{
    // A file that grows while it is read ends where it would not have been opened.
    if (slot->file == nullptr || slot->consumed >= PLT_FILE_SIZE_MAX)
        return false;
    slot->blockPosition = 0;
    slot->blockLength = std::fread(slot->block.get(), 1, BLOCK_SIZE, slot->file);
    return slot->blockLength > 0;
}

int NextCharacter(Slot *slot)
{
    if (slot->blockPosition == slot->blockLength && !FillBlock(slot))
        return END_OF_FILE;
    ++slot->consumed;
    return slot->block[slot->blockPosition++];
}

void CloseSlot(Slot *slot)
{
    if (slot->file != nullptr)
        std::fclose(slot->file);
    *slot = Slot{};
}

int FreeSlot()
{
    int handle = 0;
    while (handle < TXFR_MAX && slots[handle].isOpen)
        ++handle;
    return handle < TXFR_MAX ? handle : -1;
}

void SkipByteOrderMark(Slot *slot)
{
    const size_t size = sizeof BYTE_ORDER_MARK;
    if (slot->blockLength < size || std::memcmp(slot->block.get(), BYTE_ORDER_MARK, size) != 0)
        return;
    slot->blockPosition = size;
    slot->consumed = static_cast<long>(size);
}

// Collects one line. Behind a NUL the rest of the line is read and dropped, so that the
// length returned is always that of the text; what is dropped fills the buffer all the same,
// so that no line keeps its reader longer than a buffer's worth.
int CollectLine(int handle, char *buffer, int size)
{
    Slot *slot = &slots[handle];
    int c = slot->firstRead ? NextCharacter(slot) : slot->lookAhead;
    slot->firstRead = false;
    slot->brokenLine = false;
    ++slot->lineNo;
    int length = 0;
    for (int taken = 0;; ++taken, c = NextCharacter(slot)) {
        if (taken == size - 1) { // the rest comes with the next call and is still the same line
            slot->lookAhead = c;
            slot->brokenLine = true;
            --slot->lineNo;
            return length;
        }
        if (c == END_OF_FILE) { // the handle closes itself: a reader's loop has nothing to do
            CloseSlot(slot);
            return length > 0 ? length : -1;
        }
        if (c == '\r' || c == '\n') { // a line end has one character, or one of each kind
            const int pair = c == '\r' ? '\n' : '\r';
            const int next = NextCharacter(slot);
            slot->lookAhead = next == pair ? NextCharacter(slot) : next;
            slot->dropping = false;
            return length;
        }
        slot->dropping = slot->dropping || c == '\0';
        if (!slot->dropping)
            buffer[length++] = static_cast<char>(c);
    }
}

} // namespace

int TXFR_Open(const char *fileName)
{
    const int handle = FreeSlot();
    if (handle < 0 || fileName == nullptr)
        return -1;
    Slot *slot = &slots[handle];
    if (PLT_OpenForReading(fileName, PLT_FILE_SIZE_MAX, &slot->file) != PLT_FILE_OK)
        return -1;
    slot->isOpen = true;
    slot->block = std::make_unique<unsigned char[]>(BLOCK_SIZE);
    if (!FillBlock(slot) && std::ferror(slot->file)) {
        CloseSlot(slot);
        return -1;
    }
    SkipByteOrderMark(slot);
    return handle;
}

int TXFR_OpenMemory(const char *text, size_t length)
{
    const int handle = FreeSlot();
    if (handle < 0 || length > PLT_FILE_SIZE_MAX) // as much as a file may hold
        return -1;
    Slot *slot = &slots[handle];
    slot->isOpen = true;
    slot->block = std::make_unique<unsigned char[]>(length + 1);
    if (length > 0)
        std::memcpy(slot->block.get(), text, length);
    slot->blockLength = length;
    SkipByteOrderMark(slot);
    return handle;
}

int TXFR_RdLine(int handle, char *buffer, int size)
{
    if (SlotOf(handle) == nullptr)
        return -1;
    if (buffer == nullptr || size < 2) { // no room for any text: no call would ever get on
        TXFR_Close(handle);
        return -1;
    }
    const int length = CollectLine(handle, buffer, size);
    buffer[length > 0 ? length : 0] = '\0';
    return length;
}

int TXFR_RdNewLine(int handle, std::string *line, int size)
{
    line->clear();
    if (size >= 0) {
        std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(size) + 1]);
        const int length = TXFR_RdLine(handle, buffer.get(), size);
        if (length > 0)
            line->assign(buffer.get(), static_cast<size_t>(length));
        return length;
    }
    char piece[PIECE_SIZE];
    int length = TXFR_RdLine(handle, piece, PIECE_SIZE);
    if (length < 0)
        return length;
    line->assign(piece, static_cast<size_t>(length));
    while (TXFR_IsBrokenLine(handle) == 1) {
        length = TXFR_RdLine(handle, piece, PIECE_SIZE);
        if (length > 0)
            line->append(piece, static_cast<size_t>(length));
    }
    return static_cast<int>(line->size());
}

int TXFR_IsBrokenLine(int handle)
{
    const Slot *slot = SlotOf(handle);
    return slot == nullptr ? -1 : slot->brokenLine ? 1 : 0;
}

int TXFR_GetLineNo(int handle)
{
    const Slot *slot = SlotOf(handle);
    return slot == nullptr ? -1 : slot->lineNo;
}

long TXFR_GetFilePos(int handle)
{
    const Slot *slot = SlotOf(handle);
    if (slot == nullptr)
        return -1;
    const bool ahead = !slot->firstRead && slot->lookAhead != END_OF_FILE;
    return slot->consumed - (ahead ? 1 : 0);
}

int TXFR_Close(int handle)
{
    Slot *slot = SlotOf(handle);
    if (slot == nullptr)
        return -1;
    CloseSlot(slot);
    return 0;
}
