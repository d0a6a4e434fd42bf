// Reading from the target. A long reading goes in blocks, so that it can show how far it is
// and be cancelled; the wire sees no difference.
#include "logger/dlld.h"

#include <algorithm>
#include <new>

#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "logger/dlld_print.h"
#include "logger/dlld_record.h"
#include "runtime/userint.h"

namespace {

// So many bytes between two looks at the Cancel button.
constexpr uint32_t BLOCK_BYTES = 1024;
constexpr uint32_t RECID_BYTES = 8;
constexpr uint16_t SIGNATURE[] = {0x4F4C, 0x4F47, 0x3A53}; // "LOGOS:"
// A target that writes all the time would be read for ever.
constexpr int TRIES = 2;
const char READING_LOG[] = "Reading the log";
const char READING_TYPES[] = "Reading the record types";

enum LogResult { LOG_READ = 0, LOG_FAILED = -1, LOG_DAMAGED = -2, LOG_CHANGED = -3 };

DLLD_Host host;
bool isCancelled = false;
std::string linkCause;

struct LogPlace {
    uint32_t address = 0;
    int64_t words = 0;
};

uint32_t GetDWord(const uint8_t *bytes)
{
    return bytes[0] | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 | uint32_t(bytes[3]) << 24;
}

uint32_t ToByteAddress(uint32_t stored)
{
    return host.isWordAddressing ? 2 * stored : stored;
}

int Fail(const char *title, const std::string &text)
{
    DLLD_ErrorMessage(title, text);
    return -1;
}

bool StepProgress(uint32_t done, uint32_t total, const char *text)
{
    if (host.showProgress != nullptr && host.showProgress(done, total, text))
        isCancelled = true;
    return !isCancelled;
}

void EndProgress()
{
    if (host.showProgress != nullptr)
        host.showProgress(0, 0, "");
}

// False when the target did not answer or the user cancelled.
bool ReadBlocks(uint32_t address, uint32_t length, uint8_t *bytes)
{
    for (uint32_t at = 0; at < length; at += BLOCK_BYTES) {
        // What is read in a moment shows no box.
        if (length > BLOCK_BYTES && !StepProgress(at, length, READING_LOG))
            return false;
        const uint32_t count = std::min(BLOCK_BYTES, length - at);
        if (UCM_Read(host.station, address + at, count, bytes + at) < 0) {
            linkCause = UCM_LastErrorText();
            isCancelled = isCancelled || IsBreakWished();
            return false;
        }
    }
    return true;
}

int ReadWords(uint32_t address, uint16_t *words, int64_t count)
{
    std::vector<uint8_t> bytes(2 * static_cast<size_t>(count));
    if (DLLD_ReadData(address, static_cast<uint32_t>(bytes.size()), bytes.data()) < 0)
        return -1;
    for (size_t i = 0; i < bytes.size(); i += 2)
        words[i / 2] = static_cast<uint16_t>(bytes[i] | bytes[i + 1] << 8);
    return 0;
}

// The address that a name has on this station. Symbols of the TMS320's compiler begin with
// an underscore that the source does not show.
uint32_t FindAddress(const std::string &name)
{
    const char *rest = name.c_str();
    const int station = GetStationModifier(&rest);
    // A log is read whole from one station: a name of another one is no log of this.
    const bool isElsewhere = station >= 0 && station != host.station;
    const bool isBehindMailbox = *rest == '&' && !host.isWordAddressing;
    if (isElsewhere || isBehindMailbox)
        return ADDR_NONE;
    const uint32_t address = GetSysAddrWk(rest);
    if (address != ADDR_NONE || !host.isWordAddressing)
        return address;
    return GetSysAddrWk((std::string("_") + rest).c_str());
}

int FindLog(const std::string &name, LogPlace *place)
{
    uint32_t address;
    uint8_t bytes[4];
    if (DLLD_GetWrkAddr(&address, name) < 0 ||
        DLLD_ReadVar(name + ".dwLogAddr", sizeof bytes, bytes) < 0)
        return -1;
    place->address = ToByteAddress(GetDWord(bytes));
    if (DLLD_ReadVar(name + ".nnLogWSize", sizeof bytes, bytes) < 0)
        return -1;
    place->words = static_cast<int32_t>(GetDWord(bytes));
    // Signed there: a damaged size is refused with the header, and never allocated.
    return 0;
}

int ReadHeader(const LogPlace &place, DLLD_Log *header)
{
    header->assign(DLLD_HEADER_WORDS, 0);
    return ReadWords(place.address, header->data(), DLLD_HEADER_WORDS);
}

// The message with the latest time; false when the log has none with a time.
bool FindNewest(const DLLD_Log &log, int32_t *start, int32_t *length)
{
    uint32_t latest = 0;
    DLLD_Msg msg;
    for (int32_t index = DLLD_HEADER_WORDS; DLLD_NextMsg(log, &index, &msg);)
        if (DLLD_GetStamp(msg) > latest) {
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
    if (ReadWords(place.address + 2 * static_cast<uint32_t>(first), now.data(), count) < 0)
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
        if (ReadWords(place.address, log->data(), place.words) < 0)
            return LOG_FAILED;
    } catch (const std::bad_alloc &) {
        DLLD_ErrorMessage("Internal error", "Memory allocation.");
        return LOG_FAILED;
    }
    // The header was good a moment ago, so it was written since.
    if (DLLD_TestLogHeader(log->data(), place.address, place.words) < 0)
        return LOG_CHANGED;
    return CheckUnchanged(place, *log);
}

// `find` says where the log stands; it is asked again for the second try.
template <typename Find> int ReadLog(const std::string &name, Find find, DLLD_Log *log)
{
    LogResult result = LOG_FAILED;
    DLLD_Log read;
    isCancelled = false;
    linkCause.clear();
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

// What the user gets of the log is proven as a whole, and read again while answers are repeated.
template <typename Read> int ReadProven(Read read)
{
    int result = 0;
    const int proven = UCM_MakeProven([&] { return result = read(); });
    if (result < 0 || proven >= 0)
        return result;
    linkCause = UCM_LastErrorText();
    return Fail("Read error", linkCause);
}

int ReadRecIdText(uint32_t wordAddress, std::string *text)
{
    uint8_t bytes[DLLD_DESCRIPTION_BYTES];
    text->clear();
    if (wordAddress == 0) // the type has no description
        return 0;
    if (DLLD_ReadData(ToByteAddress(wordAddress), sizeof bytes, bytes) < 0)
        return -1;
    // A text without an end says nothing that could be relied on.
    if (DLLD_ReduceStr(bytes, sizeof bytes, text) < 0)
        text->clear();
    return 0;
}

// One entry with its text. 0, 1 at the negative id that ends the table, or -1.
int ReadRecId(const uint8_t *bytes, DLLD_RecId *entry)
{
    entry->id = static_cast<int16_t>(bytes[0] | bytes[1] << 8);
    if (entry->id < 0)
        return 1;
    return ReadRecIdText(GetDWord(bytes + 4), &entry->text);
}

int ReadRecIds(uint32_t address, uint32_t count, std::vector<DLLD_RecId> *entries)
{
    std::vector<uint8_t> table(RECID_BYTES * count);
    if (DLLD_ReadData(address, static_cast<uint32_t>(table.size()), table.data()) < 0)
        return -1;
    int result = 0;
    for (uint32_t i = 0; i < count && result == 0; i++) {
        DLLD_RecId entry;
        result =
            StepProgress(i, count, READING_TYPES) ? ReadRecId(&table[RECID_BYTES * i], &entry) : -1;
        if (result == 0)
            entries->push_back(entry);
    }
    EndProgress();
    return result < 0 ? -1 : 0;
}

} // namespace

int DLLD_FindLog(const std::string &name, uint32_t *address, int32_t *words)
{
    LogPlace place;
    if (FindLog(name, &place) < 0)
        return -1;
    *address = place.address;
    *words = static_cast<int32_t>(place.words);
    return 0;
}

void DLLD_SetHost(const DLLD_Host &newHost)
{
    host = newHost;
    isCancelled = false;
    linkCause.clear();
}

const DLLD_Host &DLLD_GetHost()
{
    return host;
}

std::string DLLD_BadHeaderText(const std::string &name)
{
    return "Bad log header (" + name + ").";
}

void DLLD_ErrorMessage(const char *title, const std::string &text)
{
    if (host.showError != nullptr)
        host.showError(title, text);
}

bool DLLD_IsCancelled()
{
    return isCancelled;
}

const std::string &DLLD_GetLinkCause()
{
    return linkCause;
}

int DLLD_GetWrkAddr(uint32_t *address, const std::string &name)
{
    *address = FindAddress(name);
    return *address != ADDR_NONE ? 0 : Fail("Error", "Variable '" + name + "' not found");
}

int DLLD_ReadData(uint32_t address, uint32_t length, void *buffer)
{
    // Addresses come from the target: what points past its memory is not asked for.
    const bool isMemory = address < ADDR_LIMIT && length <= ADDR_LIMIT - address;
    const bool isRead = isMemory && ReadBlocks(address, length, static_cast<uint8_t *>(buffer));
    if (length > BLOCK_BYTES)
        EndProgress();
    if (isRead)
        return 0;
    // Who cancelled needs no message.
    if (isCancelled)
        return -1;
    std::string text;
    DLLD_Print(&text, "Data read error (%ld bytes at address %6lXh).", static_cast<long>(length),
               static_cast<unsigned long>(address));
    return Fail("Read error", text);
}

int DLLD_ReadVar(const std::string &name, uint32_t length, void *buffer)
{
    uint32_t address;
    if (name.empty() || length == 0 || buffer == nullptr)
        return Fail("Internal error", "DLLD_ReadVar bad parameters.");
    return DLLD_GetWrkAddr(&address, name) < 0 ? -1 : DLLD_ReadData(address, length, buffer);
}

namespace {

int ReadARecId()
{
    uint32_t address;
    uint8_t bytes[2];
    isCancelled = false;
    linkCause.clear();
    if (!host.hasRecIds)
        return Fail("Error", "Unsupported CPU.");
    if (DLLD_ReadVar("DL_nDimARecId", sizeof bytes, bytes) < 0)
        return -1;
    const int count = static_cast<int16_t>(bytes[0] | bytes[1] << 8);
    if (count < 0 || count > DLLD_RECIDS_MAX)
        return Fail("Error", "Data integrity.");
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
        return Fail("Error", "Internal error.");
    }
    return 0;
}

} // namespace

int DLLD_ReadARecId()
{
    return ReadProven(ReadARecId);
}

int DLLD_ReadWords(uint32_t address, uint16_t *words, int32_t count)
{
    return ReadWords(address, words, count);
}

int DLLD_ReadLog(const std::string &name, DLLD_Log *log)
{
    const auto find = [&](LogPlace *place) { return FindLog(name, place); };
    return ReadProven([&] { return ReadLog(name, find, log); });
}

int DLLD_ReadLogAt(uint32_t address, DLLD_Log *log)
{
    const auto find = [address](LogPlace *place) {
        DLLD_Log header;
        place->address = address;
        if (ReadHeader(*place, &header) < 0)
            return -1;
        place->words = static_cast<int32_t>(uint32_t(header[3]) << 16 | header[2]);
        return 0;
    };
    std::string name;
    DLLD_Print(&name, "%06lXh", static_cast<unsigned long>(address));
    return ReadProven([&] { return ReadLog(name, find, log); });
}

int DLLD_TestLogHeader(const uint16_t *buffer, uint32_t address, int64_t sizeInWords)
{
    if (buffer == nullptr || sizeInWords < DLLD_HEADER_WORDS || sizeInWords > DLLD_WORDS_MAX)
        return -1;
    const uint32_t stored = uint32_t(buffer[1]) << 16 | buffer[0];
    if (address != DLLD_ANY_ADDRESS && ToByteAddress(stored) != address)
        return -1;
    if ((uint32_t(buffer[3]) << 16 | buffer[2]) != static_cast<uint32_t>(sizeInWords))
        return -1;
    return std::equal(std::begin(SIGNATURE), std::end(SIGNATURE), buffer + 4) ? 0 : -1;
}
