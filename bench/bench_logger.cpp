// The data logger: download against the time its characters take on the wire, listing and
// opening the largest log against writing or reading the bare file, a time stamp against the
// C library's calendar.
#include "bench.h"
#include "calendar/datetime.h"
#include "logger/dlld.h"
#include "logger/dlld_record.h"
#include "logger/log_view.h"

#include <ctime>

namespace {

constexpr int STATION_NO = 1;
constexpr uint32_t ADDRESS = 0x10000, DOWNLOAD_WORDS = 32768, BLOCK_BYTES = 64;
constexpr uint32_t BLOCK_CHARS = 18 + 138; // request and answer
constexpr int ROUNDS = 5;                  // the best counts
constexpr int STAMPS = 1000000;
const char FILE_NAME[] = "bench_logger.tmp";

volatile size_t sink;

// A log full of texts, status stamps, described and undescribed records.
DLLD_Log MakeLog(size_t words, uint32_t address)
{
    DLLD_Log log(8, 0);
    for (uint32_t k = 0; log.size() + 16 < words; k++) {
        const uint16_t type = k % 4 == 0   ? 0x0702
                              : k % 4 == 1 ? 0x0710
                              : k % 4 == 2 ? 0x0720
                                           : 0x0730;
        log.insert(log.end(), {type, static_cast<uint16_t>(k | 1), 0x1929});
        for (uint32_t i = 0; i < 9; i++)
            log.push_back(static_cast<uint16_t>(0x6141 + (k * 7 + i) % 25));
        log.push_back(0);
    }
    log.resize(words);
    log[0] = static_cast<uint16_t>(address & 0xFFFF);
    log[1] = static_cast<uint16_t>(address >> 16);
    log[2] = static_cast<uint16_t>(words & 0xFFFF);
    log[3] = static_cast<uint16_t>(words >> 16);
    log[4] = 0x4F4C;
    log[5] = 0x4F47;
    log[6] = 0x3A53;
    return log;
}

void MeasureDownload()
{
    UCM_Init();
    UCM_UseWin32(1);
    SIM_Target *target = BEN_StartLine(PROTOCOL_MR166, BEN_BAUD);
    const DLLD_Log log = MakeLog(DOWNLOAD_WORDS, ADDRESS);
    SIM_Poke(target, STATION_NO, ADDRESS, log.data(),
             2 * log.size()); // this machine is little-endian
    DLLD_Host host;
    host.station = STATION_NO;
    host.showProgress = [](uint32_t, uint32_t, const char *) { return false; };
    DLLD_SetHost(host);
    DLLD_Log read;
    const double seconds =
        BEN_BestSeconds(1, [&] { sink = static_cast<size_t>(DLLD_ReadLogAt(ADDRESS, &read)); });
    if (read != log)
        BEN_Fail("the download is not the log");
    BEN_PrintWireHead("\nat 115200 baud");
    BEN_PrintWire("download, 64 KiB",
                  BEN_WireSeconds(2.0 * DOWNLOAD_WORDS / BLOCK_BYTES * BLOCK_CHARS), seconds);
    BEN_StopLine(target);
}

void MeasureFiles()
{
    const DLLD_Log log = MakeLog(DLLD_WORDS_MAX, ADDRESS);
    const double listing = BEN_BestSeconds(ROUNDS, [&] { DLLD_SaveStdLogFe(FILE_NAME, log); });
    std::FILE *file = std::fopen(FILE_NAME, "rb");
    std::string text;
    char block[65536];
    for (size_t count; file != nullptr && (count = std::fread(block, 1, sizeof block, file)) > 0;)
        text.append(block, count);
    if (file != nullptr)
        std::fclose(file);
    const double floor = BEN_BestSeconds(ROUNDS, [&] {
        std::FILE *out = std::fopen(FILE_NAME, "wb");
        sink = std::fwrite(text.data(), 1, text.size(), out);
        PLT_SyncFile(out);
        std::fclose(out);
    });
    std::printf("listing, 524288 words floor %6.1f ms  taken %6.1f ms  %5.2f times (%zu bytes)\n",
                1e3 * floor, 1e3 * listing, listing / floor, text.size());
    LOGV_Log opened;
    DLLD_SaveBinLogFe(FILE_NAME, log);
    DLLD_Log bare;
    const double reading = BEN_BestSeconds(ROUNDS, [&] { DLLD_ReadBinLogFe(FILE_NAME, &bare); });
    const double opening = BEN_BestSeconds(ROUNDS, [&] { LOGV_Open(FILE_NAME, &opened); });
    std::printf("opening, 524288 words floor %6.1f ms  taken %6.1f ms  %5.2f times (%zu rows)\n",
                1e3 * reading, 1e3 * opening, opening / reading, opened.rows.size());
    LOGV_View view;
    LOGV_Attach(&view, &opened);
    LOGV_Filter filter = LOGV_MakeFilter();
    const double typing = BEN_BestSeconds(ROUNDS, [&] {
        filter.text.clear();
        LOGV_SetFilter(&view, filter);
        filter.text = "rpm";
        LOGV_SetFilter(&view, filter);
    });
    std::printf("filter taken away and typed  %6.1f ms (%zu lines left)\n", 1e3 * typing,
                view.shown.size());
    std::remove(FILE_NAME);
}

void MeasureStamps()
{
    std::string text;
    const double own = BEN_BestSeconds(ROUNDS, [&] {
        for (uint32_t i = 0; i < STAMPS; i++) {
            DateTime time;
            text.clear();
            CvtAMCBIOS_time(0x0F000000 + i * 11, &time);
            DLLD_AppendTime(time, &text);
            sink = text.size();
        }
    });
    const double peer = BEN_BestSeconds(ROUNDS, [&] {
        for (uint32_t i = 0; i < STAMPS; i++) {
            const time_t when = 1425200000 + static_cast<time_t>(i) * 22;
            tm t;
            char buffer[32];
            gmtime_r(&when, &t);
            sink = std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S", &t);
        }
    });
    std::printf("time stamp to text    libc %6.1f ns   taken %6.1f ns   %5.2f times\n",
                1e9 * peer / STAMPS, 1e9 * own / STAMPS, own / peer);
}

} // namespace

int main()
{
    DLLD_SetRecId(0, 0x20, "Drive;speed:i2 rpm;current:i2/10 A;temp:f4 C;state:u2{stop,ramp}");
    MeasureStamps();
    MeasureFiles();
    MeasureDownload();
    return 0;
}
