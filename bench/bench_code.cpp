// A megabyte of code as text with register names, against writing the same bytes as plain
// hexadecimal lines of a word each. At most 150 ms are wanted on a machine of today; the
// ratio to the floor is what can be compared.
#include "code/listing.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/bytes.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr size_t CODE_BYTES = 1u << 20;
constexpr int ROUNDS = 9;
constexpr double RATIO_MAX = 8;

volatile size_t sink;

size_t ListCode(const std::vector<uint8_t> &bytes)
{
    CODE_Scope scope;
    size_t characters = 0;
    for (size_t at = 0; at < bytes.size();) {
        CODE_Instruction instruction;
        CODE_Decode(&bytes[at], bytes.size() - at, static_cast<uint32_t>(at), CODE_Pages(), &scope,
                    &instruction);
        characters += CODE_FormatInstruction(instruction).size();
        at += instruction.length;
    }
    return characters;
}

size_t ListWords(const std::vector<uint8_t> &bytes)
{
    size_t characters = 0;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2)
        characters += TXT_FormatHexBytes(&bytes[at], 2).size();
    return characters;
}

template <typename Call> void Time(Call call, double *best)
{
    const auto start = std::chrono::steady_clock::now();
    sink = call();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    *best = std::min(*best, taken.count());
}

} // namespace

int main()
{
    Procesor = CPU_C167;
    initRgMap(Procesor);
    std::vector<uint8_t> bytes(CODE_BYTES);
    std::mt19937 random(1);
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>(random());
    double own = 1e9, floor = 1e9;
    for (int round = 0; round < ROUNDS; ++round) {
        Time([&] { return ListCode(bytes); }, &own);
        Time([&] { return ListWords(bytes); }, &floor);
    }
    std::printf("1 MiB of code %.0f ms, as hexadecimal words %.0f ms, ratio %.2f\n", own, floor,
                own / floor);
    return own <= RATIO_MAX * floor ? 0 : 1;
}
