// A line for the Modbus master that a test writes: what was sent, and what comes back for
// each request. Nothing ever waits: what is not there has not come within the time-out.
// Reads of memory from address 0 on prove the line; they are answered without being asked.
#ifndef TESTS_SUPPORT_MODBUS_LINE_H
#define TESTS_SUPPORT_MODBUS_LINE_H

#include "comm/modbus.h"
#include "comm/modbus_line.h"
#include "comm/modbus_step.h"
#include "sim/modbus_frame.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>

// Bytes from "01 03 00 0A"; a "*" at the end appends the CRC.
inline std::string FromHex(const std::string &text)
{
    std::string bytes;
    for (size_t i = 0; i + 1 < text.size(); i++)
        if (isxdigit(static_cast<unsigned char>(text[i])) != 0)
            bytes += static_cast<char>(std::stoi(text.substr(i++, 2), nullptr, 16));
    if (text.empty() || text.back() != '*')
        return bytes;
    uint8_t frame[SIM_RTU_MAX + 2];
    memcpy(frame, bytes.data(), bytes.size());
    const size_t length = SIM_CloseRtu(frame, bytes.size());
    return std::string(reinterpret_cast<char *>(frame), length);
}

struct ScriptedLine {
    std::string sent;                // all requests
    std::deque<std::string> answers; // one for each request; none = silence
    std::string input;               // arrived and not read
    uint32_t nowMs = 0;
    int reads = 0; // that found less than they wanted: each cost a time-out
};
inline ScriptedLine scripted;

// The answer to such a read, or "".
inline std::string AnswerProbe(const std::string &frame)
{
    constexpr size_t PROBE_BYTES = 17;
    const std::string fromZero("\xFF\xFD\0\2\4\0\0\0\0", 9);
    if (frame.size() != PROBE_BYTES || frame[1] != 0x17 || frame.substr(6, 9) != fromZero)
        return "";
    const std::string zeros(2 * static_cast<unsigned char>(frame[5]), '\0');
    std::string answer = frame.substr(0, 2) + static_cast<char>(zeros.size()) + zeros;
    uint8_t bytes[SIM_RTU_MAX + 2];
    memcpy(bytes, answer.data(), answer.size());
    return std::string(reinterpret_cast<char *>(bytes), SIM_CloseRtu(bytes, answer.size()));
}

inline const MBM_Line SCRIPTED_LINE = {
    [](const void *bytes, size_t count) {
        const std::string frame(static_cast<const char *>(bytes), count);
        const std::string proof = AnswerProbe(frame);
        scripted.input += MBM_isEcho && !proof.empty() ? frame + proof : proof;
        if (!proof.empty())
            return static_cast<int>(count);
        scripted.sent += frame;
        if (!scripted.answers.empty()) {
            scripted.input += scripted.answers.front();
            scripted.answers.pop_front();
        }
        return static_cast<int>(count);
    },
    [](void *buffer, size_t count) {
        const size_t got = std::min(count, scripted.input.size());
        memcpy(buffer, scripted.input.data(), got);
        scripted.input.erase(0, got);
        scripted.reads += got < count;
        return static_cast<int>(got);
    },
    [](void *buffer, size_t capacity, unsigned waitMs) {
        scripted.nowMs += scripted.input.empty() ? waitMs : 0;
        const size_t got = std::min(capacity, scripted.input.size());
        memcpy(buffer, scripted.input.data(), got);
        scripted.input.erase(0, got);
        return static_cast<int>(got);
    },
    [] { return static_cast<int>(scripted.input.size()); },
    [] {
        scripted.input.clear();
        return 0;
    },
    [] { return scripted.nowMs; },
};

#endif
