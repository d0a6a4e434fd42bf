#include "datalog.h"
#include "wire.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

namespace {

constexpr uint32_t HEADER_WORDS = 8;
constexpr uint32_t HISTORY = 120; // messages before the start
constexpr time_t HISTORY_STEP_S = 600;
constexpr time_t STANDARD_TIME_S = 3600; // of Central Europe, before UTC
constexpr uint32_t CATCH_UP_MAX = 2000;  // more than both logs hold
enum : uint8_t { JUNK = 0x01, TEXT = 0x02, STAMP = 0x10, DRIVE = 0x20, FAULT = 0x21, PLAIN = 0x22 };

// Byte addresses; the F283xx keeps half of them.
struct LogPlace {
    uint32_t variable; // its address and its size in words
    uint32_t buffer;
    uint32_t words;
    uint32_t divisor;
};
const LogPlace PLACES[SIM_DATA_LOGS] = {
    {0x20210, 0x24000, 2048, 1},
    {0x182C0, 0x1A000, 4096, 2},
};

constexpr uint32_t RECID_COUNT = 0x182D0;
constexpr uint32_t RECIDS = 0x182D8;
constexpr uint32_t RECID_TEXTS = 0x18400;
constexpr uint32_t RECID_BYTES = 8, RECID_TEXT_BYTES = 128;

struct RecId {
    int id;
    const char *text; // null: none
    bool isPacked;    // two characters a word, else one
};
// The negative id ends the table before its last entry.
const RecId RECID_ROWS[] = {
    {DRIVE, "Drive;speed:i2 rpm;current:i2/10 A;temp:f4 C;state:u2{stop,ramp,run,fault}", true},
    {DRIVE, ";position:i4 inc", false},
    {FAULT, "Fault;code:x2;flags:u2(over,under,hot,4-7=axis);part:u1;of:u1", false},
    {PLAIN, nullptr, false},
    {-1, nullptr, false},
    {PLAIN, "Never;read:u2", false},
};

void SetWord(SIM_Station *station, const LogPlace &place, uint32_t index, uint16_t value)
{
    SIM_SetValue(station, place.buffer + 2 * index, 2, value);
}

// Two-second units of a year whose months all have 31 days, below the year.
uint32_t PackTime(time_t when)
{
    tm date{};
    SIM_GetUtc(when, &date);
    const int hours = (31 * date.tm_mon + date.tm_mday - 1) * 24 + date.tm_hour;
    const int units = hours * 1800 + date.tm_min * 30 + date.tm_sec / 2;
    const uint32_t stamp =
        static_cast<uint32_t>(date.tm_year - 100) << 24 | static_cast<uint32_t>(units);
    return (stamp & 0xFFFF) == 0 ? stamp + 1 : stamp; // a zero word would end the message
}

void AddLong(std::vector<uint16_t> *content, uint32_t value)
{
    content->push_back(static_cast<uint16_t>(value & 0xFFFF));
    content->push_back(static_cast<uint16_t>(value >> 16));
}

void AddText(std::vector<uint16_t> *content, const std::string &text)
{
    for (size_t i = 0; i < text.size(); i += 2) {
        const auto low = static_cast<uint8_t>(text[i]);
        const uint8_t high = i + 1 < text.size() ? static_cast<uint8_t>(text[i + 1]) : uint8_t(0);
        content->push_back(static_cast<uint16_t>(low | high << 8));
    }
}

uint16_t ToWord(double value)
{
    return static_cast<uint16_t>(std::lround(value));
}

void AddDrive(std::vector<uint16_t> *content, uint32_t k)
{
    const double phase = k / 7.0;
    const auto temperature = static_cast<float>(60 + 5 * std::sin(phase));
    uint32_t bits;
    std::memcpy(&bits, &temperature, sizeof bits);
    content->push_back(ToWord(1500 * std::sin(phase)));
    content->push_back(ToWord(80 + 20 * std::cos(phase)));
    AddLong(content, bits);
    content->push_back(static_cast<uint16_t>(k / 8 % 4));
    AddLong(content, 1000 * k - 50000);
}

// What the k-th message says.
uint8_t FillContent(uint32_t k, int number, std::vector<uint16_t> *content)
{
    switch (k % 8) {
    case 0:
        AddText(content, "Station " + std::to_string(number) + ", message " + std::to_string(k));
        return TEXT;
    case 3:
        for (const uint32_t value : {60 * k, k % 3 == 0 ? 0x40u : 0u, 0u, k % 5})
            AddLong(content, value);
        content->push_back(static_cast<uint16_t>(k % 16 == 3 ? 0x0005 : 0x0107));
        return STAMP;
    case 5:
        *content = {static_cast<uint16_t>(0xE000 + k % 7), static_cast<uint16_t>(0x20 | k % 8),
                    static_cast<uint16_t>(k % 4 | 0x0400)};
        return FAULT;
    case 6:
        *content = {static_cast<uint16_t>(k), 0, 0xFFFF, 0};
        return PLAIN;
    case 7:
        content->assign(k % 5, 0xAAAA);
        return JUNK;
    default:
        AddDrive(content, k);
        return DRIVE;
    }
}

// Zeros from `from` to `to`, and on through the message that reaches beyond it.
void ClearWords(SIM_Station *station, const LogPlace &place, uint32_t from, uint32_t to)
{
    for (uint32_t i = from; i < place.words; i++) {
        if (i >= to && SIM_GetValue(*station, place.buffer + 2 * i, 2) == 0)
            return;
        SetWord(station, place, i, 0);
    }
}

void AppendMessage(SIM_Station *station, const LogPlace &place, SIM_DataLog *log,
                   const std::vector<uint16_t> &message)
{
    const auto length = static_cast<uint32_t>(message.size());
    // A message is never cut: what does not fit begins again behind the header, and the rest of
    // the buffer is emptied, for zeros lead a reader on to the beginning.
    if (log->next + length > place.words) {
        ClearWords(station, place, log->next, place.words);
        log->next = HEADER_WORDS;
    }
    ClearWords(station, place, log->next, std::min(log->next + length + 1, place.words));
    for (uint32_t i = 0; i < length; i++)
        SetWord(station, place, log->next + i, message[i]);
    log->next += length + 1;
}

void WriteMessage(SIM_Station *station, int number, const LogPlace &place, SIM_DataLog *log)
{
    std::vector<uint16_t> content, message;
    // The log begins with a past: messages ten minutes apart, then one a second.
    const uint32_t k = log->written++;
    const uint8_t type = FillContent(k, number, &content);
    // A zero ends a message: within one the least value that no word has stands for it.
    uint8_t z = 1;
    while (z < 255 && std::find(content.begin(), content.end(), z) != content.end())
        z++;
    const time_t history = k < HISTORY ? static_cast<time_t>(HISTORY - k) * HISTORY_STEP_S : 0;
    const time_t after = k < HISTORY ? 0 : static_cast<time_t>(k - HISTORY);
    message.push_back(static_cast<uint16_t>(type | z << 8));
    AddLong(&message, PackTime(station->logStart - history + after));
    for (const uint16_t word : content)
        message.push_back(word == 0 ? uint16_t(z) : word);
    AppendMessage(station, place, log, message);
}

void WriteRecIds(SIM_Station *station)
{
    uint32_t at = RECIDS, textAt = RECID_TEXTS;
    for (const RecId &row : RECID_ROWS) {
        SIM_SetValue(station, at, 2, static_cast<uint64_t>(static_cast<int64_t>(row.id)));
        if (row.text != nullptr) {
            SIM_SetValue(station, at + 4, 4, textAt / 2);
            for (uint32_t i = 0; row.text[i] != 0; i++)
                SIM_SetValue(station, textAt + (row.isPacked ? i : 2 * i), 1,
                             static_cast<uint8_t>(row.text[i]));
        }
        at += RECID_BYTES;
        textAt += RECID_TEXT_BYTES;
    }
    SIM_SetValue(station, RECID_COUNT, 2, sizeof RECID_ROWS / sizeof *RECID_ROWS);
}

void CatchUp(SIM_Station *station, int number, const LogPlace &place, SIM_DataLog *log,
             uint32_t wanted)
{
    if (wanted - log->written > CATCH_UP_MAX) // nobody would see the ones before
        log->written = wanted - CATCH_UP_MAX;
    while (log->written < wanted)
        WriteMessage(station, number, place, log);
}

} // namespace

void SIM_InitDataLogs(SIM_Station *station, int number)
{
    station->logStart = time(nullptr) + STANDARD_TIME_S;
    WriteRecIds(station);
    for (size_t i = 0; i < SIM_DATA_LOGS; i++) {
        const LogPlace &place = PLACES[i];
        station->logs[i].next = HEADER_WORDS;
        // Address and size stand in the variable and again at the buffer's own beginning.
        for (const uint32_t at : {place.variable, place.buffer}) {
            SIM_SetValue(station, at, 4, place.buffer / place.divisor);
            SIM_SetValue(station, at + 4, 4, place.words);
        }
        SIM_WriteMemory(station, place.buffer + 8, "LOGOS:", 6);
        CatchUp(station, number, place, &station->logs[i], HISTORY);
    }
}

void SIM_UpdateDataLogs(SIM_Station *station, int number, double seconds, uint32_t address,
                        size_t count)
{
    for (size_t i = 0; i < SIM_DATA_LOGS; i++) {
        const LogPlace &place = PLACES[i];
        if (address < place.buffer + 2 * place.words && address + count > place.buffer)
            CatchUp(station, number, place, &station->logs[i],
                    HISTORY + static_cast<uint32_t>(seconds));
    }
}
