// Memory and variables of the target, read for the download. A long reading goes in blocks, so
// that it can show how far it is and be cancelled; the wire sees no difference.
#include "logger/dlld_target.h"

#include <algorithm>
#include <vector>

#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "logger/dlld.h"
#include "runtime/userint.h"
#include "text/bytes.h"
#include "text/words.h"

namespace {

// So many bytes between two looks at the Cancel button.
constexpr uint32_t BLOCK_BYTES = 1024;
const char READING_LOG[] = "Reading the log";

DLLD_Host host;
bool isCancelled = false;
std::string linkCause;

} // namespace

void DLLD_SetHost(const DLLD_Host &newHost)
{
    host = newHost;
    DLLD_BeginReading();
}

const DLLD_Host &DLLD_GetHost()
{
    return host;
}

void DLLD_BeginReading()
{
    isCancelled = false;
    linkCause.clear();
}

bool DLLD_IsCancelled()
{
    return isCancelled;
}

const std::string &DLLD_GetLinkCause()
{
    return linkCause;
}

void DLLD_ErrorMessage(const char *title, const std::string &text)
{
    if (host.showError != nullptr)
        host.showError(title, text);
}

int DLLD_Fail(const char *title, const std::string &text)
{
    DLLD_ErrorMessage(title, text);
    return -1;
}

bool DLLD_StepProgress(uint32_t done, uint32_t total, const char *text)
{
    if (host.showProgress != nullptr && host.showProgress(done, total, text))
        isCancelled = true;
    return !isCancelled;
}

void DLLD_EndProgress()
{
    if (host.showProgress != nullptr)
        host.showProgress(0, 0, "");
}

uint32_t DLLD_ToByteAddress(uint32_t stored)
{
    return host.isWordAddressing ? 2 * stored : stored;
}

int DLLD_ReadProven(const std::function<int()> &read)
{
    int result = 0;
    const int proven = UCM_MakeProven([&] { return result = read(); });
    // A reading that failed by itself has said so.
    if (result < 0 || proven >= 0)
        return result;
    linkCause = UCM_LastErrorText();
    return DLLD_Fail("Read error", linkCause);
}

int DLLD_GetWrkAddr(uint32_t *address, const std::string &name)
{
    const char *rest = name.c_str();
    const int station = GetStationModifier(&rest);
    // A log is read whole from one station: a name of another one is no log of this, and
    // neither is one of the processor behind this one's mailbox.
    const bool isElsewhere = station >= 0 && station != host.station;
    const bool isBehindMailbox = *rest == '&' && !host.isWordAddressing;
    *address = ADDR_NONE;
    if (!isElsewhere && !isBehindMailbox) {
        *address = GetSysAddrWk(rest);
        // Symbols of the TMS320's compiler begin with an underscore that the source does not show.
        if (*address == ADDR_NONE && host.isWordAddressing)
            *address = GetSysAddrWk((std::string("_") + rest).c_str());
    }
    return *address != ADDR_NONE ? 0 : DLLD_Fail("Error", "Variable '" + name + "' not found");
}

int DLLD_ReadData(uint32_t address, uint32_t length, void *buffer)
{
    // Addresses come from the target: what points past its memory is not asked for.
    bool isRead = address < ADDR_LIMIT && length <= ADDR_LIMIT - address;
    for (uint32_t at = 0; isRead && at < length; at += BLOCK_BYTES) {
        // What is read in a moment shows no box.
        if (length > BLOCK_BYTES && !DLLD_StepProgress(at, length, READING_LOG)) {
            isRead = false;
            break;
        }
        const uint32_t count = std::min(BLOCK_BYTES, length - at);
        isRead =
            UCM_Read(host.station, address + at, count, static_cast<uint8_t *>(buffer) + at) >= 0;
        // A wish to stop also ends the exchange it comes in: that is no fault of the line.
        if (!isRead) {
            linkCause = UCM_LastErrorText();
            isCancelled = isCancelled || IsBreakWished();
        }
    }
    if (length > BLOCK_BYTES)
        DLLD_EndProgress();
    if (isRead)
        return 0;
    // Who cancelled needs no message.
    if (isCancelled)
        return -1;
    return DLLD_Fail("Read error",
                     TXT_Format("Data read error (%ld bytes at address %6lXh).",
                                static_cast<long>(length), static_cast<unsigned long>(address)));
}

int DLLD_ReadVar(const std::string &name, uint32_t length, void *buffer)
{
    uint32_t address;
    if (name.empty() || length == 0 || buffer == nullptr)
        return DLLD_Fail(DLLD_INTERNAL_ERROR, "DLLD_ReadVar bad parameters.");
    return DLLD_GetWrkAddr(&address, name) < 0 ? -1 : DLLD_ReadData(address, length, buffer);
}

int DLLD_ReadWords(uint32_t address, uint16_t *words, int32_t count)
{
    // By way of bytes: the target's order is not this computer's everywhere.
    std::vector<uint8_t> bytes(2 * static_cast<size_t>(count));
    if (DLLD_ReadData(address, static_cast<uint32_t>(bytes.size()), bytes.data()) < 0)
        return -1;
    for (size_t i = 0; i < bytes.size(); i += 2)
        words[i / 2] = static_cast<uint16_t>(TXT_GetLittle(&bytes[i], 2));
    return 0;
}
