#include "sets/backup.h"

#include "sets/data.h"
#include "sets/header.h"
#include "sets/restore.h"
#include "sets/value.h"
#include "text/words.h"

namespace {

// The problems, a line each.
void AddProblems(const SET_Problems &problems, std::vector<std::string> *lines)
{
    const std::string text = SET_FormatProblems(problems);
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = text.find('\n', begin);
        lines->push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

} // namespace

std::vector<std::string> SET_MirrorRemarks(const SET_Set &set, const SET_Image &image)
{
    std::vector<std::string> lines;
    for (size_t i = set.entries.size(); i < set.places.size(); ++i) {
        const SET_Place &mirror = set.places[i];
        const SET_Entry &entry = set.entries[mirror.entry];
        if (!SET_IsSame(entry, image[i], image[mirror.entry]))
            lines.push_back("The mirror " + mirror.name + " holds " +
                            SET_ValueText(entry, image[i].bytes) + ", " + entry.name + " " +
                            SET_ValueText(entry, image[mirror.entry].bytes) + ".");
    }
    return lines;
}

int SET_Backup(const std::string &header, const std::string &data, const SET_Progress &progress,
               std::vector<std::string> *lines)
{
    SET_Set set;
    SET_Problems problems;
    lines->clear();
    if (SET_ReadHeader(header, &set, &problems) != 0) {
        AddProblems(problems, lines);
        return SET_ERR_FILE;
    }
    SET_Image image;
    std::string why;
    const int read = SET_ReadDevice(set, &image, progress, &why);
    if (read != SET_OK) {
        lines->push_back(why);
        return read;
    }
    const int written = SET_WriteData(data, set, image, {});
    if (written != 0) {
        lines->push_back("'" + WRD_Visible(data) + "' " + SET_WriteErrorText(written) + ".");
        return SET_ERR_FILE;
    }
    *lines = SET_MirrorRemarks(set, image);
    lines->push_back(std::to_string(set.entries.size()) + " values saved.");
    return SET_OK;
}
