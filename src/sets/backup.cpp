// A set's values from the target into a data file.
#include "sets/backup.h"

#include "sets/data.h"
#include "sets/header.h"
#include "sets/restore.h"
#include "sets/value.h"
#include "text/words.h"

namespace {

// The problems, a line each.
void AddProblems(const PST_Problems &problems, std::vector<std::string> *lines)
{
    const std::string text = PST_FormatProblems(problems);
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = text.find('\n', begin);
        lines->push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
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
        AddProblems(problems, lines);
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
        lines->push_back("'" + WRD_Visible(data) + "' " + PST_WriteErrorText(written) + ".");
        return PST_ERR_FILE;
    }
    // Mirrors that differ are no failure: the file holds the values that count.
    *lines = PST_MirrorRemarks(set, image);
    lines->push_back(std::to_string(set.entries.size()) + " values saved.");
    return PST_OK;
}
