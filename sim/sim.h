// A simulated target on a pseudo terminal, as a library for tests and benches and
// behind vireo2-target. Written from the wire format alone: nothing of src/ is used.
// A target runs on a thread of its own between SIM_Start and SIM_Stop.
#ifndef SIM_SIM_H
#define SIM_SIM_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

struct SIM_Options {
    bool modbus = false;        // a Modbus RTU slave instead, see below
    double refuse = 0;          // share of Modbus requests answered with an exception, 0..1
    int baud = 0;               // 0 = as fast as the machine; else pace every character (11 bits)
    bool echo = false;          // the line echoes what is sent (two-wire RS-485)
    double drop = 0;            // share of answers that are not sent, 0..1
    double corrupt = 0;         // share of answers with one damaged character, 0..1
    double repeat = 0;          // share of answers that are sent twice, as by equipment on the way
    int delayMs = 0;            // wait before each answer
    long silentAfter = -1;      // no answers after so many; -1 = never
    uint32_t seed = 1;          // of the faults
    bool demo = true;           // live demo variables at the addresses of examples/demo.m66
    bool mailbox = true;        // the TMS320 behind a station answers; false = stays busy
    unsigned scopes = 7;        // scopes of the demo, SIM_SCOPE_... of scope.h
    uint32_t stations = 0xFFFF; // bit n: station n answers
    std::string flash;          // file whose bytes stand in every station's memory, "" = none
    uint32_t flashAddress = 0;  // from this byte address on
    bool loader = false;        // runs its boot-strap loader in place of its program
    int eraseSeconds = 0;       // time the loader's erase takes
    std::string flashImage;     // file that gets the loader's flash at the end, "" = none
    std::string tcp;            // "[host:]port" to listen at instead of a terminal, "" = none
    std::string link;           // symbolic link to the device, "" = none
    std::string log;            // file that gets one line a request, "-" = stdout, "" = none
};

struct SIM_Target;
struct SIM_Loader;

// Commands: 0 reads up to 64 bytes, 8 writes up to 16, 4 stores its word; 1 to 4 answer the
// word that then stands at the address, the others answer without data. More bytes than
// that are answered with error code 65. Frames with a wrong check value or shape (also a
// write whose padding is not A5) and requests to absent stations are not answered. A write
// of the command byte at 3C000h is carried out by the TMS320 before its answer.
//
// As a Modbus RTU slave, station n is slave n (slave 0 is nobody). Functions 1, 2, 3, 4, 6, 16
// and 23 are known. Writing an address to the registers FFFDh (even number of bytes) or FFFBh
// (odd, the last register holds one) reaches memory: function 16 carries the data behind the
// address, function 23 reads it back from FF00h on. Below FF00h stand plain data: holding
// register r is the word at byte address 2 r, input register r the one at 20000h + 2 r, coil c
// bit c % 8 of the byte at 40000h + c / 8, discrete input d likewise from 42000h on. What
// cannot be served is answered with exception 1 (function), 2 (address) or 3 (quantity); the
// share `refuse` with 4 or 6. Frames with a wrong CRC are not answered.
//
// Null when no pseudo terminal can be had or a file cannot be used (message in *error).
SIM_Target *SIM_Start(const SIM_Options &options, std::string *error);
// Also removes the link, writes the flash image; frees target. False with a message when the
// image could not be written.
bool SIM_Stop(SIM_Target *target, std::string *error = nullptr);
const char *SIM_DevicePath(const SIM_Target *target);

// Memory of one station (16 MiB, byte addresses); safe while the target runs.
void SIM_Poke(SIM_Target *target, int station, uint32_t address, const void *bytes, size_t count);
void SIM_Peek(SIM_Target *target, int station, uint32_t address, void *bytes, size_t count);
// Memory of the TMS320 behind a station, by word address; 32-bit values.
void SIM_PokeTMS(SIM_Target *target, int station, uint32_t wordAddress, uint32_t value);
uint32_t SIM_PeekTMS(SIM_Target *target, int station, uint32_t wordAddress);

// Changes faults while running; only refuse, drop, corrupt, repeat, delayMs, silentAfter (counted
// from now), echo, mailbox and stations are taken over.
void SIM_SetFaults(SIM_Target *target, const SIM_Options &options);
// Answers every request to `command` (0..15) with the target's own error code (65..255); 0 = off.
void SIM_SetErrorCode(SIM_Target *target, int command, int code);

// Calls `change` with the loader while the target's thread stands still: look into its flash,
// set its faults (sim/loader.h).
void SIM_WithLoader(SIM_Target *target, const std::function<void(SIM_Loader *)> &change);

struct SIM_Counters {
    uint64_t requests = 0; // well-formed requests to a station that exists
    uint64_t answers = 0;  // sent undamaged
    uint64_t dropped = 0;  // not sent, by chance or because the target fell silent
    uint64_t corrupted = 0;
    uint64_t malformed = 0; // frames with a wrong check value or shape
};
SIM_Counters SIM_GetCounters(const SIM_Target *target);

#endif
