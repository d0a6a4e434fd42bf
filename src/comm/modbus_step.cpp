#include "comm/modbus_step.h"

#include "comm/modbus.h"
#include "comm/modbus_line.h"
#include "comm/trace.h"
#include "platform/system.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace {

constexpr size_t SLAVES = 256;
constexpr int PROBE_FIRST = 5, PROBE_LAST = 60; // registers that a probe reads
constexpr int PROBES_A_TRY = 4;
constexpr int SLOW_WAITS = 4;        // time-outs that a slow slave's proof may take
constexpr int SILENCE_WAITS_MAX = 8; // time-outs after which a chattering line is given up
constexpr size_t HEAD_BYTES = 3, CRC_BYTES = 2, EXCEPTION_BYTES = 5;
constexpr size_t HEARD_MAX = 4096;
constexpr int TUNNEL_EVEN = 0xFFFD, TUNNEL_ODD = 0xFFFB;

// What may still be answered by one slave.
struct Pending {
    int count = 0;              // sendings of `frame` without an answer
    std::vector<uint8_t> frame; // all the same one
    bool isUnknown = true;      // ... and something that is not known
    bool isSlow = false;        // an answer came after its time-out
    std::vector<int> probes;    // quantities of probes without an answer
};
std::array<Pending, SLAVES> pendings;
int lastProbe = 0; // quantity; starts anywhere, so that two runs of the program differ

enum class Proof { DONE, AGAIN, REFUSED, SILENT, ECHO, GONE };

int WordAt(const uint8_t *bytes)
{
    return bytes[0] << 8 | bytes[1];
}

bool IsTunnel(const std::vector<uint8_t> &frame)
{
    const int function = frame[1];
    const int start =
        function == MBM_FN_READ_WRITE ? WordAt(frame.data() + 6) : WordAt(frame.data() + 2);
    return (function == MBM_FN_WRITE || function == MBM_FN_READ_WRITE) &&
           (start == TUNNEL_EVEN || start == TUNNEL_ODD);
}

// Registers that the answer to this request brings by the function of a probe, or 0.
int AnswerQuantity(const std::vector<uint8_t> &frame)
{
    return frame.size() > 6 && frame[1] == MBM_FN_READ_WRITE ? WordAt(frame.data() + 4) : 0;
}

// A length that nothing outstanding has, nor the request that is to follow.
int ChooseProbe(const Pending &pending, const std::vector<uint8_t> &next)
{
    constexpr int LENGTHS = PROBE_LAST - PROBE_FIRST + 1;
    if (lastProbe == 0)
        lastProbe = static_cast<int>(PLT_TickUs() % LENGTHS);
    const int taken[] = {AnswerQuantity(pending.frame), AnswerQuantity(next)};
    int quantity = 0;
    do {
        lastProbe = lastProbe % LENGTHS + 1;
        quantity = PROBE_FIRST + lastProbe - 1;
    } while (quantity == taken[0] || quantity == taken[1] ||
             std::find(pending.probes.begin(), pending.probes.end(), quantity) !=
                 pending.probes.end());
    return quantity;
}

// A read of `quantity` registers of memory from address 0 on, which can be read everywhere.
std::vector<uint8_t> BuildProbe(uint8_t slave, int quantity)
{
    std::vector<uint8_t> frame = {slave, MBM_FN_READ_WRITE,
                                  0xFF,  0x00,
                                  0,     static_cast<uint8_t>(quantity),
                                  0xFF,  0xFD,
                                  0,     2,
                                  4,     0,
                                  0,     0,
                                  0};
    const uint16_t crc = MBM_GetCRC(frame.data(), frame.size());
    frame.push_back(static_cast<uint8_t>(crc));
    frame.push_back(static_cast<uint8_t>(crc >> 8));
    return frame;
}

bool IsFrameAt(const std::vector<uint8_t> &heard, size_t at, size_t length)
{
    if (at + length > heard.size())
        return false;
    const uint8_t *end = heard.data() + at + length - CRC_BYTES;
    return MBM_GetCRC(heard.data() + at, length - CRC_BYTES) ==
           (end[0] | static_cast<unsigned>(end[1]) << 8);
}

// Looks for the probe's answer anywhere in what was heard: older ones may stand before it.
// DONE with *end behind it; REFUSED when the slave refuses to read there.
Proof FindAnswer(const std::vector<uint8_t> &heard, uint8_t slave, int quantity, size_t *end)
{
    constexpr uint8_t REFUSED = MBM_FN_READ_WRITE | 0x80;
    for (size_t at = 0; at + EXCEPTION_BYTES <= heard.size(); ++at) {
        if (heard[at] != slave)
            continue;
        const size_t length = HEAD_BYTES + 2 * static_cast<size_t>(quantity) + CRC_BYTES;
        const bool isAnswer = heard[at + 1] == MBM_FN_READ_WRITE && heard[at + 2] == 2 * quantity &&
                              IsFrameAt(heard, at, length);
        *end = at + length;
        if (isAnswer)
            return Proof::DONE;
        if (heard[at + 1] == REFUSED && IsFrameAt(heard, at, EXCEPTION_BYTES))
            return Proof::REFUSED;
    }
    return Proof::SILENT;
}

// Waits up to `waitMs` for the answer to a probe.
Proof ListenFor(uint8_t slave, int quantity, const std::vector<uint8_t> &probe, uint32_t waitMs)
{
    std::vector<uint8_t> heard;
    const uint32_t start = MBM_line->nowMs();
    for (;;) {
        const uint32_t passed = MBM_line->nowMs() - start;
        uint8_t bytes[256];
        const int got = passed < waitMs && heard.size() < HEARD_MAX
                            ? MBM_line->readSome(bytes, sizeof bytes, waitMs - passed)
                            : 0;
        if (got < 0)
            return Proof::GONE;
        if (got == 0)
            return Proof::SILENT;
        if (TRC_isOn)
            MBMTRC_Received(bytes, static_cast<size_t>(got));
        heard.insert(heard.end(), bytes, bytes + got);
        if (!MBM_isEcho && heard.size() >= probe.size() &&
            std::equal(probe.begin(), probe.end(), heard.begin()))
            return Proof::ECHO;
        size_t end = 0;
        const Proof proof = FindAnswer(heard, slave, quantity, &end);
        if (proof == Proof::DONE)
            return end == heard.size() && MBM_line->waiting() == 0 ? Proof::DONE : Proof::AGAIN;
        if (proof == Proof::REFUSED)
            return proof;
    }
}

int FaultOf(Proof proof)
{
    switch (proof) {
    case Proof::SILENT:
        return MBM_EX_SILENT;
    case Proof::ECHO:
        return MBM_FAULT_ECHO;
    case Proof::GONE:
        return MBM_FAULT_GONE;
    default:
        return 0;
    }
}

Proof Probe(uint8_t slave, Pending *pending, const std::vector<uint8_t> &next)
{
    const int quantity = ChooseProbe(*pending, next);
    const std::vector<uint8_t> probe = BuildProbe(slave, quantity);
    MBM_line->drop();
    if (TRC_isOn)
        MBMTRC_Begin(probe.data(), probe.size(), true);
    if (MBM_line->write(probe.data(), probe.size()) != static_cast<int>(probe.size()))
        return Proof::GONE;
    pending->probes.push_back(quantity);
    const uint32_t waitMs = MBM_nTimeoutMs * (pending->isSlow ? SLOW_WAITS : 1u);
    const Proof proof = ListenFor(slave, quantity, probe, waitMs);
    if (TRC_isOn)
        MBMTRC_End(MBM_isEcho != 0, FaultOf(proof));
    return proof;
}

// One time-out in which nothing comes.
int ProveBySilence()
{
    for (int i = 0; i < SILENCE_WAITS_MAX; ++i) {
        uint8_t bytes[256];
        const int got = MBM_line->readSome(bytes, sizeof bytes, MBM_nTimeoutMs);
        if (got <= 0)
            return got < 0 ? static_cast<int>(MBM_FAULT_GONE) : 0;
    }
    return MBM_FAULT_STEP;
}

// What is not known to be outstanding could have a probe's length by chance: a second probe
// has another one, and an older answer can be mistaken for one of them only.
int ProveByProbe(uint8_t slave, Pending *pending, const std::vector<uint8_t> &next)
{
    int needed = pending->isUnknown ? 2 : 1;
    for (int i = 0; i < PROBES_A_TRY && needed > 0; ++i) {
        const Proof proof = Probe(slave, pending, next);
        if (proof == Proof::REFUSED)
            return ProveBySilence();
        if (FaultOf(proof) != 0) {
            pending->isSlow = false; // it is worse than that now: the next try waits no longer
            return FaultOf(proof);
        }
        if (proof == Proof::DONE)
            --needed;
    }
    return needed == 0 ? 0 : static_cast<int>(MBM_FAULT_STEP);
}

} // namespace

void MBMSTEP_Opened()
{
    pendings.fill(Pending());
}

int MBMSTEP_Ready()
{
    Pending *pending = &pendings[MBM_abySnd[0]];
    const int waiting = MBM_line->waiting();
    if (waiting < 0)
        return MBM_FAULT_GONE;
    if (waiting > 0) {
        MBM_line->drop();
        pending->isUnknown = true;
    }
    if (!pending->isUnknown && pending->count == 0)
        return 0;
    const std::vector<uint8_t> next(MBM_abySnd, MBM_abySnd + MBM_cnLastSend);
    if (!pending->isUnknown && pending->frame == next)
        return 0;
    const int fault =
        IsTunnel(next) ? ProveByProbe(MBM_abySnd[0], pending, next) : ProveBySilence();
    if (fault == 0) {
        const bool isSlow = pending->isSlow;
        *pending = Pending();
        pending->isUnknown = false;
        pending->isSlow = isSlow;
    }
    return fault;
}

void MBMSTEP_Sent()
{
    Pending *pending = &pendings[MBM_abySnd[0]];
    if (pending->count == 0)
        pending->frame.assign(MBM_abySnd, MBM_abySnd + MBM_cnLastSend);
    ++pending->count;
}

void MBMSTEP_Answered()
{
    Pending *pending = &pendings[MBM_abySnd[0]];
    pending->isSlow = pending->count > 1;
    --pending->count;
}

void MBMSTEP_Strange()
{
    pendings[MBM_abySnd[0]].isUnknown = true;
}
