// A template is somebody's HTML with a few marks in it: whatever is no mark of ours is text. All
// that is wrong is found before anything is written, with its line.
#include "sets/template.h"

#include "platform/plain_file.h"
#include "text/words.h"

#include <algorithm>

namespace {

constexpr size_t PLACE_MAX = 40; // characters of a mark, from its begin to where it closes

struct BlockName {
    const char *name;
    PST_Block block;
    unsigned inside; // bits of the blocks that it may stand in
};
constexpr unsigned IN_ALL = 1u << PST_BLOCK_ALL, IN_GROUP = 1u << PST_BLOCK_GROUP,
                   IN_ROW = 1u << PST_BLOCK_ROW;
const BlockName BLOCKS[] = {{"group", PST_BLOCK_GROUP, IN_ALL},
                            {"heading", PST_BLOCK_HEADING, IN_GROUP},
                            {"row", PST_BLOCK_ROW, IN_GROUP},
                            {"file", PST_BLOCK_FILE, IN_ALL | IN_GROUP | IN_ROW}};

const char *NameOf(PST_Block block)
{
    for (const BlockName &row : BLOCKS)
        if (row.block == block)
            return row.name;
    return "";
}

struct Parser {
    const std::string *text = nullptr;
    size_t at = 0;
    bool (*isPlace)(const std::string &name) = nullptr;
    PST_Problems *problems = nullptr;
    std::string path;
    size_t places = 0;
    bool hasRows = false;

    void Refuse(size_t where, const std::string &why)
    {
        const auto end = text->begin() + static_cast<std::ptrdiff_t>(std::min(where, text->size()));
        problems->Add(path, static_cast<int>(std::count(text->begin(), end, '\n')) + 1, why);
    }
};

// "<!-- row -->" or "<!-- /row -->" at a position: its length, or 0 for any other comment.
size_t MatchTag(const std::string &text, size_t at, const BlockName **block, bool *isEnd)
{
    const size_t close = text.find("-->", at);
    if (text.compare(at, 4, "<!--") != 0 || close == std::string::npos || close - at > PLACE_MAX)
        return 0;
    std::string word = TXT_Trim(text.substr(at + 4, close - at - 4));
    *isEnd = !word.empty() && word[0] == '/';
    word = TXT_Trim(word.substr(*isEnd ? 1 : 0));
    for (const BlockName &row : BLOCKS) {
        if (word == row.name) {
            *block = &row;
            return close + 3 - at;
        }
    }
    return 0;
}

// Nothing for "": two marks may touch.
void AddText(PST_Node *parent, const std::string &text)
{
    if (text.empty())
        return;
    PST_Node node;
    node.text = text;
    parent->children.push_back(node);
}

// "{{name}}" at the parser's position.
void ParsePlace(Parser *parser, PST_Node *parent)
{
    const std::string &text = *parser->text;
    const size_t close = text.find("}}", parser->at);
    if (close == std::string::npos || close - parser->at > PLACE_MAX) {
        parser->Refuse(parser->at, "'{{' without '}}' behind it.");
        parser->at += 2;
        return;
    }
    // Kept also when it is unknown: the parsing goes on, and the template is refused in the end.
    PST_Node node;
    node.kind = PST_Node::PLACE;
    node.text = TXT_Trim(text.substr(parser->at + 2, close - parser->at - 2));
    if (parser->isPlace(node.text))
        ++parser->places;
    else
        parser->Refuse(parser->at, "There is no place '" + node.text + "'.");
    parent->children.push_back(node);
    parser->at = close + 2;
}

// Up to the end of the block, or of the text. Blocks nest three deep at most: which may
// stand in which is fixed.
void ParseBlock(Parser *parser, PST_Node *parent)
{
    const std::string &text = *parser->text;
    const size_t start = parser->at;
    while (parser->at < text.size()) {
        const size_t next = std::min(text.find("{{", parser->at), text.find("<!--", parser->at));
        AddText(parent, text.substr(parser->at, next - parser->at));
        if (next == std::string::npos) {
            parser->at = text.size();
            break;
        }
        parser->at = next;
        const BlockName *block = nullptr;
        bool isEnd = false;
        const size_t length = MatchTag(text, next, &block, &isEnd);
        // Wrong marks are reported and passed over: a user sees all of them at once.
        if (text[next] == '{') {
            ParsePlace(parser, parent);
        } else if (length == 0) {
            AddText(parent, "<!--");
            parser->at += 4;
        } else if (isEnd && block->block == parent->block) {
            parser->at += length;
            return;
        } else if (isEnd || (block->inside & 1u << parent->block) == 0) {
            parser->Refuse(next, std::string("'") + (isEnd ? "/" : "") + block->name +
                                     "' cannot stand here.");
            parser->at += length;
        } else {
            parser->at += length;
            PST_Node node;
            node.kind = PST_Node::BLOCK;
            node.block = block->block;
            parser->hasRows = parser->hasRows || block->block == PST_BLOCK_ROW;
            ParseBlock(parser, &node);
            parent->children.push_back(node);
        }
    }
    if (parent->block != PST_BLOCK_ALL)
        parser->Refuse(start, std::string("'<!-- ") + NameOf(parent->block) +
                                  " -->' has no end: '<!-- /" + NameOf(parent->block) + " -->'.");
}

} // namespace

int PST_ReadTemplate(const std::string &path, bool (*isPlace)(const std::string &name),
                     PST_Node *root, PST_Problems *problems)
{
    const size_t before = problems->count;
    std::string text;
    const int result = PLT_ReadFile(path, PST_TEMPLATE_BYTES_MAX, &text);
    if (result != PLT_FILE_OK) {
        problems->Add(path, 0, std::string("The template ") + PLT_FileErrorText(result) + ".");
        return -1;
    }
    Parser parser;
    parser.text = &text;
    parser.isPlace = isPlace;
    parser.problems = problems;
    parser.path = path;
    *root = PST_Node();
    root->kind = PST_Node::BLOCK;
    ParseBlock(&parser, root);
    if (problems->count == before && parser.places == 0)
        problems->Add(path, 0, "The template has no places such as {{name}}: nothing would show.");
    if (problems->count == before && !parser.hasRows)
        problems->Add(path, 0,
                      "The template has no '<!-- row -->' inside of a '<!-- group -->': no value "
                      "would show.");
    return problems->count == before ? 0 : -1;
}
