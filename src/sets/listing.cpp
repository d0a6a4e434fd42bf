// The template's blocks are walked and repeated for groups, headings, rows and files; what a place
// shows there is the business of listing_places.cpp.
#include "sets/listing.h"

#include "platform/safe_file.h"
#include "platform/system.h"
#include "sets/listing_places.h"
#include "sets/template.h"
#include "text/words.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr size_t OUTPUT_BYTES_MAX = 0x8000000; // 128 MiB: no browser shows more

struct Writer {
    PST_Spot spot;
    std::string out;
};

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

// Once for each file, whatever it stands in: columns of a row, or the files' own lines.
void FillFiles(Writer *writer, const PST_Node &node, const std::vector<const PST_Row *> &rows)
{
    const PST_Spot before = writer->spot;
    writer->spot.isInFile = true;
    for (size_t i = 0; i < before.files->size(); ++i) {
        writer->spot.file = i;
        Fill(writer, node.children, rows);
    }
    writer->spot = before;
}

// Each row, with the heading block above it where a new heading begins.
void FillRows(Writer *writer, const PST_Node &node, const PST_Node *heading,
              const std::vector<const PST_Row *> &rows)
{
    const PST_Spot before = writer->spot;
    std::string shown;
    for (const PST_Row *row : rows) {
        writer->spot.row = row;
        if (heading != nullptr && row->heading != shown && !row->heading.empty())
            Fill(writer, heading->children, {});
        shown = row->heading;
        writer->spot.isInRow = true;
        Fill(writer, node.children, {});
        writer->spot.isInRow = false;
    }
    writer->spot = before;
}

// Runs of rows with the same group: the rows come sorted by it.
void FillGroups(Writer *writer, const PST_Node &node)
{
    const std::vector<PST_Row> &rows = *writer->spot.rows;
    const PST_Spot before = writer->spot;
    for (size_t i = 0; i < rows.size();) {
        std::vector<const PST_Row *> group;
        writer->spot.row = &rows[i];
        for (const std::string &name = rows[i].group; i < rows.size() && rows[i].group == name; ++i)
            group.push_back(&rows[i]);
        Fill(writer, node.children, group);
    }
    writer->spot = before;
}

void Fill(Writer *writer, const std::vector<PST_Node> &nodes,
          const std::vector<const PST_Row *> &rows)
{
    const PST_Node *heading = nullptr;
    for (const PST_Node &node : nodes) {
        // Blocks within blocks multiply: a small template and a large set can fill any disk.
        if (writer->out.size() > OUTPUT_BYTES_MAX)
            return;
        if (node.kind == PST_Node::TEXT)
            writer->out += node.text;
        else if (node.kind == PST_Node::PLACE)
            AppendEscaped(&writer->out, PST_GetPlaceText(writer->spot, node.text));
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

} // namespace

int PST_WriteListing(const std::string &templatePath, const std::vector<PST_File> &files,
                     int language, const std::string &output, PST_Problems *problems)
{
    PST_Node root;
    if (PST_ReadTemplate(templatePath, PST_IsPlace, &root, problems) != 0)
        return -1;
    const std::vector<PST_Row> rows = PST_CompareFiles(files);
    Writer writer;
    writer.spot.files = &files;
    writer.spot.rows = &rows;
    writer.spot.language = language;
    PLT_Date now;
    PLT_LocalTime(&now);
    writer.spot.now =
        TXT_Format("%02d-%02d-%04d %02d:%02d", now.day, now.month, now.year, now.hour, now.minute);
    Fill(&writer, root.children, {});
    if (writer.out.size() > OUTPUT_BYTES_MAX) {
        problems->Add(output, 0, "The listing would be larger than 128 MiB.");
        return -1;
    }
    SafeFile safe;
    int result = PLT_BeginSave(&safe, output, "wb");
    if (result == 0) {
        std::fwrite(writer.out.data(), 1, writer.out.size(), safe.file);
        result = PLT_CommitSave(&safe);
    }
    if (result != 0)
        problems->Add(output, 0, std::string("The file ") + PST_WriteErrorText(result) + ".");
    return result == 0 ? 0 : -1;
}
