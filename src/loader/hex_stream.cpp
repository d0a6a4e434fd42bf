// Both readers walk the file with the same parser; they differ in what stops them. The old
// commands of scripts: codes and order of effects are what those scripts count on.
#include "loader/hex_stream.h"

#include "comm/failures.h"
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "loader/ihex_line.h"
#include "loader/l3_protocol.h"
#include "platform/system.h"
#include "text/txfr.h"

#include <cstdio>

namespace {

std::string cause;

// The reader's place in the file, in percent.
struct Meter {
    long fileBytes = 0;
    int percent = 0;
    LDR_Progress progress;
};

// Of a file without a size no progress is told.
Meter OpenMeter(const std::string &path, const LDR_Progress &progress)
{
    Meter meter;
    meter.progress = progress;
    std::FILE *file = PLT_OpenFile(path, "rb");
    if (file == nullptr)
        return meter;
    if (std::fseek(file, 0, SEEK_END) == 0)
        meter.fileBytes = std::ftell(file);
    std::fclose(file);
    return meter;
}

// True when the user wishes to stop. Told only when the number of percent changes.
bool AdvanceMeter(Meter *meter, int textFile)
{
    const long position = TXFR_GetFilePos(textFile);
    if (position < 0 || meter->fileBytes <= 0) // the last line has closed the file
        return false;
    const double share = static_cast<double>(position) * 100.0;
    const int percent = static_cast<int>(share / static_cast<double>(meter->fileBytes) + 0.5);
    if (percent == meter->percent)
        return false;
    meter->percent = percent;
    return LDR_Step(meter->progress, static_cast<uint32_t>(percent), 100, "");
}

// Keeps the cause for the user, with the block or else the line (0 = neither) it is about.
int Stop(int result, int line, const char *what, const IHEX167_Block *block)
{
    char text[40] = "";
    if (block != nullptr)
        std::snprintf(text, sizeof text, "block at 0x%06X: ", block->address);
    else if (line > 0)
        std::snprintf(text, sizeof text, "line %d: ", line);
    cause = std::string(text) + what;
    return result;
}

int WriteKept(const IHEX167_Block &kept)
{
    if (kept.length == 0 || LD167U_L3CmdWriteBlock(&kept) == 0)
        return 0;
    return Stop(HEX_LOAD_ERR_WRITE, 0, LD167U_GetFaultText().c_str(), &kept);
}

// Until the end of the file. The data of a record waits until the next line has been read.
int WriteLines(int textFile, Meter *meter)
{
    IHEX167_Block block, kept;
    uint32_t base = 0;
    for (int line = 1;; ++line) {
        if (AdvanceMeter(meter, textFile))
            return Stop(HEX_LOAD_ERR_CANCELLED, line, "cancelled by the user", nullptr);
        const int result = IHEX167_Parse_line(&block, textFile, &base);
        if (result == IHEX_FILE_END || result == IHEX_END)
            return WriteKept(kept);
        if (result == IHEX_BASE)
            continue;
        if (result != IHEX_DATA)
            return Stop(HEX_LOAD_ERR_RECORD, line, "not a record of data or base address", nullptr);
        if (!IHEX167_Is_block_ok(&block) || block.address >= IHEX167_ADDRESS_END)
            return Stop(HEX_LOAD_ERR_BLOCK, line, "no data, or an address outside of the target",
                        nullptr);
        // Only now: what stands in front of a bad line has been written, the bad line's data not.
        if (WriteKept(kept) < 0)
            return HEX_LOAD_ERR_WRITE;
        kept = block;
    }
}

// Until the end of the file; each block goes at once, with an answer of its own.
int LoadLines(int textFile, int station, Meter *meter)
{
    IHEX167_Block block;
    uint32_t base = 0;
    for (int line = 1;; ++line) {
        if (AdvanceMeter(meter, textFile))
            return Stop(HEX_LOAD_ERR_CANCELLED, line, "cancelled by the user", nullptr);
        const int result = IHEX167_Parse_line(&block, textFile, &base);
        if (result == IHEX_FILE_END || result == IHEX_END)
            return 0;
        if (result < 0)
            return Stop(HEX_LOAD_ERR_LINE, line, "not a record of data or base address", nullptr);
        if (result == IHEX_DATA && UCM_Write(station, block.address, block.length, block.data) < 0)
            return Stop(HEX_LOAD_ERR_WRITE, line, UCM_LastErrorText().c_str(), &block);
    }
}

} // namespace

int LD167U_L3CmdWriteHexFile(const std::string &path, const LDR_Progress &progress)
{
    cause.clear();
    if (!wMrOpenFlag)
        return Stop(HEX_LOAD_ERR_CLOSED, 0, FAIL_NOT_OPEN, nullptr);
    const int textFile = TXFR_Open(path.c_str());
    if (textFile < 0)
        return Stop(HEX_LOAD_ERR_OPEN, 0, "the file cannot be opened", nullptr);
    // Also where the port is the link's, which waits for less.
    LD167U_SetTimeouts();
    Meter meter = OpenMeter(path, progress);
    const int result = WriteLines(textFile, &meter);
    TXFR_Close(textFile);
    return result;
}

int HEX_LoadByLines(const std::string &path, int station, const LDR_Progress &progress)
{
    cause.clear();
    int result = 0;
    // Acknowledgements that came more than once may stand for blocks that never arrived: the
    // whole file goes again.
    const int proven = UCM_MakeProven([&] {
        const int textFile = TXFR_Open(path.c_str());
        if (textFile < 0)
            return result = Stop(HEX_LOAD_ERR_OPEN, 0, "the file cannot be opened", nullptr);
        Meter meter = OpenMeter(path, progress);
        result = LoadLines(textFile, station, &meter);
        TXFR_Close(textFile);
        return result;
    });
    if (result == 0 && proven < 0)
        return Stop(HEX_LOAD_ERR_WRITE, 0, UCM_LastErrorText().c_str(), nullptr);
    return result;
}

const std::string &HEX_GetLoadCause()
{
    return cause;
}
