// `l3write` of 64 KiB in records of 32 bytes over a paced line against the limit of the wire,
// the same with erase and verify against the bare writing, and the checker on 1 MiB of HEX
// text against reading its characters.
#include "bench.h"
#include "comm/mr166_link.h"
#include "loader/hex_file.h"
#include "loader/hex_stream.h"
#include "loader/l3_protocol.h"
#include "loader/program.h"

namespace {

constexpr uint32_t BYTES = 64 * 1024, RECORD_BYTES = 32, FLASH_ADDRESS = 0x10000;
constexpr uint32_t WRITE_CHARS = 5 + RECORD_BYTES + 1; // head, data, the answer's sum
constexpr int ROUNDS = 3;
constexpr int PARSE_ROUNDS = 20;
constexpr size_t HEX_TEXT_BYTES = 1024 * 1024;
const char FILE_NAME[] = "bench_loader.hex";

// Records of 32 bytes that are neither erased nor all alike. Length of the file.
size_t MakeFile(uint32_t records)
{
    std::FILE *file = std::fopen(FILE_NAME, "wb");
    if (file == nullptr)
        BEN_Fail("no file can be written");
    for (uint32_t i = 0; i < records; ++i) {
        const uint32_t address = FLASH_ADDRESS + i * RECORD_BYTES, high = address >> 16;
        if (address % 0x10000 == 0)
            std::fprintf(file, ":02000004%04X%02X\r\n", high,
                         (0u - 6u - high - (high >> 8)) & 0xFFu);
        uint32_t sum = RECORD_BYTES + (address >> 8 & 0xFF) + (address & 0xFF);
        std::fprintf(file, ":20%04X00", address & 0xFFFFu);
        for (uint32_t k = 0; k < RECORD_BYTES; ++k) {
            const uint32_t byte = (address + 7 * k) & 0xFF;
            std::fprintf(file, "%02X", byte);
            sum += byte;
        }
        std::fprintf(file, "%02X\r\n", (0u - sum) & 0xFFu);
    }
    std::fputs(":00000001FF\r\n", file);
    const long length = std::ftell(file);
    std::fclose(file);
    return static_cast<size_t>(length);
}

void MeasureWriting()
{
    SIM_Options options;
    options.baud = BEN_BAUD;
    options.loader = true;
    SIM_Target *target = BEN_StartTarget(options);
    MrASC_UseWin32(1);
    if (MrASC_Open(BEN_PORT, BEN_BAUD) != 0)
        BEN_Fail("the port could not be opened");
    MakeFile(BYTES / RECORD_BYTES);
    const double limit = BEN_WireSeconds(BYTES / RECORD_BYTES * WRITE_CHARS);
    const double writing = BEN_BestSeconds(ROUNDS, [] {
        if (LD167U_L3CmdWriteHexFile(FILE_NAME) != 0)
            BEN_Fail(HEX_GetLoadCause());
    });
    const double verified = BEN_BestSeconds(ROUNDS, [] {
        LDR_Job job;
        if (LDR_Prepare(&job, FILE_NAME) != 0 || LDR_RunOnPort(&job, false, LDR_Progress()) != 0)
            BEN_Fail(LDR_GetResultText(job));
    });
    std::printf("64 KiB at 115200, records of 32: wire %.3f s\n", limit);
    std::printf("  l3write              %8.3f s %7.2f %% of the wire's speed\n", writing,
                100 * limit / writing);
    std::printf("  erase, write, verify %8.3f s %7.2f times l3write\n", verified,
                verified / writing);
    MrASC_Close();
    SIM_Stop(target);
}

void MeasureChecking()
{
    const size_t length = MakeFile(HEX_TEXT_BYTES / (2 * RECORD_BYTES + 13));
    const double checking = BEN_BestSeconds(PARSE_ROUNDS, [] {
        HEX_File file;
        if (HEX_Read(FILE_NAME, &file) != 0)
            BEN_Fail(HEX_FormatProblem(file.problems[0]));
    });
    std::vector<char> text(length);
    uint32_t sum = 0;
    const double reading = BEN_BestSeconds(PARSE_ROUNDS, [&] {
        std::FILE *file = std::fopen(FILE_NAME, "rb");
        const size_t got = std::fread(text.data(), 1, text.size(), file);
        std::fclose(file);
        for (size_t i = 0; i < got; ++i)
            sum += static_cast<uint32_t>(text[i]);
    });
    std::printf(
        "%zu characters of HEX: checked in %.2f ms, %.1f times reading and adding them (%u)\n",
        length, 1e3 * checking, checking / reading, sum & 1u);
}

} // namespace

int main()
{
    MeasureWriting();
    MeasureChecking();
    std::remove(FILE_NAME);
    return 0;
}
