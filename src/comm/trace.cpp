// The ring grows up to its capacity and then overwrites its oldest record in place, so that a
// trace that runs for days costs no more than one that has just been switched on.
#include "comm/trace.h"
#include "text/bytes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

bool TRC_isOn = false;

namespace {

std::vector<TRC_Record> ring;
size_t capacity = 0;
size_t oldest = 0; // index in ring once it is full
bool isStopped = false;
uint64_t lastNumber = 0;
TRC_Sink sinkCall = nullptr;
void *sinkContext = nullptr;

// One flag for both takers, looked at before a record is made: an untraced exchange pays nothing.
void UpdateFlag()
{
    TRC_isOn = (capacity > 0 && !isStopped) || sinkCall != nullptr;
}

void AppendLine(std::string *text, const char *mark, const std::string &line)
{
    *text += "  ";
    *text += mark;
    *text += ' ';
    *text += line;
    *text += '\n';
}

} // namespace

void TRC_Enable(size_t wanted)
{
    capacity = wanted;
    // A closed trace window gives its 2,000 records back.
    TRC_Clear();
    ring.shrink_to_fit();
    UpdateFlag();
}

void TRC_Clear()
{
    ring.clear();
    oldest = 0;
}

void TRC_Pause(bool isPaused)
{
    isStopped = isPaused;
    UpdateFlag();
}

bool TRC_IsPaused()
{
    return isStopped;
}

size_t TRC_Count()
{
    return ring.size();
}

const TRC_Record *TRC_Get(size_t index)
{
    return index < ring.size() ? &ring[(oldest + index) % ring.size()] : nullptr;
}

void TRC_SetSink(TRC_Sink sink, void *context)
{
    sinkCall = sink;
    sinkContext = context;
    UpdateFlag();
}

std::string TRC_FormatBytes(const TRC_Bytes &bytes)
{
    std::string text = TXT_FormatHexBytes(bytes.bytes, bytes.count);
    text += (text.empty() ? " |" : "  |") + TXT_PlainBytes(bytes.bytes, bytes.count) + "|";
    if (bytes.lost > 0)
        text += " and " + std::to_string(bytes.lost) + " more";
    return text;
}

void TRC_Format(const TRC_Record &record, std::string *text)
{
    char stamp[64];
    const PLT_Date &when = record.when;
    std::snprintf(stamp, sizeof stamp, "#%llu %02d:%02d:%02d.%03d ",
                  static_cast<unsigned long long>(record.number), when.hour, when.minute,
                  when.second, when.millisecond);
    *text += stamp + record.request + ": " + record.result;
    // Opening and closing take no time on the line.
    if (record.sent.count > 0) {
        std::snprintf(stamp, sizeof stamp, " (%u.%03u ms)", record.durationUs / 1000u,
                      record.durationUs % 1000u);
        *text += stamp;
    }
    *text += '\n';
    if (record.sent.count > 0)
        AppendLine(text, ">", TRC_FormatBytes(record.sent));
    if (record.received.count > 0)
        AppendLine(text, "<", TRC_FormatBytes(record.received));
    if (!record.answer.empty())
        AppendLine(text, "=", record.answer);
}

void TRC_Add(const TRC_Record &record)
{
    TRC_Record numbered = record;
    numbered.number = ++lastNumber;
    if (capacity > 0 && !isStopped && ring.size() < capacity) {
        ring.push_back(numbered);
    } else if (capacity > 0 && !isStopped) {
        // Full: the new record stands where the oldest stood.
        ring[oldest] = numbered;
        oldest = (oldest + 1) % capacity;
    }
    // A paused window leaves no gap in the file.
    if (sinkCall != nullptr) {
        std::string text;
        TRC_Format(numbered, &text);
        sinkCall(text, sinkContext);
    }
}

void TRC_Append(TRC_Bytes *to, const void *bytes, size_t count)
{
    const size_t room = TRC_BYTES_MAX - to->count;
    const size_t kept = std::min(count, room);
    std::memcpy(to->bytes + to->count, bytes, kept);
    to->count = static_cast<uint16_t>(to->count + kept);
    // Saturates: "at least so many".
    const size_t lost = std::min<size_t>(to->lost + (count - kept), UINT16_MAX);
    to->lost = static_cast<uint16_t>(lost);
}
