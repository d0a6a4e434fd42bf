#include "watch/windows/memory_range.h"

#include <algorithm>

#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "text/words.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/windows/selector_row.h"

namespace {

typedef std::vector<uint8_t> Bytes;

// What the target holds now against what was wanted, of the bytes that were written.
WIN_MemoryOutcome Compare(uint32_t address, const Bytes &before, const Bytes &wanted,
                          const Bytes &held, std::string *message)
{
    size_t changed = 0;
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i] == before[i]) // not written: the target's own business
            continue;
        if (wanted[i] != held[i]) {
            *message = TXT_Format("DIFFERENT at byte address 0x%06X: wrote %02X, the target holds "
                                  "%02X.",
                                  address + static_cast<uint32_t>(i), wanted[i], held[i]);
            return WIN_MEMORY_DIFFERENT;
        }
        ++changed;
    }
    *message = "OK: Written and read back: " + std::to_string(changed) +
               (changed == 1 ? " byte." : " bytes.");
    return WIN_MEMORY_OK;
}

} // namespace

bool WIN_FindMemoryPlace(const std::string &text, uint32_t *address, int *station,
                         std::string *message)
{
    *message = COM_ADDRESS_HINT;
    if (text.find_first_not_of(' ') == std::string::npos)
        return false;
    *address = GetSysAddrM(text.c_str(), station);
    const char *name = text.c_str();
    GetStationModifier(&name);
    while (*name == ' ')
        ++name;
    if (*name == '&') { // has an address, but of words
        *message = "The memory of a TMS320 behind a station is not bytes: use a watch item or the "
                   "memory box.";
        return false;
    }
    *message = COM_UnknownNameText(text);
    if (*address == ADDR_NONE)
        return false;
    *message = COM_UnknownStationText();
    if (*station > STATION_MAX)
        return false;
    if (*station < 0) // none was typed
        *station = STATION;
    return true;
}

std::string WIN_FindMemoryRange(const std::string &text, int count, WIN_MemoryRange *range)
{
    std::string message;
    if (!WIN_FindMemoryPlace(text, &range->start, &range->station, &message))
        return message;
    if (count < 1 || count > MEMORY_BYTES_MAX)
        return "The count must be 1 to " + std::to_string(MEMORY_BYTES_MAX) + " bytes.";
    if (static_cast<uint32_t>(count) > ADDR_LIMIT - range->start)
        return "The range ends beyond the target's memory.";
    range->bytes.assign(static_cast<size_t>(count), 0);
    return "";
}

std::string WIN_MemoryPlaceText(uint32_t address, int station)
{
    std::string text = TXT_Format("byte address 0x%06X", address);
    if (IsWordAddressing(Procesor))
        text += ", word address 0x" + SEL_AddressText(address);
    return text + ", station " + std::to_string(station);
}

std::string WIN_MemoryPlaceOf(const LItem &item)
{
    if (GetSysAddr(item.name.c_str()) == item.address)
        return item.name;
    // A line may give its name another address than the map does.
    const std::string station = item.station < 0 ? "" : std::to_string(item.station) + ":";
    return station + TXT_Format("$%X", item.address);
}

int WIN_ReadMemoryRange(WIN_MemoryRange *range, std::string *cause)
{
    const int result =
        RFR_ReadItemBytes(range->station, range->start, static_cast<uint32_t>(range->bytes.size()),
                          range->bytes.data(), cause);
    if (result != 0) // bytes that were not read shall not look as if they had been
        range->bytes.clear();
    PLT_LocalTime(&range->readAt);
    return result == 0 ? 0 : -1;
}

WIN_MemoryOutcome WIN_WriteMemory(WIN_MemoryRange *range, size_t first, const Bytes &wanted,
                                  std::string *message, bool *isRead)
{
    const uint32_t address = range->start + static_cast<uint32_t>(first);
    const auto begin = range->bytes.begin() + static_cast<long>(first);
    const Bytes before(begin, begin + static_cast<long>(wanted.size()));
    // Each run of changed bytes with one message and nothing between them: the target may have
    // changed a neighbour since it was read.
    bool isWritten = true;
    for (size_t from = 0; from < wanted.size() && isWritten;) {
        size_t end = from;
        while (end < wanted.size() && wanted[end] != before[end])
            ++end;
        if (end > from)
            isWritten = UCM_Write(range->station, address + static_cast<uint32_t>(from),
                                  static_cast<uint32_t>(end - from), &wanted[from]) >= 0;
        from = std::max(end, from + 1);
    }
    std::string cause = isWritten ? "" : UCM_LastErrorText();
    if (!isWritten)
        *message = "FAILED: Not written, or only in part: " + cause + ".";
    // After a failure, too: what of it has arrived is there to see.
    Bytes held(before.size());
    *isRead = RFR_ReadItemBytes(range->station, address, static_cast<uint32_t>(held.size()),
                                held.data(), &cause) == 0;
    if (*isRead)
        std::copy(held.begin(), held.end(), begin);
    if (!isWritten)
        return WIN_MEMORY_NOT_WRITTEN;
    if (*isRead)
        return Compare(address, before, wanted, held, message);
    *message = "NOT VERIFIED: Written, but the line could not be read: " + cause + ".";
    return WIN_MEMORY_NOT_READ;
}
