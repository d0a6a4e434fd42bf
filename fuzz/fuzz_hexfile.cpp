// HEX files, whole and line by line. What the checker lets through must lie within the
// target, without overlaps, and survive being written and read again.
#include "loader/hex_file.h"
#include "text/txfr.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

const std::string folder = std::filesystem::temp_directory_path().string();
const std::string inPath = folder + "/fuzz_hexfile." + std::to_string(getpid());
const std::string outPath = inPath + ".out";

void Require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

// The reader of lines knows nothing of the file: it must come to an end with a code.
size_t CountLineBytes()
{
    const int handle = TXFR_Open(inPath.c_str());
    IHEX167_Block block;
    uint32_t base = 0;
    size_t bytes = 0;
    for (int result = 0; handle >= 0 && result != IHEX_FILE_END;) {
        result = IHEX167_Parse_line(&block, handle, &base);
        Require(block.length <= IHEX167_DATA_MAX && (result == IHEX_DATA || result != 0));
        bytes += result == IHEX_DATA ? block.length : 0;
    }
    return bytes;
}

void CheckAccepted(const HEX_File &file)
{
    uint64_t end = 0;
    for (const HEX_Record &record : file.records) {
        Require(record.length > 0 && record.address >= end);
        end = uint64_t{record.address} + record.length;
        Require(record.dataAt + record.length <= file.data.size());
    }
    Require(end <= IHEX167_ADDRESS_END && !file.ranges.empty());
}

void CheckSaved(const HEX_File &file)
{
    const HEX_Range &range = file.ranges.front();
    std::string bytes;
    for (const HEX_Record &record : file.records)
        if (record.address <= range.last)
            bytes.append(reinterpret_cast<const char *>(&file.data[record.dataAt]), record.length);
    Require(bytes.size() == range.last - range.first + 1);
    HEX_File again;
    Require(HEX_Save(outPath, range.first, reinterpret_cast<const uint8_t *>(bytes.data()),
                     bytes.size()) == 0);
    Require(HEX_Read(outPath, &again) == 0 && again.ranges.size() == 1);
    Require(again.ranges[0].first == range.first && again.data.size() == bytes.size());
    Require(std::memcmp(again.data.data(), bytes.data(), bytes.size()) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::FILE *out = std::fopen(inPath.c_str(), "wb");
    Require(out != nullptr);
    std::fwrite(data, 1, size, out);
    std::fclose(out);
    HEX_File file;
    const int result = HEX_Read(inPath, &file);
    Require((result == 0) == (file.fatal == 0) && file.problems.size() <= HEX_PROBLEMS_MAX);
    for (const HEX_Problem &problem : file.problems)
        Require(!HEX_FormatProblem(problem).empty());
    CountLineBytes();
    if (result == 0)
        CheckAccepted(file);
    if (result == 0 && size % 8 == 0) // saving waits for the disk
        CheckSaved(file);
    return 0;
}
