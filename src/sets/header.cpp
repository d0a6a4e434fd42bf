// Lines become items, items are spread into values (expand.cpp), and in the end nothing may
// lie over another thing: what is restored must not depend on the order of lines.
#include "sets/set.h"

#include "platform/plain_file.h"
#include "sets/expand.h"
#include "sets/line.h"
#include "settings/settings.h"
#include "symbols/assignment.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "text/words.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <unordered_map>

namespace {

// Bounds that no real project meets; a file that includes in circles does.
constexpr size_t DEPTH_MAX = 8; // headers inside one another
constexpr size_t FILES_MAX = 64;
constexpr int LINES_MAX = 100000; // of one header

struct Reader {
    PST_Set *set = nullptr;
    PST_Problems *problems = nullptr;
    std::vector<std::string> open; // headers being read, real paths, the outermost first
    std::unordered_map<std::string, size_t> items; // by reference
    size_t files = 0;
    std::string heading;
    size_t group = 0;
    std::string file; // of the line being read
    int line = 0;

    void Refuse(const std::string &text)
    {
        problems->Add(file, line, text);
    }
};

void ReadFile(Reader *reader, const std::string &path);

// Two names of one file must count as one, or a circle would be found late.
std::string RealPath(const std::string &path)
{
    std::error_code error;
    const auto real = std::filesystem::weakly_canonical(std::filesystem::u8path(path), error);
    return error ? path : real.u8string();
}

void Include(Reader *reader, const std::string &name)
{
    // Names count from the folder of the header that includes them; an absolute one replaces it.
    const std::string path =
        (std::filesystem::u8path(reader->file).parent_path() / std::filesystem::u8path(name))
            .u8string();
    const std::string real = RealPath(path);
    if (std::find(reader->open.begin(), reader->open.end(), real) != reader->open.end()) {
        reader->Refuse("'" + name + "' includes itself, directly or through others.");
        return;
    }
    if (reader->open.size() >= DEPTH_MAX || reader->files >= FILES_MAX) {
        reader->Refuse("Too many headers inside one another.");
        return;
    }
    // A group of the included header ends with it.
    const std::string file = reader->file, heading = reader->heading;
    const int line = reader->line;
    const size_t group = reader->group;
    // Opened for a look first: the message belongs to the line that includes, not to the file.
    std::FILE *probe = nullptr;
    const int result = PLT_OpenForReading(path, PLT_FILE_SIZE_MAX, &probe);
    if (result != PLT_FILE_OK) {
        reader->Refuse("'" + name + "' " + PLT_FileErrorText(result) + ".");
        return;
    }
    std::fclose(probe);
    ReadFile(reader, path);
    reader->file = file;
    reader->line = line;
    reader->heading = heading;
    reader->group = group;
}

// A group may be gone on with further down, also by an included header.
void ChooseGroup(Reader *reader, const std::string &name)
{
    std::vector<std::string> &groups = reader->set->groups;
    const auto found = std::find(groups.begin(), groups.end(), name);
    reader->group = static_cast<size_t>(found - groups.begin());
    reader->heading.clear();
    if (found == groups.end())
        groups.push_back(name);
}

PST_Item MakeItem(const Reader &reader, const std::string &reference)
{
    // Its values follow those there are: expanding appends them.
    PST_Item item;
    item.reference = reference;
    item.group = reader.group;
    item.heading = reader.heading;
    item.file = reader.file;
    item.line = reader.line;
    item.firstEntry = static_cast<uint32_t>(reader.set->entries.size());
    return item;
}

// Only what is good can be mirrored further down.
void Finish(Reader *reader, const PST_Item &item, const std::string &why)
{
    if (!why.empty())
        reader->Refuse(why);
    else
        reader->items.emplace(item.reference, reader->set->items.size() - 1);
}

// "area 8140h, length 64" and "area awTable, length 64".
void AddArea(Reader *reader, const std::string &text)
{
    PST_Line line;
    uint32_t length = 0;
    std::string why = PST_SplitLine(text, &line);
    PST_Item item = MakeItem(*reader, line.reference);
    if (why.empty())
        why = PST_ParseAttributes(line.rest, &item.attributes, nullptr, &length);
    if (why.empty() && (!line.cast.empty() || !line.value.empty() || length == 0))
        why = "An area is an address or a name, and a length: area 8140h, length 64.";
    if (why.empty())
        why = PST_ExpandArea(reader->set, &item, length);
    Finish(reader, item, why);
}

// "wGainCopy = wGain": the first place receives what the second has.
void AddMirror(Reader *reader, const PST_Line &line)
{
    const auto source = reader->items.find(line.value);
    std::string why;
    if (!line.rest.empty())
        why = "A mirror has no attributes of its own.";
    else if (source == reader->items.end())
        why = "'" + line.value + "' must stand above its mirror '" + line.reference + "'.";
    else
        why = PST_ExpandMirror(reader->set, reader->set->items[source->second], line.cast,
                               line.reference);
    if (!why.empty())
        reader->Refuse(why);
}

void AddVariable(Reader *reader, const PST_Line &line)
{
    PST_Item item = MakeItem(*reader, line.reference);
    uint32_t count = 0;
    std::string why = PST_ParseAttributes(line.rest, &item.attributes, &count, nullptr);
    if (why.empty() && line.isAddress)
        why = "An address is an area or a mirror: area " + line.reference + ", length 16.";
    if (why.empty())
        why = PST_ExpandVariable(reader->set, &item, line.cast, count, line.value);
    Finish(reader, item, why);
}

void ReadLine(Reader *reader, const std::string &text)
{
    std::string name;
    // Keywords are no reserved words: a variable may be called "area" or "group", as long as it is
    // not followed by what follows the keyword.
    if (PST_ParseKeyword(text, "include", &name)) {
        Include(reader, name);
    } else if (PST_ParseKeyword(text, "device", &name)) {
        reader->set->device = name;
    } else if (PST_ParseKeyword(text, "group", &name)) {
        ChooseGroup(reader, name);
    } else if (PST_ParseLabel(text, &name)) {
        reader->heading = name;
    } else if (text.compare(0, 5, "area ") == 0 && text.find_first_not_of(" \t", 4) != text.npos &&
               text[text.find_first_not_of(" \t", 4)] != '=') {
        AddArea(reader, TXT_Trim(text.substr(5)));
    } else {
        PST_Line line;
        const std::string why = PST_SplitLine(text, &line);
        // A name behind "=" makes a mirror, a number a default.
        const char first = line.value.empty() ? '0' : line.value[0];
        if (!why.empty())
            reader->Refuse(why);
        else if (first == '_' || std::isalpha(static_cast<unsigned char>(first)) != 0)
            AddMirror(reader, line);
        else
            AddVariable(reader, line);
    }
}

void ReadFile(Reader *reader, const std::string &path)
{
    reader->file = path;
    reader->line = 0;
    const int handle = TXFR_Open(path.c_str());
    if (handle < 0) {
        reader->Refuse(std::string("The header ") + PLT_WhyUnreadable(path) + ".");
        return;
    }
    // Real paths, compared when another header is included.
    ++reader->files;
    reader->open.push_back(RealPath(path));
    std::string line;
    while (TXFR_RdNewLine(handle, &line, static_cast<int>(PST_LINE_MAX) + 1) >= 0) {
        ++reader->line;
        const bool isBroken = TXFR_IsBrokenLine(handle) == 1;
        const bool isLarge =
            reader->line > LINES_MAX || reader->set->places.size() >= PST_VALUES_MAX;
        if (isBroken) {
            reader->Refuse(PST_LongLineText());
        } else if (isLarge) {
            reader->Refuse("The set is too large: at most " + std::to_string(LINES_MAX) +
                           " lines and " + std::to_string(PST_VALUES_MAX) + " values.");
        } else {
            std::string text, comment;
            PST_CutComment(line, &text, &comment);
            if (!text.empty())
                ReadLine(reader, text);
        }
        // Where so much is wrong, the rest is of no interest.
        if (isBroken || isLarge || reader->problems->count > PST_PROBLEMS_MAX) {
            TXFR_Close(handle);
            break;
        }
        // An included header has put its own name there.
        reader->file = path;
    }
    reader->open.pop_back();
}

// Two names for the same bytes would be restored one after the other.
void CheckOverlap(Reader *reader)
{
    const PST_Set &set = *reader->set;
    std::vector<uint32_t> order(set.places.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(), [&set](uint32_t a, uint32_t b) {
        return set.places[a].address < set.places[b].address;
    });
    uint32_t widest = 0; // the place whose end lies furthest so far
    for (size_t i = 1; i < order.size(); ++i) {
        const PST_Place &before = set.places[order[widest]], &place = set.places[order[i]];
        const uint32_t end = before.address + set.entries[before.entry].size;
        if (place.address < end) {
            const PST_Item &item = set.items[set.entries[place.entry].item];
            reader->problems->Add(item.file, item.line,
                                  "'" + PST_PlaceName(set, order[i]) + "' and '" +
                                      PST_PlaceName(set, order[widest]) +
                                      "' lie over one another.");
        }
        if (place.address + set.entries[place.entry].size > end)
            widest = static_cast<uint32_t>(i);
    }
}

} // namespace

int PST_ReadHeader(const std::string &path, PST_Set *set, PST_Problems *problems)
{
    *set = PST_Set();
    set->path = path;
    set->groups.push_back("");
    Reader reader;
    reader.set = set;
    reader.problems = problems;
    const size_t before = problems->count;
    ReadFile(&reader, path);
    reader.file = path;
    reader.line = 0;
    if (problems->count == before && set->entries.empty())
        reader.Refuse("The header names nothing.");
    // Behind the values: places[i] is the value of entries[i] as long as there is one.
    set->places.insert(set->places.end(), set->mirrors.begin(), set->mirrors.end());
    set->mirrors.clear();
    CheckOverlap(&reader);
    return problems->count == before ? 0 : -1;
}
