// A log and the table of record ids out of the target. The target goes on logging meanwhile: what
// was read is looked at once more, and read once again when it has changed under the reading.
#include "logger/dlld.h"

#include <algorithm>
#include <new>

#include "logger/dlld_record.h"
#include "logger/dlld_target.h"
#include "text/bytes.h"
#include "text/words.h"

namespace {

constexpr uint32_t RECID_BYTES = 8; // id (2), nothing (2), text's address (4)
constexpr uint16_t SIGNATURE[] = {0x4F4C, 0x4F47, 0x3A53}; // "LOGOS:"
// A target that writes all the time would be read for ever.
constexpr int TRIES = 2;
const char READING_TYPES[] = "Reading the record types";

enum LogResult { LOG_READ = 0, LOG_FAILED = -1, LOG_DAMAGED = -2, LOG_CHANGED = -3 };

struct LogPlace {
    uint32_t address = 0;
    int32_t words = 0; // as the target says; a damaged size may be anything
};

int ReadHeader(const LogPlace &place, DLLD_Log *header)
{
    header->assign(DLLD_HEADER_WORDS, 0);
    return DLLD_ReadWords(place.address, header->data(), DLLD_HEADER_WORDS);
}

// The message with the latest time; false when the log has none with a time.
bool FindNewest(const DLLD_Log &log, int32_t *start, int32_t *length)
{
    uint32_t latest = 0;
    DLLD_Msg msg;
    for (int32_t index = DLLD_HEADER_WORDS; DLLD_NextMsg(log, &index, &msg);) {
        if (DLLD_GetStamp(msg) <= latest)
            continue;
        latest = DLLD_GetStamp(msg);
        *length = msg.length;
        *start = index - msg.length;
    }
    return latest != 0;
}

// Words there were, and zeros beside them that make a message longer, must be as they were:
// else a message was read while it was being written. A new message behind them is good.
bool IsTorn(const DLLD_Log &log, int32_t first, const std::vector<uint16_t> &now)
{
    for (size_t i = 0; i < now.size(); i++) {
        const size_t at = static_cast<size_t>(first) + i;
        const bool isBehind = at > DLLD_HEADER_WORDS && log[at - 1] != 0;
        const bool isBeside = isBehind || (at + 1 < log.size() && log[at + 1] != 0);
        if (now[i] != log[at] && (log[at] != 0 || isBeside))
            return true;
    }
    return false;
}

// Looks again at the two places where a change under the reading shows: the header, and the
// newest message with what stands around it, where the target writes.
LogResult CheckUnchanged(const LogPlace &place, const DLLD_Log &log)
{
    constexpr int32_t WORDS_BEFORE = 2, WORDS_BEHIND = 24, WORDS_MAX = 1024;
    DLLD_Log header;
    if (ReadHeader(place, &header) < 0)
        return LOG_FAILED;
    if (!std::equal(header.begin(), header.end(), log.begin()))
        return LOG_CHANGED;
    int32_t start = 0, length = 0;
    if (!FindNewest(log, &start, &length))
        return LOG_READ;
    const int32_t first = std::max(start - WORDS_BEFORE, DLLD_HEADER_WORDS);
    const auto end = static_cast<int32_t>(log.size());
    const int32_t count = std::min(std::min(start + length + WORDS_BEHIND, end) - first, WORDS_MAX);
    std::vector<uint16_t> now(static_cast<size_t>(count));
    if (DLLD_ReadWords(place.address + 2 * static_cast<uint32_t>(first), now.data(), count) < 0)
        return LOG_FAILED;
    return IsTorn(log, first, now) ? LOG_CHANGED : LOG_READ;
}

LogResult ReadOnce(const LogPlace &place, DLLD_Log *log)
{
    DLLD_Log header;
    if (ReadHeader(place, &header) < 0)
        return LOG_FAILED;
    // Before memory for it is taken: a size that the header denies may be anything.
    if (DLLD_TestLogHeader(header.data(), place.address, place.words) < 0)
        return LOG_DAMAGED;
    try {
        log->assign(static_cast<size_t>(place.words), 0);
        if (DLLD_ReadWords(place.address, log->data(), place.words) < 0)
            return LOG_FAILED;
    } catch (const std::bad_alloc &) {
        DLLD_ErrorMessage(DLLD_INTERNAL_ERROR, "Memory allocation.");
        return LOG_FAILED;
    }
    // The header was good a moment ago, so it was written since.
    if (DLLD_TestLogHeader(log->data(), place.address, place.words) < 0)
        return LOG_CHANGED;
    return CheckUnchanged(place, *log);
}

// `find` says where the log stands; it is asked again for the second try, because the target
// may keep its log elsewhere by then.
int ReadLog(const std::string &name, const std::function<int(LogPlace *)> &find, DLLD_Log *log)
{
    LogResult result = LOG_FAILED;
    DLLD_Log read;
    DLLD_BeginReading();
    for (int i = 0; i < TRIES; i++) {
        LogPlace place;
        if (find(&place) < 0)
            return -1;
        result = ReadOnce(place, &read);
        // A line that failed has been asked again below; a log that moved is worth another try.
        if (result == LOG_READ || result == LOG_FAILED)
            break;
    }
    if (result == LOG_DAMAGED)
        DLLD_ErrorMessage("Read error", DLLD_BadHeaderText(name));
    if (result == LOG_CHANGED)
        DLLD_ErrorMessage("Read error", "The log changes while it is read (" + name + ").");
    if (result == LOG_READ)
        *log = std::move(read);
    return result == LOG_READ ? 0 : -1;
}

// One entry with its text. 0, 1 at the negative id that ends the table, or -1.
int ReadRecId(const uint8_t *bytes, DLLD_RecId *entry)
{
    entry->id = static_cast<int16_t>(TXT_GetLittle(bytes, 2));
    entry->text.clear();
    if (entry->id < 0)
        return 1;
    const auto stored = static_cast<uint32_t>(TXT_GetLittle(bytes + 4, 4));
    if (stored == 0) // the type has no description
        return 0;
    uint8_t text[DLLD_DESCRIPTION_BYTES];
    if (DLLD_ReadData(DLLD_ToByteAddress(stored), sizeof text, text) < 0)
        return -1;
    // A text without an end says nothing that could be relied on.
    if (DLLD_ReduceStr(text, sizeof text, &entry->text) < 0)
        entry->text.clear();
    return 0;
}

// The entries of a table of at most `count`; a box shows how far it is, since each has a text.
int ReadRecIds(uint32_t address, uint32_t count, std::vector<DLLD_RecId> *entries)
{
    std::vector<uint8_t> table(RECID_BYTES * count);
    if (DLLD_ReadData(address, static_cast<uint32_t>(table.size()), table.data()) < 0)
        return -1;
    int result = 0;
    for (uint32_t i = 0; i < count && result == 0; i++) {
        DLLD_RecId entry;
        result = DLLD_StepProgress(i, count, READING_TYPES)
                     ? ReadRecId(&table[RECID_BYTES * i], &entry)
                     : -1;
        if (result == 0)
            entries->push_back(entry);
    }
    DLLD_EndProgress();
    return result < 0 ? -1 : 0;
}

int ReadTable()
{
    uint32_t address;
    uint8_t bytes[2];
    DLLD_BeginReading();
    if (!DLLD_GetHost().hasRecIds)
        return DLLD_Fail("Error", "Unsupported CPU.");
    if (DLLD_ReadVar("DL_nDimARecId", sizeof bytes, bytes) < 0)
        return -1;
    const int count = static_cast<int16_t>(TXT_GetLittle(bytes, 2));
    // Of a target that runs another program the variable may be anything.
    if (count < 0 || count > DLLD_RECIDS_MAX)
        return DLLD_Fail("Error", "Data integrity.");
    std::vector<DLLD_RecId> entries;
    try {
        if (count > 0 && (DLLD_GetWrkAddr(&address, "DL_arecId") < 0 ||
                          ReadRecIds(address, static_cast<uint32_t>(count), &entries) < 0))
            return -1;
        // Only now: a table that could not be read leaves the one there was.
        DLLD_ClearRecIds();
        for (size_t i = 0; i < entries.size(); i++)
            DLLD_SetRecId(static_cast<int>(i), entries[i].id, entries[i].text);
    } catch (const std::bad_alloc &) {
        return DLLD_Fail("Error", "Internal error.");
    }
    return 0;
}

} // namespace

int DLLD_FindLog(const std::string &name, uint32_t *address, int32_t *words)
{
    uint32_t variable;
    uint8_t place[4], size[4];
    // The variable first: of one that is not there the message names it, and not a member.
    if (DLLD_GetWrkAddr(&variable, name) < 0 ||
        DLLD_ReadVar(name + ".dwLogAddr", sizeof place, place) < 0 ||
        DLLD_ReadVar(name + ".nnLogWSize", sizeof size, size) < 0)
        return -1;
    *address = DLLD_ToByteAddress(static_cast<uint32_t>(TXT_GetLittle(place, 4)));
    // Signed there: a damaged size is refused with the header, and never allocated.
    *words = static_cast<int32_t>(TXT_GetLittle(size, 4));
    return 0;
}

int DLLD_ReadARecId()
{
    return DLLD_ReadProven(ReadTable);
}

int DLLD_ReadLog(const std::string &name, DLLD_Log *log)
{
    const auto find = [&](LogPlace *place) {
        return DLLD_FindLog(name, &place->address, &place->words);
    };
    return DLLD_ReadProven([&] { return ReadLog(name, find, log); });
}

int DLLD_ReadLogAt(uint32_t address, DLLD_Log *log)
{
    const auto find = [address](LogPlace *place) {
        DLLD_Log header;
        place->address = address;
        if (ReadHeader(*place, &header) < 0)
            return -1;
        // The size in the header is the only one there is here; the test of the header compares
        // it with itself, and the signature must tell.
        place->words = static_cast<int32_t>(uint32_t(header[3]) << 16 | header[2]);
        return 0;
    };
    const std::string name = TXT_Format("%06lXh", static_cast<unsigned long>(address));
    return DLLD_ReadProven([&] { return ReadLog(name, find, log); });
}

std::string DLLD_BadHeaderText(const std::string &name)
{
    return "Bad log header (" + name + ").";
}

int DLLD_TestLogHeader(const uint16_t *buffer, uint32_t address, int64_t sizeInWords)
{
    if (buffer == nullptr || sizeInWords < DLLD_HEADER_WORDS || sizeInWords > DLLD_WORDS_MAX)
        return -1;
    // A log knows where it stands: a copy of one elsewhere in memory is not taken for it.
    const uint32_t stored = uint32_t(buffer[1]) << 16 | buffer[0];
    if (address != DLLD_ANY_ADDRESS && DLLD_ToByteAddress(stored) != address)
        return -1;
    if ((uint32_t(buffer[3]) << 16 | buffer[2]) != static_cast<uint32_t>(sizeInWords))
        return -1;
    return std::equal(std::begin(SIGNATURE), std::end(SIGNATURE), buffer + 4) ? 0 : -1;
}
