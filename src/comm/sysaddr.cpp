#include "comm/sysaddr.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "comm/ucm.h"
#include "settings/settings.h"
#include "symbols/varnode.h"

uint16_t awQRDPP[4] = {0, 0, 0, 0};

namespace {

constexpr size_t ALTERNATIVE_MAX = 998; // characters of one name in a list
constexpr uint32_t NEAR_OFFSET_MASK = 0x3FFF;
constexpr int NEAR_PAGE_SHIFT = 14;

bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

const char *skipSpace(const char *text)
{
    while (isSpace(*text))
        ++text;
    return text;
}

uint32_t limited(uint32_t address)
{
    return address < ADDR_LIMIT ? address : ADDR_NONE;
}

// Digits up to the end of the text or white space. No digits is no address: a
// half-typed "0x" must not reach address 0.
uint32_t hexAddress(const char *digits)
{
    if (!std::isxdigit(static_cast<unsigned char>(*digits)))
        return ADDR_NONE;
    char *end = nullptr;
    errno = 0;
    const unsigned long long number = std::strtoull(digits, &end, 16);
    // "0x" may not follow the prefix a second time.
    const bool isDoublePrefix = std::tolower(static_cast<unsigned char>(digits[1])) == 'x';
    if (errno != 0 || isDoublePrefix || (*end != '\0' && !isSpace(*end)))
        return ADDR_NONE;
    return number < ADDR_LIMIT ? static_cast<uint32_t>(number) : ADDR_NONE;
}

uint32_t namedAddress(const char *name)
{
    uint32_t address = ADDR_NONE;
    if (openStruct)
        address = inStruct(name, aVarNode, nNodes);
    if (address == ADDR_NONE && openStruct166)
        address = inStruct(name, aVarNode166, nNodes166);
    return limited(address);
}

template <typename Resolve> uint32_t firstAlternative(const char *list, Resolve resolve)
{
    while (true) {
        const size_t length = std::strcspn(list, ",");
        if (length > 0 && length <= ALTERNATIVE_MAX) {
            const uint32_t address = resolve(std::string(list, length).c_str());
            if (address != ADDR_NONE)
                return address;
        }
        if (list[length] == '\0')
            return ADDR_NONE;
        list += length + 1;
    }
}

} // namespace

int GetStationModifier(const char **cursor)
{
    const char *text = skipSpace(*cursor);
    int number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number > (INT_MAX - 9) / 10 ? INT_MAX : number * 10 + (*text - '0');
    text = skipSpace(text);
    if (*text != ':')
        return -1;
    *cursor = text + 1;
    return number;
}

uint32_t GetSysAddrWk(const char *text)
{
    text = skipSpace(text);
    if (*text == '\0')
        return ADDR_NONE;
    if (*text == '$')
        return hexAddress(text + 1);
    if (*text == '0')
        return text[1] == 'x' || text[1] == 'X' ? hexAddress(text + 2) : ADDR_NONE;
    if (*text == '&')
        return openTMSStruct ? limited(inStruct(text + 1, aVarTMSNode, nTMSNodes)) : ADDR_NONE;
    return namedAddress(text);
}

uint32_t GetSysAddrM(const char *text, int *station)
{
    *station = GetStationModifier(&text);
    return GetSysAddrWk(text);
}

uint32_t GetSysAddr(const char *text)
{
    int station;
    return GetSysAddrM(text, &station);
}

uint32_t GetAltSysAddr(const char *list)
{
    return firstAlternative(list, GetSysAddr);
}

uint32_t GetAltSysAddrM(const char *list, int *station)
{
    *station = -1;
    return firstAlternative(list, [station](const char *name) {
        int found;
        const uint32_t address = GetSysAddrM(name, &found);
        if (address != ADDR_NONE)
            *station = found;
        return address;
    });
}

int UpdateQuickDPP()
{
    uint8_t bytes[8];
    if (ReadSysVar("DPP0", bytes, sizeof bytes) < 0)
        return -1;
    for (int i = 0; i < 4; ++i)
        awQRDPP[i] = static_cast<uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    return 0;
}

uint32_t QuickNearToHuge(uint16_t nearPointer)
{
    const uint32_t page = awQRDPP[nearPointer >> NEAR_PAGE_SHIFT];
    return (nearPointer & NEAR_OFFSET_MASK) | page << NEAR_PAGE_SHIFT;
}

uint32_t QuickRefNearPtr(uint32_t address)
{
    uint8_t bytes[2];
    if (address >= ADDR_LIMIT || UCM_Read(STATION, address, sizeof bytes, bytes) < 0)
        return ADDR_NONE;
    return limited(QuickNearToHuge(static_cast<uint16_t>(bytes[0] | bytes[1] << 8)));
}

uint32_t QuickRefNearPtrVar(const char *name)
{
    return QuickRefNearPtr(GetSysAddr(name));
}

int ReadSysVar(const char *name, void *buffer, uint32_t size)
{
    const uint32_t address = GetSysAddr(name);
    return address == ADDR_NONE ? -1 : UCM_Read(STATION, address, size, buffer);
}

int WriteSysVar(const char *name, const void *data, uint32_t size)
{
    const uint32_t address = GetSysAddr(name);
    return address == ADDR_NONE ? -1 : UCM_Write(STATION, address, size, data);
}

int ReadQuickSysNRef(const char *name, void *buffer, uint32_t size)
{
    const uint32_t address = QuickRefNearPtrVar(name);
    return address == ADDR_NONE ? -1 : UCM_Read(STATION, address, size, buffer);
}

int WriteQuickSysNRef(const char *name, const void *data, uint32_t size)
{
    const uint32_t address = QuickRefNearPtrVar(name);
    return address == ADDR_NONE ? -1 : UCM_Write(STATION, address, size, data);
}
