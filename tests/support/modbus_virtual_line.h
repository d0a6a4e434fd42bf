// A Modbus line in virtual time with the simulated slave at its end: requests and answers are
// lost, damaged, refused, late or doubled by a seed, and thousands of time-outs take no time.
#ifndef TESTS_SUPPORT_MODBUS_VIRTUAL_LINE_H
#define TESTS_SUPPORT_MODBUS_VIRTUAL_LINE_H

#include "comm/modbus.h"
#include "comm/modbus_line.h"
#include "sim/modbus_frame.h"
#include "sim/modbus_slave.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <random>
#include <vector>

struct VirtualFaults {
    double loss = 0, damage = 0, refusal = 0, doubled = 0, stray = 0, foreign = 0;
    double delayMs = 1, jitterMs = 2; // of an answer
    bool isEcho = false;
    uint32_t refusedBelow = 0; // reads of memory that the slave does not have
};

struct VirtualLine {
    struct Byte {
        double atMs;
        uint8_t value;
    };
    SIM_Target target; // its memory; it never runs
    VirtualFaults faults;
    std::mt19937 random{1};
    std::deque<Byte> bytes; // on their way to the master, in order
    SIM_RtuReceiver receiver;
    double nowMs = 0;
    uint32_t lost = 0, damaged = 0, refused = 0, served = 0; // requests, probes excepted
    std::vector<uint32_t> stores;                            // times the write with a mark came

    bool Draw(double share)
    {
        return std::uniform_real_distribution<double>(0, 1)(random) < share;
    }
    double DrawMs(double from, double range)
    {
        return from + std::uniform_real_distribution<double>(0, 1)(random) * range;
    }
    void Queue(double fromMs, const uint8_t *data, size_t count)
    {
        constexpr double CHAR_MS = 0.1;
        double at = bytes.empty() ? fromMs : std::max(fromMs, bytes.back().atMs);
        for (size_t i = 0; i < count; i++)
            bytes.push_back({at += CHAR_MS, data[i]});
    }
    void QueueStray(double fromMs)
    {
        const uint8_t stray[] = {static_cast<uint8_t>(random()), 1};
        Queue(fromMs, stray, 1 + random() % 2);
    }
    static uint32_t AddressOf(const uint8_t *frame) // of memory that function 23 reads
    {
        return static_cast<uint32_t>(frame[11]) << 24 | static_cast<uint32_t>(frame[12]) << 16 |
               static_cast<uint32_t>(frame[13]) << 8 | frame[14];
    }
    void Serve(const uint8_t *frame, size_t count)
    {
        const bool isProbe = frame[1] == 23 && AddressOf(frame) == 0;
        uint8_t answer[SIM_RTU_MAX];
        int exception = 0;
        if (Draw(faults.loss / 2)) {
            lost += !isProbe;
            return;
        }
        const bool isMissing = frame[1] == 23 && AddressOf(frame) < faults.refusedBelow;
        const bool isRefused = isMissing || (!isProbe && Draw(faults.refusal));
        size_t length = isRefused ? SIM_RefuseRtu(frame, isMissing ? 2 : 6, answer)
                                  : SIM_ServeRtu(&target, frame, count, answer, &exception);
        length = SIM_CloseRtu(answer, length);
        const double at = nowMs + DrawMs(faults.delayMs, faults.jitterMs);
        if (Draw(faults.loss / 2)) {
            lost += !isProbe;
            return;
        }
        served++;
        if (Draw(faults.foreign)) {
            uint8_t other[] = {static_cast<uint8_t>(frame[0] + 1), 3, 2, 1, 2, 0, 0};
            Queue(at, other, SIM_CloseRtu(other, 5));
        }
        if (Draw(faults.stray))
            QueueStray(at);
        const bool isDoubled = Draw(faults.doubled);
        const bool isDamaged = Draw(faults.damage);
        if (isDamaged)
            answer[random() % length] ^= static_cast<uint8_t>(1u << random() % 8);
        damaged += isDamaged && !isProbe;
        refused += isRefused && !isDamaged && !isProbe;
        Queue(at, answer, length);
        if (isDoubled)
            Queue(at + DrawMs(0, 4), answer, length);
        if (Draw(faults.stray))
            QueueStray(at);
    }
    // Bytes that have come, at most `count`, waiting up to `waitMs` for `wanted` of them.
    size_t Take(uint8_t *to, size_t count, size_t wanted, double waitMs)
    {
        const double end = nowMs + waitMs;
        size_t got = 0;
        while (got < count && !bytes.empty() &&
               bytes.front().atMs <= (got < wanted ? end : nowMs)) {
            nowMs = std::max(nowMs, bytes.front().atMs);
            to[got++] = bytes.front().value;
            bytes.pop_front();
        }
        if (got < wanted)
            nowMs = end;
        return got;
    }
};
inline std::unique_ptr<VirtualLine> virtualLine;

inline const MBM_Line VIRTUAL_LINE = {
    [](const void *bytes, size_t count) {
        VirtualLine &line = *virtualLine;
        const auto *frame = static_cast<const uint8_t *>(bytes);
        line.nowMs += 0.1 * static_cast<double>(count);
        if (line.faults.isEcho)
            line.Queue(line.nowMs, frame, count);
        uint64_t malformed = 0;
        for (size_t i = 0; i < count; i++)
            if (const size_t whole = SIM_ReceiveRtu(&line.receiver, frame[i], &malformed)) {
                line.receiver.length = 0;
                line.Serve(line.receiver.bytes, whole - 2);
            }
        return static_cast<int>(count);
    },
    [](void *buffer, size_t count) {
        return static_cast<int>(
            virtualLine->Take(static_cast<uint8_t *>(buffer), count, count, MBM_nTimeoutMs));
    },
    [](void *buffer, size_t capacity, unsigned waitMs) {
        return static_cast<int>(
            virtualLine->Take(static_cast<uint8_t *>(buffer), capacity, 1, waitMs));
    },
    [] {
        const auto &bytes = virtualLine->bytes;
        return static_cast<int>(std::count_if(bytes.begin(), bytes.end(), [](const auto &byte) {
            return byte.atMs <= virtualLine->nowMs;
        }));
    },
    [] {
        auto &bytes = virtualLine->bytes;
        while (!bytes.empty() && bytes.front().atMs <= virtualLine->nowMs)
            bytes.pop_front();
        return 0;
    },
    [] { return static_cast<uint32_t>(virtualLine->nowMs); },
};

#endif
