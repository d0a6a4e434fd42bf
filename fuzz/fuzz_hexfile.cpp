// HEX files, whole and line by line. What the checker lets through must lie within the
// target and without overlaps; the reader of lines must come to an end with a code.
#include "loader/hex_file.h"
#include "scratch_folder.h"
#include "text/txfr.h"

namespace {

void ReadLines(const std::string &path)
{
    const int handle = TXFR_Open(path.c_str());
    IHEX167_Block block;
    uint32_t base = 0;
    for (int result = 0; handle >= 0 && result != IHEX_FILE_END;) {
        result = IHEX167_Parse_line(&block, handle, &base);
        FUZ_Check(block.length <= IHEX167_DATA_MAX && (result == IHEX_DATA || block.length == 0));
    }
}

void CheckAccepted(const HEX_File &file)
{
    uint64_t end = 0;
    size_t bytes = 0;
    for (const HEX_Record &record : file.records) {
        FUZ_Check(record.length > 0 && record.address >= end);
        FUZ_Check(record.dataAt + record.length <= file.data.size());
        end = uint64_t{record.address} + record.length;
    }
    for (const HEX_Range &range : file.ranges)
        bytes += range.last - range.first + 1;
    FUZ_Check(end <= IHEX167_ADDRESS_END && bytes == file.data.size() && bytes > 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string path = FUZ_Folder() + "/a.hex";
    FUZ_WriteFile("a.hex", std::string(reinterpret_cast<const char *>(data), size));
    HEX_File file;
    const int result = HEX_Read(path, &file);
    FUZ_Check((result == 0) == (file.fatal == 0) && file.problems.size() <= HEX_PROBLEMS_MAX);
    ReadLines(path);
    if (result == 0)
        CheckAccepted(file);
    return 0;
}
