// The line is a list of characters with the time of their arrival; the partner answers in
// the moment a request is complete, and what happens to the answer is drawn by lot.
#include "virtual_line.h"

#include "platform/serial.h"
#include "platform/system.h"

#include <algorithm>
#include <deque>
#include <map>
#include <random>

uint8_t VL_epoch = 0;
VL_Counters VL_counters;

namespace {

constexpr uint64_t CALL_US = 2; // what a call of the system takes
constexpr unsigned SHORT_CHARS = 18, LONG_CHARS = 48;

struct Character {
    uint64_t us;
    char byte;
};

VL_Schedule schedule;
std::mt19937 lot;
uint64_t nowUs = 0, lastUs = 0; // lastUs: when the last answer will have arrived
std::deque<Character> line;
std::string request;
std::map<uint32_t, uint8_t> written; // by station << 24 | address
std::map<uint32_t, uint32_t> tmsWritten;
unsigned readTotalMs = 0;

uint16_t CheckValue(const std::string &bytes)
{
    unsigned value = 1;
    for (const char byte : bytes) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            const unsigned out = value >> 15 & 1;
            value = (value << 1 | (static_cast<unsigned char>(byte) >> bit & 1)) & 0xFFFF;
            value ^= out != 0 ? 0x1083 : 0;
        }
    }
    return static_cast<uint16_t>(value);
}

std::string Hex(unsigned value)
{
    const char *digits = "0123456789ABCDEF";
    return {digits[value >> 4 & 15], digits[value & 15]};
}

std::string WithTail(const std::string &head)
{
    const unsigned check = CheckValue(head);
    return head + Hex(check & 0xFF) + Hex(check >> 8) + '\x03';
}

unsigned ByteAt(size_t place)
{
    return static_cast<unsigned>(std::stoul(request.substr(place, 2), nullptr, 16));
}

bool IsSound()
{
    const size_t body = request.size() - 5;
    if (request.back() != '\x03' ||
        request.find_first_not_of("0123456789ABCDEF", 1) != request.size() - 1)
        return false;
    return WithTail(request.substr(0, body)) == request;
}

void Arrive(uint64_t us, char byte)
{
    auto place = line.end();
    while (place != line.begin() && std::prev(place)->us > us)
        --place;
    line.insert(place, {us, byte});
}

void Stray()
{
    for (uint32_t left = 1 + VL_Random(3); left > 0; --left)
        Arrive(lastUs, static_cast<char>(VL_Random(256)));
}

void SendAnswer(std::string answer)
{
    if (VL_Happens(schedule.damage)) {
        answer[VL_Random(static_cast<uint32_t>(answer.size()))] = static_cast<char>(VL_Random(256));
        ++VL_counters.faults;
    }
    const bool isStray = VL_Happens(schedule.stray);
    const uint32_t where = schedule.isStrayBefore ? 8 : isStray ? VL_Random(4) : 9;
    if (where == 8)
        Arrive(lastUs, '?');
    if (where < 2)
        Stray();
    const size_t pause = VL_Happens(schedule.cut)
                             ? 1 + VL_Random(static_cast<uint32_t>(answer.size()) - 1)
                             : answer.size();
    for (size_t i = 0; i < answer.size(); ++i) {
        if (i == pause)
            lastUs += VL_Random(VL_TIMEOUT_MS * 1500);
        if (where == 2 && i == answer.size() / 2)
            Stray();
        Arrive(lastUs, answer[i]);
    }
    if (where == 3)
        Stray();
}

// The TMS320 behind the station: three words in its memory, served when a command arrives.
void ServeMailbox(int station)
{
    constexpr uint32_t BOX = 0x3C000;
    const auto word = [station](uint32_t place) {
        uint32_t value = 0;
        for (uint32_t i = 0; i < 4; ++i)
            value |= static_cast<uint32_t>(VL_Memory(station, BOX + place + i)) << 8 * i;
        return value;
    };
    const uint32_t command = word(0), place = word(4), data = word(8);
    if (command == 2)
        tmsWritten[place] = data;
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t at = static_cast<uint32_t>(station) << 24 | BOX;
        written[at + i] = 0;
        if (command == 1)
            written[at + 8 + i] = static_cast<uint8_t>(VL_TmsWord(place) >> 8 * i);
    }
}

std::vector<uint8_t> Execute(int station, unsigned command, uint32_t address)
{
    std::vector<uint8_t> data;
    if (command == 8) {
        for (uint32_t i = 0; i < ByteAt(9); ++i)
            written[static_cast<uint32_t>(station) << 24 | (address + i)] =
                static_cast<uint8_t>(ByteAt(11 + 2 * i));
        if (address == 0x3C000)
            ServeMailbox(station);
    }
    const unsigned wanted = command == 0 ? ByteAt(9) : command >= 1 && command <= 4 ? 2 : 0;
    for (uint32_t i = 0; i < wanted; ++i)
        data.push_back(VL_Memory(station, address + i));
    return data;
}

void Answer()
{
    if (!IsSound())
        return;
    const int station = static_cast<int>(ByteAt(1) >> 4);
    const unsigned command = ByteAt(1) & 15;
    const uint32_t address = ByteAt(3) | ByteAt(5) << 8 | ByteAt(7) << 16;
    if ((schedule.stations >> station & 1) == 0)
        return;
    ++VL_counters.requests;
    const bool isRefused = VL_Happens(schedule.refuse) || (schedule.isZeroRefused && address == 0);
    const std::string answer = isRefused ? VL_Answer(station, static_cast<int>(command), 66, {})
                                         : VL_Answer(station, static_cast<int>(command), -1,
                                                     Execute(station, command, address));
    const double delay =
        schedule.delayMin + (schedule.delayMax - schedule.delayMin) * VL_Random(1001) / 1000.0;
    const uint64_t begun = schedule.isSerial ? std::max(lastUs, nowUs) : nowUs;
    lastUs = std::max(lastUs, begun + static_cast<uint64_t>(delay * 1000));
    if (VL_Happens(schedule.stall))
        lastUs += VL_Random(10 * VL_TIMEOUT_MS * 1000);
    if (VL_Happens(schedule.loss / 2)) {
        ++VL_counters.faults;
        return;
    }
    if (VL_Happens(schedule.foreign))
        SendAnswer(VL_Answer((station + 3) & 15, static_cast<int>(command), -1, {1, 2}));
    ++VL_counters.answers;
    SendAnswer(answer);
    if (VL_Happens(schedule.duplicate)) {
        lastUs += VL_Random(VL_Random(2) != 0 ? 3000 : VL_TIMEOUT_MS * 1000);
        SendAnswer(answer);
        ++VL_counters.faults;
    }
}

void Receive(char byte)
{
    if (byte == '\x02' || byte == '\x1A')
        request.clear();
    request += byte;
    const bool isShort = request[0] == '\x02' && request.size() == SHORT_CHARS;
    if (!isShort && request.size() < LONG_CHARS)
        return;
    Answer();
    request.clear();
}

size_t Arrived()
{
    size_t count = 0;
    while (count < line.size() && line[count].us <= nowUs)
        ++count;
    return count;
}

} // namespace

// --- for the tests ----------------------------------------------------------------------

void VL_Start(const VL_Schedule &wanted, uint32_t seed)
{
    schedule = wanted;
    lot.seed(seed);
    line.clear();
    request.clear();
    written.clear();
    tmsWritten.clear();
    nowUs = lastUs = 1000000; // the probes are drawn by the clock: a seed must be all there is
    VL_counters = VL_Counters();
}

void VL_Change(const VL_Schedule &wanted)
{
    schedule = wanted;
}

uint64_t VL_NowUs()
{
    return nowUs;
}

void VL_Pass(double ms)
{
    nowUs += static_cast<uint64_t>(ms * 1000);
}

uint32_t VL_Random(uint32_t below)
{
    return static_cast<uint32_t>(lot() % below);
}

bool VL_Happens(double share)
{
    return share > 0 && static_cast<double>(lot()) < share * 4294967296.0;
}

uint8_t VL_Memory(int station, uint32_t address)
{
    if (address >= VL_EPOCHS)
        return VL_epoch;
    const uint32_t place = static_cast<uint32_t>(station) << 24 | address;
    const auto found = written.find(place);
    return found != written.end() ? found->second : static_cast<uint8_t>(place * 2654435761u >> 23);
}

uint32_t VL_TmsWord(uint32_t address)
{
    const auto found = tmsWritten.find(address);
    return found != tmsWritten.end() ? found->second : address * 2654435761u;
}

std::string VL_Answer(int station, int command, int count, const std::vector<uint8_t> &data)
{
    const unsigned first = static_cast<unsigned>(station << 4 | command);
    std::string text = '\x06' + Hex(first);
    text += Hex(count >= 0 ? static_cast<unsigned>(count) : static_cast<unsigned>(data.size()));
    for (const uint8_t byte : data)
        text += Hex(byte);
    return WithTail(text);
}

void VL_SendRead(int station, uint32_t address, unsigned count)
{
    std::string text = '\x02' + Hex(static_cast<unsigned>(station << 4));
    text += Hex(address & 0xFF) + Hex(address >> 8 & 0xFF) + Hex(address >> 16);
    for (const char byte : WithTail(text + Hex(count) + "00"))
        Receive(byte);
}

void VL_Inject(const std::string &characters, double afterMs)
{
    for (const char byte : characters)
        Arrive(nowUs + static_cast<uint64_t>(afterMs * 1000), byte);
}

// --- the port and the clock ---------------------------------------------------------------

uint32_t PLT_TickMs()
{
    return static_cast<uint32_t>(nowUs / 1000);
}

uint64_t PLT_TickUs()
{
    return nowUs;
}

void PLT_LocalTime(PLT_Date *now)
{
    *now = PLT_Date();
    now->year = 2026;
}

int PLT_ProcessId()
{
    return static_cast<int>(lot() & 0xFFFF);
}

std::string SER_DevicePath(int)
{
    return "virtual line";
}

SER_Why SER_LastReason()
{
    return SER_WHY_OTHER;
}

int SER_Open(int, SER_Handle *handle)
{
    *handle = 1;
    return SER_OK;
}

int SER_Configure(SER_Handle, const SER_Settings &)
{
    return SER_OK;
}

int SER_SetTimeouts(SER_Handle, unsigned readMs, unsigned)
{
    readTotalMs = readMs;
    return SER_OK;
}

int SER_Write(SER_Handle, const void *bytes, size_t count)
{
    const char *text = static_cast<const char *>(bytes);
    if (schedule.isChoked)
        return static_cast<int>(count) - 1;
    const bool isLost = VL_Happens(schedule.loss / 2);
    // A damaged request is a lost one, and a repeated answer in its place looks like its own.
    const bool isDamaged = schedule.duplicate == 0 && VL_Happens(schedule.damage);
    const size_t damaged = isDamaged ? VL_Random(static_cast<uint32_t>(count)) : count;
    VL_counters.faults += isLost ? 1 : 0;
    for (size_t i = 0; i < count; ++i) {
        if (schedule.isEcho)
            Arrive(nowUs, text[i]);
        if (!isLost)
            Receive(i == damaged ? static_cast<char>(VL_Random(256)) : text[i]);
    }
    nowUs += CALL_US;
    return static_cast<int>(count);
}

int SER_ReadSome(SER_Handle, void *buffer, size_t capacity, unsigned waitMs)
{
    nowUs += CALL_US;
    const uint64_t end = nowUs + waitMs * uint64_t{1000};
    if (Arrived() == 0)
        nowUs = line.empty() ? end : std::min(end, std::max(nowUs, line.front().us));
    const size_t count = std::min(Arrived(), capacity);
    for (size_t i = 0; i < count; ++i) {
        static_cast<char *>(buffer)[i] = line.front().byte;
        line.pop_front();
    }
    return static_cast<int>(count);
}

int SER_Read(SER_Handle handle, void *buffer, size_t count)
{
    const uint64_t end = nowUs + readTotalMs * uint64_t{1000};
    size_t done = 0;
    while (done < count && nowUs < end) {
        const auto left = static_cast<unsigned>((end - nowUs + 999) / 1000);
        done += static_cast<size_t>(
            SER_ReadSome(handle, static_cast<char *>(buffer) + done, count - done, left));
    }
    return static_cast<int>(done);
}

int SER_BytesWaiting(SER_Handle)
{
    nowUs += CALL_US;
    return static_cast<int>(Arrived());
}

int SER_DropInput(SER_Handle)
{
    line.erase(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(Arrived()));
    return SER_OK;
}

int SER_DropOutput(SER_Handle)
{
    return SER_OK;
}

int SER_FlushOutput(SER_Handle)
{
    return SER_OK;
}

void SER_Close(SER_Handle)
{
}
