#include "sampler/recorder.h"

#include "calendar/datetime.h"
#include "platform/plain_file.h"
#include "platform/system.h"
#include "text/words.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int64_t SECOND_US = 1000000;
constexpr int64_t UTC_2000_S = 946684800; // 1 January 2000 in seconds since 1970
constexpr int64_t CLOCK_SET_MS = 2000;    // the system's clock was set when it is off by more
constexpr int ZONE_STEP_MINUTES = 15;
constexpr size_t BUFFER_BYTES = 65536;
constexpr size_t NAMES_SHOWN = 3; // of items that failed together
constexpr int SAME_NAMES_MAX = 1000;

// --- times ---------------------------------------------------------------------------------
DateTime DateOf(int64_t utcSeconds)
{
    DateTime date;
    InvWrkCET2000(static_cast<uint32_t>(std::max<int64_t>(utcSeconds - UTC_2000_S, 1)), &date);
    return date;
}

std::string IsoSecond(int64_t utcSeconds)
{
    const DateTime date = DateOf(utcSeconds);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", date.year, date.month,
                  date.day, date.hour, date.minute, date.second);
    return text;
}

// Local time against UTC, from what the two clocks say now.
int ZoneMinutes(int64_t utcMs)
{
    PLT_Date local;
    PLT_LocalTime(&local);
    DateTime date;
    date.year = local.year;
    date.month = local.month;
    date.day = local.day;
    date.hour = local.hour;
    date.minute = local.minute;
    date.second = local.second;
    date.kind = DTTM_DECODED;
    const double minutes =
        (static_cast<double>(WrkCET2000(&date)) - static_cast<double>(utcMs / 1000 - UTC_2000_S)) /
        60;
    const double steps = minutes / ZONE_STEP_MINUTES;
    const int rounded = static_cast<int>(steps < 0 ? steps - 0.5 : steps + 0.5);
    return std::abs(rounded) <= 64 ? rounded * ZONE_STEP_MINUTES : 0;
}

std::string ZoneText(int minutes)
{
    char text[16];
    std::snprintf(text, sizeof text, "%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                  std::abs(minutes) % 60);
    return text;
}

void AppendMilliseconds(std::string *text, int64_t ms)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, ".%03d", static_cast<int>(ms % 1000));
    *text += digits;
}

std::string IsoUtc(int64_t utcMs)
{
    std::string text = IsoSecond(utcMs / 1000);
    AppendMilliseconds(&text, utcMs);
    return text + "Z";
}

// "2026-11-21T17:01:14.123+01:00". The part down to the second is kept: rows come fast.
void AppendIsoLocal(REC_Recorder *recorder, int64_t utcMs)
{
    const int64_t second = utcMs / 1000;
    if (recorder->secondUtc != second) {
        recorder->secondText = IsoSecond(second + int64_t{recorder->offsetMinutes} * 60);
        recorder->secondUtc = second;
    }
    recorder->buffer += recorder->secondText;
    AppendMilliseconds(&recorder->buffer, utcMs);
    recorder->buffer += recorder->zoneText;
}

void AppendSeconds(std::string *text, int64_t us)
{
    char digits[40];
    const long long whole = us / SECOND_US, part = std::llabs(us % SECOND_US);
    std::snprintf(digits, sizeof digits, "%s%lld.%06lld", us < 0 && whole == 0 ? "-" : "", whole,
                  part);
    *text += digits;
}

int64_t UtcMsAt(const REC_Recorder &recorder, int64_t timeUs)
{
    return recorder.originUtcMs + (timeUs - recorder.originUs) / 1000;
}

// --- the file ------------------------------------------------------------------------------
int StopByFault(REC_Recorder *recorder)
{
    const std::string cause = std::strerror(errno);
    std::fclose(recorder->file);
    recorder->file = nullptr;
    recorder->isOpen = false;
    recorder->buffer.clear();
    recorder->problem =
        "Recording stopped: " + recorder->path + ": " + cause + ". What was recorded is kept.";
    return REC_ERR_WRITE;
}

int WriteBuffer(REC_Recorder *recorder)
{
    const size_t size = recorder->buffer.size();
    errno = 0;
    if (std::fwrite(recorder->buffer.data(), 1, size, recorder->file) != size)
        return StopByFault(recorder);
    recorder->buffer.clear();
    return 0;
}

int AddText(REC_Recorder *recorder, size_t sizeBefore)
{
    recorder->bytes += recorder->buffer.size() - sizeBefore;
    return recorder->buffer.size() >= BUFFER_BYTES ? WriteBuffer(recorder) : 0;
}

std::string HeadLine(const std::string &key, const std::string &value)
{
    return "; " + key + ", " + WRD_Visible(value) + "\r\n";
}

std::string AddressText(const SMP_Item &item)
{
    if (item.address == SMP_NO_ADDRESS)
        return "";
    char text[24];
    std::snprintf(text, sizeof text, "0x%06X", static_cast<unsigned>(item.address));
    return text;
}

// What stands above the rows: with it the file can be understood alone.
std::string Head(const REC_Recorder &recorder)
{
    const int period = recorder.options.periodMs;
    std::string head = "; Vireo2 recording 1\r\n";
    head += HeadLine("start", IsoUtc(recorder.startUtcMs));
    std::string local =
        IsoSecond(recorder.startUtcMs / 1000 + int64_t{recorder.offsetMinutes} * 60);
    AppendMilliseconds(&local, recorder.startUtcMs);
    head += HeadLine("local", local + recorder.zoneText);
    head += HeadLine("period",
                     period == 0 ? "as fast as the line allows" : std::to_string(period) + " ms");
    head += HeadLine("part", std::to_string(recorder.files + 1));
    std::string columns = recorder.options.hasDates ? "time,iso" : "time";
    for (size_t i = 0; i < recorder.items.size(); ++i) {
        const SMP_Item &item = recorder.items[i];
        const std::string number = std::to_string(i + 1) + ", ";
        head += HeadLine("item", number + item.name);
        head += HeadLine("type", number + SMP_TypeText(item));
        head += HeadLine("address", number + AddressText(item));
        head += HeadLine("station", number + std::to_string(item.station));
        if (!item.unit.empty())
            head += HeadLine("unit", number + item.unit);
        columns += "," + WRD_QuoteCsv(WRD_Visible(item.name));
    }
    return head + columns + "\r\n";
}

// "run.csv" becomes "run-20261121-170114.csv", and "...-2.csv" when that is there already.
std::string StampedPath(const REC_Recorder &recorder, int64_t nowUs)
{
    const std::string &path = recorder.options.path;
    const size_t slash = path.find_last_of("/\\");
    const size_t dot = path.rfind('.');
    const bool hasDot = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    const std::string base = hasDot ? path.substr(0, dot) : path;
    const DateTime date =
        DateOf(UtcMsAt(recorder, nowUs) / 1000 + int64_t{recorder.offsetMinutes} * 60);
    char stamp[40];
    std::snprintf(stamp, sizeof stamp, "-%04d%02d%02d-%02d%02d%02d", date.year, date.month,
                  date.day, date.hour, date.minute, date.second);
    const std::string end = hasDot ? path.substr(dot) : "";
    std::string stamped = base + stamp + end;
    for (int number = 2; PLF_Exists(stamped) && number < SAME_NAMES_MAX; ++number)
        stamped = base + stamp + "-" + std::to_string(number) + end;
    return stamped;
}

int OpenForWriting(REC_Recorder *recorder, bool mayReplace)
{
    std::string real;
    const std::string &path = recorder->path;
    if (PLT_ResolveFile(path, &real) != 0) {
        recorder->problem = path + " is a folder, device or pipe.";
        return REC_ERR_OPEN;
    }
    if (!mayReplace && PLF_Exists(path)) {
        recorder->problem = path + " exists.";
        return REC_ERR_EXISTS;
    }
    errno = 0;
    recorder->file = PLT_OpenFile(path, "wb");
    if (recorder->file != nullptr)
        return 0;
    recorder->problem = path + ": " + std::strerror(errno) + ".";
    return REC_ERR_OPEN;
}

int CreateFile(REC_Recorder *recorder, const std::string &path, bool mayReplace, int64_t nowUs)
{
    recorder->path = path;
    recorder->file = recorder->options.file;
    recorder->options.file = nullptr; // another file is the recorder's own
    const int opened = recorder->file == nullptr ? OpenForWriting(recorder, mayReplace) : 0;
    if (opened != 0)
        return opened;
    recorder->isOpen = true;
    recorder->fileUs = nowUs;
    recorder->bytes = 0;
    recorder->isAllFailed = false;
    recorder->states.assign(recorder->items.size(), SMP_GOOD);
    recorder->buffer = Head(*recorder);
    ++recorder->files;
    if (AddText(recorder, 0) != 0)
        return REC_ERR_WRITE;
    return REC_Flush(recorder, nowUs);
}

int EndFile(REC_Recorder *recorder)
{
    if (WriteBuffer(recorder) != 0)
        return REC_ERR_WRITE;
    if (std::fflush(recorder->file) != 0)
        return StopByFault(recorder);
    recorder->isOpen = false;
    errno = 0;
    std::FILE *file = recorder->file;
    recorder->file = nullptr;
    if (std::fclose(file) == 0)
        return 0;
    recorder->problem = recorder->path + ": " + std::strerror(errno) + ".";
    return REC_ERR_WRITE;
}

int NextFile(REC_Recorder *recorder, int64_t nowUs)
{
    const int result = EndFile(recorder);
    return result != 0 ? result : CreateFile(recorder, StampedPath(*recorder, nowUs), false, nowUs);
}

bool IsRotating(const REC_Options &options)
{
    return options.rotateBytes != 0 || options.rotateMinutes != 0;
}

bool IsFull(const REC_Recorder &recorder, int64_t timeUs)
{
    const REC_Options &options = recorder.options;
    const int64_t ageUs = timeUs - recorder.fileUs;
    return (options.rotateBytes != 0 && recorder.bytes >= options.rotateBytes) ||
           (options.rotateMinutes != 0 && ageUs >= int64_t{options.rotateMinutes} * 60 * SECOND_US);
}

// --- rows ----------------------------------------------------------------------------------
// Items that have begun to fail, those with the same reason in one line.
int NoteFailures(REC_Recorder *recorder, int64_t timeUs, const SMP_Sample *samples,
                 const SMP_Store &store)
{
    std::vector<uint8_t> isTold(recorder->items.size(), 0);
    for (size_t i = 0; i < recorder->items.size(); ++i) {
        const uint8_t state = samples[i].state;
        if (state == SMP_GOOD || state == recorder->states[i] || isTold[i])
            continue;
        std::string names;
        size_t count = 0;
        for (size_t k = i; k < recorder->items.size(); ++k) {
            if (samples[k].state != state || recorder->states[k] == state)
                continue;
            isTold[k] = 1;
            if (++count <= NAMES_SHOWN)
                names += (count > 1 ? ", " : "") + recorder->items[k].name;
        }
        if (count > NAMES_SHOWN)
            names += " and " + std::to_string(count - NAMES_SHOWN) + " more";
        if (REC_PutNote(recorder, timeUs, "failed", names + ": " + SST_ReasonText(store, state)) !=
            0)
            return REC_ERR_WRITE;
    }
    for (size_t i = 0; i < recorder->items.size(); ++i)
        recorder->states[i] = samples[i].state;
    return 0;
}

// The system's clock may be set while a recording runs. Times go on by the steady clock; dates
// follow, and a line says so.
int FollowClock(REC_Recorder *recorder, int64_t nowUs)
{
    if (!recorder->options.hasDates)
        return 0;
    const int64_t isMs = recorder->options.utcMs();
    const int64_t offMs = isMs - UtcMsAt(*recorder, nowUs);
    if (std::llabs(offMs) <= CLOCK_SET_MS)
        return 0;
    recorder->originUtcMs += offMs;
    recorder->secondUtc = -1;
    char text[80];
    std::snprintf(text, sizeof text, "the system's clock is %+.1f s off: dates follow it",
                  static_cast<double>(offMs) / 1000);
    return REC_PutNote(recorder, nowUs, "clock", text);
}

} // namespace

int REC_Open(REC_Recorder *recorder, const REC_Options &options, const std::vector<SMP_Item> &items,
             int64_t nowUs)
{
    *recorder = REC_Recorder();
    recorder->options = options;
    recorder->items = items;
    recorder->originUs = nowUs;
    recorder->originUtcMs = recorder->startUtcMs = options.utcMs();
    recorder->offsetMinutes = ZoneMinutes(recorder->startUtcMs);
    recorder->zoneText = ZoneText(recorder->offsetMinutes);
    const std::string path =
        IsRotating(options) || options.isStamped ? StampedPath(*recorder, nowUs) : options.path;
    return CreateFile(recorder, path, options.mayReplace, nowUs);
}

int REC_PutRow(REC_Recorder *recorder, int64_t timeUs, const SMP_Sample *samples,
               const SMP_Store &store)
{
    if (!recorder->isOpen)
        return 0;
    int result = IsFull(*recorder, timeUs) ? NextFile(recorder, timeUs) : 0;
    if (result != 0)
        return result;
    result = NoteFailures(recorder, timeUs, samples, store);
    if (result != 0)
        return result;
    const bool wasAllFailed = recorder->isAllFailed;
    recorder->isAllFailed =
        std::all_of(samples, samples + recorder->items.size(),
                    [](const SMP_Sample &sample) { return sample.state != SMP_GOOD; });
    if (recorder->isAllFailed && wasAllFailed)
        return 0;
    std::string &buffer = recorder->buffer;
    const size_t before = buffer.size();
    AppendSeconds(&buffer, timeUs - recorder->originUs);
    if (recorder->options.hasDates) {
        buffer += ',';
        AppendIsoLocal(recorder, UtcMsAt(*recorder, timeUs));
    }
    for (size_t i = 0; i < recorder->items.size(); ++i) {
        buffer += ',';
        if (samples[i].state == SMP_GOOD)
            buffer += SMP_NumberText(recorder->items[i], samples[i].bits);
    }
    buffer += "\r\n";
    ++recorder->rows;
    return AddText(recorder, before);
}

int REC_PutNote(REC_Recorder *recorder, int64_t timeUs, const std::string &kind,
                const std::string &text)
{
    if (!recorder->isOpen)
        return 0;
    const size_t before = recorder->buffer.size();
    recorder->buffer += "; ";
    AppendSeconds(&recorder->buffer, timeUs - recorder->originUs);
    recorder->buffer += ", " + kind + ", " + WRD_Visible(text) + "\r\n";
    return AddText(recorder, before);
}

int REC_ChangeItems(REC_Recorder *recorder, const std::vector<SMP_Item> &items, int64_t nowUs)
{
    if (!recorder->isOpen)
        return 0;
    int result = REC_PutNote(recorder, nowUs, "items", "changed: another file goes on");
    if (result == 0)
        result = EndFile(recorder);
    recorder->items = items;
    return result != 0 ? result : CreateFile(recorder, StampedPath(*recorder, nowUs), false, nowUs);
}

int REC_Flush(REC_Recorder *recorder, int64_t nowUs)
{
    if (!recorder->isOpen)
        return 0;
    if (FollowClock(recorder, nowUs) != 0 || WriteBuffer(recorder) != 0)
        return REC_ERR_WRITE;
    errno = 0;
    return std::fflush(recorder->file) == 0 ? 0 : StopByFault(recorder);
}

int REC_Close(REC_Recorder *recorder)
{
    return recorder->isOpen ? EndFile(recorder) : 0;
}
