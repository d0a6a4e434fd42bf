// Writing a typed value to the target of a watch item: the text is parsed by the item's
// type, its range checked, one message sent, and what the target holds then read back.
#ifndef WATCH_VALUE_WRITE_VALUE_H
#define WATCH_VALUE_WRITE_VALUE_H

#include <cstdint>
#include <string>

#include "watch/value/parse.h"

struct LItem;

enum VAL_WriteResult {
    VAL_WRITE_OK = VAL_PARSE_OK,
    VAL_WRITE_DIFFERENT = 1,                   // written, but the target holds another value now
    VAL_WRITE_ERR_INDEX = -1,                  // no such item
    VAL_WRITE_ERR_TEXT = VAL_PARSE_ERR_TEXT,   // not a value of the item's type
    VAL_WRITE_ERR_RANGE = VAL_PARSE_ERR_RANGE, // out of range for type and size
    VAL_WRITE_ERR_ADDRESS = -4,                // the item has no address
    VAL_WRITE_ERR_WRITE = -5,     // the target did not take it; it may or may not hold it
    VAL_WRITE_ERR_READ_BACK = -6, // written, but what the target holds could not be read
};

// What may be typed for an item and its range, in one line.
std::string VAL_GetHint(const LItem &item);

// The bits that a typed text stands for, in the low bytes of *bits (TMS320 floats in the
// TMS320's own form). VAL_WRITE_OK, or VAL_WRITE_ERR_TEXT or VAL_WRITE_ERR_RANGE with a message
// that names the range; *bits untouched then. Integers: decimal, "0x1F", "1Fh", "0b101"; type x
// takes plain digits as hexadecimal; type b takes plain digits as binary (blanks between, "b"
// behind allowed). Hexadecimal and binary digits of a signed item are its bits. Type f: a decimal
// number. Type t: minutes, or "1d 2h 3m".
int VAL_ParseFor(const LItem &item, const std::string &text, uint64_t *bits, std::string *message);

// Parses, writes and reads back item `index`; the item then holds the value read, and the
// list shows it. *message always says what happened, with the value the target holds.
int VAL_Write(int index, const std::string &text, std::string *message);

// The same for an item that stands in no list: name (for "&"), address, station, type and
// size are filled in. A TMS320 item is reached behind the selected station, whatever its own.
int VAL_WriteUnlisted(LItem *item, const std::string &text, std::string *message);
// Reads it, proven. VAL_WRITE_OK, or VAL_WRITE_ERR_READ_BACK with the reason in *cause.
int VAL_ReadUnlisted(LItem *item, std::string *cause);
// The value that an item holds, as the list would show it.
std::string VAL_GetValueText(const LItem &item);

#endif
