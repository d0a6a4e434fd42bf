// The lines of the memory box taken apart again: columns stand at least two blanks apart.
#include "watch/mem_box.h"

#include "app/VR.h"
#include "runtime/userint.h"
#include "ui/resource.h"

namespace {

// A raw line: "00001f00( +0):  01 02 ... 10  characters", the characters at a fixed place
// because they may be blanks themselves.
constexpr size_t RAW_BYTES_AT = 15;
constexpr size_t RAW_BYTES_CHARS = 16 * 3;
constexpr size_t RAW_TEXT_AT = RAW_BYTES_AT + RAW_BYTES_CHARS + 2;
constexpr size_t RAW_CHARS = RAW_TEXT_AT + 16;

bool isRaw(const std::string &line)
{
    return line.size() == RAW_CHARS && line[8] == '(';
}

std::string rawRow(const std::string &line)
{
    std::string row = line.substr(0, RAW_BYTES_AT - 1);
    for (size_t at = RAW_BYTES_AT; at < RAW_TEXT_AT - 2; at += 3)
        row += '\t' + line.substr(at + 1, 2);
    return row + '\t' + line.substr(RAW_TEXT_AT);
}

bool isRule(const std::string &line)
{
    return line.find("---") != std::string::npos;
}

std::string columnRow(const std::string &line)
{
    std::string row;
    size_t blanks = 0;
    for (const char c : line) {
        if (c == ' ' || c == '|') {
            blanks += c == '|' ? 2 : 1;
            continue;
        }
        if (!row.empty() && blanks > 0)
            row += blanks > 1 ? '\t' : ' ';
        row += c;
        blanks = 0;
    }
    return row;
}

} // namespace

std::string MBX_TabbedText()
{
    int count = 0;
    GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &count);
    std::string text, line;
    for (int i = 0; i < count; ++i) {
        if (GetTextBoxLine(mainPanel, MAIN_MEM_BOX, i, &line) < 0 || isRule(line))
            continue;
        const std::string row = isRaw(line) ? rawRow(line) : columnRow(line);
        text += row.empty() ? "" : row + '\n';
    }
    return text;
}
