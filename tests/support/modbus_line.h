// A line for the Modbus master that a test writes: what was sent, and what comes back for
// each request. Nothing ever waits: what is not there has not come within the time-out.
#ifndef TESTS_SUPPORT_MODBUS_LINE_H
#define TESTS_SUPPORT_MODBUS_LINE_H

#include "comm/modbus.h"
#include "comm/modbus_line.h"
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
    int reads = 0;                   // that found less than they wanted: each cost a time-out
};
inline ScriptedLine scripted;

inline const MBM_Line SCRIPTED_LINE = {
    [](const void *bytes, size_t count) {
        scripted.sent.append(static_cast<const char *>(bytes), count);
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
    [](void *buffer, size_t capacity, unsigned) {
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
};

#endif
