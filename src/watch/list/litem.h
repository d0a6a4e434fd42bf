// The watch list's items, and what every room asks of one. Owns aLItems.
#ifndef WATCH_LIST_LITEM_H
#define WATCH_LIST_LITEM_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/system.h"

constexpr int LITEMS_MAX = 500;
constexpr uint32_t LITEM_NO_ADDRESS = 0xFFFFFFFFu;
constexpr size_t LITEM_FIELD_MAX = 120; // characters of one field of a line
constexpr int LITEM_LINE_MAX = 511;     // characters; a longer line goes on as the next one

constexpr char LIT_NO_LINE[] = "There is no such line in the watch list.";
constexpr char LIT_FULL[] = "Too many debug vars.";

// What a read brought, held back until it is proven to be the answer to this very read.
struct LItemReading {
    uint32_t value = 0, valueHigh = 0;
    uint32_t tickMs = 0;
    int32_t station = -1; // that was asked
};

struct LItem {
    std::string name;              // "&name" for a TMS320 item; "" or "&" for an address only
    uint32_t address = 0xFFFFFFFF; // 0xFFFFFFFF = not resolved
    int32_t explicitAddress = 0;   // the line gave a name and an address
    uint32_t value = 0;            // low 32 bits of the last value read
    uint32_t valueHigh = 0;        // high 32 bits of an 8-byte value
    int32_t readError = 0;         // the last read failed
    int32_t size = 2;              // 1, 2, 4 or 8 bytes
    char type = 'i';               // b f t i u x p
    uint32_t previousValue = 0;
    uint16_t readTick = 0; // low 16 bits of the millisecond tick
    uint16_t previousReadTick = 0;
    int32_t station = -1; // from the line's prefix, or -1

    // The address given by the file or the user, until a name resolves: it survives
    // forgetting the resolved addresses when another map is loaded.
    uint32_t givenAddress = 0xFFFFFFFF;
    bool isValueGood = false; // `value` is from a good read
    uint32_t lastReadMs = 0;  // readTick with its high bits: it comes round every 65 s
    std::string reason;       // why the last read failed, "" when it did not
    int32_t fileLine = -1;    // line of the debug file it came from, for saving; -1: a new item
    std::string comment;      // behind it in that file, without the semicolon

    bool isHeld = false; // a good read waits in `held` for its proof
    LItemReading held;
    uint32_t goodReads = 0;   // good values so far; grows with each
    int32_t stationRead = -1; // where the good value came from
    uint32_t sweepRead = 0;   // and when: the sweep and the run of list/age.h
    uint32_t runRead = 0;
    PLT_Date readAt;          // and in local time
    bool isOtherBase = false; // shown in hexadecimal although decimal, or the other way round
};

extern LItem aLItems[LITEMS_MAX];
extern int nLItems;
extern int openLItems; // a debug file has been loaded
extern int readLItems; // a value has been read since

bool LIT_IsTMS(const LItem &item);
bool LIT_IsAnonymous(const LItem &item); // it has an address only, and no name
// The item can be read at all: resolved, and below the limit of target addresses.
bool LIT_HasAddress(const LItem &item);
int LIT_Station(const LItem &item); // that it is read from: its own, or the selected one
// The text of its value is what the target sent. Not so after a failed read, before the
// first one, and for a rate before the second.
bool LIT_HasNumber(const LItem &item);
uint64_t LIT_Bits(const LItem &item);      // of the value, above its size zero
int64_t LIT_SignedBits(const LItem &item); // the same with the sign of its size; 1, 2, 4 or 8
std::string LIT_Label(const LItem &item);  // its name, or "[0x1F00]" without one
// Its name as it is in the file, and behind it the address that was given with it.
std::string LIT_LabelAndPlace(const LItem &item);

#endif
