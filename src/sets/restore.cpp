// The way of a data file into the target: everything is checked before the first question, what was
// there is saved before the first write, and what came of it is told value by value. A backup is
// simple beside it: nothing is changed but a file.
#include "sets/restore.h"

#include "platform/plain_file.h"
#include "sets/value.h"
#include "settings/settings.h"
#include "text/words.h"

#include <algorithm>
#include <filesystem>

const char PST_NOTHING_WRITTEN[] = "Nothing was written.";

namespace {

constexpr size_t NAMES_SHOWN_MAX = 20; // in one line of a result
// Somebody who has so many never looks at them: better to say so than to go on.
constexpr int UNDO_FILES_MAX = 99;

// "1 value", "3 values".
std::string Counted(size_t count, const char *one, const char *many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

const PST_Entry &EntryAt(const PST_Restore &job, uint32_t place)
{
    return job.set.entries[job.set.places[place].entry];
}

// Whether the file has a value that the place does not hold; mirrors are compared, too.
bool Differs(const PST_Restore &job, uint32_t place)
{
    const uint32_t entry = job.set.places[place].entry;
    return job.wanted[entry].isThere &&
           !PST_IsSame(job.set.entries[entry], job.wanted[entry], job.before[place]);
}

// In the target's numbers, with the shown one where a factor makes it another.
std::string NumberText(const PST_Restore &job, uint32_t place, const PST_Held &held)
{
    const PST_Entry &entry = EntryAt(job, place);
    const PST_Attributes &attributes = PST_AttributesOf(job.set, entry);
    std::string text = PST_ValueText(entry, held.bytes);
    if (entry.type != 0 && attributes.factor != 1)
        text += " (" + PST_ShownText(entry, attributes.factor, held.bytes) +
                (attributes.unit.empty() ? "" : " " + attributes.unit) + ")";
    return text;
}

// "wGain, wLimit and 3 more" of the places in a state.
std::string NamesIn(const PST_Restore &job, PST_State state, size_t *count)
{
    std::string names;
    *count = 0;
    for (const uint32_t place : job.writes) {
        if (job.states[place] != state)
            continue;
        if (++*count <= NAMES_SHOWN_MAX)
            names += (names.empty() ? "" : ", ") + PST_PlaceName(job.set, place);
    }
    if (*count > NAMES_SHOWN_MAX)
        names += " and " + std::to_string(*count - NAMES_SHOWN_MAX) + " more";
    return names;
}

// Beside the data file, never over an older one: that may hold the only values from before.
std::string FreeUndoPath(const std::string &data)
{
    const std::filesystem::path path = std::filesystem::u8path(data);
    const std::string stem = (path.parent_path() / path.stem()).u8string() + ".undo";
    for (int i = 1; i <= UNDO_FILES_MAX; ++i) {
        const std::string name = stem + (i == 1 ? "" : "-" + std::to_string(i)) + ".ldx";
        if (!PLT_FileExists(name))
            return name;
    }
    return "";
}

// The whole set and not only what is written: an undo file is an ordinary data file.
int WriteUndo(PST_Restore *job)
{
    const std::string path = FreeUndoPath(job->file.path);
    if (path.empty()) {
        job->why = "There are " + std::to_string(UNDO_FILES_MAX) +
                   " undo files beside the data file already.";
        return PST_ERR_UNDO;
    }
    const PST_Set &set = job->set;
    // A data file has no lines for mirrors: what they held is told in remarks.
    std::vector<std::string> remarks;
    for (uint32_t i = static_cast<uint32_t>(set.entries.size()); i < set.places.size(); ++i) {
        const uint32_t entry = set.places[i].entry;
        if (!PST_IsSame(set.entries[entry], job->before[i], job->before[entry]))
            remarks.push_back("mirror " + set.places[i].name + " held " +
                              PST_ValueText(set.entries[entry], job->before[i].bytes));
    }
    const int result = PST_WriteData(path, set, job->before, remarks);
    if (result != 0) {
        job->why = "The undo file '" + path + "' " + PST_WriteErrorText(result) + ".";
        return PST_ERR_UNDO;
    }
    job->undoPath = path;
    return PST_OK;
}

} // namespace

std::vector<std::string> PST_MirrorRemarks(const PST_Set &set, const PST_Image &image)
{
    std::vector<std::string> lines;
    for (size_t i = set.entries.size(); i < set.places.size(); ++i) {
        const PST_Place &mirror = set.places[i];
        const PST_Entry &entry = set.entries[mirror.entry];
        if (!PST_IsSame(entry, image[i], image[mirror.entry]))
            lines.push_back("The mirror " + mirror.name + " holds " +
                            PST_ValueText(entry, image[i].bytes) + ", " + entry.name + " " +
                            PST_ValueText(entry, image[mirror.entry].bytes) + ".");
    }
    return lines;
}

int PST_Backup(const std::string &header, const std::string &data, const PST_Progress &progress,
               std::vector<std::string> *lines)
{
    PST_Set set;
    PST_Problems problems;
    lines->clear();
    if (PST_ReadHeader(header, &set, &problems) != 0) {
        // A line each: whoever shows them may want them apart.
        const std::string text = PST_FormatProblems(problems);
        for (size_t begin = 0; begin < text.size();) {
            const size_t end = text.find('\n', begin);
            lines->push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        return PST_ERR_FILE;
    }
    PST_Image image;
    std::string why;
    const int read = PST_ReadDevice(set, &image, progress, &why);
    if (read != PST_OK) {
        lines->push_back(why);
        return read;
    }
    const int written = PST_WriteData(data, set, image, {});
    if (written != 0) {
        lines->push_back("'" + TXT_Visible(data) + "' " + PST_WriteErrorText(written) + ".");
        return PST_ERR_FILE;
    }
    // Mirrors that differ are no failure: the file holds the values that count.
    *lines = PST_MirrorRemarks(set, image);
    lines->push_back(std::to_string(set.entries.size()) + " values saved.");
    return PST_OK;
}

int PST_PrepareRestore(const std::string &header, const std::string &data, bool isAll,
                       PST_Restore *job, const PST_Progress &progress)
{
    *job = PST_Restore();
    const int headerResult = PST_ReadHeader(header, &job->set, &job->problems);
    const int dataResult = PST_ReadData(data, &job->file, &job->problems);
    // Both files are read before it ends: a user mends all problems at once.
    if (headerResult != 0 || dataResult != 0)
        return PST_ERR_FILE;
    if (PST_Bind(job->set, job->file, &job->wanted, &job->lines, &job->problems) != 0)
        return PST_ERR_FILE;
    const int result = PST_ReadDevice(job->set, &job->before, progress, &job->why);
    if (result != PST_OK)
        return result;
    // Read-only values are compared and told of, but never written, whatever the file says.
    for (uint32_t place = 0; place < job->set.places.size(); ++place) {
        const uint32_t entry = job->set.places[place].entry;
        const bool isWanted = isAll ? job->wanted[entry].isThere : Differs(*job, place);
        if (isWanted && !PST_AttributesOf(job->set, job->set.entries[entry]).isReadOnly)
            job->writes.push_back(place);
    }
    job->states.assign(job->set.places.size(), PST_UNTOUCHED);
    return PST_OK;
}

std::vector<std::string> PST_MapRemarks(const PST_Restore &job)
{
    std::vector<std::string> remarks;
    const PST_File &file = job.file;
    const uint32_t loaded = PST_MapStamp();
    const std::string text = TXT_Format("%08X", static_cast<unsigned>(loaded));
    // By the symbols and not by the name: a map that was built again may have moved nothing.
    if (file.stamp != loaded)
        remarks.push_back(
            "The file was made with another map" + (file.map.empty() ? "" : ", " + file.map) +
            ": its symbols have other names or addresses than the loaded one's (" + text + ").");
    if (!file.processor.empty() && file.processor != PST_ProcessorName())
        remarks.push_back("The file is of a " + file.processor + ", the selected processor is " +
                          PST_ProcessorName() + ".");
    if (!file.device.empty() && !job.set.device.empty() && file.device != job.set.device)
        remarks.push_back("The file is of '" + file.device + "', the header of '" + job.set.device +
                          "'.");
    return remarks;
}

std::vector<std::string> PST_RestoreWarnings(const PST_Restore &job)
{
    std::vector<std::string> warnings = PST_MapRemarks(job);
    // What the file lacks cannot be told from what was left out on purpose.
    size_t missing = 0;
    for (const PST_Held &held : job.wanted)
        missing += held.isThere ? 0 : 1;
    if (missing > 0)
        warnings.push_back(Counted(missing, "value of the set is", "values of the set are") +
                           " not in the file and will stay as they are.");
    size_t locked = 0;
    for (uint32_t place = 0; place < job.set.places.size(); ++place) {
        const PST_Entry &entry = EntryAt(job, place);
        if (!PST_AttributesOf(job.set, entry).isReadOnly || !Differs(job, place) ||
            ++locked > NAMES_SHOWN_MAX)
            continue;
        warnings.push_back(
            job.file.path + ", line " + std::to_string(job.lines[job.set.places[place].entry]) +
            ": '" + PST_PlaceName(job.set, place) + "' is read-only and will not be written: the " +
            "target holds " + NumberText(job, place, job.before[place]) + ", the file " +
            NumberText(job, place, job.wanted[job.set.places[place].entry]) + ".");
    }
    if (locked > NAMES_SHOWN_MAX)
        warnings.push_back(std::to_string(locked - NAMES_SHOWN_MAX) +
                           " more read-only values differ.");
    const auto needsStop = [&job](uint32_t place) {
        return PST_AttributesOf(job.set, EntryAt(job, place)).needsStop;
    };
    const auto stops = std::count_if(job.writes.begin(), job.writes.end(), needsStop);
    if (stops > 0)
        warnings.push_back(Counted(static_cast<size_t>(stops), "value", "values") +
                           " may be written only while the machine stands.");
    return warnings;
}

std::vector<std::string> PST_RestoreChanges(const PST_Restore &job)
{
    std::vector<std::string> changes;
    // By place: a mirror has a line of its own, since it may hold another value than its source.
    for (const uint32_t place : job.writes) {
        const PST_Held &wanted = job.wanted[job.set.places[place].entry];
        std::string line = PST_PlaceName(job.set, place) + ": ";
        if (Differs(job, place))
            line += NumberText(job, place, job.before[place]) + " -> ";
        line += NumberText(job, place, wanted);
        changes.push_back(line + (Differs(job, place) ? "" : ", as it is"));
    }
    return changes;
}

int PST_RunRestore(PST_Restore *job, const PST_Progress &progress)
{
    job->why.clear();
    if (job->writes.empty())
        return PST_OK;
    // Without a way back nothing is written.
    const int undo = WriteUndo(job);
    if (undo != PST_OK)
        return undo;
    PST_Image wanted(job->set.places.size());
    for (const uint32_t place : job->writes)
        wanted[place] = job->wanted[job->set.places[place].entry];
    const int result = PST_WritePlaces(job->set, job->writes, wanted, &job->after, &job->states,
                                       progress, &job->why);
    // The target took the bytes and holds others now: it limits or counts them itself.
    const bool isDifferent =
        std::find(job->states.begin(), job->states.end(), PST_DIFFERENT) != job->states.end();
    return result == PST_OK && isDifferent ? static_cast<int>(PST_ERR_VALUES) : result;
}

std::vector<std::string> PST_RestoreResult(const PST_Restore &job, int result)
{
    struct StateRow {
        PST_State state;
        const char *text;
    };
    const StateRow ROWS[] = {
        {PST_DIFFERENT, "written, but the target holds something else now: "},
        {PST_UNREAD, "written, but not read back: "},
        {PST_IN_DOUBT, "in doubt, the target holds the old or the new value: "},
        {PST_UNTOUCHED, "not written: "},
    };
    if (job.writes.empty())
        return {"Nothing to write: the target holds the file."};
    std::vector<std::string> lines;
    if (!job.why.empty())
        lines.push_back(job.why);
    size_t count = 0;
    NamesIn(job, PST_WRITTEN, &count);
    lines.push_back(Counted(count, "value", "values") + " written, read back and good.");
    // The worst first.
    for (const StateRow &row : ROWS) {
        const std::string names = NamesIn(job, row.state, &count);
        if (count > 0)
            lines.push_back(std::to_string(count) + " " + row.text + names + ".");
    }
    // Also after an interruption: it has what was there before the first write.
    if (!job.undoPath.empty())
        lines.push_back("The values before are in '" + job.undoPath + "': download it to go back.");
    if (result != PST_OK && result != PST_ERR_UNDO)
        lines.push_back("The same download again goes on: it writes what still differs.");
    return lines;
}

std::vector<std::string> PST_Differences(const PST_Restore &job)
{
    std::vector<std::string> lines;
    for (uint32_t place = 0; place < job.set.places.size(); ++place) {
        const PST_Held &wanted = job.wanted[job.set.places[place].entry];
        if (Differs(job, place))
            lines.push_back(PST_PlaceName(job.set, place) + ": " +
                            NumberText(job, place, job.before[place]) + " in the target, " +
                            NumberText(job, place, wanted) + " in the file");
    }
    for (size_t i = 0; i < job.wanted.size(); ++i)
        if (!job.wanted[i].isThere)
            lines.push_back(job.set.entries[i].name + ": not in the file");
    return lines;
}
