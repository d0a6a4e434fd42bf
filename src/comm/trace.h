// The wire trace: what went over the line and what came of it, in a ring of bounded
// size for a window, and line by line to a sink (a file) as it happens. It knows no
// protocol: whoever talks on the line hands over the bytes and the words for them.
// While it is off an exchange costs one test of TRC_isOn.
#ifndef COMM_TRACE_H
#define COMM_TRACE_H

#include "platform/system.h"

#include <cstddef>
#include <cstdint>
#include <string>

constexpr size_t TRC_BYTES_MAX = 260; // kept of each direction; the longest frames fit

struct TRC_Bytes {
    uint16_t count = 0; // kept
    uint16_t lost = 0;  // came beyond what is kept
    uint8_t bytes[TRC_BYTES_MAX] = {};
};

struct TRC_Record {
    uint64_t number = 0;  // 1, 2, ... since the program started, whatever is kept
    PLT_Date when;        // local time of the request
    uint64_t startUs = 0; // PLT_TickUs of the request
    uint32_t durationUs = 0;
    TRC_Bytes sent, received; // both empty for the opening and closing of the link
    std::string request;      // "station 1: read 64 bytes at 0x000100"
    std::string answer;       // "2 bytes: 12 34", empty when there was none worth reading
    std::string result;       // "answered", "no answer", "opened", ...
    bool isGood = true;       // whether the result is what one wishes
};

extern bool TRC_isOn; // for those who record; kept by this module

// Keeps the last `capacity` records; 0 switches the ring off. What was kept is dropped.
void TRC_Enable(size_t capacity);
void TRC_Clear();
void TRC_Pause(bool isPaused); // the ring stands still; the sink goes on
bool TRC_IsPaused();
size_t TRC_Count();
// Record 0 is the oldest kept one. Null beyond the last; valid until the next exchange.
const TRC_Record *TRC_Get(size_t index);

// Gets each record's text as it happens; null = none. `context` is handed back to it.
typedef void (*TRC_Sink)(const std::string &text, void *context);
void TRC_SetSink(TRC_Sink sink, void *context);

// A record as lines of text, each ending in "\n": what was asked and what came of it, then
// the bytes sent (">"), received ("<") in hexadecimal and as text, and the data decoded ("=").
void TRC_Format(const TRC_Record &record, std::string *text);
std::string TRC_FormatBytes(const TRC_Bytes &bytes); // "02 31 30  |.10|"

// --- for those who record ------------------------------------------------------------
// Fills in the number and keeps the record; `when` and `durationUs` must be set.
void TRC_Add(const TRC_Record &record);
void TRC_Append(TRC_Bytes *to, const void *bytes, size_t count);

#endif
