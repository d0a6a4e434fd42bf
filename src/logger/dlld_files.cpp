// The log's files: raw, as a listing, and in the old layout of a line a message. Only a log with
// a good header becomes a file, whoever asks.
#include <cstdio>
#include <new>

#include "logger/dlld.h"
#include "logger/dlld_print.h"
#include "platform/safe_file.h"
#include "platform/system.h"

namespace {

constexpr uint32_t SECONDS_A_DAY = 86400;

typedef void (*MsgPrinter)(const DLLD_Msg &msg, std::string *out);

int TestLog(const DLLD_Log &log)
{
    return DLLD_TestLogHeader(log.data(), DLLD_ANY_ADDRESS, static_cast<int64_t>(log.size()));
}

// Whole or not at all. 0 or DLLD_ERR_...
int SaveBytes(const std::string &path, const char *bytes, size_t count)
{
    SafeFile file;
    if (PLT_BeginSave(&file, path, "wb") < 0)
        return DLLD_ERR_OPEN;
    if (std::fwrite(bytes, 1, count, file.file) != count) {
        PLT_CancelSave(&file);
        return DLLD_ERR_FILE;
    }
    return PLT_CommitSave(&file) < 0 ? DLLD_ERR_FILE : 0;
}

// Everything but junk, each message through `print`.
int SaveListing(const std::string &path, const DLLD_Log &log, MsgPrinter print)
{
    if (TestLog(log) < 0)
        return DLLD_ERR_HEADER;
    std::string text;
    try {
        // About what a listing comes to: a large log would be copied a dozen times on its way.
        text.reserve(4 * log.size());
        DLLD_Msg msg;
        for (int32_t index = DLLD_HEADER_WORDS; DLLD_NextMsg(log, &index, &msg);)
            if (DLLD_GetType(msg) != DLLD_JUNK)
                print(msg, &text);
    } catch (const std::bad_alloc &) {
        return DLLD_ERR_FILE;
    }
    return SaveBytes(path, text.data(), text.size());
}

// A message as a line of the old layout, which knows no descriptions of records.
void AppendOldLine(const DLLD_Msg &msg, std::string *out)
{
    // Too short for a time: such a line could not be told from its neighbours.
    if (msg.length < DLLD_HEAD_WORDS)
        return;
    DateTime time;
    CvtAMCBIOS_time(DLLD_GetStamp(msg), &time);
    DLLD_AppendTime(time, out);
    DLLD_Stamp stamp;
    if (DLLD_GetType(msg) == DLLD_TEXT) {
        *out += " ST8: " + DLLD_GetText(msg);
    } else if (DLLD_GetType(msg) != DLLD_BSTAMP) {
        DLLD_Print(out, " Usr%u:", static_cast<unsigned>(DLLD_GetType(msg)));
        for (int32_t i = DLLD_HEAD_WORDS; i < msg.length; i++)
            DLLD_Print(out, " %04X", DLLD_GetWord(msg, i));
    } else if (DLLD_GetBStamp(msg, &stamp)) {
        // "T" counts whole days of operation here, and of the state only the named bits stand.
        DLLD_Print(out, " T=%lud ErrFlag=%08lX IntErr=%08lX Warning=%08lX DevSt=%02lX",
                   static_cast<unsigned long>(static_cast<uint32_t>(stamp.seconds) / SECONDS_A_DAY),
                   static_cast<unsigned long>(stamp.errors),
                   static_cast<unsigned long>(stamp.internalErrors),
                   static_cast<unsigned long>(stamp.warnings), stamp.state & 0xFFUL);
    }
    *out += "\r\n";
}

} // namespace

int DLLD_SaveBinLogFe(const std::string &path, const DLLD_Log &log)
{
    if (TestLog(log) < 0)
        return DLLD_ERR_HEADER;
    // The target's own order, whatever this computer's is.
    std::string bytes;
    bytes.reserve(2 * log.size());
    for (const uint16_t word : log) {
        bytes += static_cast<char>(word & 0xFF);
        bytes += static_cast<char>(word >> 8);
    }
    return SaveBytes(path, bytes.data(), bytes.size());
}

int DLLD_ReadBinLogFe(const std::string &path, DLLD_Log *log)
{
    std::FILE *file = PLT_OpenFile(path, "rb");
    if (file == nullptr)
        return DLLD_ERR_OPEN;
    // One byte more than a log may have shows a file that is too long.
    std::vector<uint8_t> bytes(2 * DLLD_WORDS_MAX + 1);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    const bool isRead = std::ferror(file) == 0;
    std::fclose(file);
    if (!isRead)
        return DLLD_ERR_FILE;
    DLLD_Log read(bytes.size() / 2);
    for (size_t i = 0; i < read.size(); i++)
        read[i] = static_cast<uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    // The caller's log stays as it was unless all of the file is good.
    if (bytes.size() % 2 != 0 || TestLog(read) < 0)
        return DLLD_ERR_HEADER;
    *log = std::move(read);
    return 0;
}

int DLLD_SaveStdLogFe(const std::string &path, const DLLD_Log &log)
{
    const auto print = [](const DLLD_Msg &msg, std::string *out) {
        DLLD_FPrintMsgHdr(msg, out);
        DLLD_FPrintMsgCts(msg, out);
    };
    return SaveListing(path, log, print) < 0 ? -1 : 0;
}

int DLLD_SaveHexLogFe(const std::string &path, const DLLD_Log &log)
{
    const auto print = [](const DLLD_Msg &msg, std::string *out) {
        DLLD_FPrintMsgHdr(msg, out);
        DLLD_FPrintMsgHexCts(msg, out);
    };
    return SaveListing(path, log, print) < 0 ? -1 : 0;
}

int DLLD_SaveOldLogFe(const std::string &path, const DLLD_Log &log)
{
    return SaveListing(path, log, AppendOldLine);
}
