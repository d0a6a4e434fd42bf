// A boot-strap loader with a flash behind it, byte by byte and without a clock: the thread
// of vireo2-target feeds it from the line, tests feed it directly. The flash keeps to the
// rules of the real one: an erase sets every bit, programming only clears bits, a block
// that reaches beyond the flash is refused whole.
#ifndef SIM_LOADER_H
#define SIM_LOADER_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

constexpr uint32_t SIM_FLASH_SIZE = 0x80000;
// Memory and registers on the chip lie over this part of it and cannot be programmed.
constexpr uint32_t SIM_CHIP_FIRST = 0xE000, SIM_CHIP_LAST = 0xFFFF;

constexpr uint8_t SIM_LOADER_ERASE = 0x5E; // the command

// Shares are 0 to 1 of all commands, decided by the seed alone.
struct SIM_LoaderFaults {
    double drop = 0;           // the answer is not sent
    double corrupt = 0;        // one bit of the answer is flipped
    double corruptRequest = 0; // one bit of the request is flipped before it is obeyed
    double shorten = 0;        // the answer's last byte is left out
    double lengthen = 0;       // a byte too many follows the answer
    long silentAfter = -1;     // no answers after so many; -1 = never
    uint8_t eraseAnswer = 0xE5;
    int eraseZeros = 0;         // bytes 0 sent while erasing
    bool isEraseSilent = false; // erases and never says so
};

struct SIM_Loader {
    std::vector<uint8_t> flash;
    SIM_LoaderFaults faults;
    std::mt19937 random;
    std::vector<uint8_t> command; // collected so far
    size_t corruptAt = 0;         // byte of this command that arrives damaged; 0 = none
    std::vector<uint8_t> last;    // the last whole command
    uint32_t done = 0;            // whole commands
    uint32_t erases = 0, reads = 0, writes = 0, refused = 0; // commands carried out
};

// The flash holds an older program.
void SIM_InitLoader(SIM_Loader *loader, uint32_t seed);
// One byte from the line. What is to be sent back, if anything, is appended to *answer.
void SIM_FeedLoader(SIM_Loader *loader, uint8_t byte, std::vector<uint8_t> *answer);
// The line was quiet for longer than within a command: what was collected is dropped.
void SIM_LoaderQuiet(SIM_Loader *loader);

#endif
