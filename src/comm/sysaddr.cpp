// Texts that name a place in the target, and memory by such names. A station in front of a name is
// split off for callers that ask for it; the others read the selected station.
#include "comm/sysaddr.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "comm/ucm.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"

// Data page pointers as last read: a near pointer means nothing without them.
uint16_t awQRDPP[4] = {0, 0, 0, 0};

namespace {

constexpr size_t ALTERNATIVE_MAX = 998; // characters of one name in a list
constexpr uint32_t NEAR_OFFSET_MASK = 0x3FFF;
constexpr int NEAR_PAGE_SHIFT = 14;

bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

const char *SkipSpace(const char *text)
{
    while (IsSpace(*text))
        ++text;
    return text;
}

// Symbols are a room below: they come in through this call.
COM_NameResolver nameResolver = nullptr;

// A map may name what lies outside of the target's 24 bits.
uint32_t Limited(uint32_t address)
{
    return address < ADDR_LIMIT ? address : ADDR_NONE;
}

// Digits up to the end of the text or white space. No digits is no address: a
// half-typed "0x" must not reach address 0.
uint32_t HexAddress(const char *digits)
{
    if (!std::isxdigit(static_cast<unsigned char>(*digits)))
        return ADDR_NONE;
    char *end = nullptr;
    errno = 0;
    const unsigned long long number = std::strtoull(digits, &end, 16);
    // "0x" may not follow the prefix a second time.
    const bool isDoublePrefix = std::tolower(static_cast<unsigned char>(digits[1])) == 'x';
    if (errno != 0 || isDoublePrefix || (*end != '\0' && !IsSpace(*end)))
        return ADDR_NONE;
    return number < ADDR_LIMIT ? static_cast<uint32_t>(number) : ADDR_NONE;
}

uint32_t NamedAddress(const char *name, bool isTMS)
{
    return nameResolver != nullptr ? Limited(nameResolver(name, isTMS)) : ADDR_NONE;
}

// Firmware versions name the same variable differently: the first name that the map knows counts.
template <typename Resolve> uint32_t FirstAlternative(const char *list, Resolve resolve)
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

void COM_SetNameResolver(COM_NameResolver resolver)
{
    nameResolver = resolver;
}

int GetStationModifier(const char **cursor)
{
    const char *text = SkipSpace(*cursor);
    int number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        // Saturates: a station of many digits must not come round to a valid one.
        number = number > (INT_MAX - 9) / 10 ? INT_MAX : number * 10 + (*text - '0');
    text = SkipSpace(text);
    if (*text != ':')
        return -1;
    *cursor = text + 1;
    return number;
}

uint32_t GetSysAddrWk(const char *text)
{
    text = SkipSpace(text);
    if (*text == '\0')
        return ADDR_NONE;
    if (*text == '$')
        return HexAddress(text + 1);
    // No name begins with a digit, so "0100" is a slip and not a variable.
    if (*text == '0')
        return text[1] == 'x' || text[1] == 'X' ? HexAddress(text + 2) : ADDR_NONE;
    if (*text == '&')
        return NamedAddress(text + 1, true);
    return NamedAddress(text, false);
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
    return FirstAlternative(list, GetSysAddr);
}

uint32_t GetAltSysAddrM(const char *list, int *station)
{
    *station = -1;
    return FirstAlternative(list, [station](const char *name) {
        int found;
        const uint32_t address = GetSysAddrM(name, &found);
        if (address != ADDR_NONE)
            *station = found;
        return address;
    });
}

int UpdateQuickDPP()
{
    // The four pointers follow one another: one request, so that they are of one moment.
    uint8_t bytes[8];
    if (ReadSysVar("DPP0", bytes, sizeof bytes) < 0)
        return -1;
    for (int i = 0; i < 4; ++i)
        awQRDPP[i] = static_cast<uint16_t>(TXT_GetLittle(bytes + 2 * i, 2));
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
    return Limited(QuickNearToHuge(static_cast<uint16_t>(TXT_GetLittle(bytes, sizeof bytes))));
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

// The name is that of a near pointer: what it points to is read or written.
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

std::string COM_UnknownNameText(const std::string &what)
{
    return "'" + what + "' is no address, and no loaded map knows such a name.";
}

std::string COM_UnknownStationText()
{
    return "Stations are 0 to " + std::to_string(STATION_MAX) + ".";
}
