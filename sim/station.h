// What one station holds: 16 MiB of byte memory, allocated a page at a time as it is
// written, and the 32-bit words of the TMS320 behind it. Not locked: the target is.
#ifndef SIM_STATION_H
#define SIM_STATION_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

constexpr uint32_t SIM_MEMORY_SIZE = 0x1000000;
constexpr uint32_t SIM_PAGE_SIZE = 0x10000;

// Where a data log of the demo goes on.
struct SIM_DataLog {
    uint32_t next = 0;    // word of the buffer
    uint32_t written = 0; // messages
};
constexpr size_t SIM_DATA_LOGS = 2;
constexpr size_t SIM_SCOPES = 3, SIM_SCOPE_CHANNELS = 16;

// What a sampling scope of the firmware keeps beside its variables, see scope.h.
struct SIM_ScopeState {
    bool isPresent = false;
    double sampled = 0;  // seconds since the start up to which samples are taken
    double previous = 0; // channel 1 at the sample before
};

// What the firmware of the terminals keeps beside their blocks, see terminal.h.
struct SIM_Terminal {
    std::string waiting, line; // for the ring, and being entered
    int state = 0;
    int64_t second = 0, tick = 0; // of the last line, of the last picture
    uint8_t key = 0;              // the last one, with its bit for released
};

struct SIM_Station {
    std::array<std::unique_ptr<uint8_t[]>, SIM_MEMORY_SIZE / SIM_PAGE_SIZE> pages;
    std::unordered_map<uint32_t, uint32_t> tms; // by word address; absent words read 0
    double temperature = 0;                     // state of the demo's slow variable
    double updated = 0;                         // seconds at which it was last advanced
    SIM_DataLog logs[SIM_DATA_LOGS];
    int64_t logStart = 0; // the logs' time at the start, in seconds as time() counts
    SIM_ScopeState scopes[SIM_SCOPES];
    SIM_Terminal terminal;
};

// Whether `count` bytes from `address` on reach into begin..end - 1.
bool SIM_Touches(uint32_t address, size_t count, uint32_t begin, uint32_t end);

// Addresses wrap at the end of the memory. Pages never written read as zeros.
void SIM_ReadMemory(const SIM_Station &station, uint32_t address, void *bytes, size_t count);
void SIM_WriteMemory(SIM_Station *station, uint32_t address, const void *bytes, size_t count);

// Little-endian values of 1..8 bytes.
uint64_t SIM_GetValue(const SIM_Station &station, uint32_t address, size_t size);
void SIM_SetValue(SIM_Station *station, uint32_t address, size_t size, uint64_t value);
uint16_t SIM_GetWord(const SIM_Station &station, uint32_t address);
void SIM_SetWord(SIM_Station *station, uint32_t address, unsigned value); // its lower 16 bits
float SIM_GetFloat(const SIM_Station &station, uint32_t address);
void SIM_SetFloat(SIM_Station *station, uint32_t address, float value);

// True when the write of `count` bytes at `address` gives the mailbox a command.
bool SIM_TouchesMailbox(uint32_t address, size_t count);
// Carries out the command that stands in the mailbox and clears it: 1 reads the word of the
// TMS320 into the data field, 2 writes the data field to it, others do nothing.
void SIM_ServeMailbox(SIM_Station *station);

// The number in the TMS320's 32-bit float format. Infinities and NaN are not expected.
uint32_t SIM_TmsFloat(double value);
double SIM_FromTmsFloat(uint32_t bits);

#endif
