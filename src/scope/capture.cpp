// A file is comment lines with what the recording was taken by, a line of names and a row a
// sample; a spreadsheet reads it as it is.
#include "scope/capture.h"

#include "calendar/datetime.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "text/csv_row.h"
#include "text/numbers.h"
#include "text/txfr.h"
#include "text/words.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr const char *FIRST_LINE = "; Vireo2 scope 1";
constexpr size_t TRACES_MAX = SX_RECORDS;

// What stands above the columns: with it the file is read again as it was taken.
std::string Head(const SCP_Capture &capture)
{
    std::string head = std::string(FIRST_LINE) + "\r\n";
    const auto line = [&head](const std::string &key, const std::string &value) {
        head += "; " + key + ", " + value + "\r\n";
    };
    line("taken", capture.taken);
    line("id", capture.id);
    line("rate", SCP_NumberText(capture.rate));
    line("sub", std::to_string(capture.subPd));
    line("trigger", std::to_string(capture.mode) + ", " + std::to_string(capture.slope));
    line("level", SCP_NumberText(capture.level));
    line("position", SCP_NumberText(capture.position));
    line("trigger at", std::to_string(capture.triggerAt));
    for (size_t i = 0; i < capture.traces.size(); ++i) {
        const SCP_Trace &trace = capture.traces[i];
        const std::string number = std::to_string(i + 1);
        line("type", number + ", " + SX_TypeName(trace.type));
        if (!trace.unit.empty())
            line("unit", number + ", " + trace.unit);
        if (trace.factor != 1 || trace.offset != 0)
            line("scale", number + ", " + SCP_NumberText(trace.factor) + ", " +
                              SCP_NumberText(trace.offset));
    }
    head += "sample,time";
    for (const SCP_Trace &trace : capture.traces)
        head += "," + TXT_QuoteCsv(trace.name);
    return head + "\r\n";
}

bool WriteAll(std::FILE *file, const SCP_Capture &capture)
{
    // All traces are of the same upload and therefore as long.
    const size_t rows = capture.traces.empty() ? 0 : capture.traces[0].samples.size();
    std::fputs(Head(capture).c_str(), file);
    for (size_t i = 0; i < rows; ++i) {
        std::string row = std::to_string(i) + "," + SCP_NumberText(SCP_TimeOf(capture, i));
        for (const SCP_Trace &trace : capture.traces)
            row += "," + SCP_NumberText(trace.samples[i]);
        std::fputs((row + "\r\n").c_str(), file);
    }
    return std::ferror(file) == 0; // a full disk is noticed here, once for all rows
}

// "; key, value": the value behind the first comma, blanks left out.
bool SplitHeadLine(const std::string &line, std::string *key, std::string *value)
{
    const size_t comma = line.find(',');
    if (line.compare(0, 2, "; ") != 0 || comma == std::string::npos)
        return false;
    *key = line.substr(2, comma - 2);
    const size_t begin = line.find_first_not_of(' ', comma + 1);
    *value = begin == std::string::npos ? "" : line.substr(begin);
    return true;
}

struct TraceNotes { // of one column, known before the columns are
    int type = SX_I2;
    std::string unit;
    double factor = 1, offset = 0;
};

// A line above the columns. Unknown keys are for later versions; false for a bad value.
bool ParseHeadLine(const std::string &key, const std::string &value, SCP_Capture *capture,
                   std::vector<TraceNotes> *notes)
{
    const size_t comma = value.find(',');
    const std::string first = value.substr(0, comma);
    const std::string rest =
        comma == std::string::npos ? "" : value.substr(std::min(comma + 2, value.size()));
    if (key == "taken" || key == "id") {
        (key == "id" ? capture->id : capture->taken) = value;
        return true;
    }
    if (key == "rate")
        return TXT_ParseNumber(value, &capture->rate) && capture->rate > 0 &&
               std::isfinite(capture->rate);
    if (key == "sub")
        return TXT_ParseNumber(value, &capture->subPd) && capture->subPd > 0;
    if (key == "trigger")
        return TXT_ParseNumber(first, &capture->mode) && TXT_ParseNumber(rest, &capture->slope);
    if (key == "level" || key == "position")
        return TXT_ParseNumber(value, key == "level" ? &capture->level : &capture->position);
    if (key == "trigger at")
        return TXT_ParseNumber(value, &capture->triggerAt);
    if (key != "type" && key != "unit" && key != "scale")
        return true;
    size_t number = 0;
    if (!TXT_ParseNumber(first, &number) || number < 1 || number > TRACES_MAX)
        return false;
    notes->resize(std::max(notes->size(), number));
    TraceNotes &note = (*notes)[number - 1];
    if (key == "unit")
        note.unit = rest;
    if (key == "type")
        note.type = SX_FindType(rest);
    const size_t second = rest.find(", ");
    if (key == "scale" &&
        (second == std::string::npos || !TXT_ParseNumber(rest.substr(0, second), &note.factor) ||
         !TXT_ParseNumber(rest.substr(second + 2), &note.offset)))
        return false;
    return note.type >= 0;
}

// The names, which end the head: from here on the notes of each column are known.
bool ParseColumns(const std::string &line, const std::vector<TraceNotes> &notes,
                  SCP_Capture *capture)
{
    std::vector<std::string> cells;
    if (!TXT_SplitCsvRow(line, &cells) || cells.size() < 3 || cells.size() > TRACES_MAX + 2 ||
        cells[0] != "sample" || cells[1] != "time")
        return false;
    for (size_t i = 2; i < cells.size(); ++i) {
        const TraceNotes note = i - 2 < notes.size() ? notes[i - 2] : TraceNotes();
        SCP_Trace trace;
        trace.name = TXT_WithoutCsvMark(cells[i]);
        trace.unit = note.unit;
        trace.type = note.type;
        trace.factor = note.factor;
        trace.offset = note.offset;
        capture->traces.push_back(trace);
    }
    return true;
}

// Rows are numbered: one that is lost or doubled would shift all that follow in time.
bool ParseRow(const std::string &line, size_t index, SCP_Capture *capture)
{
    std::vector<std::string> cells;
    size_t number = 0;
    if (!TXT_SplitCsvRow(line, &cells) || cells.size() != capture->traces.size() + 2 ||
        !TXT_ParseNumber(cells[0], &number) || number != index)
        return false;
    for (size_t i = 0; i < capture->traces.size(); ++i) {
        // An empty cell is a sample that was not read.
        double value = std::numeric_limits<double>::quiet_NaN();
        if (!cells[i + 2].empty() && !TXT_ParseNumber(cells[i + 2], &value))
            return false;
        capture->traces[i].samples.push_back(value);
    }
    return true;
}

// Of a file that was cut the last line does not count: half a number is another number.
bool EndsWithLine(const std::string &path)
{
    std::FILE *file = nullptr;
    if (PLT_OpenForReading(path, PLT_FILE_ANY_SIZE, &file) != PLT_FILE_OK)
        return false;
    const int last = std::fseek(file, -1, SEEK_END) == 0 ? std::fgetc(file) : EOF;
    std::fclose(file);
    return last == '\n' || last == '\r';
}

} // namespace

SCP_Capture SCP_MakeCapture(const SCP_Setup &setup)
{
    SCP_Capture capture;
    capture.id = SX_szPrefix;
    PLT_Date now;
    PLT_LocalTime(&now);
    capture.taken = IsoDateText(now);
    capture.rate = SX_ffFscpUpload / setup.subPd;
    capture.subPd = setup.subPd;
    capture.mode = setup.mode;
    capture.slope = setup.slope;
    capture.level = setup.level;
    capture.position = setup.position;
    // So many samples follow the one at which it triggered; forced, it has no such moment.
    const int behind = static_cast<int>(SX_CountBehind(setup.position));
    capture.triggerAt = SX_isSnapped ? 0 : SX_nVz - 1 - behind;
    const size_t rows = SX_nCh > 0 ? static_cast<size_t>(SX_cnData / SX_nCh) : 0;
    bool isSecondSlot = false; // of the channel before: not by the types set since
    for (int number = 1; number <= SX_nCh; ++number) {
        const SCP_ChannelSetup &channel = setup.channels[static_cast<size_t>(number - 1)];
        // Only generation 3 has a second word for an X4 channel, and its last channel has none.
        const bool isX4 = SX_IsX4(channel.type);
        const bool hasValues = !isX4 || (SX_nVer == 3 && number < SX_nCh);
        const bool isBlocked = isSecondSlot && SX_nVer == 3;
        isSecondSlot = isX4 && !isBlocked;
        if (!channel.isOn || !hasValues || isBlocked)
            continue;
        SCP_Trace trace = {channel.place,  channel.unit,   channel.type,
                           channel.factor, channel.offset, {}};
        trace.samples.reserve(rows);
        for (size_t row = 0; row < rows; ++row) {
            const size_t at = row * static_cast<size_t>(SX_nCh) + static_cast<size_t>(number - 1);
            const double raw = SX_Value(channel.type, SX_awData[at], isX4 ? SX_awData[at + 1] : 0);
            trace.samples.push_back(raw * channel.factor + channel.offset);
        }
        capture.traces.push_back(trace);
    }
    return capture;
}

double SCP_TimeOf(const SCP_Capture &capture, size_t index)
{
    return (static_cast<double>(index) - capture.triggerAt) / capture.rate;
}

int SCP_SaveCapture(const std::string &path, const SCP_Capture &capture)
{
    if (path == "-")
        return WriteAll(stdout, capture) && std::fflush(stdout) == 0 ? 0 : -1;
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    // Half a recording does not replace a whole one.
    if (WriteAll(safe.file, capture))
        return PLT_CommitSave(&safe);
    PLT_CancelSave(&safe);
    return -1;
}

int SCP_LoadCapture(const std::string &path, SCP_Capture *capture, std::string *problem)
{
    // One line is read ahead, for only then is it known which one is the last.
    const bool isWhole = EndsWithLine(path);
    const int file = TXFR_Open(path.c_str());
    if (file < 0) {
        *problem = "Could not open " + path;
        return -1;
    }
    SCP_Capture loaded;
    std::vector<TraceNotes> notes;
    std::string line, next, key, value;
    size_t number = 0, rows = 0;
    bool isGood = true, hasLine = TXFR_RdNewLine(file, &line, -1) >= 0;
    while (isGood && hasLine) {
        hasLine = TXFR_RdNewLine(file, &next, -1) >= 0;
        if (!hasLine && !isWhole)
            break;
        ++number;
        if (number == 1)
            isGood = line == FIRST_LINE;
        else if (!loaded.traces.empty()) // behind the names
            isGood = rows < CAPTURE_SAMPLES_MAX && ParseRow(line, rows++, &loaded);
        else if (line.empty() || line[0] != ';')
            isGood = ParseColumns(line, notes, &loaded);
        else if (SplitHeadLine(line, &key, &value))
            isGood = ParseHeadLine(key, value, &loaded, &notes);
        line.swap(next);
    }
    if (hasLine) // at the end the reader has closed the file itself
        TXFR_Close(file);
    if (!isGood || rows == 0) {
        *problem = path + ": line " + std::to_string(number) + " is not of a scope recording";
        return -1;
    }
    *capture = loaded;
    return 0;
}
