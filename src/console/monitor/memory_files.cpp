// Storing and loading differ between a C166 and a TMS320 in how one item is moved and
// how far the address steps; a Source and a Sink hold that difference. Items are proven in
// stretches: one proof for all of a short file.
#include "console/monitor/memory_files.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "console/commands/transfer.h"
#include "console/monitor/dump.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "platform/safe_file.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/tokens.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint32_t ITEM_BYTES = 4;
constexpr uint32_t C166_STORE_LAST = 0x3FFFF; // a store reaches the first 256 KiB
constexpr uint32_t TMS_STORE_LAST = 0xFFFFFF; // words: whatever the mailbox takes
constexpr uint32_t ITEMS_MAX = 0x40000;       // of a file: more would take days
constexpr uint32_t ITEMS_STRETCH = 64;        // with one proof behind them
constexpr uint32_t ITEMS_BLOCK = 16;          // that the meter counts
constexpr int LINE_SIZE = 121;                // characters of a file's line, and the end

struct Request {
    bool isFloat = false; // store only: a load's file says it
    uint32_t address = 0;
    std::string fileName;
    uint32_t count = 0; // store only
};

bool ParseRequest(const char *text, bool isStore, Request *request)
{
    const char *cursor = text;
    if (isStore) {
        if (*cursor != 'i' && *cursor != 'f')
            return false;
        request->isFloat = *cursor++ == 'f';
    }
    cursor = TXT_SkipBlanks(cursor);
    if (!TXT_ParseAddress(&cursor, &request->address) || !TXT_SkipComma(&cursor))
        return false;
    // A name may hold blanks, but no comma.
    const size_t length = std::strcspn(cursor, ",");
    request->fileName = TXT_Trim(std::string(cursor, length));
    cursor += length;
    if (request->fileName.empty())
        return false;
    if (isStore && (!TXT_SkipComma(&cursor) || !TXT_ParseDecimal(&cursor, &request->count)))
        return false;
    return *TXT_SkipBlanks(cursor) == '\0';
}

// --- reading the target: one item, 0 or negative -----------------------------------------------

// A float is fetched byte by byte, an integer at once: a counter must not change halfway.
int ReadC166(uint32_t address, bool isFloat, uint32_t *value)
{
    uint8_t bytes[ITEM_BYTES];
    const uint32_t step = isFloat ? 1 : ITEM_BYTES;
    for (uint32_t i = 0; i < ITEM_BYTES; i += step)
        if (UCM_Read(STATION, address + i, step, bytes + i) < 0)
            return -1;
    *value = static_cast<uint32_t>(TXT_GetLittle(bytes, 4));
    return 0;
}

int ReadTms(uint32_t address, bool, uint32_t *value)
{
    return TMS_ReadWord(STATION, address, TMS_POLLS_ITEM, value);
}

double IeeeValue(uint32_t bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
}

std::string CauseC166(const TransferReport &report)
{
    return report.cause;
}

std::string CauseTms(const TransferReport &report)
{
    return TMS_ErrorText(report.code == TMS_OK ? TMS_ERR_PROOF : report.code, report.cause);
}

struct Source {
    const char *heading;
    uint32_t step; // from item to item
    uint32_t lastAddress;
    int (*read)(uint32_t address, bool isFloat, uint32_t *value);
    double (*toDouble)(uint32_t bits);
    std::string (*cause)(const TransferReport &report);
};
const Source C166_SOURCE = {
    "Store DPM memory...", ITEM_BYTES, C166_STORE_LAST, ReadC166, IeeeValue, CauseC166};
const Source TMS_SOURCE = {"Store memory...\n", 1, TMS_STORE_LAST, ReadTms, TMS_IEEE, CauseTms};

TransferSteps PlanItems(uint32_t count)
{
    TransferSteps steps;
    steps.count = count;
    steps.perStretch = ITEMS_STRETCH;
    steps.perBlock = ITEMS_BLOCK;
    steps.meterText = SCR_METER_BINARY;
    return steps;
}

int FailOpen(const std::string &fileName)
{
    CON_FailMemory(TXT_Format("Could not open %s", fileName.c_str()));
    return CON_FILE_ERR_OPEN;
}

// Nothing is asked for or sent of a file that cannot be moved as a whole.
bool AreItemsAllowed(uint32_t address, uint64_t count, uint32_t step)
{
    if (count <= ITEMS_MAX)
        return CON_IsInside(address, count, step);
    CON_FailMemory(TXT_Format("At most %u values a file.", ITEMS_MAX));
    return false;
}

int StoreFile(int panel, const char *text, const Source &source)
{
    Request request;
    if (!ParseRequest(text, true, &request)) {
        PrintTmsCmdHelp(panel); // on the C166 as well: its own help lacks the letters
        return CON_ERR_ARGUMENTS;
    }
    dwAddr = request.address;
    PrintMonStr(source.heading);
    if (!AreItemsAllowed(request.address, request.count, source.step))
        return CON_FILE_ERR_LINK;
    SafeFile file;
    if (PLT_BeginSave(&file, request.fileName, "wb") < 0)
        return FailOpen(request.fileName);
    PLT_SaveText(file.file, request.isFloat ? "float\n" : "int\n");
    // A store ends at the last address it reaches, however many items were asked for.
    uint32_t count = 0;
    if (request.address <= source.lastAddress)
        count = std::min(request.count, (source.lastAddress - request.address) / source.step + 1);
    TransferSteps steps = PlanItems(count);
    std::vector<uint32_t> values(count);
    steps.exchange = [&](uint32_t at, uint32_t) {
        return source.read(request.address + at * source.step, request.isFloat, &values[at]);
    };
    steps.settle = [&](uint32_t at, uint32_t good) {
        for (uint32_t i = at; i < at + good; i++)
            PLT_SaveText(file.file, request.isFloat
                                        ? TXT_Format("%g\n", source.toDouble(values[i]))
                                        : TXT_Format("%d\n", static_cast<int32_t>(values[i])));
        return true;
    };
    const TransferReport report = SCR_RunTransfer(steps);
    if (report.result != TRANSFER_DONE) {
        PLT_CancelSave(&file); // a part of the values would pass for all of them
        return report.result == TRANSFER_CANCELLED
                   ? CON_FailMemory("\nCancelled.")
                   : CON_FailLink(CON_NO_ANSWER + 1, source.cause(report));
    }
    if (PLT_CommitSave(&file) < 0) {
        CON_FailMemory(TXT_Format("Could not write %s", request.fileName.c_str()));
        return CON_FILE_ERR_OPEN;
    }
    return 0;
}

// --- writing the target: one item, 0 or negative ----------------------------------------------

// Only the low byte of an integer is written, and floats go most significant byte
// first, whatever the target's order: files of service procedures count on both.
int SendC166(uint32_t address, bool isFloat, uint32_t value)
{
    uint8_t bytes[ITEM_BYTES];
    for (uint32_t i = 0; i < ITEM_BYTES; i++)
        bytes[i] = static_cast<uint8_t>(value >> (8 * (ITEM_BYTES - 1 - i)));
    const uint16_t count = isFloat ? ITEM_BYTES : 1;
    const int result =
        UCM_EmuCom166Msg(STATION, TARGET_WRITE, address, count, bytes + ITEM_BYTES - count);
    return result > 0 ? 0 : UCM_ERR_FAILED;
}

int SendTms(uint32_t address, bool isFloat, uint32_t value)
{
    return TMS_WriteWord(STATION, address, isFloat ? IEEE_TMS(value) : value, nullptr);
}

struct Sink {
    uint32_t integerStep, floatStep;   // addresses from item to item
    uint32_t integerBytes, floatBytes; // of an item
    int (*send)(uint32_t address, bool isFloat, uint32_t value);
    std::string (*cause)(const TransferReport &report);
};
const Sink C166_SINK = {1, ITEM_BYTES, 1, ITEM_BYTES, SendC166, CauseC166};
const Sink TMS_SINK = {1, 1, ITEM_BYTES, ITEM_BYTES, SendTms, CauseTms};

enum NumberForm { NUMBER_GOOD, NUMBER_NONE, NUMBER_TOO_BIG };

NumberForm ParseNumber(const char *line, bool isFloat, uint32_t *value)
{
    char *end = nullptr;
    errno = 0;
    bool isGood = false;
    if (isFloat) {
        const float number = std::strtof(line, &end);
        std::memcpy(value, &number, sizeof *value);
        isGood = std::isfinite(number);
    } else {
        const long long number = std::strtoll(line, &end, 10);
        *value = static_cast<uint32_t>(number);
        isGood = errno == 0 && number >= INT32_MIN && number <= INT32_MAX;
    }
    if (end == line)
        return NUMBER_NONE;
    return isGood ? NUMBER_GOOD : NUMBER_TOO_BIG;
}

// The whole file first: a bad line leaves the target as it was. An integer file ends at its
// first line that is no number; in a float file that is an error. 0, or -1 after a message.
int ReadItems(int file, bool isFloat, std::vector<uint32_t> *values)
{
    char line[LINE_SIZE];
    for (int lineNo = 2; TXFR_RdLine(file, line, LINE_SIZE) >= 0; lineNo++) {
        uint32_t value = 0;
        const NumberForm form = ParseNumber(line, isFloat, &value);
        if (form == NUMBER_NONE && !isFloat)
            return 0;
        if (form != NUMBER_GOOD)
            return CON_FailMemory(TXT_Format("Line %d of the file is not a value.", lineNo));
        values->push_back(value);
        if (values->size() > ITEMS_MAX)
            break; // refused with the rest
    }
    return 0;
}

int LoadItems(uint32_t address, const Sink &sink, bool isFloat, const std::vector<uint32_t> &values)
{
    const uint32_t step = isFloat ? sink.floatStep : sink.integerStep;
    if (!AreItemsAllowed(address, values.size(), step))
        return CON_FILE_ERR_LINK;
    TransferSteps steps = PlanItems(static_cast<uint32_t>(values.size()));
    steps.exchange = [&](uint32_t at, uint32_t) {
        return sink.send(address + at * step, isFloat, values[at]);
    };
    const TransferReport report = SCR_RunTransfer(steps);
    if (report.result == TRANSFER_DONE)
        return 0;
    const uint32_t itemBytes = isFloat ? sink.floatBytes : sink.integerBytes;
    CON_Print("%s.", SCR_WrittenText(report, steps.count, itemBytes).c_str());
    if (report.result == TRANSFER_CANCELLED)
        return CON_FailMemory("\nCancelled.");
    if (report.moved == steps.count) // each was acknowledged, but by answers that may be others'
        return CON_FailLink(CON_NO_ANSWER, sink.cause(report));
    return CON_FailMemoryAt(address + report.moved * step, sink.cause(report));
}

int LoadFile(int panel, const char *text, const Sink &sink)
{
    Request request;
    if (!ParseRequest(text, false, &request)) {
        PrintTmsCmdHelp(panel);
        return CON_ERR_ARGUMENTS;
    }
    dwAddr = request.address;
    PrintMonStr("\nLoad ...");
    const int file = TXFR_Open(request.fileName.c_str());
    if (file < 0)
        return FailOpen(request.fileName);
    char line[LINE_SIZE] = "";
    TXFR_RdLine(file, line, LINE_SIZE);
    const std::string form(line, TXT_WordLength(line));
    const bool isFloat = form == "float";
    const bool isKnown = isFloat || form == "int";
    std::vector<uint32_t> values;
    const int result = isKnown ? ReadItems(file, isFloat, &values) : CON_FILE_ERR_FORMAT;
    TXFR_Close(file);
    if (!isKnown)
        CON_FailMemory("File format error");
    return result < 0 ? result : LoadItems(request.address, sink, isFloat, values);
}

} // namespace

int store(int panel, const char *text)
{
    return StoreFile(panel, text, C166_SOURCE);
}

int store_addr(int panel, const char *text)
{
    return StoreFile(panel, text, TMS_SOURCE);
}

int load(int panel, const char *text)
{
    return LoadFile(panel, text, C166_SINK);
}

int load_addr(int panel, const char *text)
{
    return LoadFile(panel, text, TMS_SINK);
}
