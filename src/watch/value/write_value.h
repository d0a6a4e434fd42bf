// Writing a typed value to the target of a watch item: the text is parsed by the item's
// type, its range checked, one message sent, and what the target holds then read back.
#ifndef WATCH_VALUE_WRITE_VALUE_H
#define WATCH_VALUE_WRITE_VALUE_H

#include <cstdint>
#include <string>

#include "watch/value/parse.h"

struct LItem;

enum WRV_Result {
    WRV_OK = PRS_OK,
    WRV_DIFFERENT = 1,             // written, but the target holds another value now
    WRV_ERR_INDEX = -1,            // no such item
    WRV_ERR_TEXT = PRS_ERR_TEXT,   // not a value of the item's type
    WRV_ERR_RANGE = PRS_ERR_RANGE, // out of range for type and size
    WRV_ERR_ADDRESS = -4,          // the item has no address
    WRV_ERR_WRITE = -5,            // the target did not take it; it may or may not hold it
    WRV_ERR_READ_BACK = -6,        // written, but what the target holds could not be read
};

// What may be typed for an item and its range, in one line.
std::string WRV_Hint(const LItem &item);

// The bits that a typed text stands for, in the low bytes of *bits (TMS320 floats in the
// TMS320's own form). WRV_OK, or WRV_ERR_TEXT or WRV_ERR_RANGE with a message that names
// the range; *bits untouched then.
// Integers: decimal, "0x1F", "1Fh", "0b101"; type x takes plain digits as hexadecimal;
// type b takes plain digits as binary (blanks between, "b" behind allowed). Hexadecimal
// and binary digits of a signed item are its bits. Type f: a decimal number. Type t:
// minutes, or "1d 2h 3m".
int WRV_Parse(const LItem &item, const std::string &text, uint64_t *bits, std::string *message);

// Parses, writes and reads back item `index`; the item then holds the value read, and the
// list shows it. *message always says what happened, with the value the target holds.
int WRV_Write(int index, const std::string &text, std::string *message);

// The same for an item that stands in no list: name (for "&"), address, station, type and
// size are filled in. A TMS320 item is reached behind the selected station, whatever its own.
int WRV_WriteUnlisted(LItem *item, const std::string &text, std::string *message);
// Reads it, proven. WRV_OK, or WRV_ERR_READ_BACK with the reason in *cause.
int WRV_ReadUnlisted(LItem *item, std::string *cause);
// The value that an item holds, as the list would show it.
std::string WRV_ValueText(const LItem &item);

#endif
