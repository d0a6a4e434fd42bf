// A target with the log and the record table of the example's F283xx, filled by the test.
#ifndef TESTS_SUPPORT_LOG_TARGET_H
#define TESTS_SUPPORT_LOG_TARGET_H

#include "support/console_rig.h"
#include "support/log_builder.h"
#include "symbols/mapfile.h"

// Byte addresses.
constexpr uint32_t LOG_VARIABLE_AT = 0x182C0, LOG_COUNT_AT = 0x182D0, LOG_TABLE_AT = 0x182D8;
constexpr uint32_t LOG_TEXTS_AT = 0x18400, LOG_BUFFER_AT = 0x1A000;

struct LogRig : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        Procesor = CPU_F283XX;
        ASSERT_EQ(TMSmap2node(EXAMPLES_DIR "/f283xx/f283xx.qar"), 0);
    }
    void PutLong(uint32_t address, uint32_t value)
    {
        poke(address, value, 4);
    }
    void PutLog(const DLLD_Log &log)
    {
        PutLong(LOG_VARIABLE_AT, LOG_BUFFER_AT / 2);
        PutLong(LOG_VARIABLE_AT + 4, static_cast<uint32_t>(log.size()));
        Poke(LOG_BUFFER_AT, LogBytes(log));
    }
    // One text a table entry, 128 bytes apart; "" has no address.
    void PutRecIds(int count, const std::vector<std::pair<int, std::string>> &entries)
    {
        poke(LOG_COUNT_AT, static_cast<uint64_t>(count), 2);
        for (uint32_t i = 0; i < entries.size(); i++) {
            const uint32_t at = LOG_TEXTS_AT + 128 * i;
            const std::string &text = entries[i].second;
            PutLong(LOG_TABLE_AT + 8 * i, static_cast<uint32_t>(entries[i].first) & 0xFFFF);
            PutLong(LOG_TABLE_AT + 8 * i + 4, text.empty() ? 0 : at / 2);
            SIM_Poke(target, STATION, at, text.c_str(), text.size() + 1);
        }
    }
};

#endif
