// The terminals' blocks behind a line that loses requests and answers as the input says. With
// an honest firmware each character arrives once and in order, both ways; with a firmware that
// writes anything anywhere nothing is read or written outside of the block.
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "fuzz_check.h"
#include "settings/settings.h"
#include "terminal/lcd.h"
#include "terminal/service.h"

#include <cstring>

// Stands in for the settings and the link.
int32_t STATION = 3, Procesor = 0;

uint32_t GetSysAddrM(const char *, int *)
{
    return ADDR_NONE;
}
std::string COM_UnknownNameText(const std::string &what)
{
    return what;
}
std::string COM_UnknownStationText()
{
    return "";
}

namespace {

constexpr uint32_t PLACE = 0x8000, MEMORY = 0x3000, OUT_SIZE = 11, IN_SIZE = 5;
const unsigned char *input;
size_t left;
unsigned char memory[MEMORY]; // from PLACE on
bool isHonest, isRestarted;
constexpr uint32_t RUNS = 8;
std::string written[RUNS], heard[RUNS]; // by the firmware, by the program's user; run by run
std::string typed;                      // as the firmware got it

int Next()
{
    if (left == 0)
        return 0;
    --left;
    return *input++;
}

uint32_t Get(uint32_t offset)
{
    return memory[offset] | static_cast<uint32_t>(memory[offset + 1]) << 8;
}

uint32_t GetIndex(uint32_t offset) // one of the program
{
    return Get(offset + 2) == Get(4) ? Get(offset) : 0;
}

void PutWord(uint32_t offset, uint32_t value)
{
    memory[offset] = static_cast<unsigned char>(value);
    memory[offset + 1] = static_cast<unsigned char>(value >> 8);
}

void RunFirmware()
{
    const int turn = Next();
    if (!isHonest) {
        for (int i = turn % 8; i > 0; --i)
            memory[static_cast<uint32_t>(Next()) % 32] = static_cast<unsigned char>(Next());
        return;
    }
    if (turn == 0xFF && Get(4) + 1 < RUNS) {
        isRestarted = true;
        PutWord(4, Get(4) + 1);
        PutWord(10, 0);
        PutWord(14, 0);
    }
    for (int i = turn % 8; i > 0 && (Get(10) + 1) % OUT_SIZE != GetIndex(16); --i) {
        const char c = static_cast<char>(Next());
        written[Get(4)] += c;
        memory[24 + Get(10)] = static_cast<unsigned char>(c);
        PutWord(10, (Get(10) + 1) % OUT_SIZE);
    }
    for (int i = turn / 8 % 8; i > 0 && Get(14) != GetIndex(20); --i) {
        typed += static_cast<char>(memory[24 + OUT_SIZE + Get(14)]);
        PutWord(14, (Get(14) + 1) % IN_SIZE);
    }
}

// Whether leaving out characters of `all` makes `some`.
bool IsLeftOf(const std::string &all, const std::string &some)
{
    size_t at = 0;
    for (const char c : all)
        at += at < some.size() && c == some[at];
    return at == some.size();
}

} // namespace

int UCM_Read(int, uint32_t address, uint32_t count, void *buffer)
{
    RunFirmware();
    FUZ_Check(address >= PLACE && address - PLACE + count <= MEMORY);
    std::memcpy(buffer, memory + (address - PLACE), count);
    return Next() % 4 == 1 ? -1 : 0;
}

int UCM_WriteProven(int, uint32_t address, uint16_t count, const void *data)
{
    RunFirmware();
    FUZ_Check(address >= PLACE + 16 && address - PLACE + count <= MEMORY && count <= 16);
    const int fate = Next() % 4; // 1: the request is lost, 2: its answer
    if (fate != 1)
        std::memcpy(memory + (address - PLACE), data, count);
    return fate == 1 || fate == 2 ? -1 : 0;
}

int UCM_MakeProven(const std::function<int()> &exchange)
{
    const bool isAgain = Next() % 4 == 1;
    const int result = exchange();
    return isAgain && result >= 0 ? exchange() : result;
}

const char *const UCM_REPEATED_TEXT = "repeated";

std::string UCM_LastErrorText()
{
    return "";
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    input = data;
    left = size;
    std::memset(memory, 0, sizeof memory);
    for (uint32_t i = 0; i < RUNS; ++i) {
        written[i].clear();
        heard[i].clear();
    }
    typed.clear();
    isRestarted = false;
    const int kind = Next() % 3;
    isHonest = kind == 0;
    const uint16_t heads[3][10] = {{TRM_SERVICE_ID, 0x100, 1, 0, OUT_SIZE, 0, IN_SIZE, 0},
                                   {TRM_SERVICE_ID, 0x100, 1, 0, OUT_SIZE, 0, IN_SIZE, 0},
                                   {TRM_LCD_ID, 0x100, 1, 0, 0x0402, 0, 0, IN_SIZE, 0, 0}};
    for (uint32_t i = 0; i < 10; ++i)
        PutWord(2 * i, heads[kind][i]);
    if (kind == 2) {
        TRM_LcdSession session;
        TRM_LcdNews news;
        TRM_BeginLcd(&session, {PLACE, STATION});
        while (left > 0) {
            TRM_AddLcdKey(&session, Next() % 40 - 4, Next() % 2 != 0);
            TRM_StepLcd(&session, &news);
            const TRM_LcdBlock &block = session.picture.block;
            FUZ_Check(session.picture.characters.size() == block.rows * block.columns);
            FUZ_Check(!session.isOpen || block.rows * block.columns > 0);
        }
        return 0;
    }
    TRM_ServiceSession session;
    TRM_ServiceNews news;
    std::string sent, taken;
    TRM_BeginService(&session, {PLACE, STATION});
    while (left > 0) {
        const std::string text(static_cast<size_t>(Next() % 8), static_cast<char>(Next()));
        if (session.isOpen && TRM_AddToSender(&session.sender, text))
            sent += text;
        TRM_StepService(&session, &news);
        taken += news.taken;
        if (!isHonest)
            continue;
        const uint32_t run = session.block.session;
        heard[run] += news.received;
        FUZ_Check(written[run].compare(0, heard[run].size(), heard[run]) == 0);
        FUZ_Check(IsLeftOf(sent, typed));
        FUZ_Check(isRestarted || (sent.compare(0, typed.size(), typed) == 0 &&
                                  sent.compare(0, taken.size(), taken) == 0));
    }
    if (!isHonest)
        return 0;
    // The line is good from here on and the firmware reads on: all of it arrives.
    const uint32_t last = Get(4);
    for (int i = 0; i < 4000 && (heard[last] != written[last] || typed != sent); ++i) {
        while (Get(14) != GetIndex(20)) {
            typed += static_cast<char>(memory[24 + OUT_SIZE + Get(14)]);
            PutWord(14, (Get(14) + 1) % IN_SIZE);
        }
        TRM_StepService(&session, &news);
        heard[session.block.session] += news.received;
        if (isRestarted && i > 100)
            break;
    }
    FUZ_Check(heard[last] == written[last] && (isRestarted || typed == sent));
    return 0;
}
