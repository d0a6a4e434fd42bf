// Data files of a set: a version and a date, remarks with what the values belong to, the values by
// group, an end. Read whole and refused whole: half a file would restore half a machine.
#include "sets/data.h"

#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "sets/line.h"
#include "sets/value.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "text/words.h"
#include "text/xscan.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <unordered_map>

namespace {

// Every value on a line of its own, with as many remarks and headings between them.
constexpr int LINES_MAX = 200000;
constexpr size_t COMMENT_COLUMN = 40; // where a line's comment begins, if it is short enough
const char VERSION_LINE[] = "// Uploader v1.00";
const char END_LINE[] = "// end";

// As the settings file spells them.
struct ProcessorName {
    int32_t processor;
    const char *name;
};
const ProcessorName PROCESSORS[] = {
    {CPU_C166, "AC166"}, {CPU_C167, "AC167"}, {CPU_F283XX, "F283xx"}, {CPU_F2803X, "F2803x"}};

struct Reader {
    PST_File *file = nullptr;
    PST_Problems *problems = nullptr;
    std::unordered_map<std::string, int> lines; // of the names so far
    std::string group, heading;
    std::string comment; // of the line before, and what it says
    PST_Attributes attributes;
    bool isEnded = false;
    int line = 0;

    void Refuse(const std::string &text)
    {
        problems->Add(file->path, line, text);
    }
};

// "// date = 31-12-2015, time = 23:59:59", and both are real ones.
bool ParseDateLine(const char *cursor, PST_File *file)
{
    const char *begin = cursor;
    if (xscan("* ////* date* /=* #0-9.#0-9./-#0-9.#0-9./-#2-9.#0-9.#0-9.#0-9.", &cursor) < 0)
        return false;
    // Ten characters each time, as the pattern has counted them.
    const std::string date(cursor - 10, cursor);
    if (xscan("* /,* time* /=* #0-9.#0-9./:#0-9.#0-9./:#0-9.#0-9.* #", &cursor) < 0)
        return false;
    const std::string rest = TXT_Trim(begin);
    const std::string time = rest.substr(rest.size() - 8);
    // The pattern has let only digits through; what they say must be a day that can be.
    const int day = std::atoi(date.c_str()), month = std::atoi(date.c_str() + 3);
    if (day < 1 || day > 31 || month < 1 || month > 12 || time > "23:59:59")
        return false;
    file->date = date;
    file->time = time;
    return true;
}

// "// map = demo.m66": what is not known is a remark of whoever edited the file.
void ParseRemark(Reader *reader, const std::string &text)
{
    const size_t equals = text.find('=');
    // The end tells a file that was cut, by a full disk or a mail program, from a whole one.
    if (TXT_Trim(text) == "end") {
        reader->isEnded = true;
        return;
    }
    if (equals == std::string::npos)
        return;
    const std::string key = TXT_Trim(text.substr(0, equals));
    // Shown later in messages and pages: control characters must not get there.
    const std::string value = TXT_Visible(TXT_Trim(text.substr(equals + 1)));
    PST_File *file = reader->file;
    if (key == "group") {
        reader->group = value;
        reader->heading.clear();
    } else if (key == "map stamp") {
        file->stamp = static_cast<uint32_t>(std::strtoul(value.c_str(), nullptr, 16));
    } else {
        std::string *const fields[] = {&file->device, &file->processor, &file->station, &file->map,
                                       &file->header};
        const char *const keys[] = {"device", "processor", "station", "map", "header"};
        for (size_t i = 0; i < std::size(keys); ++i)
            if (key == keys[i])
                *fields[i] = value;
    }
}

void ParseRecord(Reader *reader, const std::string &text, const std::string &comment)
{
    PST_Line line;
    std::string why = PST_SplitLine(text, &line);
    if (why.empty() && (line.value.empty() || !line.rest.empty()))
        why = "A line is a name, '=' and one value.";
    if (why.empty()) {
        // Which of two values is meant cannot be known.
        const auto first = reader->lines.emplace(line.reference, reader->line);
        if (!first.second)
            why = "'" + line.reference + "' has a value already, in line " +
                  std::to_string(first.first->second) + ".";
    }
    if (why.empty() && reader->file->records.size() >= PST_VALUES_MAX)
        why = "More than " + std::to_string(PST_VALUES_MAX) + " values.";
    if (!why.empty()) {
        reader->Refuse(why);
        return;
    }
    // Type and value are kept as text: what they mean depends on the header.
    PST_Record record;
    record.group = reader->group;
    record.heading = reader->heading;
    record.name = line.reference;
    record.cast = line.cast;
    record.value = line.value;
    record.line = reader->line;
    // What stands behind a value is for people; only what was written by a program counts.
    // The elements of an array all have the same.
    if (comment != reader->comment) {
        PST_Attributes attributes;
        const bool isGood = PST_ParseAttributes(comment, &attributes, nullptr, nullptr).empty();
        reader->attributes = isGood ? attributes : PST_Attributes();
        reader->comment = comment;
    }
    record.attributes = reader->attributes;
    reader->file->records.push_back(record);
}

void ReadLine(Reader *reader, const std::string &line)
{
    std::string text, comment, label;
    if (reader->line == 1) {
        // Any version number: what the lines mean has never changed.
        const char *cursor = line.c_str();
        if (xscan("* ////* Uploader v?/.* @#0-9./.@#0-9* #", &cursor) < 0)
            reader->Refuse("This is no data file: it begins with '// Uploader v1.00'.");
    } else if (reader->line == 2) {
        if (!ParseDateLine(line.c_str(), reader->file))
            reader->Refuse("Here stands '// date = 31-12-2015, time = 23:59:59'.");
    } else if (TXT_Trim(line).compare(0, 2, "//") == 0) {
        // Also behind the end: a remark there hurts nobody.
        ParseRemark(reader, TXT_Trim(line).substr(2));
    } else {
        PST_CutComment(line, &text, &comment);
        if (text.empty())
            return;
        if (reader->isEnded)
            reader->Refuse("The file goes on behind its end.");
        else if (PST_ParseLabel(text, &label))
            reader->heading = label;
        else
            ParseRecord(reader, text, comment);
    }
}

std::string FileNameOf(const std::string &path)
{
    return TXT_Visible(std::filesystem::u8path(path).filename().u8string());
}

// Everything a restore may have to warn of: of whom and of which program the values are.
std::string HeadText(const PST_File &file)
{
    std::string text =
        std::string(VERSION_LINE) + "\n// date = " + file.date + ", time = " + file.time + "\n";
    if (!file.device.empty())
        text += "// device = " + file.device + "\n";
    text += "// processor = " + file.processor + "\n// station = " + file.station + "\n";
    if (!file.map.empty())
        text += "// map = " + file.map + "\n";
    return text + TXT_Format("// map stamp = %08X\n", static_cast<unsigned>(file.stamp)) +
           "// header = " + file.header + "\n\n";
}

} // namespace

const char *PST_ProcessorName()
{
    for (const ProcessorName &row : PROCESSORS)
        if (row.processor == Procesor)
            return row.name;
    return "???";
}

int PST_ReadData(const std::string &path, PST_File *file, PST_Problems *problems)
{
    *file = PST_File();
    file->path = path;
    Reader reader;
    reader.file = file;
    reader.problems = problems;
    const size_t before = problems->count;
    const int handle = TXFR_Open(path.c_str());
    if (handle < 0) {
        reader.Refuse(std::string("The data file ") + PLT_WhyUnreadable(path) + ".");
        return -1;
    }
    std::string line;
    while (TXFR_RdNewLine(handle, &line, static_cast<int>(PST_LINE_MAX) + 1) >= 0) {
        const bool isBroken = TXFR_IsBrokenLine(handle) == 1;
        ++reader.line;
        if (isBroken || reader.line > LINES_MAX) {
            reader.Refuse(isBroken ? PST_LongLineText()
                                   : "More than " + std::to_string(LINES_MAX) + " lines.");
            TXFR_Close(handle);
            return -1;
        }
        ReadLine(&reader, line);
        // A wrong first line is another kind of file: its other lines would all be wrong, too.
        if (problems->count > before && reader.line <= 2) {
            TXFR_Close(handle);
            return -1;
        }
    }
    // Said of the line behind the last one, where the end should stand.
    if (!reader.isEnded && problems->count == before) {
        ++reader.line;
        reader.Refuse("The file is not whole: its last line '// end' is missing.");
    }
    return problems->count == before ? 0 : -1;
}

int PST_Bind(const PST_Set &set, const PST_File &file, PST_Image *values, std::vector<int> *lines,
             PST_Problems *problems)
{
    const size_t before = problems->count;
    values->assign(set.entries.size(), PST_Held());
    if (lines != nullptr)
        lines->assign(set.entries.size(), 0);
    for (const PST_Record &record : file.records) {
        const auto found = set.byName.find(record.name);
        if (found == set.byName.end()) {
            problems->Add(file.path, record.line,
                          "'" + record.name + "' does not belong to the set.");
            continue;
        }
        const PST_Entry &entry = set.entries[found->second];
        PST_Held &held = (*values)[found->second];
        std::string why;
        if (PST_ParseValue(entry, record.cast, record.value, &held.bytes, &why) == 0)
            why = PST_CheckLimits(PST_AttributesOf(set, entry), entry, held.bytes);
        if (!why.empty())
            problems->Add(file.path, record.line, "'" + record.name + "': " + why);
        // What lies outside of its limits is not there for anybody: it must not be written.
        held.isThere = why.empty();
        if (lines != nullptr)
            (*lines)[found->second] = record.line;
    }
    return problems->count == before ? 0 : -1;
}

PST_File PST_MakeFile(const PST_Set &set, const PST_Image &values)
{
    PLT_Date now;
    PLT_LocalTime(&now);
    PST_File file;
    file.path = set.path;
    file.date = TXT_Format("%02d-%02d-%04d", now.day, now.month, now.year);
    file.time = TXT_Format("%02d:%02d:%02d", now.hour, now.minute, now.second);
    // Names without their folders, which mean nothing on another machine.
    file.device = set.device;
    file.processor = PST_ProcessorName();
    file.station = std::to_string(STATION);
    file.map = FileNameOf(mapFile);
    file.header = FileNameOf(set.path);
    file.stamp = PST_MapStamp();
    for (size_t i = 0; i < set.entries.size(); ++i) {
        const PST_Entry &entry = set.entries[i];
        const PST_Item &item = set.items[entry.item];
        if (!values[i].isThere)
            continue;
        PST_Record record;
        record.group = set.groups[item.group];
        record.heading = item.heading;
        record.name = entry.name;
        record.cast = PST_CastOf(entry.type);
        record.value = PST_ValueText(entry, values[i].bytes);
        record.attributes = item.attributes;
        if (i != item.firstEntry)
            record.attributes.text.clear(); // once is enough
        file.records.push_back(record);
    }
    return file;
}

int PST_WriteData(const std::string &path, const PST_Set &set, const PST_Image &values,
                  const std::vector<std::string> &remarks)
{
    SafeFile safe;
    const int result = PLT_BeginSave(&safe, path, "wb");
    if (result != 0)
        return result;
    const PST_File made = PST_MakeFile(set, values);
    PLT_SaveText(safe.file, HeadText(made));
    std::string group, heading;
    // A line for a group or heading where it changes, as a person would write it.
    for (const PST_Record &record : made.records) {
        const bool isFirst = &record == &made.records.front();
        if (record.group != group) {
            PLT_SaveText(safe.file,
                         (isFirst ? "" : "\n") + std::string("// group = ") + record.group + "\n");
            heading.clear();
        }
        group = record.group;
        if (record.heading != heading && !record.heading.empty()) {
            // Labels are words of the header's grammar: blanks travel as underscores.
            std::string label = record.heading;
            std::replace(label.begin(), label.end(), ' ', '_');
            PLT_SaveText(safe.file, label + ":\n");
        }
        heading = record.heading;
        const size_t entry = set.byName.at(record.name);
        std::string line = PST_AssignmentText(set.entries[entry], values[entry].bytes);
        const std::string comment = PST_FormatAttributes(record.attributes);
        if (!comment.empty())
            line +=
                std::string(line.size() < COMMENT_COLUMN ? COMMENT_COLUMN - line.size() : 1, ' ') +
                "; " + comment;
        PLT_SaveText(safe.file, line + "\n");
    }
    PLT_SaveText(safe.file, "\n");
    // In front of the end, which stays the last line whatever is remarked.
    for (const std::string &remark : remarks)
        PLT_SaveText(safe.file, "// " + remark + "\n");
    PLT_SaveText(safe.file, std::string(END_LINE) + "\n");
    return PLT_CommitSave(&safe);
}

const char *PST_WriteErrorText(int result)
{
    return result == PLT_SAVE_ERR_READ_ONLY ? "is write-protected" : "could not be written";
}
