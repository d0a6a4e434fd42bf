// Logs as a target writes them: header, messages with their zeros replaced, a zero word
// behind each.
#ifndef TESTS_SUPPORT_LOG_BUILDER_H
#define TESTS_SUPPORT_LOG_BUILDER_H

#include <cstdint>
#include <vector>

#include "logger/dlld_message.h"

constexpr uint32_t STAMP_2015 = 0x0F292737; // 1 March 2015, 10:20:30

struct LogBuilder {
    DLLD_Log log = DLLD_Log(8, 0);

    // Words that stand as they are, and the zero that ends them.
    LogBuilder &Raw(const std::vector<uint16_t> &words)
    {
        log.insert(log.end(), words.begin(), words.end());
        log.push_back(0);
        return *this;
    }
    LogBuilder &Add(int type, const std::vector<uint16_t> &content, uint32_t stamp = STAMP_2015,
                    int z = 0xEE)
    {
        std::vector<uint16_t> words = {static_cast<uint16_t>(type | z << 8),
                                       static_cast<uint16_t>(stamp & 0xFFFF),
                                       static_cast<uint16_t>(stamp >> 16)};
        for (const uint16_t word : content)
            words.push_back(word == 0 ? static_cast<uint16_t>(z) : word);
        return Raw(words);
    }
    LogBuilder &Text(const char *text, uint32_t stamp = STAMP_2015)
    {
        std::vector<uint16_t> content;
        for (; *text != '\0'; text += text[1] != '\0' ? 2 : 1)
            content.push_back(static_cast<uint16_t>(static_cast<uint8_t>(text[0]) |
                                                    static_cast<uint8_t>(text[1]) << 8));
        return Add(DLLD_TEXT, content, stamp);
    }
    // Filled up with zeros to `words` (0: as long as it is), its header for `address`.
    DLLD_Log Finish(size_t words = 0, uint32_t address = 0)
    {
        if (words > 0)
            log.resize(words);
        log[0] = static_cast<uint16_t>(address & 0xFFFF);
        log[1] = static_cast<uint16_t>(address >> 16);
        log[2] = static_cast<uint16_t>(log.size() & 0xFFFF);
        log[3] = static_cast<uint16_t>(log.size() >> 16);
        log[4] = 'L' | 'O' << 8;
        log[5] = 'G' | 'O' << 8;
        log[6] = 'S' | ':' << 8;
        return log;
    }
};

inline std::vector<uint8_t> LogBytes(const DLLD_Log &log)
{
    std::vector<uint8_t> bytes;
    for (const uint16_t word : log) {
        bytes.push_back(static_cast<uint8_t>(word & 0xFF));
        bytes.push_back(static_cast<uint8_t>(word >> 8));
    }
    return bytes;
}

#endif
