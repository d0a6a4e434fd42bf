// A set of variables: what a header file (.ulh) says belongs to it, with the place of each
// value in the target. Plain data; the header's reader fills it in, everything else of the room
// reads it. Values lie beside it in images, so that target, file and default can be compared.
#ifndef SETS_SET_H
#define SETS_SET_H

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

constexpr size_t PST_VALUES_MAX = 65536;  // of one set, mirrors among them
constexpr size_t PST_PIECE_MAX = 16;      // bytes of one value: an area comes in such pieces
constexpr size_t PST_PROBLEMS_MAX = 50;   // kept; what goes beyond is counted
constexpr size_t PST_LINE_MAX = 1000;     // characters of a line of a header or data file
constexpr size_t PST_WORDS_MAX = 200;     // characters of a text, unit or group
constexpr size_t PST_REFERENCE_MAX = 230; // characters of a reference to a variable

// Something wrong in a file, or a remark about it.
struct PST_Problem {
    std::string file;
    int line = 0; // from 1; 0 = the file as a whole
    std::string text;
};
struct PST_Problems {
    std::vector<PST_Problem> list;
    size_t count = 0;

    void Add(const std::string &file, int line, const std::string &text)
    {
        if (++count <= PST_PROBLEMS_MAX)
            list.push_back({file, line, text});
    }
};
// "demo.ulh, line 3: ...", a line each, and how many more there are.
std::string PST_FormatProblems(const PST_Problems &problems);

// What a header says about a variable beside its place. Limits and default are in the
// target's own numbers; factor is for showing: shown = number * factor.
struct PST_Attributes {
    std::string unit, text;
    double factor = 1;
    bool hasMin = false, hasMax = false, hasDefault = false;
    double min = 0, max = 0, defaultValue = 0;
    bool isReadOnly = false; // never written
    bool needsStop = false;  // to be written only while the machine stands
};

struct PST_Item { // one line of the header
    std::string reference;
    PST_Attributes attributes;
    size_t group = 0;
    std::string heading; // label above it, "" for none
    std::string file;
    int line = 0;
    uint32_t firstEntry = 0, entries = 0;
};

struct PST_Entry {    // one value
    std::string name; // "awTable[3]"; of a piece of an area its address, "08140h"
    int32_t type = 0; // ATP_..., 0 = plain bytes
    uint8_t size = 0; // bytes, 1 to PST_PIECE_MAX
    uint32_t item = 0;
};

// Where a value stands in the target. The first places are the entries' own, in their
// order; mirrors follow.
struct PST_Place {
    uint32_t address = 0;
    uint32_t entry = 0;
    std::string name; // of a mirror; "" for the entry's own place
};

struct PST_Set {
    std::string path, device;
    std::vector<std::string> groups; // "Drive/Ramp"; the first is "", for lines above any group
    std::vector<PST_Item> items;
    std::vector<PST_Entry> entries;
    std::vector<PST_Place> places;
    std::vector<PST_Place> mirrors; // while the header is read; then behind the places
    std::unordered_map<std::string, uint32_t> byName; // entry of a name
};

typedef std::array<uint8_t, PST_PIECE_MAX> PST_Bytes;

struct PST_Held {
    PST_Bytes bytes = {};
    bool isThere = false;
};
// One value a place (of the target) or an entry (of a file).
typedef std::vector<PST_Held> PST_Image;

inline const PST_Attributes &PST_AttributesOf(const PST_Set &set, const PST_Entry &entry)
{
    return set.items[entry.item].attributes;
}

inline const std::string &PST_PlaceName(const PST_Set &set, uint32_t place)
{
    const PST_Place &at = set.places[place];
    return at.name.empty() ? set.entries[at.entry].name : at.name;
}

// Whether both hold the value and its bytes are the same.
bool PST_IsSame(const PST_Entry &entry, const PST_Held &a, const PST_Held &b);

// Reads a header: one thing a line, its names resolved through the loaded map and type map into
// single values with their places. 0, or -1: the reasons are in *problems, each with its file and
// line, and *set is of no use. Read anew whenever map, type map or processor change.
int PST_ReadHeader(const std::string &path, PST_Set *set, PST_Problems *problems);

// A value that says which symbols the loaded map has and where; 0 without a map. Two builds
// with every symbol in its place have the same.
uint32_t PST_MapStamp();
// The same over everything that names and types depend on: map, type map and processor.
uint32_t PST_SymbolsStamp();

// How far a long step is. True: the user wishes to stop, which is done before the next block.
struct PST_Progress {
    void *context = nullptr;
    bool (*step)(void *context, size_t done, size_t total, const char *what) = nullptr;
};

#endif
