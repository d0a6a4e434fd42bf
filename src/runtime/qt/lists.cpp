// Lists and rings: what the program says of them, and their lines in events. A batch brings only
// lines that differ, and the widget keeps all others as they are.
#include "runtime/qt/qt_view.h"

#include <QComboBox>
#include <QSignalBlocker>

#include "runtime/list_columns.h"
#include "runtime/qt/line_list.h"

namespace {

ListLine ToListLine(const VIEW_Line &line)
{
    ListLine shown;
    shown.id = line.id;
    shown.tip = QTV_ToQt(line.tip);
    for (const UI_Cell &cell : line.cells)
        shown.cells.push_back({QTV_ToQt(cell.text), cell.style, QTV_ToQt(cell.tip)});
    if (!line.cells.empty())
        return shown;
    for (const UI_LabelColumn &column : UI_SplitColumns(line.label))
        shown.cells.push_back({QTV_ToQt(column.text), UIS_NORMAL, QString()});
    return shown;
}

// A list without columns of its own gets as many as its labels have, at their pixels.
void FollowLabel(LineList *list, const VIEW_Line &line)
{
    const std::vector<UI_LabelColumn> parts = UI_SplitColumns(line.label);
    if (static_cast<int>(parts.size()) <= list->lines()->columnCount())
        return; // never fewer: a shorter line leaves its last cells empty
    std::vector<UI_Column> columns = list->lines()->columns();
    columns.resize(parts.size());
    for (size_t i = 0; i + 1 < parts.size(); i++)
        columns[i].width = parts[i + 1].left - parts[i].left;
    list->setColumns(columns);
}

// Whether the line that is being edited is not where it was any more.
bool HasMoved(const LineList &list, const VIEW_List &change)
{
    const int row = list.currentRow();
    if (row < 0 || row >= change.count)
        return true;
    for (const std::pair<int, VIEW_Line> &line : change.changed)
        if (line.first == row)
            return line.second.id != list.lines()->id(row);
    return false;
}

void DrawLines(LineList *list, const VIEW_List &change)
{
    if (list->isEditing() && HasMoved(*list, change))
        list->abandonEdit();
    if (list->currentRow() >= change.count)
        list->select({}, -1); // or Qt would select a neighbour of the line that goes
    list->lines()->setLineCount(change.count);
    // Neighbours are reported together: the table looks up their place but once, and of a
    // sweep only the column of the values is painted.
    ListSpan span;
    for (const std::pair<int, VIEW_Line> &line : change.changed) {
        if (line.second.cells.empty())
            FollowLabel(list, line.second);
        if (span.firstRow >= 0 && line.first != span.lastRow + 1) {
            list->lines()->reportChanged(span);
            span = ListSpan();
        }
        list->lines()->setLine(line.first, ToListLine(line.second), &span);
    }
    list->lines()->reportChanged(span);
}

void DrawRing(QComboBox *ring, const VIEW_List &change)
{
    const QSignalBlocker quiet(ring);
    if (change.mask & VIEW_LIST_LINES) {
        // At its end, not emptied and filled: the chosen entry stays chosen.
        while (ring->count() > change.count)
            ring->removeItem(ring->count() - 1);
        while (ring->count() < change.count)
            ring->addItem("");
        for (const std::pair<int, VIEW_Line> &line : change.changed) {
            ring->setItemText(line.first, QTV_ToQt(line.second.label));
            ring->setItemData(line.first, line.second.value);
            ring->setItemData(line.first, QTV_ToQt(line.second.tip), Qt::ToolTipRole);
        }
    }
    if (change.mask & VIEW_LIST_SELECTION)
        ring->setCurrentIndex(change.current);
}

} // namespace

void QTV_DrawList(const VIEW_List &change)
{
    QTV_Control *control = QTV_FindControl(change.panel, change.control);
    if (!control)
        return;
    if (auto *ring = qobject_cast<QComboBox *>(control->widget)) {
        DrawRing(ring, change);
        return;
    }
    auto *list = qobject_cast<LineList *>(control->widget);
    if (!list)
        return;
    const int top = list->firstVisible();
    // Columns first: lines are measured by them, and a selection covers all of them.
    if ((change.mask & VIEW_LIST_COLUMNS) && !change.columns.empty()) {
        list->setColumns(change.columns);
        list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    }
    if (change.mask & VIEW_LIST_LINES)
        DrawLines(list, change);
    if (change.mask & VIEW_LIST_SELECTION)
        list->select(change.selected.empty() && change.current >= 0
                         ? std::vector<int>{change.current}
                         : change.selected,
                     change.current);
    // Where the program wishes, or where it stood; but a new selection has scrolled by itself.
    if (change.mask & VIEW_LIST_FIRST)
        list->setFirstVisible(change.firstVisible);
    else if ((change.mask & VIEW_LIST_LINES) && !(change.mask & VIEW_LIST_SELECTION))
        list->setFirstVisible(top);
}

void QTV_FillList(const LineList &list, VIEW_Event *event)
{
    const auto reference = [&list](int row) {
        return VIEW_LineRef{row, row < 0 ? 0 : list.lines()->id(row)};
    };
    event->line = reference(list.currentRow());
    for (const int row : list.selectedRows())
        event->selected.push_back(reference(row));
}
