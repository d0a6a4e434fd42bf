// Stretches of target memory as raw bytes or hexadecimal text. A save writes what is proven
// stretch by stretch; the file takes its name only when it is whole.
#include <algorithm>
#include <cstdio>
#include <vector>

#include "comm/sysaddr.h"
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/commands/transfer.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "text/words.h"

namespace {

constexpr uint32_t BLOCK_BYTES = 1024; // what the meter counts as a block
constexpr uint32_t HEX_LINE_BYTES = 16;

int Resolve(ScrPar *par, const char *message, ArrayRequest *request)
{
    // ExecPar has the address below the limit, so that the difference does not wrap.
    if (!ExecPar(par, 1) || par[1].value > ADDR_LIMIT - par[0].value)
        return SCR_Fail(message);
    request->address = par[0].value;
    request->count = par[1].value;
    return 0;
}

int FailTransfer(const TransferReport &report, const char *label)
{
    std::string text = "communication failure. (" + report.cause + ")";
    if (report.result == TRANSFER_TAKER)
        text = "file write failure.";
    else if (report.result == TRANSFER_CANCELLED)
        text = "cancelled by the user.";
    return SCR_Fail(TXT_Format("%s: %s", label, text.c_str()));
}

// Lines end where the address is a multiple of 16, so that only the first and the last
// may be short.
bool PutHex(std::FILE *file, uint32_t start, uint32_t address, const uint8_t *bytes, uint32_t count)
{
    for (uint32_t i = 0; i < count; i++, address++) {
        if (address == start || address % HEX_LINE_BYTES == 0)
            std::fprintf(file, "%06X ", address);
        std::fprintf(file, "%02X", bytes[i]);
        if ((address + 1) % HEX_LINE_BYTES == 0)
            std::fputs("\r\n", file);
    }
    return std::ferror(file) == 0;
}

typedef bool (*BlockWriter)(std::FILE *file, uint32_t start, uint32_t address, const uint8_t *bytes,
                            uint32_t count);

bool PutRaw(std::FILE *file, uint32_t, uint32_t, const uint8_t *bytes, uint32_t count)
{
    return std::fwrite(bytes, 1, count, file) == count;
}

int SaveMemory(const ArrayRequest &request, const char *fileName, const char *label,
               BlockWriter write)
{
    SafeFile file;
    if (PLT_BeginSave(&file, fileName, "wb") < 0)
        return SCR_Fail(TXT_Format("%s: Can't open file '%s' for write.", label, fileName));
    const TransferPlan plan = {request.address, request.count, BLOCK_BYTES, SCR_METER_BINARY};
    TransferReport report =
        SCR_ReadTransfer(plan, [&](uint32_t address, const uint8_t *bytes, uint32_t count) {
            return write(file.file, request.address, address, bytes, count);
        });
    // A part of the memory would pass for all of it: the file that was there stays.
    if (report.result != TRANSFER_DONE)
        PLT_CancelSave(&file);
    else if (PLT_CommitSave(&file) < 0)
        report.result = TRANSFER_TAKER;
    return report.result != TRANSFER_DONE ? FailTransfer(report, label) : 0;
}

// At most `limit` bytes of the file and whether it holds more; false when it cannot be read.
bool ReadFile(const char *fileName, uint32_t limit, std::vector<uint8_t> *bytes, bool *isLonger)
{
    std::FILE *file = nullptr;
    if (PLT_OpenForReading(fileName, PLT_FILE_ANY_SIZE, &file) != PLT_FILE_OK)
        return false;
    uint8_t block[BLOCK_BYTES];
    for (;;) {
        // Never more than asked for: the file may be of any size.
        const size_t room = std::min(sizeof block, limit - bytes->size());
        const size_t count = std::fread(block, 1, room, file);
        bytes->insert(bytes->end(), block, block + count);
        if (count == 0)
            break;
    }
    *isLonger = std::fgetc(file) != EOF; // one character tells, however large the file is
    const bool isGood = std::ferror(file) == 0;
    std::fclose(file);
    return isGood;
}

} // namespace

int SCR_BinSave(ScrPar *par)
{
    ArrayRequest request;
    if (Resolve(par, "BinSave: Invalid script parameters.", &request) < 0)
        return -1;
    return SaveMemory(request, par[2].text, "BinSave", PutRaw);
}

int SCR_XSave(ScrPar *par)
{
    ArrayRequest request;
    if (Resolve(par, "XSave: Invalid script parameters.", &request) < 0)
        return -1;
    return SaveMemory(request, par[2].text, "XSave", PutHex);
}

int SCR_BinLoad(ScrPar *par)
{
    ArrayRequest request;
    if (Resolve(par, "BinLoad: invalid script parameters.", &request) < 0)
        return -1;
    std::vector<uint8_t> bytes;
    bool isLonger = false;
    if (!ReadFile(par[2].text, request.count, &bytes, &isLonger))
        return SCR_Fail(TXT_Format("BinLoad: Can't open file '%s' for reading.", par[2].text));
    // The length is a bound: what there is gets written, and the user is told.
    if (isLonger || bytes.size() < request.count)
        CON_Print("Warning: the file is %s than %u bytes.", isLonger ? "longer" : "shorter",
                  request.count);
    const TransferPlan plan = {request.address, static_cast<uint32_t>(bytes.size()), BLOCK_BYTES,
                               SCR_METER_BINARY};
    // Blocks in front of a failure stay written; the text says how far it came.
    const TransferReport report = SCR_WriteTransfer(plan, bytes.data());
    if (report.result != TRANSFER_DONE) {
        CON_Print("%s.", SCR_WrittenText(report, plan.count, 1).c_str());
        return FailTransfer(report, "BinLoad");
    }
    CON_Print("%u bytes written.", report.moved);
    return 0;
}
