// The slots behind the whole-text handles, shared by the two halves of that module: the
// lines in memory (txfrw.cpp) and their way from and to the disk (txfrw_file.cpp).
#ifndef TEXT_TXFRW_SLOT_H
#define TEXT_TXFRW_SLOT_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

enum { TXFRW_MODE_READ = 1, TXFRW_MODE_WRITE = 2 };
constexpr size_t TXFRW_NAME_MAX = 1999;

using TxfrwLine = std::unique_ptr<char[]>;

struct TxfrwSlot {
    int mode = 0; // 0: the slot is free
    std::string fileName;
    std::vector<TxfrwLine> lines;
    int workingLine = 0;
};

TxfrwSlot *TXFRW_SlotOf(int handle); // null for a handle that is not open
// Takes the first free slot; its handle, or -1: none is free, or a bad mode or name.
int TXFRW_NewSlot(const char *fileName, const char *mode);
TxfrwLine TXFRW_CopyLine(const char *text, size_t length); // null without memory

#endif
