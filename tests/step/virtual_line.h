// A serial line in virtual time with a partner at its other end: what platform/serial.h and
// the clock are linked to in the tests of being in step. Nothing here waits, and a seed gives
// the same line again to the microsecond. The partner is written from the wire format and
// uses nothing of the program.
#ifndef VIRTUAL_LINE_H
#define VIRTUAL_LINE_H

#include <cstdint>
#include <string>
#include <vector>

constexpr uint32_t VL_TIMEOUT_MS = 100;

// Shares are 0 to 1, of the answers; times are milliseconds.
struct VL_Schedule {
    double delayMin = 0.1, delayMax = 0.5;
    double loss = 0;            // half of it requests, half answers
    double damage = 0;          // of one character, of requests and answers
    double duplicate = 0;       // the same answer again, up to one time-out later
    double stray = 0;           // one to three characters before, behind or inside an answer
    bool isStrayBefore = false; // only before, one character
    double cut = 0;             // a pause of up to one and a half time-outs inside an answer
    double foreign = 0;         // a sound answer of another station before this one
    double stall = 0;           // the partner stands still for up to ten time-outs
    double refuse = 0;          // the partner answers with an error code
    bool isSerial = false;      // the delay begins when the answer before has gone
    bool isEcho = false;
    bool isChoked = false;      // requests go out in part
    bool isZeroRefused = false; // reads of address 0 are refused
    uint32_t stations = 0xFFFF; // bit n: station n answers
};

void VL_Start(const VL_Schedule &schedule, uint32_t seed);
void VL_Change(const VL_Schedule &schedule); // what is on its way stays there
uint64_t VL_NowUs();
void VL_Pass(double ms);
uint32_t VL_Random(uint32_t below);
bool VL_Happens(double share);

// Bytes that stand in a station's memory: any address has its own, until it is written.
uint8_t VL_Memory(int station, uint32_t address);
// What the TMS320 behind any station holds at a word address.
uint32_t VL_TmsWord(uint32_t address);
// Addresses from here on hold the present epoch in every byte, so that an answer to an
// earlier operation is known by its value.
constexpr uint32_t VL_EPOCHS = 0x400000;
extern uint8_t VL_epoch;

// A request as another program would have sent it; nobody reads its answer.
void VL_SendRead(int station, uint32_t address, unsigned count);
// Characters that come from the line after a while.
void VL_Inject(const std::string &characters, double afterMs);
std::string VL_Answer(int station, int command, int count, const std::vector<uint8_t> &data);

struct VL_Counters {
    uint64_t requests = 0, answers = 0, faults = 0;
};
extern VL_Counters VL_counters;

#endif
