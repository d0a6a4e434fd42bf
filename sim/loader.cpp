#include "loader.h"

#include "faults.h"

#include <algorithm>

namespace {

constexpr uint8_t WRITE = 0x03, READ = 0x04, ERASE = SIM_LOADER_ERASE;
constexpr size_t HEAD = 5; // command, length, address low byte first
constexpr uint8_t ERASE_TAIL[] = {0xAA, 0x55, 0xAA};
constexpr uint8_t REFUSAL = 0x80;     // flipped in the sum of a block that was not taken
constexpr size_t CORRUPT_WITHIN = 12; // mostly in the head, where it does the most harm

uint8_t SumOf(const std::vector<uint8_t> &bytes)
{
    unsigned sum = 0;
    for (const uint8_t byte : bytes)
        sum += byte;
    return static_cast<uint8_t>(sum);
}

uint32_t AddressOf(const SIM_Loader &loader)
{
    const std::vector<uint8_t> &c = loader.command;
    return c[2] | static_cast<uint32_t>(c[3]) << 8 | static_cast<uint32_t>(c[4]) << 16;
}

bool IsFlash(uint32_t address)
{
    return address < SIM_FLASH_SIZE && (address < SIM_CHIP_FIRST || address > SIM_CHIP_LAST);
}

void ReadBlock(SIM_Loader *loader, std::vector<uint8_t> *answer)
{
    // On the chip only one register matters: the one that always reads as zeros, in front of one
    // that always reads as ones.
    constexpr uint32_t ZEROS = 0xFF1C;
    const uint32_t begin = AddressOf(*loader);
    // The sum goes over command and data: a reader sees that another block was read.
    unsigned sum = SumOf(loader->command);
    for (uint32_t i = 0; i < loader->command[1]; i++) {
        const uint32_t address = begin + i;
        const uint8_t ofChip = (address & ~1U) == ZEROS ? 0x00 : 0xFF;
        answer->push_back(IsFlash(address) ? loader->flash[address] : ofChip);
        sum += answer->back();
    }
    answer->push_back(static_cast<uint8_t>(sum));
    loader->reads++;
}

void WriteBlock(SIM_Loader *loader, std::vector<uint8_t> *answer)
{
    const uint32_t address = AddressOf(*loader);
    const uint32_t length = loader->command[1];
    bool fits = true;
    for (uint32_t i = 0; i < length; i++)
        fits = fits && IsFlash(address + i);
    uint8_t sum = SumOf(loader->command);
    // Refused as a whole: the sum tells, and no cell has changed.
    if (!fits) {
        loader->refused++;
        sum = static_cast<uint8_t>(sum ^ REFUSAL);
    } else {
        for (uint32_t i = 0; i < length; i++) {
            // Programming clears bits: what was not erased before holds neither value.
            uint8_t &cell = loader->flash[address + i];
            cell = static_cast<uint8_t>(cell & loader->command[HEAD + i]);
        }
        loader->writes++;
    }
    answer->push_back(sum);
}

void EraseFlash(SIM_Loader *loader, std::vector<uint8_t> *answer)
{
    std::fill(loader->flash.begin(), loader->flash.end(), uint8_t{0xFF});
    loader->erases++;
    if (loader->faults.isEraseSilent)
        return;
    // Signs of life; whoever has a clock spreads them over the time that erasing takes.
    answer->insert(answer->end(), static_cast<size_t>(loader->faults.eraseZeros), uint8_t{0});
    answer->push_back(loader->faults.eraseAnswer);
}

// Whether the command collected so far is a whole one. What cannot become one is dropped.
bool IsWhole(SIM_Loader *loader)
{
    std::vector<uint8_t> &c = loader->command;
    if (c[0] == READ)
        return c.size() == HEAD;
    if (c[0] == WRITE)
        return c.size() >= HEAD && c.size() == HEAD + c[1];
    if (c[0] == ERASE && (c.size() == 1 || c.back() == ERASE_TAIL[c.size() - 2]))
        return c.size() == 1 + sizeof ERASE_TAIL;
    c.clear();
    return false;
}

// Draws the same number of times for every answer, so that faults stay where they are.
void ApplyFaults(SIM_Loader *loader, std::vector<uint8_t> *answer)
{
    SIM_LoaderFaults &faults = loader->faults;
    const bool dropped = SIM_DrawChance(&loader->random, faults.drop);
    const bool corrupted = SIM_DrawChance(&loader->random, faults.corrupt);
    const bool shortened = SIM_DrawChance(&loader->random, faults.shorten);
    const bool lengthened = SIM_DrawChance(&loader->random, faults.lengthen);
    const size_t place = loader->random();
    const unsigned bit = loader->random() % 8;
    if (answer->empty())
        return;
    if (dropped || faults.silentAfter == 0)
        answer->clear();
    if (faults.silentAfter > 0)
        faults.silentAfter--;
    if (answer->empty())
        return;
    if (corrupted) {
        uint8_t &byte = (*answer)[place % answer->size()];
        byte = static_cast<uint8_t>(byte ^ 1U << bit);
    }
    if (shortened)
        answer->pop_back();
    if (lengthened)
        answer->push_back(static_cast<uint8_t>(place));
}

uint8_t ReceiveByte(SIM_Loader *loader, uint8_t byte)
{
    // Drawn when a command begins: where it ends is not known yet.
    if (loader->command.empty()) {
        const bool damaged = SIM_DrawChance(&loader->random, loader->faults.corruptRequest);
        const size_t place = 1 + loader->random() % CORRUPT_WITHIN;
        loader->corruptAt = damaged ? place : 0;
    }
    if (loader->corruptAt != loader->command.size() + 1)
        return byte;
    return static_cast<uint8_t>(byte ^ 1U << loader->random() % 8);
}

} // namespace

void SIM_InitLoader(SIM_Loader *loader, uint32_t seed)
{
    loader->random.seed(seed);
    loader->flash.resize(SIM_FLASH_SIZE);
    for (uint32_t i = 0; i < SIM_FLASH_SIZE; i++)
        loader->flash[i] = IsFlash(i) ? static_cast<uint8_t>(i * 37 + (i >> 8)) : 0xFF;
}

void SIM_FeedLoader(SIM_Loader *loader, uint8_t byte, std::vector<uint8_t> *answer)
{
    const uint8_t received = ReceiveByte(loader, byte);
    loader->command.push_back(received);
    if (!IsWhole(loader))
        return;
    std::vector<uint8_t> whole;
    switch (loader->command[0]) {
    case READ:
        ReadBlock(loader, &whole);
        break;
    case WRITE:
        WriteBlock(loader, &whole);
        break;
    default:
        EraseFlash(loader, &whole);
        break;
    }
    loader->last.swap(loader->command);
    loader->command.clear();
    loader->done++;
    ApplyFaults(loader, &whole);
    answer->insert(answer->end(), whole.begin(), whole.end());
}

void SIM_LoaderQuiet(SIM_Loader *loader)
{
    loader->command.clear();
}
