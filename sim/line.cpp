#include "line.h"

#include <algorithm>

namespace {

constexpr int64_t NS_PER_S = 1000000000;
constexpr int CHAR_BITS = 11; // start, eight data, two stop
constexpr int64_t CHUNK_NS = 2000000;
constexpr int64_t CHUNK_MAX = 16;
constexpr int64_t LATE_MAX_NS = 2000000; // that is forgiven; more is the machine's own pause
constexpr int64_t AWAKE_NS = 300000;     // longer than a program takes between two exchanges

} // namespace

bool SIM_OpenLine(SIM_Line *line, int baud, const std::string &tcp, const std::string &link,
                  std::string *error)
{
    line->wire = tcp.empty() ? SIM_OpenPty(link, &line->device, error)
                             : SIM_OpenTcp(tcp, &line->device, error);
    line->charNs = baud > 0 ? CHAR_BITS * NS_PER_S / baud : 0;
    return line->wire != nullptr;
}

void SIM_CloseLine(SIM_Line *line)
{
    if (line->wire)
        SIM_CloseWire(line->wire);
    line->wire = nullptr;
}

void SIM_WakeLine(SIM_Line *line)
{
    SIM_WakeWire(line->wire);
}

int SIM_ReadLine(SIM_Line *line, uint8_t *bytes, size_t capacity)
{
    // A controller is awake when the next request comes, and takes no time of the wire to find
    // that out: behind an answer this side does not sleep at once.
    int count = 0;
    const int64_t awakeUntil = line->charNs > 0 ? line->sendNs + line->lateNs + AWAKE_NS : 0;
    while (count == 0 && SIM_NowNs() < awakeUntil)
        count = SIM_ReadWire(line->wire, bytes, capacity, false);
    if (count == 0)
        count = SIM_ReadWire(line->wire, bytes, capacity, true);
    if (count <= 0)
        return count;
    // The program could not know that this side woke late: do not charge the wire for it.
    line->receiveNs = std::max({line->receiveNs, line->sendNs, SIM_NowNs() - line->lateNs});
    line->lateNs = 0;
    return count;
}

void SIM_PassReceived(SIM_Line *line)
{
    line->receiveNs += line->charNs;
}

bool SIM_WaitUntil(SIM_Line *line, int64_t timeNs)
{
    return SIM_WaitWire(line->wire, timeNs);
}

bool SIM_SendLine(SIM_Line *line, const uint8_t *bytes, size_t count, int64_t startNs)
{
    if (line->charNs == 0) { // as fast as the machine: only the delay is kept
        const bool go = SIM_WaitUntil(line, startNs);
        if (go)
            SIM_WriteWire(line->wire, bytes, count);
        return go;
    }
    // Deadlines count from the start of the frame, so lateness never adds up; small chunks
    // keep the program fed without a wake-up for every character.
    const auto chunk =
        static_cast<size_t>(std::clamp<int64_t>(CHUNK_NS / line->charNs, 1, CHUNK_MAX));
    line->sendNs = std::max(line->sendNs, startNs);
    for (size_t i = 0; i < count; i += chunk) {
        const size_t run = std::min(chunk, count - i);
        line->sendNs += static_cast<int64_t>(run) * line->charNs;
        if (!SIM_WaitUntil(line, line->sendNs))
            return false;
        SIM_WriteWire(line->wire, bytes + i, run);
    }
    line->lateNs = std::min(SIM_NowNs() - line->sendNs, LATE_MAX_NS);
    return true;
}
