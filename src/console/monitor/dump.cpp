// Bytes are read one row, byte or word at a time, and printed when they are proven: what was
// read before a failure comes to the console all the same.
#include "console/monitor/dump.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "console/commands/transfer.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/bytes.h"
#include "text/tokens.h"
#include "text/words.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint32_t RAW_ROW_BYTES = 16;
constexpr uint32_t RAW_ROWS = 8;
constexpr uint32_t COMPLETE_BYTES = 8;
constexpr uint32_t NODE_BYTES_MAX = 8;
constexpr uint32_t FLOAT_BYTES = 4;
constexpr uint32_t WORDS_STRETCH = 64; // with one proof behind them
constexpr size_t COMPLETE_RULE = 67;   // characters of the line below a heading
constexpr size_t WORDS_RULE = 74;
constexpr size_t NODE_RULE = 40;

std::string FormatByte(uint8_t byte)
{
    return TXT_Format("   %02X     %6d     %6u", byte, static_cast<int8_t>(byte), byte);
}

// The station in front of a name ("3:name"), else the present one; -1 when there is none such.
int32_t GetNameStation(const std::string &name)
{
    const char *cursor = TXT_SkipBlanks(name.c_str());
    // The mark of the TMS320 may stand in front of the station.
    if (*cursor == '&')
        cursor = TXT_SkipBlanks(cursor + 1);
    uint32_t station = 0;
    if (!TXT_ParseDecimal(&cursor, &station) || *TXT_SkipBlanks(cursor) != ':')
        return STATION;
    return station <= STATION_MAX ? static_cast<int32_t>(station) : -1;
}

} // namespace

int CON_FailMemory(const std::string &message)
{
    PrintMonStr(message);
    CON_ShowModePrompt();
    return -1;
}

int CON_FailLink(const std::string &message, const std::string &cause)
{
    // A read that was broken off fails like one without an answer; the user knows better.
    if (IsBreakWished())
        return CON_FailMemory("\nCancelled.");
    PrintMonStr(message);
    return CON_FailMemory("Cause: " + cause + ".");
}

bool CON_IsInside(uint32_t address, uint64_t count, uint32_t unitAddresses)
{
    if (address + count * unitAddresses <= ADDR_LIMIT)
        return true;
    CON_FailMemory(TXT_Format("The last address lies beyond %06X.", ADDR_LIMIT - 1));
    return false;
}

int dump(int, uint32_t address)
{
    if (!CON_IsInside(address, 1, 1))
        return -1;
    PrintMonStr("Dump ...\n");
    uint8_t bytes[RAW_ROWS * RAW_ROW_BYTES];
    const uint32_t count = std::min<uint32_t>(sizeof bytes, ADDR_LIMIT - address);
    // The last row is short at the end of the address space.
    const auto rowEnd = [count](uint32_t at) { return std::min(at + RAW_ROW_BYTES, count); };
    const UCM_Series series =
        UCM_MakeSeries((count + RAW_ROW_BYTES - 1) / RAW_ROW_BYTES, [&](uint32_t row) {
            const uint32_t at = row * RAW_ROW_BYTES;
            return UCM_Read(STATION, address + at, rowEnd(at) - at, bytes + at);
        });
    for (uint32_t row = 0; row < series.good; row++) {
        const uint32_t at = row * RAW_ROW_BYTES;
        std::string line = TXT_Format(" %08x:  ", address + at);
        for (uint32_t i = at; i < rowEnd(at); i++)
            line += TXT_Format(" %02X", bytes[i]);
        PrintMonStr(line);
    }
    return series.result < 0 ? CON_FailLink(CON_NO_ANSWER, series.cause) : 0;
}

int dump_compl(int, uint32_t address)
{
    if (!CON_IsInside(address, 1, 1))
        return -1;
    PrintMonStr("Dump ...\n");
    PrintMonStr(" ADDR:   |   hex:     long:     ulong:      float:");
    PrintMonStr(std::string(COMPLETE_RULE, '-'));
    uint8_t bytes[COMPLETE_BYTES];
    const UCM_Series series =
        UCM_MakeSeries(std::min(COMPLETE_BYTES, ADDR_LIMIT - address),
                       [&](uint32_t i) { return UCM_Read(STATION, address + i, 1, &bytes[i]); });
    for (uint32_t i = 0; i < series.good; i++) {
        std::string row = TXT_Format(" %06x: |", address + i) + FormatByte(bytes[i]);
        if (i % FLOAT_BYTES == FLOAT_BYTES - 1) { // the row that completes four bytes shows them
            const uint8_t *first = bytes + i + 1 - FLOAT_BYTES;
            const auto bits = static_cast<uint32_t>(TXT_GetLittle(first, FLOAT_BYTES));
            float value = 0;
            std::memcpy(&value, &bits, sizeof value);
            row += TXT_Format("      %6g (0x%08X)", static_cast<double>(value), bits);
        }
        PrintMonStr(row);
    }
    if (series.result >= 0)
        return 0;
    // The row whose byte did not come stays empty: it shows where the target fell silent.
    CON_Print(" %06x: |", address + series.good);
    return CON_FailLink(CON_NO_ANSWER, series.cause);
}

int dump_Naddr(int, uint32_t address, uint32_t count)
{
    if (!CON_IsInside(address, count, 1))
        return -1;
    PrintMonStr("Read memory...\n");
    PrintMonStr(" ADDR:    |      hex:            long:       unsign. long:      TMS float:");
    PrintMonStr(std::string(WORDS_RULE, '-'));
    std::vector<uint32_t> words(count);
    TransferSteps steps;
    steps.count = count;
    steps.perStretch = steps.perBlock = WORDS_STRETCH;
    steps.meterText = SCR_METER_BINARY;
    // A word at a time: the mailbox holds no more.
    steps.exchange = [&](uint32_t at, uint32_t) {
        return TMS_ReadWord(STATION, address + at, TMS_POLLS_ITEM, &words[at]);
    };
    steps.settle = [&](uint32_t at, uint32_t good) {
        for (uint32_t i = at; i < at + good; i++)
            CON_Print("%08x  |   %08X     %12d     %12u     %12g", address + i, words[i],
                      static_cast<int32_t>(words[i]), words[i], TMS_IEEE(words[i]));
        ProcessSystemEvents(); // up to 65536 rows: they come while the rest is being read
        return true;
    };
    const TransferReport report = SCR_RunTransfer(steps);
    // Cancel in the meter's box is not what CON_FailLink looks for.
    if (report.result == TRANSFER_CANCELLED)
        return CON_FailMemory("\nCancelled.");
    if (report.result == TRANSFER_LINK)
        return CON_FailTms(report.code, report.cause);
    return 0;
}

int CON_FailMemoryAt(uint32_t address, const std::string &cause)
{
    return CON_FailLink(TXT_Format("Message not succesful (Address %06x).", address), cause);
}

int CON_FailTms(int result, const std::string &cause)
{
    if (result == TMS_OK) // all was answered: it is the proof that failed
        result = TMS_ERR_PROOF;
    if (result == TMS_ERR_BUSY) // says its cause
        return CON_FailMemory("\nHardware not responding.");
    return CON_FailLink(CON_NO_ANSWER, TMS_ErrorText(result, cause));
}

int dump_node(int, const std::string &name)
{
    if (!openStruct) {
        PrintMonStr("  MapFile is not open!");
        return CON_FailMemory("  Use command 'm' to open MapFile.\n");
    }
    const uint32_t address = inStruct(name.c_str(), aVarNode, nNodes);
    if (name.empty() || address >= ADDR_LIMIT)
        return CON_FailMemory(TXT_Format(" Variable %s doesn't exist in MapFile (%s)\n",
                                         name.c_str(), mapFile.c_str()));
    const int32_t station = GetNameStation(name);
    if (station < 0)
        return CON_FailMemory(TXT_Format("Stations are 0 to %d.", STATION_MAX));
    // A map knows no sizes: a variable ends at the latest where the next symbol begins.
    uint32_t size = std::min(NODE_BYTES_MAX, ADDR_LIMIT - address);
    for (int i = 0; i < nNodes; i++)
        if (aVarNode[i].addr > address)
            size = std::min(size, aVarNode[i].addr - address);
    PrintMonStr("Dump variable ...");
    CON_Print(" Variable:  %s", name.c_str());
    PrintMonStr(" ADDR:   |   hex:     long:     ulong:");
    PrintMonStr(std::string(NODE_RULE, '-'));
    uint8_t bytes[NODE_BYTES_MAX];
    const UCM_Series series = UCM_MakeSeries(
        size, [&](uint32_t i) { return UCM_Read(station, address + i, 1, &bytes[i]); });
    for (uint32_t i = 0; i < series.good; i++)
        CON_Print("\n %06x: |%s\n", address + i, FormatByte(bytes[i]).c_str());
    return series.result < 0 ? CON_FailLink(CON_NO_ANSWER, series.cause) : 0;
}
