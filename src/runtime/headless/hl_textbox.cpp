// Text boxes, and the text values of fields. What the console's box gets is the
// headless program's standard output.
#include "runtime/headless/hl_state.h"

#include "ui/resource.h"

namespace {

HL_Control *FindBox(int panel, int control, int *error)
{
    HL_Control *box = HL_FindControl(panel, control, error);
    if (box && box->row->kind != UIK_TEXTBOX) {
        *error = UIE_BAD_TYPE;
        return nullptr;
    }
    return box;
}

int Count(const HL_Control &box)
{
    return static_cast<int>(box.lines.size());
}

void Print(const HL_Control &box, const std::string &text, bool isWholeLine)
{
    std::FILE *out = HL_GetState().out;
    if (!out || box.row->panel != PANEL_CONSOLE || box.row->control != CONSOLE_BOX)
        return;
    std::fwrite(text.data(), 1, text.size(), out);
    if (isWholeLine)
        std::fputc('\n', out);
}

std::vector<HL_Line> SplitLines(const std::string &text)
{
    std::vector<HL_Line> lines;
    size_t start = 0;
    for (size_t feed; (feed = text.find('\n', start)) != std::string::npos; start = feed + 1)
        lines.push_back({text.substr(start, feed - start), 0, ""});
    lines.push_back({text.substr(start), 0, ""});
    return lines;
}

// Text without a line feed at its end leaves the last line open: more follows there.
void Append(HL_Control *box, const std::string &text)
{
    std::vector<HL_Line> added = SplitLines(text);
    if (box->isLineOpen) {
        box->lines.back().label += added.front().label;
        added.erase(added.begin());
    }
    box->lines.insert(box->lines.end(), added.begin(), added.end());
    box->isLineOpen = true;
    if (!text.empty() && text.back() == '\n') {
        box->lines.pop_back();
        box->isLineOpen = false;
    }
}

} // namespace

int SetCtrlVal(int panel, int control, const std::string &text)
{
    int error = 0;
    HL_Control *c = HL_FindControl(panel, control, &error);
    if (!c)
        return error;
    if (c->row->kind == UIK_TEXT || c->row->kind == UIK_STRING) {
        c->text = text;
        return 0;
    }
    if (c->row->kind != UIK_TEXTBOX)
        return UIE_BAD_TYPE;
    if (!text.empty())
        Append(c, text);
    Print(*c, text, false);
    return 0;
}

int ResetTextBox(int panel, int control, const std::string &text)
{
    int error = 0;
    HL_Control *box = FindBox(panel, control, &error);
    if (!box)
        return error;
    box->lines.clear();
    box->firstVisible = 0;
    box->isLineOpen = false;
    if (text.empty())
        return 0;
    Append(box, text);
    Print(*box, text, false);
    return 0;
}

int InsertTextBoxLine(int panel, int control, int line, const std::string &text)
{
    int error = 0;
    HL_Control *box = FindBox(panel, control, &error);
    if (!box)
        return error;
    if (line < -1 || line > Count(*box))
        return UIE_BAD_INDEX;
    const int at = line == -1 ? Count(*box) : line;
    const std::vector<HL_Line> added = SplitLines(text);
    box->lines.insert(box->lines.begin() + at, added.begin(), added.end());
    if (at + static_cast<int>(added.size()) == Count(*box))
        box->isLineOpen = false;
    Print(*box, text, true);
    return 0;
}

int DeleteTextBoxLines(int panel, int control, int line, int count)
{
    int error = 0;
    HL_Control *box = FindBox(panel, control, &error);
    if (!box)
        return error;
    if (line < 0 || line >= Count(*box))
        return UIE_BAD_INDEX;
    const int last = count < 0 || count > Count(*box) - line ? Count(*box) : line + count;
    if (last == Count(*box))
        box->isLineOpen = false;
    box->lines.erase(box->lines.begin() + line, box->lines.begin() + last);
    return 0;
}

int GetNumTextBoxLines(int panel, int control, int *count)
{
    int error = 0;
    const HL_Control *box = FindBox(panel, control, &error);
    if (box)
        *count = Count(*box);
    return error;
}

int GetTextBoxLine(int panel, int control, int line, std::string *text)
{
    int error = 0;
    const HL_Control *box = FindBox(panel, control, &error);
    if (!box)
        return error;
    if (line < 0 || line >= Count(*box))
        return UIE_BAD_INDEX;
    *text = box->lines[static_cast<size_t>(line)].label;
    return 0;
}
