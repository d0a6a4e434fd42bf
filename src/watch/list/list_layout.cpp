// The lines of the file as it was are gone through once more, and each item is written where
// its own line stood; only items that were moved or are new stand elsewhere.
#include "watch/list/list_layout.h"

#include <algorithm>
#include <utility>

#include "text/words.h"
#include "watch/list/litem.h"

namespace {

LIT_FileLayout layout;

const char LINE_ENDS[] = "\r\n";
const char BLANKS[] = " \t";

std::string LineText(const LIT_FileLayout::Line &line)
{
    std::string text = layout.content.substr(line.begin, line.end - line.begin);
    text.resize(text.find_last_not_of(LINE_ENDS) + 1);
    return text;
}

// What new lines end with: as the file's first line does.
std::string UsualEnd()
{
    const size_t at = layout.content.find_first_of(LINE_ENDS);
    if (at == std::string::npos)
        return LINE_ENDS;
    const bool isPair = at + 1 < layout.content.size() &&
                        layout.content[at] != layout.content[at + 1] &&
                        (layout.content[at + 1] == '\r' || layout.content[at + 1] == '\n');
    return layout.content.substr(at, isPair ? 2 : 1);
}

// The comment behind an item, with the blanks in front of it.
std::string CommentOf(int line)
{
    if (line < 0)
        return "";
    const std::string text = LineText(layout.lines[static_cast<size_t>(line)]);
    const size_t start = text.find(';');
    if (start == std::string::npos || text.find('\0') < start)
        return "";
    const size_t word = text.find_last_not_of(BLANKS, start - 1);
    return text.substr(start == 0 || word == std::string::npos ? start : word + 1);
}

// The line that each item came from; -1 for one that is new. No line serves two items.
std::vector<int> LinesOfItems()
{
    std::vector<bool> isTaken(layout.lines.size(), false);
    std::vector<int> lines(static_cast<size_t>(nLItems), -1);
    for (size_t i = 0; i < lines.size(); ++i) {
        const int line = aLItems[i].fileLine;
        const size_t at = static_cast<size_t>(line);
        if (line < 0 || at >= layout.lines.size() || layout.lines[at].kind != LIT_FILE_ITEM ||
            isTaken[at])
            continue;
        isTaken[at] = true;
        lines[i] = line;
    }
    return lines;
}

// The items that keep their lines: the longest row of items whose lines follow one another,
// so that one item that was moved does not move all others.
std::vector<bool> ItemsInPlace(const std::vector<int> &lines)
{
    const size_t count = lines.size();
    std::vector<int> length(count, 0), before(count, -1);
    int last = -1;
    for (size_t i = 0; i < count; ++i) {
        if (lines[i] < 0)
            continue;
        length[i] = 1;
        for (size_t k = 0; k < i; ++k)
            if (lines[k] >= 0 && lines[k] < lines[i] && length[k] + 1 > length[i]) {
                length[i] = length[k] + 1;
                before[i] = static_cast<int>(k);
            }
        if (last < 0 || length[i] > length[static_cast<size_t>(last)])
            last = static_cast<int>(i);
    }
    std::vector<bool> isInPlace(count, false);
    for (; last >= 0; last = before[static_cast<size_t>(last)])
        isInPlace[static_cast<size_t>(last)] = true;
    return isInPlace;
}

// The text being composed.
struct Output {
    std::string text, usualEnd;
    LIT_FileItemText itemText;
    const LItem *lastItem = nullptr;
    bool isTorn = false; // the next line is the rest of a comment
};

// `mayGoOn`: the line that follows is the one that followed when the file was read.
void PutItem(Output *out, const LItem &item, int line, bool mayGoOn)
{
    const std::string words = out->itemText(item), before = CommentOf(line);
    // What stands behind the item's words: as the file has it, unless the user has changed it.
    std::string comment = before;
    if (item.comment != LIT_FileComment(line)) {
        const std::string blanks = before.empty() ? " " : before.substr(0, before.find(';'));
        comment = item.comment.empty() ? "" : blanks + "; " + item.comment;
    }
    std::string end;
    if (line >= 0) {
        const LIT_FileLayout::Line &own = layout.lines[static_cast<size_t>(line)];
        end = layout.content.substr(own.begin, own.end - own.begin);
        end.erase(0, end.find_last_not_of(LINE_ENDS) + 1);
    }
    // A comment so long that its rest came as the next line: it still does, or begins anew.
    const size_t size = words.size() + comment.size();
    const bool isBroken = end.empty() && !before.empty() && mayGoOn;
    out->isTorn = isBroken && size != LITEM_LINE_MAX;
    if (end.empty() && (!isBroken || out->isTorn))
        end = out->usualEnd;
    // Together they must still be one line when they are read again.
    if (size > LITEM_LINE_MAX)
        out->text += comment.substr(comment.find(';')) + end + words + end;
    else
        out->text += words + comment + end;
    out->lastItem = &item;
}

// A line that is no item's, as it stands. The rest of a torn comment, and a line that would
// widen another item than it did, become comments.
void PutOther(Output *out, const LIT_FileLayout::Line &line)
{
    std::string text = layout.content.substr(line.begin, line.end - line.begin);
    const bool isHarmful =
        line.kind == LIT_FILE_WIDENER && out->lastItem != nullptr && out->lastItem->size != 4;
    if ((isHarmful || out->isTorn) && LineText(line).size() + 2 <= LITEM_LINE_MAX)
        text = "; " + text;
    else if (isHarmful) // as long as a line may be
        text[text.find('&')] = ';';
    out->text += text;
    out->isTorn = false;
}

} // namespace

void LIT_SetLayout(LIT_FileLayout &&file)
{
    layout = std::move(file);
}

std::string LIT_FileComment(int line)
{
    const std::string comment = CommentOf(line);
    const size_t start = comment.find(';');
    return start == std::string::npos ? "" : TXT_Trim(comment.substr(start + 1));
}

std::string LIT_ComposeFile(LIT_FileItemText itemText)
{
    const std::vector<int> lines = LinesOfItems();
    const std::vector<bool> isInPlace = ItemsInPlace(lines);
    const bool isAnyInPlace =
        std::find(isInPlace.begin(), isInPlace.end(), true) != isInPlace.end();
    Output out;
    out.usualEnd = UsualEnd();
    out.itemText = itemText;
    const size_t start = layout.lines.empty() ? layout.content.size() : layout.lines[0].begin;
    out.text = layout.content.substr(0, start); // a byte order mark
    size_t next = 0;                            // item to write
    // Items that have no line of their own stand behind the item before them, or in front of
    // the first one that has.
    const auto putUpTo = [&](bool isLast) {
        for (; next < lines.size() && (isLast || !isInPlace[next]); ++next)
            PutItem(&out, aLItems[next], lines[next], false);
    };
    for (size_t i = 0; i < layout.lines.size(); ++i) {
        const LIT_FileLayout::Line &line = layout.lines[i];
        if (line.kind != LIT_FILE_ITEM) {
            PutOther(&out, line);
            continue;
        }
        const auto owner = std::find(lines.begin(), lines.end(), static_cast<int>(i));
        const size_t item = static_cast<size_t>(owner - lines.begin());
        if (owner == lines.end() || !isInPlace[item])
            continue; // removed, or standing elsewhere now
        putUpTo(false);
        const bool isNextInPlace = next + 1 >= lines.size() || isInPlace[next + 1];
        const bool isRestNext =
            i + 1 < layout.lines.size() && layout.lines[i + 1].kind != LIT_FILE_ITEM;
        PutItem(&out, aLItems[next], lines[next], isNextInPlace && isRestNext);
        ++next;
        putUpTo(false);
    }
    if (next < lines.size() && !isAnyInPlace && !out.text.empty() && out.text.size() > start &&
        std::string(LINE_ENDS).find(out.text.back()) == std::string::npos)
        out.text += out.usualEnd; // the file's last line had none
    putUpTo(true);
    // A name that begins like a byte order mark must not be taken for one at the start.
    const bool isMisread = start == 0 && out.text.compare(0, 3, "\xEF\xBB\xBF") == 0;
    return (isMisread ? "\xEF\xBB\xBF" : "") + out.text;
}
