// The list as it is shown: columns, selection, scrolling, painting; what the user does with it
// stands in line_input.cpp. Painting is its own (paintCells), because a sweep over 500 lines has to
// fit between two pictures.
#include "runtime/qt/line_list.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "runtime/qt/line_delegate.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int ROW_HEIGHT = 18;    // pixels
constexpr int ROWS_AT_FIRST = 13; // what a list asks room for
constexpr int COLUMN_MIN = 24;    // pixels a column can be dragged to
constexpr int HEADER_EXTRA = 16;  // pixels around a title
constexpr int WIDTH_HINT = 400;   // pixels

} // namespace

LineList::LineList(QWidget *parent)
    : QTableView(parent), m_model(new LineModel(this)), m_delegate(new LineDelegate(this, m_model))
{
    setModel(m_model);
    setItemDelegate(m_delegate);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent); // no pixel is filled twice
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(ROW_HEIGHT);
    verticalHeader()->setDefaultSectionSize(ROW_HEIGHT);
    horizontalHeader()->hide();
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setMinimumSectionSize(COLUMN_MIN);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &LineList::viewMoved);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &LineList::noteWidth);
}

void LineList::setTitles(const QString &titles)
{
    m_titles = titles;
    // "Title@pixels": what a column needs is the place of the next one less its own.
    std::vector<UI_Column> columns;
    std::vector<int> lefts;
    const QStringList parts = titles.split('|', Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        UI_Column column;
        column.title = part.section('@', 0, 0).toStdString();
        columns.push_back(column);
        lefts.push_back(part.section('@', 1, 1).toInt());
    }
    for (size_t i = 0; i + 1 < columns.size(); i++)
        columns[i].width = lefts[i + 1] - lefts[i];
    setColumns(columns);
}

void LineList::setColumns(const std::vector<UI_Column> &columns)
{
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    std::vector<UI_Column> measured = columns;
    bool hasTitles = false;
    for (UI_Column &column : measured) {
        if (column.width <= 0)
            column.width = fontMetrics().horizontalAdvance(QTV_ToQt(column.title)) + HEADER_EXTRA;
        hasTitles = hasTitles || !column.title.empty();
    }
    m_model->setColumns(measured);
    m_widths.clear();
    for (size_t i = 0; i < measured.size(); i++) {
        m_widths.push_back(measured[i].width);
        setColumnWidth(static_cast<int>(i), measured[i].width);
    }
    m_widths.resize(m_model->columns().size()); // there is always one
    horizontalHeader()->setVisible(hasTitles);
    showColumnsThatFit();
}

// The last column that is shown takes what is left over, and one that is hidden has no width:
// neither is the user's doing.
void LineList::noteWidth(int column, int before, int now)
{
    QHeaderView *header = horizontalHeader();
    bool isLast = true;
    for (int i = column + 1; i < m_model->columnCount(); i++)
        isLast = isLast && isColumnHidden(i);
    if (m_isOurs || isLast || now == 0 || before == 0 || header->isSectionHidden(column))
        return;
    m_widths[static_cast<size_t>(column)] = now;
    emit columnsDragged();
}

// Spare columns are for wide windows only, from left to right as far as they go.
void LineList::showColumnsThatFit()
{
    const std::vector<UI_Column> &columns = m_model->columns();
    int needed = 0;
    for (size_t i = 0; i < columns.size(); i++)
        needed += columns[i].isSpare ? 0 : m_widths[i];
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    for (size_t i = 0; i < columns.size(); i++) {
        if (!columns[i].isSpare)
            continue;
        needed += m_widths[i];
        setColumnHidden(static_cast<int>(i), needed > viewport()->width());
    }
}

std::vector<int> LineList::selectedRows() const
{
    std::vector<int> rows;
    const QModelIndexList chosen = selectionModel()->selectedRows();
    for (const QModelIndex &index : chosen)
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

int LineList::currentRow() const
{
    // The table may have a current line that is not selected; the program knows no such thing.
    const QModelIndex current = currentIndex();
    if (current.isValid() && selectionModel()->isRowSelected(current.row()))
        return current.row();
    const std::vector<int> rows = selectedRows();
    return rows.empty() ? -1 : rows.front();
}

void LineList::select(const std::vector<int> &rows, int current)
{
    if (rows == selectedRows() && current == currentRow())
        return; // setting it anew would scroll it into view
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    QItemSelection chosen;
    for (const int row : rows)
        chosen.select(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
    const QModelIndex to = m_model->index(current, 0);
    selectionModel()->setCurrentIndex(to, QItemSelectionModel::NoUpdate);
    selectionModel()->select(chosen, QItemSelectionModel::ClearAndSelect);
    if (to.isValid())
        scrollTo(to);
}

int LineList::firstVisible() const
{
    return verticalScrollBar()->value();
}

void LineList::setFirstVisible(int row)
{
    // New lines count only after the next layout, and the bar would not go so far.
    executeDelayedItemsLayout();
    updateGeometries();
    verticalScrollBar()->setValue(row);
}

int LineList::linesInView() const
{
    return qMax(1, viewport()->height() / ROW_HEIGHT);
}

void LineList::setDraggable(bool isDraggable)
{
    setDragDropMode(isDraggable ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
    setDragDropOverwriteMode(false);
}

bool LineList::isEditing() const
{
    return state() == QAbstractItemView::EditingState;
}

void LineList::abandonEdit()
{
    if (!isEditing())
        return;
    // What has been typed must not be entered into another line.
    if (QWidget *editor = indexWidget(currentIndex()))
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

// As the table would, without asking it for an index, a rectangle and a look of every cell.
void LineList::paintEvent(QPaintEvent *event)
{
    const int first = firstVisible();
    const int end = qMin(first + linesInView() + 1, m_model->rowCount());
    m_delegate->beginPainting(first, end);
    if (state() == DraggingState) { // it knows where the line goes
        QPainter(viewport()).fillRect(event->rect(), m_delegate->ground());
        QTableView::paintEvent(event);
    } else {
        paintCells(event->region(), first, end);
    }
    if (m_delegate->endPainting())
        viewport()->update();
}

void LineList::paintCells(const QRegion &region, int first, int end)
{
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QStyle::State plain = option.state & ~QStyle::State_Selected;
    const QRect around = region.boundingRect();
    std::vector<QRect> columns;
    int right = 0; // end of the last column
    for (int i = 0; i < m_model->columnCount(); i++) {
        const bool isShown = !isColumnHidden(i) && columnWidth(i) > 0;
        columns.push_back(isShown ? QRect(columnViewportPosition(i), 0, columnWidth(i), ROW_HEIGHT)
                                  : QRect());
        right = isShown ? qMax(right, columns.back().right() + 1) : right;
    }
    // Where there is no cell: the viewport does not fill itself (WA_OpaquePaintEvent).
    const int bottom = qMax(0, end - first) * ROW_HEIGHT;
    for (const QRect &empty : {QRect(0, bottom, viewport()->width(), viewport()->height() - bottom),
                               QRect(right, 0, viewport()->width() - right, bottom)})
        if (region.intersects(empty))
            painter.fillRect(empty, m_delegate->ground());
    for (int row = first; row < end; row++) {
        const int top = (row - first) * ROW_HEIGHT;
        // Most sweeps change one column of some rows: whole rows are left out here, cells below.
        if (top + ROW_HEIGHT <= around.top() || top > around.bottom())
            continue;
        const bool isSelected = selectionModel()->isSelected(m_model->index(row, 0));
        option.state = plain | (isSelected ? QStyle::State_Selected : QStyle::State_None);
        for (size_t i = 0; i < columns.size(); i++) {
            option.rect = columns[i].translated(0, top);
            if (columns[i].isValid() && region.intersects(option.rect))
                m_delegate->paint(&painter, option, m_model->index(row, static_cast<int>(i)));
        }
    }
}

void LineList::selectionChanged(const QItemSelection &now, const QItemSelection &before)
{
    QTableView::selectionChanged(now, before);
    if (!m_isOurs)
        emit selectedByUser();
}

void LineList::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    showColumnsThatFit();
    emit viewMoved(); // the program reads from the target what is in view and no more
}

// The last column follows the window: nobody has dragged it.
void LineList::updateGeometries()
{
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    QTableView::updateGeometries();
}

QSize LineList::sizeHint() const
{
    const int header = horizontalHeader()->isHidden() ? 0 : horizontalHeader()->sizeHint().height();
    return QSize(WIDTH_HINT, ROWS_AT_FIRST * ROW_HEIGHT + header + 2 * frameWidth());
}
