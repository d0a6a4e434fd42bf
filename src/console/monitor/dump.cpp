// Bytes are read one row, byte or word at a time: what was read before a failure stays
// on the console.
#include "console/monitor/dump.h"

#include <algorithm>
#include <cstring>

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/monitor/word.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/bytes.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint32_t RAW_ROW_BYTES = 16;
constexpr uint32_t RAW_ROWS = 8;
constexpr uint32_t COMPLETE_BYTES = 8;
constexpr uint32_t NODE_BYTES_MAX = 8;
constexpr uint32_t FLOAT_BYTES = 4;
constexpr size_t COMPLETE_RULE = 67;
constexpr size_t WORDS_RULE = 74;
constexpr size_t NODE_RULE = 40;
constexpr char NO_ANSWER[] = "\nMessage not succesful.";

std::string FormatByte(uint8_t byte)
{
    return CON_Format("   %02X     %6d     %6u", byte, static_cast<int8_t>(byte), byte);
}

std::string FormatFloat(const uint8_t *bytes)
{
    const uint32_t bits = static_cast<uint32_t>(BYT_GetLittle(bytes, 4));
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return CON_Format("      %6g (0x%08X)", static_cast<double>(value), bits);
}

// Rows are shown as they come; false, with a message, when they turn out not to be proven.
bool AreRowsProven()
{
    if (UCM_Prove() == UCM_PROVEN)
        return true;
    MEM_Fail("The line repeats answers: the values above may be wrong, read them again.");
    return false;
}

// A valid station in front of a name ("3:name"), else the present one.
int32_t GetNameStation(const std::string &name)
{
    const char *cursor = CON_SkipBlanks(name.c_str());
    if (*cursor == '&')
        cursor = CON_SkipBlanks(cursor + 1);
    uint32_t station = 0;
    if (!CON_ParseDecimal(&cursor, &station) || *CON_SkipBlanks(cursor) != ':')
        return STATION;
    return station <= STATION_MAX ? static_cast<int32_t>(station) : STATION;
}

// Bytes from the variable to the next symbol of the map, at most NODE_BYTES_MAX.
uint32_t GetNodeSize(uint32_t address)
{
    uint32_t size = NODE_BYTES_MAX;
    for (int i = 0; i < nNodes; i++)
        if (aVarNode[i].addr > address)
            size = std::min(size, aVarNode[i].addr - address);
    return size;
}

} // namespace

int MEM_Fail(const std::string &message)
{
    PrintMonStr(message);
    CON_ShowModePrompt();
    return -1;
}

int dump(int, uint32_t address)
{
    PrintMonStr("Dump ...\n");
    for (uint32_t row = 0; row < RAW_ROWS && address < ADDR_LIMIT; row++) {
        uint8_t bytes[RAW_ROW_BYTES];
        const uint32_t count = std::min(RAW_ROW_BYTES, ADDR_LIMIT - address);
        if (UCM_Read(STATION, address, count, bytes) < 0)
            return MEM_Fail(NO_ANSWER);
        std::string line = CON_Format(" %08x:  ", address);
        for (uint32_t i = 0; i < count; i++)
            line += CON_Format(" %02X", bytes[i]);
        PrintMonStr(line);
        address += count;
    }
    return AreRowsProven() ? 0 : -1;
}

int dump_compl(int, uint32_t address)
{
    PrintMonStr("Dump ...\n");
    PrintMonStr(" ADDR:   |   hex:     long:     ulong:      float:");
    PrintMonStr(std::string(COMPLETE_RULE, '-'));
    uint8_t bytes[COMPLETE_BYTES];
    for (uint32_t i = 0; i < COMPLETE_BYTES && address + i < ADDR_LIMIT; i++) {
        std::string row = CON_Format(" %06x: |", address + i);
        if (UCM_Read(STATION, address + i, 1, &bytes[i]) < 0) {
            PrintMonStr(row);
            return MEM_Fail(NO_ANSWER);
        }
        row += FormatByte(bytes[i]);
        if (i % FLOAT_BYTES == FLOAT_BYTES - 1)
            row += FormatFloat(bytes + i + 1 - FLOAT_BYTES);
        PrintMonStr(row);
    }
    return AreRowsProven() ? 0 : -1;
}

int dump_Naddr(int, uint32_t address, uint32_t count)
{
    PrintMonStr("Read memory...\n");
    PrintMonStr(" ADDR:    |      hex:            long:       unsign. long:      TMS float:");
    PrintMonStr(std::string(WORDS_RULE, '-'));
    for (uint32_t i = 0; i < count; i++, address++) {
        uint32_t value = 0;
        const int result = TMS_ReadWord(STATION, address, TMS_POLLS_ITEM, &value);
        if (result != TMS_OK)
            return MEM_Fail(result == TMS_ERR_BUSY ? "\nHardware not responding." : NO_ANSWER);
        CON_Print("%08x  |   %08X     %12d     %12u     %12g", address, value,
                  static_cast<int32_t>(value), value, TMS_IEEE(value));
        ProcessSystemEvents();
    }
    return 0;
}

int dump_node(int, const std::string &name)
{
    if (!openStruct) {
        PrintMonStr("  MapFile is not open!");
        return MEM_Fail("  Use command 'm' to open MapFile.\n");
    }
    const uint32_t address = inStruct(name.c_str(), aVarNode, nNodes);
    if (name.empty() || address >= ADDR_LIMIT)
        return MEM_Fail(CON_Format(" Variable %s doesn't exist in MapFile (%s)\n", name.c_str(),
                                   mapFile.c_str()));
    PrintMonStr("Dump variable ...");
    CON_Print(" Variable:  %s", name.c_str());
    PrintMonStr(" ADDR:   |   hex:     long:     ulong:");
    PrintMonStr(std::string(NODE_RULE, '-'));
    const uint32_t size = GetNodeSize(address);
    const int32_t station = GetNameStation(name);
    for (uint32_t i = 0; i < size && address + i < ADDR_LIMIT; i++) {
        uint8_t byte = 0;
        if (UCM_Read(station, address + i, 1, &byte) < 0)
            return MEM_Fail(NO_ANSWER);
        CON_Print("\n %06x: |%s\n", address + i, FormatByte(byte).c_str());
    }
    return AreRowsProven() ? 0 : -1;
}
