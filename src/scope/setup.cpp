// A table has a row for each key of the file, with the way in and the way out; loading, saving
// and the check of a line know no key by name but "off".
#include "scope/setup.h"

#include "comm/sysaddr.h"
#include "platform/safe_file.h"
#include "text/numbers.h"
#include "text/txfr.h"
#include "text/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace {

constexpr int SUB_PERIOD_MAX = 65535;  // a word of the target
constexpr size_t TEXT_MAX_CHARS = 120; // place, id, unit

std::vector<std::string> SplitFields(const std::string &line)
{
    std::vector<std::string> fields;
    // No quoting: neither a name of the target nor a unit holds a comma or a semicolon.
    const std::string text = line.substr(0, line.find(';'));
    for (size_t begin = 0; begin <= text.size();) {
        const size_t comma = std::min(text.find(',', begin), text.size());
        fields.push_back(TXT_Trim(text.substr(begin, comma - begin)));
        begin = comma + 1;
    }
    return fields;
}

// --- the lines of the file, a row a key -----------------------------------------------
// `index` is the channel from 0 for keys that name one, else 0.

typedef std::vector<std::string> Fields; // behind the key, and the channel's number

struct Key {
    const char *name;
    bool isOfChannel;
    size_t fields;
    bool (*parse)(const Fields &fields, SCP_Setup *setup, size_t index);
    std::string (*format)(const SCP_Setup &setup, size_t index); // "" = no line
};

constexpr double ANY = 1e300; // numbers without a limit of their own, but no infinity

const Key KEYS[] = {
    {"id", false, 1,
     [](const Fields &f, SCP_Setup *s, size_t) {
         s->id = f[0];
         return true;
     },
     [](const SCP_Setup &s, size_t) { return s.id; }},
    {"sub", false, 1,
     [](const Fields &f, SCP_Setup *s, size_t) {
         return TXT_ParseNumber(f[0], 1, SUB_PERIOD_MAX, &s->subPd);
     },
     [](const SCP_Setup &s, size_t) { return std::to_string(s.subPd); }},
    {"trigger", false, 2,
     [](const Fields &f, SCP_Setup *s, size_t) {
         int mode = 0, slope = 0;
         if (!TXT_ParseNumber(f[0], 0, 2, &mode) || !TXT_ParseNumber(f[1], 0, SX_TYPES - 1, &slope))
             return false;
         s->mode = mode;
         s->slope = slope;
         return true;
     },
     [](const SCP_Setup &s, size_t) {
         return std::to_string(s.mode) + ", " + std::to_string(s.slope);
     }},
    {"level", false, 1,
     [](const Fields &f, SCP_Setup *s, size_t) {
         return TXT_ParseNumber(f[0], -ANY, ANY, &s->level);
     },
     [](const SCP_Setup &s, size_t) { return SCP_NumberText(s.level); }},
    {"position", false, 1,
     [](const Fields &f, SCP_Setup *s, size_t) {
         return TXT_ParseNumber(f[0], 0.0, 100.0, &s->position);
     },
     [](const SCP_Setup &s, size_t) { return SCP_NumberText(s.position); }},
    {"ch", true, 2,
     [](const Fields &f, SCP_Setup *s, size_t index) {
         const int type = SX_FindType(f[1]);
         if (type < 0 || f[0].empty())
             return false;
         s->channels[index].isOn = true;
         s->channels[index].place = f[0];
         s->channels[index].type = type;
         return true;
     },
     [](const SCP_Setup &s, size_t index) {
         const SCP_ChannelSetup &channel = s.channels[index];
         return channel.place.empty() ? std::string()
                                      : channel.place + ", " + SX_TypeName(channel.type);
     }},
    {"off", true, 0, // behind the channel's own line
     [](const Fields &, SCP_Setup *s, size_t index) {
         s->channels[index].isOn = false;
         return true;
     },
     [](const SCP_Setup &s, size_t index) {
         const SCP_ChannelSetup &channel = s.channels[index];
         return std::string(channel.isOn || channel.place.empty() ? "" : " ");
     }},
    {"unit", true, 1,
     [](const Fields &f, SCP_Setup *s, size_t index) {
         s->channels[index].unit = f[0];
         return true;
     },
     [](const SCP_Setup &s, size_t index) { return s.channels[index].unit; }},
    {"scale", true, 2,
     [](const Fields &f, SCP_Setup *s, size_t index) {
         double factor = 0, offset = 0;
         if (!TXT_ParseNumber(f[0], -ANY, ANY, &factor) ||
             !TXT_ParseNumber(f[1], -ANY, ANY, &offset) || factor == 0)
             return false;
         s->channels[index].factor = factor;
         s->channels[index].offset = offset;
         return true;
     },
     [](const SCP_Setup &s, size_t index) {
         const SCP_ChannelSetup &channel = s.channels[index];
         return channel.factor == 1 && channel.offset == 0
                    ? std::string()
                    : SCP_NumberText(channel.factor) + ", " + SCP_NumberText(channel.offset);
     }},
};

// The key of a line's fields and its channel; null for a line that is not of ours. A
// channel out of range gives SX_CHANNELS_MAX.
const Key *FindKey(const Fields &fields, size_t *index)
{
    const auto key = std::find_if(std::begin(KEYS), std::end(KEYS),
                                  [&fields](const Key &row) { return fields[0] == row.name; });
    *index = 0;
    if (key == std::end(KEYS))
        return nullptr;
    int number = 0;
    if (key->isOfChannel)
        *index = fields.size() > 1 && TXT_ParseNumber(fields[1], 1, SX_CHANNELS_MAX, &number)
                     ? static_cast<size_t>(number - 1)
                     : SX_CHANNELS_MAX;
    return key;
}

// "ch, 2, [8012], u2", or "" when the setup has nothing to say under this key.
std::string FormatLine(const Key &key, size_t index, const SCP_Setup &setup)
{
    const std::string value = key.format(setup, index);
    if (value.empty())
        return "";
    std::string line = key.name;
    if (key.isOfChannel)
        line += ", " + std::to_string(index + 1);
    return value == " " ? line : line + ", " + value; // a key without a value
}

} // namespace

std::string SCP_NumberText(double value)
{
    if (std::isnan(value))
        return "";
    // Not printf: its decimal point is the locale's.
    char text[32]; // 24 characters are the longest
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general);
    return std::string(text, end.ptr);
}

int SCP_ParseSetupLine(const std::string &line, SCP_Setup *setup)
{
    Fields fields = SplitFields(line);
    size_t index = 0;
    const Key *key = FindKey(fields, &index);
    if (key == nullptr)
        return 0;
    const size_t skipped = key->isOfChannel ? 2 : 1;
    if (index >= SX_CHANNELS_MAX || fields.size() != skipped + key->fields)
        return -1;
    fields.erase(fields.begin(), fields.begin() + static_cast<long>(skipped));
    // What is too long is refused, not cut: half a name may be another variable's.
    const bool isLong = std::any_of(fields.begin(), fields.end(), [](const std::string &field) {
        return field.size() > TEXT_MAX_CHARS;
    });
    return !isLong && key->parse(fields, setup, index) ? 1 : -1;
}

int SCP_LoadSetup(const std::string &path, SCP_Setup *setup, std::vector<std::string> *problems)
{
    const int file = TXFR_Open(path.c_str());
    if (file < 0)
        return -1;
    // Lines are kept as they are, so that saving loses no comment and no later version's key.
    SCP_Setup loaded;
    std::string line;
    while (TXFR_RdNewLine(file, &line, -1) >= 0) {
        if (loaded.lines.size() == SCP_LINES_MAX) {
            problems->push_back("more than " + std::to_string(SCP_LINES_MAX) + " lines");
            TXFR_Close(file);
            return -1;
        }
        loaded.lines.push_back(line);
        if (SCP_ParseSetupLine(line, &loaded) < 0)
            problems->push_back("line " + std::to_string(loaded.lines.size()) + ": " + line);
    }
    *setup = loaded;
    return 0;
}

int SCP_SaveSetup(const std::string &path, const SCP_Setup &setup)
{
    std::vector<std::string> lines;
    std::set<std::pair<std::string, size_t>> written;
    for (const std::string &old : setup.lines) {
        size_t index = 0;
        const Key *key = FindKey(SplitFields(old), &index);
        if (key == nullptr || index >= SX_CHANNELS_MAX) {
            lines.push_back(old);
            continue;
        }
        // Its comment stays with a line that stays; of two with one key the last one held.
        const std::string text = FormatLine(*key, index, setup);
        // A channel's own line switches it on: "off" is of no use in front of it.
        const bool isTooEarly =
            std::string(key->name) == "off" && written.count({"ch", index}) == 0;
        if (text.empty() || isTooEarly || !written.insert({key->name, index}).second)
            continue;
        size_t comment = old.find(';');
        if (comment != std::string::npos)
            comment = old.find_last_not_of(" \t", comment - 1) + 1; // with the blanks before it
        lines.push_back(comment == std::string::npos ? text : text + old.substr(comment));
    }
    // What the old file did not have, channel by channel; keys of no channel once.
    for (size_t index = 0; index < SX_CHANNELS_MAX; ++index) {
        for (const Key &key : KEYS) {
            const std::string text =
                key.isOfChannel || index == 0 ? FormatLine(key, index, setup) : std::string();
            if (!text.empty() && written.insert({key.name, index}).second)
                lines.push_back(text);
        }
    }
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    for (const std::string &line : lines)
        std::fprintf(safe.file, "%s\r\n", line.c_str());
    return PLT_CommitSave(&safe);
}

uint32_t SCP_ResolvePlace(const std::string &place)
{
    // Hexadecimal without a mark in brackets only: "ADC" may be a variable's name.
    if (place.empty() || place[0] != '[')
        return place.empty() ? ADDR_NONE : GetSysAddr(place.c_str());
    const char *begin = place.data() + 1;
    const char *end = place.data() + place.size();
    uint32_t address = 0;
    const auto result = std::from_chars(begin, end, address, 16);
    const bool isWhole = result.ptr + 1 == end && *result.ptr == ']';
    return result.ec == std::errc() && isWhole && address < ADDR_LIMIT ? address : ADDR_NONE;
}
