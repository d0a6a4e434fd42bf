// A place is a row of a table: what it shows is asked of the group, the value, the file
// that the template is being repeated for.
#include "sets/listing.h"

#include "platform/safe_file.h"
#include "platform/system.h"
#include "sets/listing_words.h"
#include "sets/template.h"
#include "sets/value.h"
#include "settings/settings.h"
#include "text/words.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unordered_map>

namespace {

constexpr size_t OUTPUT_BYTES_MAX = 0x8000000;
const char NO_VALUE[] = "–";
const char MARK_CHANGED[] = "changed"; // class of a value that is not its default
const char MARK_DIFFERS[] = "differs"; // ... that is not the first file's

// What the template stands in at the moment.
struct Place {
    const std::vector<PST_File> *files = nullptr;
    const std::vector<PST_Row> *rows = nullptr;
    int language = LANGUAGE_CZ;
    const PST_Row *row = nullptr; // the group's first one outside of rows
    bool isInRow = false;
    size_t file = 0;
    bool isInFile = false;
    std::string now;
};

struct Writer {
    Place place;
    std::string out;
};

const PST_File &FileAt(const Place &place)
{
    return (*place.files)[place.file];
}

// In a row the value of the file at hand; attributes come from the first that has it.
const PST_Record *ValueAt(const Place &place)
{
    return place.isInRow ? place.row->records[place.file] : nullptr;
}

const PST_Record *AnyRecord(const Place &place)
{
    const auto &records = place.row->records;
    const auto found =
        std::find_if(records.begin(), records.end(), [](const PST_Record *r) { return r; });
    return place.isInRow ? *found : nullptr;
}

bool NumberOf(const PST_Record &record, double *number)
{
    if (!PST_ParseNumber(record.value, number))
        return false;
    if (record.cast == "(float)")
        *number = static_cast<double>(static_cast<float>(*number));
    return true;
}

// Bytes are written as people like, with blanks and small letters.
std::string PlainBytes(const std::string &text)
{
    std::string plain;
    for (const char c : text)
        if (c != ' ')
            plain += c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    return plain;
}

bool IsSameValue(const PST_Record *a, const PST_Record *b)
{
    if (a == nullptr || b == nullptr)
        return a == b;
    double first = 0, second = 0;
    if (a->cast == b->cast && a->value == b->value)
        return true;
    if (a->cast != b->cast && !a->cast.empty() && !b->cast.empty())
        return false;
    if (NumberOf(*a, &first) && NumberOf(*b, &second))
        return first == second;
    return PlainBytes(a->value) == PlainBytes(b->value);
}

std::string ShownValue(const PST_Record *record)
{
    double number = 0;
    if (record == nullptr)
        return NO_VALUE;
    const bool isBytes = record->cast.empty() && record->value.find(' ') != std::string::npos;
    if (isBytes || record->attributes.factor == 1 || !NumberOf(*record, &number))
        return record->value;
    return PST_ShownNumber(number * record->attributes.factor);
}

std::string ScaledText(bool isThere, double number, double factor)
{
    return isThere ? PST_ShownNumber(number * factor) : "";
}

std::string LimitsText(const PST_Attributes &a)
{
    if (!a.hasMin && !a.hasMax)
        return "";
    return ScaledText(a.hasMin, a.min, a.factor) + " … " + ScaledText(a.hasMax, a.max, a.factor);
}

// Against the first file where there are several, else against the default.
std::string MarkText(const Place &place)
{
    const PST_Record *record = ValueAt(place);
    if (!place.isInRow)
        return "";
    if (place.files->size() > 1) {
        const bool isOther =
            place.isInFile ? !IsSameValue(place.row->records[0], record) : place.row->differs;
        return isOther ? MARK_DIFFERS : "";
    }
    double number = 0;
    if (record == nullptr || !record->attributes.hasDefault || !NumberOf(*record, &number))
        return "";
    double expected = record->attributes.defaultValue;
    if (record->cast == "(float)")
        expected = static_cast<double>(static_cast<float>(expected));
    return number == expected ? "" : MARK_CHANGED;
}

std::string SignText(const Place &place)
{
    const std::string mark = MarkText(place);
    return mark == MARK_DIFFERS ? "≠" : mark == MARK_CHANGED ? "*" : "";
}

std::string FileName(const std::string &path)
{
    return std::filesystem::u8path(path).filename().u8string();
}

std::string GroupText(const Place &place)
{
    return place.row != nullptr ? place.row->group : "";
}

std::string CountDifferences(const Place &place)
{
    return std::to_string(std::count_if(place.rows->begin(), place.rows->end(),
                                        [](const PST_Row &row) { return row.differs; }));
}

struct PlaceRow {
    const char *name;
    std::string (*text)(const Place &place);
};
const PlaceRow PLACES[] = {
    {"file", [](const Place &p) { return FileName(FileAt(p).path); }},
    {"date", [](const Place &p) { return FileAt(p).date; }},
    {"time", [](const Place &p) { return FileAt(p).time; }},
    {"device", [](const Place &p) { return FileAt(p).device; }},
    {"processor", [](const Place &p) { return FileAt(p).processor; }},
    {"station", [](const Place &p) { return FileAt(p).station; }},
    {"map", [](const Place &p) { return FileAt(p).map; }},
    {"header", [](const Place &p) { return FileAt(p).header; }},
    {"number", [](const Place &p) { return std::to_string(p.file + 1); }},
    {"values", [](const Place &p) { return std::to_string(p.rows->size()); }},
    {"differences", CountDifferences},
    {"language", [](const Place &p) { return std::string(PST_LanguageCode(p.language)); }},
    {"now", [](const Place &p) { return p.now; }},
    {"group", GroupText},
    {"heading", [](const Place &p) { return p.row != nullptr ? p.row->heading : ""; }},
    {"name", [](const Place &p) { return p.isInRow ? p.row->name : ""; }},
    {"value", [](const Place &p) { return ShownValue(ValueAt(p)); }},
    {"raw", [](const Place &p) { return ValueAt(p) != nullptr ? ValueAt(p)->value : NO_VALUE; }},
    {"mark", MarkText},
    {"sign", SignText},
    {"rowmark",
     [](const Place &p) {
         return p.isInRow && p.row->differs ? std::string(MARK_DIFFERS) : std::string();
     }},
    {"text", [](const Place &p) { return p.isInRow ? AnyRecord(p)->attributes.text : ""; }},
    {"unit", [](const Place &p) { return p.isInRow ? AnyRecord(p)->attributes.unit : ""; }},
    {"limits",
     [](const Place &p) { return p.isInRow ? LimitsText(AnyRecord(p)->attributes) : ""; }},
    {"default",
     [](const Place &p) {
         if (!p.isInRow)
             return std::string();
         const PST_Attributes &a = AnyRecord(p)->attributes;
         return ScaledText(a.hasDefault, a.defaultValue, a.factor);
     }},
    {"type",
     [](const Place &p) {
         const std::string cast = p.isInRow ? AnyRecord(p)->cast : "";
         return cast.size() > 2 ? cast.substr(1, cast.size() - 2) : std::string();
     }},
};

const PlaceRow *FindPlace(const std::string &name)
{
    for (const PlaceRow &row : PLACES)
        if (name == row.name)
            return &row;
    return nullptr;
}

bool IsPlace(const std::string &name)
{
    return FindPlace(name) != nullptr ||
           (name.compare(0, 2, "t.") == 0 && PST_FindWord(name.substr(2), LANGUAGE_CZ) != nullptr);
}

// Bytes of the UTF-8 character that begins here, 0 when none does.
size_t CharacterLength(const char *text, size_t rest)
{
    const auto at = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = at(0);
    const size_t length = lead < 0x80                   ? 1
                          : lead >= 0xC2 && lead < 0xE0 ? 2
                          : lead >= 0xE0 && lead < 0xF0 ? 3
                          : lead >= 0xF0 && lead < 0xF5 ? 4
                                                        : 0;
    if (length > rest)
        return 0;
    for (size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0) != 0x80)
            return 0;
    // No longer form than needed, no half of a pair, nothing beyond the last character.
    const bool isWrong = (lead == 0xE0 && at(1) < 0xA0) || (lead == 0xED && at(1) > 0x9F) ||
                         (lead == 0xF0 && at(1) < 0x90) || (lead == 0xF4 && at(1) > 0x8F);
    return isWrong ? 0 : length;
}

// As text and within quotes of an attribute; files in other code pages give no broken page.
void AppendEscaped(std::string *out, const std::string &text)
{
    for (size_t i = 0; i < text.size();) {
        const size_t length = CharacterLength(text.data() + i, text.size() - i);
        const char c = text[i];
        if (length == 0 || static_cast<unsigned char>(c) < ' ' || c == '\x7F')
            *out += "\xEF\xBF\xBD"; // the replacement character
        else if (c == '&')
            *out += "&amp;";
        else if (c == '<')
            *out += "&lt;";
        else if (c == '>')
            *out += "&gt;";
        else if (c == '"')
            *out += "&quot;";
        else if (c == '\'')
            *out += "&#39;";
        else
            out->append(text, i, length);
        i += std::max<size_t>(length, 1);
    }
}

void Fill(Writer *writer, const std::vector<PST_Node> &nodes,
          const std::vector<const PST_Row *> &rows);

void FillFiles(Writer *writer, const PST_Node &node, const std::vector<const PST_Row *> &rows)
{
    const Place before = writer->place;
    writer->place.isInFile = true;
    for (size_t i = 0; i < before.files->size(); ++i) {
        writer->place.file = i;
        Fill(writer, node.children, rows);
    }
    writer->place = before;
}

// Each row, with the heading block above it where a new heading begins.
void FillRows(Writer *writer, const PST_Node &node, const PST_Node *heading,
              const std::vector<const PST_Row *> &rows)
{
    const Place before = writer->place;
    std::string shown;
    for (const PST_Row *row : rows) {
        writer->place.row = row;
        if (heading != nullptr && row->heading != shown && !row->heading.empty())
            Fill(writer, heading->children, {});
        shown = row->heading;
        writer->place.isInRow = true;
        Fill(writer, node.children, {});
        writer->place.isInRow = false;
    }
    writer->place = before;
}

// Runs of rows with the same group.
void FillGroups(Writer *writer, const PST_Node &node)
{
    const std::vector<PST_Row> &rows = *writer->place.rows;
    const Place before = writer->place;
    for (size_t i = 0; i < rows.size();) {
        std::vector<const PST_Row *> group;
        writer->place.row = &rows[i];
        for (const std::string &name = rows[i].group; i < rows.size() && rows[i].group == name; ++i)
            group.push_back(&rows[i]);
        Fill(writer, node.children, group);
    }
    writer->place = before;
}

void Fill(Writer *writer, const std::vector<PST_Node> &nodes,
          const std::vector<const PST_Row *> &rows)
{
    const PST_Node *heading = nullptr;
    for (const PST_Node &node : nodes) {
        if (writer->out.size() > OUTPUT_BYTES_MAX)
            return;
        if (node.kind == PST_Node::TEXT)
            writer->out += node.text;
        else if (node.kind == PST_Node::PLACE && node.text.compare(0, 2, "t.") == 0)
            writer->out += PST_FindWord(node.text.substr(2), writer->place.language);
        else if (node.kind == PST_Node::PLACE)
            AppendEscaped(&writer->out, FindPlace(node.text)->text(writer->place));
        else if (node.block == PST_BLOCK_GROUP)
            FillGroups(writer, node);
        else if (node.block == PST_BLOCK_HEADING)
            heading = &node; // it stands above the rows that it is of
        else if (node.block == PST_BLOCK_ROW)
            FillRows(writer, node, heading, rows);
        else
            FillFiles(writer, node, rows);
    }
}

std::string NowText()
{
    PLT_Date now;
    PLT_LocalTime(&now);
    char text[48];
    std::snprintf(text, sizeof text, "%02d-%02d-%04d %02d:%02d", now.day, now.month, now.year,
                  now.hour, now.minute);
    return text;
}

} // namespace

std::vector<PST_Row> PST_CompareFiles(const std::vector<PST_File> &files)
{
    std::unordered_map<std::string, size_t> byGroup, byName;
    std::vector<PST_Row> found;
    for (size_t file = 0; file < files.size(); ++file) {
        for (const PST_Record &record : files[file].records) {
            const auto at = byName.emplace(record.name, found.size());
            if (at.second) {
                found.push_back({record.group, record.heading, record.name, {}, false});
                found.back().records.resize(files.size(), nullptr);
                byGroup.emplace(record.group, byGroup.size());
            }
            found[at.first->second].records[file] = &record;
        }
    }
    for (PST_Row &row : found)
        row.differs =
            std::any_of(row.records.begin(), row.records.end(),
                        [&row](const auto *other) { return !IsSameValue(row.records[0], other); });
    std::stable_sort(found.begin(), found.end(), [&byGroup](const PST_Row &a, const PST_Row &b) {
        return byGroup[a.group] < byGroup[b.group];
    });
    return found;
}

int PST_WriteListing(const std::string &templatePath, const std::vector<PST_File> &files,
                     int language, const std::string &output, PST_Problems *problems)
{
    PST_Node root;
    if (PST_ReadTemplate(templatePath, IsPlace, &root, problems) != 0)
        return -1;
    const std::vector<PST_Row> rows = PST_CompareFiles(files);
    Writer writer;
    writer.place.files = &files;
    writer.place.rows = &rows;
    writer.place.language = language;
    writer.place.now = NowText();
    Fill(&writer, root.children, {});
    if (writer.out.size() > OUTPUT_BYTES_MAX) {
        problems->Add(output, 0, "The listing would be larger than 128 MiB.");
        return -1;
    }
    SafeFile safe;
    int result = SAF_Open(&safe, output, "wb");
    if (result == 0) {
        std::fwrite(writer.out.data(), 1, writer.out.size(), safe.file);
        result = SAF_Commit(&safe);
    }
    if (result != 0)
        problems->Add(output, 0, std::string("The file ") + PST_WriteErrorText(result) + ".");
    return result == 0 ? 0 : -1;
}
