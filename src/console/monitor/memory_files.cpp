// Storing and loading differ between a C166 and a TMS320 in how one item is moved and
// how far the address steps; a Source and a Sink hold that difference.
#include "console/monitor/memory_files.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "console/monitor/dump.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/monitor/value_entry.h"
#include "console/monitor/word.h"
#include "platform/safe_file.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint32_t ITEM_BYTES = 4;
constexpr uint32_t C166_STORE_LAST = 0x3FFFF; // a store reaches the first 256 KiB
constexpr uint32_t TMS_STORE_LAST = 0xFFFFFF; // words: whatever the mailbox takes
constexpr int LINE_SIZE = 121;                // characters of a file's line, and the end

// --- reading the target: one item, 0 or -1 -----------------------------------------------

// A float is fetched byte by byte, an integer at once: a counter must not change halfway.
int ReadC166(uint32_t address, bool isFloat, uint32_t *value)
{
    uint8_t bytes[ITEM_BYTES];
    const uint32_t step = isFloat ? 1 : ITEM_BYTES;
    for (uint32_t i = 0; i < ITEM_BYTES; i += step)
        if (UCM_Read(STATION, address + i, step, bytes + i) < 0)
            return -1;
    *value = static_cast<uint32_t>(BYT_GetLittle(bytes, 4));
    return 0;
}

int ReadTms(uint32_t address, bool, uint32_t *value)
{
    return TMS_ReadWord(STATION, address, TMS_POLLS_ITEM, value) == TMS_OK ? 0 : -1;
}

double IeeeValue(uint32_t bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
}

struct Source {
    uint32_t step; // from item to item
    uint32_t lastAddress;
    int (*read)(uint32_t address, bool isFloat, uint32_t *value);
    double (*toDouble)(uint32_t bits);
};
const Source C166_SOURCE = {ITEM_BYTES, C166_STORE_LAST, ReadC166, IeeeValue};
const Source TMS_SOURCE = {1, TMS_STORE_LAST, ReadTms, TMS_IEEE};

int StoreItems(const MemoryFileRequest &request, const Source &source, std::FILE *file)
{
    SAF_PutText(file, request.isFloat ? "float\n" : "int\n");
    uint32_t address = request.address;
    for (uint32_t i = 0; i < request.count && address <= source.lastAddress; i++) {
        uint32_t value = 0;
        if (source.read(address, request.isFloat, &value) < 0)
            return -1;
        if (request.isFloat)
            SAF_PutText(file, CON_Format("%g\n", source.toDouble(value)));
        else
            SAF_PutText(file, CON_Format("%d\n", static_cast<int32_t>(value)));
        address += source.step;
    }
    return 0;
}

int FailOpen(const std::string &fileName)
{
    MEM_Fail(CON_Format("Could not open %s", fileName.c_str()));
    return MFL_ERR_OPEN;
}

int StoreFile(const MemoryFileRequest &request, const Source &source)
{
    SafeFile file;
    if (SAF_Open(&file, request.fileName, "wb") < 0)
        return FailOpen(request.fileName);
    if (StoreItems(request, source, file.file) < 0) {
        SAF_Cancel(&file);
        return MEM_Fail("Message not succesful.");
    }
    if (SAF_Commit(&file) < 0) {
        MEM_Fail(CON_Format("Could not write %s", request.fileName.c_str()));
        return MFL_ERR_OPEN;
    }
    return 0;
}

// --- writing the target: one item, 0 or -1 after a message ----------------------------------

int SendBytes(uint32_t address, const uint8_t *bytes, uint16_t count)
{
    if (UCM_EmuCom166Msg(STATION, TARGET_WRITE, address, count, bytes) > 0)
        return 0;
    return MEM_Fail(CON_Format("Message not succesful (Address %06x).", address));
}

// Only the low byte of an integer is written, and floats go most significant byte
// first, whatever the target's order: files of service procedures count on both.
int SendC166(int, uint32_t address, bool isFloat, uint32_t value)
{
    uint8_t bytes[ITEM_BYTES];
    for (uint32_t i = 0; i < ITEM_BYTES; i++)
        bytes[i] = static_cast<uint8_t>(value >> (8 * (ITEM_BYTES - 1 - i)));
    return isFloat ? SendBytes(address, bytes, ITEM_BYTES)
                   : SendBytes(address, bytes + ITEM_BYTES - 1, 1);
}

int SendTms(int panel, uint32_t address, bool isFloat, uint32_t value)
{
    return write_addrTMS(panel, address, isFloat ? IEEE_TMS(value) : value);
}

struct Sink {
    uint32_t integerStep;
    uint32_t floatStep;
    int (*send)(int panel, uint32_t address, bool isFloat, uint32_t value);
};
const Sink C166_SINK = {1, ITEM_BYTES, SendC166};
const Sink TMS_SINK = {1, 1, SendTms};

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

// An integer file ends at its first line that is no number; in a float file that is an error.
int LoadItems(int panel, uint32_t address, const Sink &sink, int file, bool isFloat)
{
    char line[LINE_SIZE];
    for (int lineNo = 2; TXFR_RdLine(file, line, LINE_SIZE) >= 0; lineNo++) {
        uint32_t value = 0;
        const NumberForm form = ParseNumber(line, isFloat, &value);
        if (form == NUMBER_NONE && !isFloat)
            return 0;
        if (form != NUMBER_GOOD)
            return MEM_Fail(CON_Format("Line %d of the file is not a value.", lineNo));
        if (sink.send(panel, address, isFloat, value) < 0)
            return -1;
        address += isFloat ? sink.floatStep : sink.integerStep;
    }
    return 0;
}

int LoadFile(int panel, const MemoryFileRequest &request, const Sink &sink)
{
    const int file = TXFR_Open(request.fileName.c_str());
    if (file < 0)
        return FailOpen(request.fileName);
    char line[LINE_SIZE] = "";
    TXFR_RdLine(file, line, LINE_SIZE);
    const std::string form(line, CON_WordLength(line));
    int result = MFL_ERR_FORMAT;
    if (form == "int" || form == "float")
        result = LoadItems(panel, request.address, sink, file, form == "float");
    else
        MEM_Fail("File format error");
    TXFR_Close(file);
    return result;
}

bool ParseFileName(const char **cursor, std::string *fileName)
{
    const size_t length = std::strcspn(*cursor, ",");
    *fileName = WRD_Trim(std::string(*cursor, length));
    *cursor += length;
    return !fileName->empty();
}

} // namespace

bool MFL_ParseStore(const char *text, MemoryFileRequest *request)
{
    if (*text != 'i' && *text != 'f')
        return false;
    request->isFloat = *text == 'f';
    const char *cursor = CON_SkipBlanks(text + 1);
    return CON_ParseAddress(&cursor, &request->address) && CON_SkipComma(&cursor) &&
           ParseFileName(&cursor, &request->fileName) && CON_SkipComma(&cursor) &&
           CON_ParseDecimal(&cursor, &request->count) && *CON_SkipBlanks(cursor) == '\0';
}

bool MFL_ParseLoad(const char *text, MemoryFileRequest *request)
{
    const char *cursor = CON_SkipBlanks(text);
    return CON_ParseAddress(&cursor, &request->address) && CON_SkipComma(&cursor) &&
           ParseFileName(&cursor, &request->fileName) && *cursor == '\0';
}

int store(int, const MemoryFileRequest &request)
{
    PrintMonStr("Store DPM memory...");
    return StoreFile(request, C166_SOURCE);
}

int store_addr(int, const MemoryFileRequest &request)
{
    PrintMonStr("Store memory...\n");
    return StoreFile(request, TMS_SOURCE);
}

int load(int panel, const MemoryFileRequest &request)
{
    PrintMonStr("\nLoad ...");
    return LoadFile(panel, request, C166_SINK);
}

int load_addr(int panel, const MemoryFileRequest &request)
{
    PrintMonStr("\nLoad ...");
    return LoadFile(panel, request, TMS_SINK);
}
