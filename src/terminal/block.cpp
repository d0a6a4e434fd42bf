// Everything that a damaged or foreign block could say is checked here, once: whoever holds a
// parsed block may divide by its sizes and read between its indices.
#include "terminal/block.h"

#include "comm/sysaddr.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/words.h"

namespace {

constexpr uint32_t VERSION_AT = 2, SESSION_AT = 4;               // offsets in both blocks
constexpr uint32_t OUT_READ = 16, IN_WRITE = 20, KEY_WRITE = 24; // what the program writes

uint32_t GetWord(const uint8_t *head, uint32_t offset)
{
    return static_cast<uint32_t>(TXT_GetLittle(head + offset, 2));
}

int CheckBegin(const uint8_t *head, uint16_t id)
{
    if (GetWord(head, 0) != id)
        return TRM_BLOCK_ERR_ID;
    return GetWord(head, VERSION_AT) >> 8 == TRM_BLOCK_VERSION ? 0 : TRM_BLOCK_ERR_VERSION;
}

// The index that the program wrote, if it was for this session.
uint32_t GetIndex(const uint8_t *head, uint32_t offset)
{
    return GetWord(head, offset + 2) == GetWord(head, SESSION_AT) ? GetWord(head, offset) : 0;
}

int CheckRing(const TRM_Ring &ring)
{
    if (ring.size < TRM_RING_MIN || ring.size > TRM_RING_MAX)
        return TRM_BLOCK_ERR_SIZE;
    return ring.write < ring.size && ring.read < ring.size ? 0 : TRM_BLOCK_ERR_INDEX;
}

} // namespace

void TRM_PutIndex(uint8_t bytes[TRM_INDEX_BYTES], uint32_t index, uint16_t session)
{
    TXT_PutLittle(bytes, 2, index);
    TXT_PutLittle(bytes + 2, 2, session);
}

uint32_t TRM_CountPending(const TRM_Ring &ring)
{
    // Added before it is taken off: the numbers have no sign.
    return (ring.write + ring.size - ring.read) % ring.size;
}

uint32_t TRM_CountRoom(const TRM_Ring &ring)
{
    // A full ring would look like an empty one.
    return ring.size - 1 - TRM_CountPending(ring);
}

int TRM_ParseServiceBlock(uint32_t address, const uint8_t *head, TRM_ServiceBlock *block)
{
    int result = CheckBegin(head, TRM_SERVICE_ID);
    if (result != 0)
        return result;
    TRM_ServiceBlock found;
    found.session = static_cast<uint16_t>(GetWord(head, SESSION_AT));
    found.lost = static_cast<uint16_t>(GetWord(head, 6));
    found.output = {address + TRM_SERVICE_HEAD, address + OUT_READ, GetWord(head, 8),
                    GetWord(head, 10), GetIndex(head, OUT_READ)};
    found.input = {found.output.address + found.output.size, address + IN_WRITE, GetWord(head, 12),
                   GetIndex(head, IN_WRITE), GetWord(head, 14)};
    result = CheckRing(found.output);
    if (result == 0)
        result = CheckRing(found.input);
    if (result == 0 && found.input.address + found.input.size > ADDR_LIMIT)
        result = TRM_BLOCK_ERR_PLACE;
    if (result == 0)
        *block = found;
    return result;
}

int TRM_ParseLcdBlock(uint32_t address, const uint8_t *head, TRM_LcdBlock *block)
{
    int result = CheckBegin(head, TRM_LCD_ID);
    if (result != 0)
        return result;
    TRM_LcdBlock found;
    found.session = static_cast<uint16_t>(GetWord(head, SESSION_AT));
    found.changes = static_cast<uint16_t>(GetWord(head, 6));
    found.rows = head[8];
    found.columns = head[9];
    found.cursorRow = head[10];
    found.cursorColumn = head[11];
    found.flags = head[12];
    found.codePage = head[13];
    found.keys = {address + TRM_LCD_FLAG_KEYS, address + KEY_WRITE, GetWord(head, 14),
                  GetIndex(head, KEY_WRITE), GetWord(head, 16)};
    found.keyMask = static_cast<uint32_t>(TXT_GetLittle(head + 20, 4));
    found.screen = found.keys.address + found.keys.size;
    result = CheckRing(found.keys);
    if (result != 0)
        return result;
    // A cursor outside is allowed: it is not seen.
    if (found.rows == 0 || found.rows > TRM_LCD_ROWS_MAX || found.columns == 0 ||
        found.columns > TRM_LCD_COLUMNS_MAX)
        return TRM_BLOCK_ERR_SIZE;
    if (found.screen + found.rows * found.columns > ADDR_LIMIT)
        return TRM_BLOCK_ERR_PLACE;
    *block = found;
    return 0;
}

std::string TRM_BlockErrorText(int result)
{
    static const struct {
        int result;
        const char *text;
    } TEXTS[] = {
        {TRM_BLOCK_ERR_ID, "its first word is not the terminal's"},
        {TRM_BLOCK_ERR_VERSION, "its version is another one"},
        {TRM_BLOCK_ERR_SIZE, "its sizes cannot be meant"},
        {TRM_BLOCK_ERR_INDEX, "an index lies outside of its ring"},
        {TRM_BLOCK_ERR_PLACE, "it reaches beyond the memory"},
    };
    for (const auto &row : TEXTS)
        if (row.result == result)
            return row.text;
    return "";
}

int TRM_FindBlockPlace(const std::string &text, int station, TRM_BlockPlace *place,
                       std::string *cause)
{
    // Their memory has words: the bytes of a block could not be written one by one.
    if (IsWordAddressing(Procesor)) {
        *cause = "Only stations with a C166 or C167 have terminals.";
        return -1;
    }
    int prefix = -1;
    const uint32_t address = GetSysAddrM(text.c_str(), &prefix);
    // A TMS320 behind the station, which "&" names, is reached by a mailbox of words.
    if (address == ADDR_NONE || TXT_Trim(text).find('&') != std::string::npos) {
        *cause = COM_UnknownNameText(text);
        return -1;
    }
    if (prefix > STATION_MAX) {
        *cause = COM_UnknownStationText();
        return -1;
    }
    *place = {address, prefix >= 0 ? prefix : station};
    return 0;
}
