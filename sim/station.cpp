// Pages exist once they are written. Addresses wrap at the end of the memory: no request, however
// wrong, reaches beyond it.
#include "station.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr uint32_t MAILBOX_COMMAND = 0x3C000;
constexpr uint32_t MAILBOX_ADDRESS = 0x3C004;
constexpr uint32_t MAILBOX_DATA = 0x3C008;
constexpr size_t WORD_SIZE = 4;
enum { MAILBOX_READ = 1, MAILBOX_WRITE = 2 };

constexpr uint32_t TMS_ZERO = 0x80000000U;
constexpr uint32_t TMS_HIGHEST = 0x7F7FFFFFU;
constexpr uint32_t TMS_LOWEST = 0x7F800000U;
constexpr double FRACTION_ONE = 8388608.0; // 2^23

// Bytes that can be moved from `address` on without leaving its page.
size_t PageRun(uint32_t address, size_t count)
{
    return std::min<size_t>(count, SIM_PAGE_SIZE - address % SIM_PAGE_SIZE);
}

} // namespace

bool SIM_Touches(uint32_t address, size_t count, uint32_t begin, uint32_t end)
{
    return address < end && address + count > begin;
}

void SIM_ReadMemory(const SIM_Station &station, uint32_t address, void *bytes, size_t count)
{
    auto *out = static_cast<uint8_t *>(bytes);
    while (count > 0) {
        address %= SIM_MEMORY_SIZE;
        const size_t run = PageRun(address, count);
        const uint8_t *page = station.pages[address / SIM_PAGE_SIZE].get();
        // Most of the 16 MiB is never written: such a page takes no room.
        if (page)
            memcpy(out, page + address % SIM_PAGE_SIZE, run);
        else
            memset(out, 0, run);
        address += static_cast<uint32_t>(run);
        out += run;
        count -= run;
    }
}

void SIM_WriteMemory(SIM_Station *station, uint32_t address, const void *bytes, size_t count)
{
    const auto *in = static_cast<const uint8_t *>(bytes);
    while (count > 0) {
        address %= SIM_MEMORY_SIZE;
        const size_t run = PageRun(address, count);
        auto &page = station->pages[address / SIM_PAGE_SIZE];
        if (!page)
            page = std::make_unique<uint8_t[]>(SIM_PAGE_SIZE);
        memcpy(page.get() + address % SIM_PAGE_SIZE, in, run);
        address += static_cast<uint32_t>(run);
        in += run;
        count -= run;
    }
}

uint64_t SIM_GetValue(const SIM_Station &station, uint32_t address, size_t size)
{
    uint8_t bytes[8] = {0}; // beyond the size they stay zero, so a value is never extended
    SIM_ReadMemory(station, address, bytes, std::min(size, sizeof bytes));
    uint64_t value = 0;
    for (size_t i = sizeof bytes; i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

void SIM_SetValue(SIM_Station *station, uint32_t address, size_t size, uint64_t value)
{
    uint8_t bytes[8];
    for (size_t i = 0; i < sizeof bytes; i++, value >>= 8)
        bytes[i] = static_cast<uint8_t>(value & 0xFF);
    SIM_WriteMemory(station, address, bytes, std::min(size, sizeof bytes));
}

uint16_t SIM_GetWord(const SIM_Station &station, uint32_t address)
{
    return static_cast<uint16_t>(SIM_GetValue(station, address, 2));
}

void SIM_SetWord(SIM_Station *station, uint32_t address, unsigned value)
{
    SIM_SetValue(station, address, 2, value & 0xFFFF);
}

float SIM_GetFloat(const SIM_Station &station, uint32_t address)
{
    const auto bits = static_cast<uint32_t>(SIM_GetValue(station, address, sizeof(float)));
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

void SIM_SetFloat(SIM_Station *station, uint32_t address, float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    SIM_SetValue(station, address, sizeof bits, bits);
}

bool SIM_TouchesMailbox(uint32_t address, size_t count)
{
    return address <= MAILBOX_COMMAND && address + count > MAILBOX_COMMAND;
}

void SIM_ServeMailbox(SIM_Station *station)
{
    const uint64_t command = SIM_GetValue(*station, MAILBOX_COMMAND, 1);
    const auto address = static_cast<uint32_t>(SIM_GetValue(*station, MAILBOX_ADDRESS, WORD_SIZE));
    if (command == MAILBOX_READ) {
        const auto found = station->tms.find(address);
        const uint32_t value = found == station->tms.end() ? 0 : found->second;
        SIM_SetValue(station, MAILBOX_DATA, WORD_SIZE, value);
    } else if (command == MAILBOX_WRITE) {
        station->tms[address] =
            static_cast<uint32_t>(SIM_GetValue(*station, MAILBOX_DATA, WORD_SIZE));
    }
    // The program waits for the zero: it says that the command is done.
    SIM_SetValue(station, MAILBOX_COMMAND, WORD_SIZE, 0);
}

// Exponent in the top byte, then a 24-bit two's complement mantissa whose leading bit is
// implied: 1 <= m < 2 for positive numbers, -2 <= m < -1 for negative ones.
uint32_t SIM_TmsFloat(double value)
{
    if (value == 0)
        return TMS_ZERO;
    int exponent;
    double mantissa = 2 * std::frexp(value, &exponent); // 1 <= |mantissa| < 2
    exponent--;
    // A negative mantissa reaches from -2 up to, but not to, -1.
    if (mantissa == -1) {
        mantissa = -2;
        exponent--;
    }
    const bool negative = mantissa < 0;
    if (exponent < -127)
        return TMS_ZERO;
    if (exponent > 127)
        return negative ? TMS_LOWEST : TMS_HIGHEST;
    const auto fraction =
        static_cast<uint32_t>((negative ? mantissa + 2 : mantissa - 1) * FRACTION_ONE);
    return static_cast<uint32_t>(exponent) << 24 | (negative ? 0x800000U : 0U) | fraction;
}

double SIM_FromTmsFloat(uint32_t bits)
{
    const int exponent = static_cast<int8_t>(bits >> 24);
    if (exponent == -128) // kept for zero, whatever the mantissa
        return 0;
    const double fraction = (bits & 0x7FFFFFU) / FRACTION_ONE;
    return std::ldexp(bits & 0x800000U ? fraction - 2 : fraction + 1, exponent);
}
