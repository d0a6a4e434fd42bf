// What may stand at the cursor decides: the first word is a command, a word behind "!"
// a script, any other a name of the map; `set` takes members, registers and stations, too.
#include "console/monitor/completion.h"

#include <algorithm>
#include <filesystem>

#include "console/monitor/monitor.h"
#include "console/script/script_command.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/tokens.h"
#include "text/words.h"
#include "watch/windows/name_completion.h"

namespace {

bool StartsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// Scripts of the folder that stands before the name, or of the current one.
void AddScripts(const std::string &start, std::vector<std::string> *candidates)
{
    const size_t cut = start.find_last_of("/\\");
    const std::string folder = cut == std::string::npos ? "" : start.substr(0, cut + 1);
    // A folder that is not there, or not to be read, has no scripts; no message while typing.
    std::error_code error;
    std::filesystem::directory_iterator entry(
        std::filesystem::u8path(folder.empty() ? "." : folder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = folder + entry->path().filename().u8string();
        if (entry->path().extension() == ".scr" && StartsWith(name, start))
            candidates->push_back(name);
    }
}

} // namespace

int CON_Complete(const std::string &line, size_t cursor, std::vector<std::string> *candidates)
{
    candidates->clear();
    // The last word begins behind a blank, a "," or the parts of `set`, and behind the "!" of
    // a script.
    const std::string before = line.substr(0, cursor);
    const size_t cut = before.find_last_of(" \t,=)");
    size_t start = cut == std::string::npos ? 0 : cut + 1;
    if (start < before.size() && before[start] == '!')
        ++start;
    const std::string word = before.substr(start);
    const std::string ahead = TXT_Trim(before.substr(0, start));
    if (ahead == "!") {
        AddScripts(word, candidates);
    } else if (ahead.empty() && command == CMD_C166) {
        for (int i = 0; i < SCR_cnTable; i++) // only what the gate would let through
            if (StartsWith(SCR_aTable[i].name, word) &&
                (VR_isFullCommandSet || CON_IsGateWord(SCR_aTable[i].name)))
                candidates->push_back(SCR_aTable[i].name);
    } else if (TXT_IsSameWord(ahead.substr(0, TXT_WordLength(ahead.c_str())), "set")) {
        *candidates = WIN_CompleteName(word);
    } else if (!word.empty()) { // without a letter all 5,000 names of a map would match
        for (int i = 0; i < nNodes; i++)
            if (StartsWith(aVarNode[i].name, word))
                candidates->push_back(aVarNode[i].name);
    }
    std::sort(candidates->begin(), candidates->end());
    candidates->erase(std::unique(candidates->begin(), candidates->end()), candidates->end());
    if (candidates->size() > CANDIDATES_MAX)
        candidates->resize(CANDIDATES_MAX);
    return static_cast<int>(start);
}

std::string CON_GetCommonStart(const std::vector<std::string> &candidates)
{
    if (candidates.empty())
        return "";
    std::string common = candidates.front();
    for (const std::string &candidate : candidates) {
        size_t length = 0;
        while (length < common.size() && length < candidate.size() &&
               common[length] == candidate[length])
            length++;
        common.resize(length);
    }
    return common;
}

void CON_CompleteLine(std::string *line)
{
    std::vector<std::string> candidates;
    const int start = CON_Complete(*line, line->size(), &candidates);
    if (candidates.empty())
        return;
    // Candidates may differ from what was typed, and from each other, in the case of letters.
    const std::string common = CON_GetCommonStart(candidates);
    if (common.size() >= line->size() - static_cast<size_t>(start))
        *line = line->substr(0, static_cast<size_t>(start)) + common;
    if (candidates.size() == 1) {
        *line += ' ';
        return;
    }
    std::string row;
    for (const std::string &candidate : candidates)
        row += " " + candidate;
    PrintMonStr(row);
}
