// The texts of a recording: dates, seconds, the head of a file and its name. Dates are counted from
// the moment it began: the system's clock is asked once, and again only to see whether it was set.
#include "sampler/recorder.h"

#include "calendar/datetime.h"
#include "platform/plain_file.h"
#include "text/words.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int64_t SECOND_US = 1000000;
constexpr int64_t UTC_2000_S = 946684800; // 1 January 2000 in seconds since 1970
constexpr int ZONE_STEP_MINUTES = 15;     // no zone of the world is finer
constexpr int ZONE_STEPS_MAX = 64;        // 16 hours: more is no zone, but a clock just being set
constexpr int SAME_NAMES_MAX = 1000;

// The calendar begins in 2000; a clock that is earlier has never been set.
PLT_Date DateOf(int64_t utcSeconds)
{
    DateTime date;
    InvWrkCET2000(static_cast<uint32_t>(std::max<int64_t>(utcSeconds - UTC_2000_S, 1)), &date);
    return {date.year, date.month, date.day, date.hour, date.minute, date.second};
}

void AppendMilliseconds(std::string *text, int64_t ms)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, ".%03d", static_cast<int>(ms % 1000));
    *text += digits;
}

std::string HeadLine(const std::string &key, const std::string &value)
{
    return "; " + key + ", " + TXT_Visible(value) + "\r\n";
}

} // namespace

void REC_SetZone(REC_Recorder *recorder)
{
    // Local time against UTC, from what the system's two clocks say now: rounded, for they are not
    // asked at the same moment. The recorder's own clock may be set to another day.
    PLT_Date local;
    PLT_LocalTime(&local);
    const int64_t utcS = PLT_UtcMs() / 1000;
    const DateTime date = {local.year,   local.month,  local.day,   local.hour,
                           local.minute, local.second, DTTM_DECODED};
    const double minutes =
        (static_cast<double>(WrkCET2000(&date)) - static_cast<double>(utcS - UTC_2000_S)) / 60;
    const double steps = minutes / ZONE_STEP_MINUTES;
    const int rounded = static_cast<int>(steps < 0 ? steps - 0.5 : steps + 0.5);
    recorder->offsetMinutes = std::abs(rounded) <= ZONE_STEPS_MAX ? rounded * ZONE_STEP_MINUTES : 0;
    const int away = std::abs(recorder->offsetMinutes);
    char text[16];
    std::snprintf(text, sizeof text, "%c%02d:%02d", recorder->offsetMinutes < 0 ? '-' : '+',
                  away / 60, away % 60);
    recorder->zoneText = text;
}

int64_t REC_UtcMsAt(const REC_Recorder &recorder, int64_t timeUs)
{
    return recorder.originUtcMs + (timeUs - recorder.originUs) / 1000;
}

void REC_AppendLocalDate(REC_Recorder *recorder, int64_t utcMs)
{
    // The part down to the second is kept: rows come fast.
    const int64_t second = utcMs / 1000;
    if (recorder->secondUtc != second) {
        recorder->secondText =
            IsoDateText(DateOf(second + int64_t{recorder->offsetMinutes} * 60), 'T');
        recorder->secondUtc = second;
    }
    recorder->buffer += recorder->secondText;
    AppendMilliseconds(&recorder->buffer, utcMs);
    recorder->buffer += recorder->zoneText;
}

void REC_AppendSeconds(std::string *text, int64_t us)
{
    // Whole numbers: a double would lose the microseconds of a long recording. The sign of what
    // lies less than a second in front of time 0 is not in its whole part.
    char digits[40];
    const long long whole = us / SECOND_US, part = std::llabs(us % SECOND_US);
    std::snprintf(digits, sizeof digits, "%s%lld.%06lld", us < 0 && whole == 0 ? "-" : "", whole,
                  part);
    *text += digits;
}

std::string REC_Head(const REC_Recorder &recorder)
{
    const int period = recorder.options.periodMs;
    const int64_t startS = recorder.startUtcMs / 1000;
    std::string start = IsoDateText(DateOf(startS), 'T');
    std::string local = IsoDateText(DateOf(startS + int64_t{recorder.offsetMinutes} * 60), 'T');
    AppendMilliseconds(&start, recorder.startUtcMs);
    AppendMilliseconds(&local, recorder.startUtcMs);
    std::string head = "; Vireo2 recording 1\r\n";
    head += HeadLine("start", start + "Z");
    head += HeadLine("local", local + recorder.zoneText);
    head += HeadLine("period",
                     period == 0 ? "as fast as the line allows" : std::to_string(period) + " ms");
    head += HeadLine("part", std::to_string(recorder.files + 1));
    std::string columns = recorder.options.hasDates ? "time,iso" : "time";
    for (size_t i = 0; i < recorder.items.size(); ++i) {
        const SMP_Item &item = recorder.items[i];
        const std::string number = std::to_string(i + 1) + ", ";
        char address[24] = ""; // of a name that no map knows: empty
        if (item.address != SMP_NO_ADDRESS)
            std::snprintf(address, sizeof address, "0x%06X", static_cast<unsigned>(item.address));
        head += HeadLine("item", number + item.name);
        head += HeadLine("type", number + SMP_TypeText(item));
        head += HeadLine("address", number + address);
        head += HeadLine("station", number + std::to_string(item.station));
        if (!item.unit.empty())
            head += HeadLine("unit", number + item.unit);
        columns += "," + TXT_QuoteCsv(TXT_Visible(item.name));
    }
    return head + columns + "\r\n";
}

std::string REC_StampedPath(const REC_Recorder &recorder, int64_t nowUs)
{
    const std::string &path = recorder.options.path;
    const size_t slash = path.find_last_of("/\\");
    const size_t dot = path.rfind('.');
    // A dot in a folder's name, or in front of a name, begins no ending.
    const bool hasDot = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    const std::string base = hasDot ? path.substr(0, dot) : path;
    const std::string end = hasDot ? path.substr(dot) : "";
    const PLT_Date date =
        DateOf(REC_UtcMsAt(recorder, nowUs) / 1000 + int64_t{recorder.offsetMinutes} * 60);
    char stamp[40];
    std::snprintf(stamp, sizeof stamp, "-%04d%02d%02d-%02d%02d%02d", date.year, date.month,
                  date.day, date.hour, date.minute, date.second);
    // Parts can be begun within a second of each other.
    std::string stamped = base + stamp + end;
    for (int number = 2; PLT_FileExists(stamped) && number < SAME_NAMES_MAX; ++number)
        stamped = base + stamp + "-" + std::to_string(number) + end;
    return stamped;
}
