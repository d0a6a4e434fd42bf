// Reads past bad lines: a user who has to mend a file wants to see all of its faults at
// once. Longer lines are read here than by the line reader, since whole files may hold
// records of up to 255 bytes.
#include "loader/hex_file.h"

#include "platform/safe_file.h"
#include "text/txfr.h"
#include "text/words.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int LONG_LINE_SIZE = 600; // a record of 255 bytes has 521 characters
constexpr uint32_t TYPE_START_SEGMENT = 3, TYPE_START_LINEAR = 5;
constexpr uint32_t SAVED_RECORD_BYTES = 16;

void AddProblem(HEX_File *file, int line, bool isFatal, const std::string &text)
{
    // Counted also when it is not kept: "and 3000 more" is worth knowing.
    ++(isFatal ? file->fatal : file->remarks);
    if (file->problems.size() < HEX_PROBLEMS_MAX)
        file->problems.push_back({line, isFatal, text});
}

// What is wrong with a line, for whoever has to mend it: what stands there and what should.
std::string Describe(int result, const char *line, size_t length)
{
    if (length == 0)
        return "empty line";
    uint32_t count = 0;
    switch (result) {
    case IHEX_ERR_LINE:
        return "no record: the line does not begin with \":\"";
    case IHEX_ERR_LENGTH:
        IHEX167_GetUHEXN(line + 1, 2, &count);
        return TXT_Format("%u characters, but a record of %u bytes has %u",
                          static_cast<unsigned>(length), count, 11 + 2 * count);
    case IHEX_ERR_SUM: {
        // The digits are good, or the line would have been refused for them.
        uint32_t sum = 0, byte = 0;
        for (size_t i = 1; i + 4 <= length; i += 2) {
            IHEX167_GetUHEXN(line + i, 2, &byte);
            sum += byte;
        }
        IHEX167_GetUHEXN(line + length - 2, 2, &byte);
        const uint32_t wanted = (0x100u - (sum & 0xFFu)) & 0xFFu;
        // The parser has one code for both.
        if (wanted == byte)
            return "a base address record must hold 2 bytes";
        return TXT_Format("wrong check sum %02X, should be %02X", byte, wanted);
    }
    case IHEX_ERR_END:
        return "end record with data";
    case IHEX_ERR_UNKNOWN:
        return TXT_Format("unknown record type %.2s", line + 7);
    default:
        break;
    }
    if (std::any_of(line, line + length, [](char c) { return c >= 'a' && c <= 'f'; }))
        return "lower-case hexadecimal digit";
    return "not a hexadecimal digit";
}

// One line into the file. False at the end record.
bool AddLine(HEX_File *file, const std::string &text, int line, uint32_t *base)
{
    IHEX167_Block block;
    const int result = IHEX167_Parse_text(&block, text.c_str(), text.size(), base);
    if (result == IHEX_END)
        return false;
    if (result == IHEX_BASE)
        return true;
    if (result != IHEX_DATA) {
        // An address at which a program starts means nothing to a flash.
        uint32_t type = 0;
        if (result == IHEX_ERR_UNKNOWN && IHEX167_GetUHEXN(text.c_str() + 7, 2, &type) == 0 &&
            (type == TYPE_START_SEGMENT || type == TYPE_START_LINEAR))
            AddProblem(file, line, false, "start address record, not needed for a flash");
        else
            AddProblem(file, line, true, Describe(result, text.c_str(), text.size()));
        return true;
    }
    // A record without data changes nothing but is no fault of the file either.
    if (block.length == 0) {
        AddProblem(file, line, false, "a record without data");
        return true;
    }
    if (block.address + block.length > IHEX167_ADDRESS_END || block.address >= IHEX167_ADDRESS_END)
        AddProblem(file, line, true,
                   TXT_Format("address 0x%X is outside of the target", block.address));
    file->records.push_back(
        {block.address, static_cast<uint32_t>(file->data.size()), block.length, line});
    file->data.insert(file->data.end(), block.data, block.data + block.length);
    return true;
}

// All lines up to the end record, or to where reading on would be of no use.
void ReadLines(int handle, HEX_File *file)
{
    uint32_t base = 0;
    int line = 0;
    char buffer[LONG_LINE_SIZE];
    for (;;) {
        const int length = TXFR_RdLine(handle, buffer, LONG_LINE_SIZE);
        // The reader has closed the file by itself then.
        if (length < 0) {
            AddProblem(file, line, true, "the end record is missing: the file may be cut off");
            return;
        }
        ++line;
        if (TXFR_IsBrokenLine(handle) == 1) {
            AddProblem(file, line, true, "line too long for any record; reading ends here");
            break;
        }
        if (!AddLine(file, std::string(buffer, static_cast<size_t>(length)), line, &base))
            break;
        // More data than there are addresses must overlap: reading on would only eat memory.
        if (file->data.size() > IHEX167_ADDRESS_END) {
            AddProblem(file, line, true,
                       "more data than the target has addresses; reading ends here");
            break;
        }
    }
    TXFR_Close(handle);
}

// Sorts the records, finds overlaps and joins what touches to ranges.
void Arrange(HEX_File *file)
{
    std::stable_sort(
        file->records.begin(), file->records.end(),
        [](const HEX_Record &a, const HEX_Record &b) { return a.address < b.address; });
    const HEX_Record *highest = nullptr; // of those before, the one that reaches highest
    // A short record may lie within a long one that began earlier: its end is not the range's.
    for (const HEX_Record &record : file->records) {
        const uint32_t last = record.address + (record.length - 1u);
        if (highest == nullptr || record.address > file->ranges.back().last + 1u) {
            file->ranges.push_back({record.address, last});
            highest = &record;
            continue;
        }
        HEX_Range &range = file->ranges.back();
        if (record.address <= range.last)
            AddProblem(file, std::max(record.line, highest->line), true,
                       TXT_Format("0x%06X is also in line %d", record.address,
                                  std::min(record.line, highest->line)));
        if (last > range.last) {
            range.last = last;
            highest = &record;
        }
    }
}

} // namespace

int HEX_Read(const std::string &path, HEX_File *file)
{
    *file = HEX_File();
    file->path = path;
    const int handle = TXFR_Open(path.c_str());
    if (handle < 0)
        return HEX_ERR_OPEN;
    ReadLines(handle, file);
    Arrange(file);
    // By line again: overlaps were found in the order of addresses.
    if (file->data.empty())
        AddProblem(file, 0, true, "the file holds no data");
    std::stable_sort(file->problems.begin(), file->problems.end(),
                     [](const HEX_Problem &a, const HEX_Problem &b) { return a.line < b.line; });
    return file->fatal > 0 ? HEX_ERR_PROBLEMS : 0;
}

int HEX_IsUnchanged(const HEX_File &file)
{
    // Data and not the time of the file: a copy that was saved again is the same file.
    HEX_File now;
    if (HEX_Read(file.path, &now) < 0 || now.data != file.data ||
        now.records.size() != file.records.size())
        return 0;
    return std::equal(now.records.begin(), now.records.end(), file.records.begin(),
                      [](const HEX_Record &a, const HEX_Record &b) {
                          return a.address == b.address && a.length == b.length &&
                                 a.dataAt == b.dataAt;
                      })
               ? 1
               : 0;
}

void HEX_GetBlock(const HEX_File &file, const HEX_Record &record, IHEX167_Block *block)
{
    block->address = record.address;
    block->length = record.length;
    std::memcpy(block->data, file.data.data() + record.dataAt, record.length);
}

std::string HEX_FormatProblem(const HEX_Problem &problem)
{
    return problem.line > 0 ? TXT_Format("line %d: ", problem.line) + problem.text : problem.text;
}

std::string HEX_FormatRange(const HEX_Range &range)
{
    return TXT_Format("0x%06X-0x%06X, %u bytes", range.first, range.last,
                      range.last - range.first + 1);
}

int HEX_Save(const std::string &path, uint32_t address, const uint8_t *bytes, size_t count)
{
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") < 0)
        return -1;
    const auto writeRecord = [&safe](uint32_t offset, uint32_t type, const uint8_t *data,
                                     uint32_t length) {
        uint32_t sum = length + (offset >> 8) + offset + type;
        std::fprintf(safe.file, ":%02X%04X%02X", length, offset, type);
        for (uint32_t i = 0; i < length; ++i) {
            std::fprintf(safe.file, "%02X", data[i]);
            sum += data[i];
        }
        std::fprintf(safe.file, "%02X\r\n", (0x100u - (sum & 0xFFu)) & 0xFFu);
    };
    uint32_t base = UINT32_MAX; // none yet: the first is written even where it is 0
    for (size_t at = 0; at < count;) {
        const uint32_t here = address + static_cast<uint32_t>(at);
        if (here >> 16 != base) {
            base = here >> 16;
            const uint8_t high[2] = {static_cast<uint8_t>(base >> 8), static_cast<uint8_t>(base)};
            writeRecord(0, 4, high, 2);
        }
        const uint32_t room = SAVED_RECORD_BYTES - here % SAVED_RECORD_BYTES;
        const auto length = static_cast<uint32_t>(std::min<size_t>(room, count - at));
        writeRecord(here & 0xFFFFu, 0, bytes + at, length);
        at += length;
    }
    writeRecord(0, 1, nullptr, 0);
    return PLT_CommitSave(&safe);
}
