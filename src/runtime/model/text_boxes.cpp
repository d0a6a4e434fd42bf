// Texts: one-line fields and shown texts, and boxes of many lines. A box goes to the view as what
// was added to it: twenty thousand lines of a console are too much to be told anew for each.
#include "runtime/model/model.h"

namespace {

// What `use` answers for a text box, or why there is none.
template <class Use> int OnBox(int panel, int control, Use use)
{
    return MDL_OnKind(panel, control, {UIK_TEXTBOX}, use);
}

int Count(const MDL_Control &box)
{
    return static_cast<int>(box.box.size());
}

std::string WholeText(const MDL_Control &box)
{
    std::string text;
    for (size_t i = 0; i < box.box.size(); i++)
        text += (i > 0 ? "\n" : "") + box.box[i];
    return text;
}

void Mark(MDL_Control *box)
{
    box->isBoxChanged = true;
    MDL_FlushNowAndThen();
}

// A change that is no appending is told as the whole text.
void MarkWhole(MDL_Control *box)
{
    box->boxChange.isReset = true;
    box->boxChange.dropped = 0;
    box->boxChange.text = WholeText(*box);
    if (!box->box.empty() && !box->isLineOpen)
        box->boxChange.text += '\n';
    Mark(box);
}

std::vector<std::string> SplitLines(const std::string &text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t feed; (feed = text.find('\n', start)) != std::string::npos; start = feed + 1)
        lines.push_back(text.substr(start, feed - start));
    lines.push_back(text.substr(start));
    return lines;
}

// Text without a line feed at its end leaves the last line open: more follows there.
void Append(MDL_Control *box, const std::string &text)
{
    if (text.empty())
        return;
    std::vector<std::string> added = SplitLines(text);
    if (box->isLineOpen) { // a prompt and what was typed behind it are one line
        box->box.back() += added.front();
        added.erase(added.begin());
    }
    box->box.insert(box->box.end(), added.begin(), added.end());
    box->isLineOpen = text.back() != '\n';
    if (!box->isLineOpen) // what stands behind the last line feed is no line
        box->box.pop_back();
    // The view's box bounds itself by the same number: it need not be told.
    while (Count(*box) > UI_BOX_LINES_MAX)
        box->box.pop_front();
    box->boxChange.text += text;
    Mark(box);
}

} // namespace

int SetCtrlVal(int panel, int control, const std::string &text)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind == UIK_TEXTBOX) {
            Append(c, text);
            return 0;
        }
        if (c->row->kind != UIK_TEXT && c->row->kind != UIK_STRING)
            return UIE_BAD_TYPE;
        if (c->state.text != text) {
            c->state.text = text;
            MDL_MarkValue(c);
        }
        return 0;
    });
}

int GetCtrlVal(int panel, int control, std::string *text)
{
    MDL_CatchUp();
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind == UIK_TEXT || c->row->kind == UIK_STRING)
            *text = c->state.text;
        else if (c->row->kind == UIK_TEXTBOX)
            *text = WholeText(*c);
        else
            return UIE_BAD_TYPE;
        return 0;
    });
}

int ResetTextBox(int panel, int control, const std::string &text)
{
    return OnBox(panel, control, [&](MDL_Control *box) {
        // Written again with what it shows: a selection in it survives.
        if (box->boxChange.text.empty() && text == WholeText(*box) + (box->isLineOpen ? "" : "\n"))
            return;
        box->box.clear();
        box->firstVisible = 0;
        box->isLineOpen = false;
        box->boxChange = VIEW_TextBox();
        box->boxChange.isReset = true;
        Append(box, text);
        Mark(box); // also for no text at all
    });
}

int InsertTextBoxLine(int panel, int control, int line, const std::string &text)
{
    return OnBox(panel, control, [&](MDL_Control *box) -> int {
        if (line < -1 || line > Count(*box))
            return UIE_BAD_INDEX;
        if (line == -1 || line == Count(*box)) {
            Append(box, (box->isLineOpen ? "\n" : "") + text + "\n");
            return 0;
        }
        const std::vector<std::string> added = SplitLines(text);
        box->box.insert(box->box.begin() + line, added.begin(), added.end());
        MarkWhole(box);
        return 0;
    });
}

int DeleteTextBoxLines(int panel, int control, int line, int count)
{
    return OnBox(panel, control, [&](MDL_Control *box) -> int {
        if (line < 0 || line >= Count(*box))
            return UIE_BAD_INDEX;
        const int last = count < 0 || count > Count(*box) - line ? Count(*box) : line + count;
        if (last == Count(*box)) // the open line is gone, and a new text begins one of its own
            box->isLineOpen = false;
        box->box.erase(box->box.begin() + line, box->box.begin() + last);
        // Lines that leave at the top, as a log's do: the rest stays where it is on the screen.
        if (line == 0 && !box->box.empty()) {
            box->boxChange.dropped += last;
            Mark(box);
        } else {
            MarkWhole(box);
        }
        return 0;
    });
}

int GetNumTextBoxLines(int panel, int control, int *count)
{
    return OnBox(panel, control, [&](MDL_Control *box) { *count = Count(*box); });
}

int GetTextBoxLine(int panel, int control, int line, std::string *text)
{
    return OnBox(panel, control, [&](MDL_Control *box) -> int {
        if (line < 0 || line >= Count(*box))
            return UIE_BAD_INDEX;
        *text = box->box[static_cast<size_t>(line)];
        return 0;
    });
}
