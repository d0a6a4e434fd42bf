#include "runtime/qt/line_list.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "runtime/qt/line_delegate.h"

namespace {

constexpr int ROW_HEIGHT = 18;    // pixels
constexpr int ROWS_AT_FIRST = 13; // what a list asks room for
constexpr int FRESH_MS = 700;     // how long a changed value is marked
constexpr int COLUMN_MIN = 24;    // pixels a column can be dragged to
constexpr int HEADER_EXTRA = 16;  // pixels around a title

} // namespace

LineModel::LineModel(QObject *parent) : QAbstractTableModel(parent), m_columns(1)
{
    m_clock.start();
    m_fading.setSingleShot(true);
    m_fading.setInterval(FRESH_MS);
    connect(&m_fading, &QTimer::timeout, this, &LineModel::fadeMarks);
}

int LineModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int LineModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

const ListCell &LineModel::cell(int row, int column) const
{
    static const ListCell NOTHING;
    const std::vector<ListCell> &cells = m_lines[static_cast<size_t>(row)].cells;
    return static_cast<size_t>(column) < cells.size() ? cells[static_cast<size_t>(column)]
                                                      : NOTHING;
}

uint32_t LineModel::id(int row) const
{
    return m_lines[static_cast<size_t>(row)].id;
}

size_t LineModel::group(int row, int column) const
{
    const size_t seed = static_cast<size_t>(column);
    return column == 0 ? seed : qHash(cell(row, column - 1).text, seed);
}

QVariant LineModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return QVariant();
    const ListCell &shown = cell(index.row(), index.column());
    if (role == Qt::DisplayRole) // what type-ahead search and screen readers see
        return shown.text;
    if (role == Qt::ToolTipRole) {
        const QString &line = m_lines[static_cast<size_t>(index.row())].tip;
        const QString tip = shown.tip.isEmpty() ? line : shown.tip;
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    return QVariant();
}

// The line keeps its text until the program has taken the new one.
bool LineModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role == Qt::EditRole)
        emit cellEdited(index.row(), index.column(), value.toString());
    return false;
}

QVariant LineModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isTitle = orientation == Qt::Horizontal && section < columnCount();
    if (isTitle && role == Qt::DisplayRole)
        return m_columns[static_cast<size_t>(section)].title;
    if (isTitle && role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    return QVariant();
}

Qt::ItemFlags LineModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled |
                          Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    const auto column = static_cast<size_t>(index.column());
    if (index.isValid() && column < m_columns.size() && m_columns[column].isEditable)
        flags |= Qt::ItemIsEditable;
    return flags;
}

Qt::DropActions LineModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

void LineModel::setColumns(const std::vector<ListColumn> &columns)
{
    beginResetModel();
    m_columns = columns;
    if (m_columns.empty())
        m_columns.resize(1);
    endResetModel();
}

void LineModel::setLineCount(int count)
{
    const int before = rowCount();
    if (count < before) {
        beginRemoveRows(QModelIndex(), count, before - 1);
        m_lines.resize(static_cast<size_t>(count));
        endRemoveRows();
    } else if (count > before) {
        beginInsertRows(QModelIndex(), before, count - 1);
        m_lines.resize(static_cast<size_t>(count));
        endInsertRows();
    }
}

bool LineModel::setLine(int row, ListLine line, ListSpan *span)
{
    ListLine &shown = m_lines[static_cast<size_t>(row)];
    shown.id = line.id;                   // not shown: no reason to repaint
    int first = columnCount(), last = -1; // columns that differ
    if (shown.cells.size() != line.cells.size() || shown.tip != line.tip) {
        first = 0;
        last = columnCount() - 1;
    }
    for (size_t i = 0; i < line.cells.size(); i++) {
        ListCell &fresh = line.cells[i];
        const ListCell *old = i < shown.cells.size() ? &shown.cells[i] : nullptr;
        if (old && fresh.isSame(*old)) {
            fresh = *old; // with what was measured of it
            continue;
        }
        first = qMin(first, static_cast<int>(i));
        last = qMax(last, static_cast<int>(i));
        if (!(fresh.style & UIS_CHANGED))
            continue;
        fresh.changedAt = m_clock.elapsed() + 1;
        if (!m_fading.isActive())
            m_fading.start();
    }
    if (last < 0)
        return false;
    shown = std::move(line);
    const bool isFirst = span->firstRow < 0;
    span->firstRow = isFirst ? row : span->firstRow;
    span->lastRow = row;
    span->firstColumn = isFirst ? first : qMin(first, span->firstColumn);
    span->lastColumn = isFirst ? last : qMax(last, span->lastColumn);
    return true;
}

void LineModel::reportChanged(const ListSpan &span)
{
    if (span.firstRow >= 0)
        emit dataChanged(index(span.firstRow, span.firstColumn),
                         index(span.lastRow, span.lastColumn));
}

bool LineModel::isFresh(const ListCell &cell) const
{
    return cell.changedAt != 0 && m_clock.elapsed() - cell.changedAt < FRESH_MS;
}

void LineModel::fadeMarks()
{
    bool isAnyFresh = false;
    for (size_t row = 0; row < m_lines.size(); row++) {
        for (size_t i = 0; i < m_lines[row].cells.size(); i++) {
            ListCell &cell = m_lines[row].cells[i];
            if (cell.changedAt == 0)
                continue;
            if (isFresh(cell)) {
                isAnyFresh = true;
                continue;
            }
            cell.changedAt = 0;
            const QModelIndex at = index(static_cast<int>(row), static_cast<int>(i));
            emit dataChanged(at, at);
        }
    }
    if (isAnyFresh)
        m_fading.start();
}

LineList::LineList(QWidget *parent) : QTableView(parent), m_model(new LineModel(this))
{
    setModel(m_model);
    setItemDelegate(new LineDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
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
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] {
        if (!m_isOurs)
            emit columnsDragged();
    });
}

void LineList::setTitles(const QString &titles)
{
    m_titles = titles;
    std::vector<ListColumn> columns;
    std::vector<int> lefts;
    const QStringList parts = titles.split('|', Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        ListColumn column;
        column.title = part.section('@', 0, 0);
        columns.push_back(column);
        lefts.push_back(part.section('@', 1, 1).toInt());
    }
    for (size_t i = 0; i + 1 < columns.size(); i++)
        columns[i].width = lefts[i + 1] - lefts[i];
    setColumns(columns);
}

void LineList::setColumns(const std::vector<ListColumn> &columns)
{
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    std::vector<ListColumn> measured = columns;
    bool hasTitles = false;
    for (ListColumn &column : measured) {
        if (column.width <= 0)
            column.width = fontMetrics().horizontalAdvance(column.title) + HEADER_EXTRA;
        hasTitles = hasTitles || !column.title.isEmpty();
    }
    m_model->setColumns(measured);
    for (size_t i = 0; i < measured.size(); i++)
        setColumnWidth(static_cast<int>(i), measured[i].width);
    horizontalHeader()->setVisible(hasTitles);
    showColumnsThatFit();
}

// Spare columns are for wide windows only, from left to right as far as they go.
void LineList::showColumnsThatFit()
{
    const std::vector<ListColumn> &columns = m_model->columns();
    int needed = 0;
    for (const ListColumn &column : columns)
        needed += column.isSpare ? 0 : column.width;
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    for (size_t i = 0; i < columns.size(); i++) {
        if (!columns[i].isSpare)
            continue;
        needed += columns[i].width;
        setColumnHidden(static_cast<int>(i), needed > viewport()->width());
    }
}

std::vector<int> LineList::columnWidths() const
{
    std::vector<int> widths;
    for (int i = 0; i < m_model->columnCount(); i++)
        widths.push_back(columnWidth(i));
    return widths;
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
    if (QWidget *editor = indexWidget(currentIndex()))
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

// The search goes through the column the keyboard is in: always the names here.
void LineList::keyboardSearch(const QString &typed)
{
    if (currentIndex().column() > 0)
        selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(0),
                                          QItemSelectionModel::NoUpdate);
    QTableView::keyboardSearch(typed);
}

double LineList::pointPlace(int row, int column) const
{
    const size_t group = m_model->group(row, column);
    const auto known = m_points.constFind(group);
    if (known != m_points.constEnd())
        return *known;
    const auto *delegate = static_cast<LineDelegate *>(itemDelegate());
    const int first = firstVisible();
    const int end = qMin(first + linesInView() + 1, m_model->rowCount());
    double widest = 0;
    for (int other = first; other < end; other++) {
        if (m_model->group(other, column) != group)
            continue;
        const ListCell &cell = m_model->cell(other, column);
        delegate->measure(cell, column);
        widest = qMax(widest, cell.beforePoint);
    }
    m_points.insert(group, widest);
    return widest;
}

void LineList::paintEvent(QPaintEvent *event)
{
    m_points.clear();
    QTableView::paintEvent(event);
    // A number longer than those so far moves the points of the lines that were not painted.
    bool hasMoved = false;
    for (auto point = m_points.constBegin(); point != m_points.constEnd(); ++point) {
        hasMoved = hasMoved || m_paintedPoints.value(point.key(), *point) != *point;
        m_paintedPoints.insert(point.key(), *point);
    }
    if (hasMoved)
        viewport()->update();
}

void LineList::selectionChanged(const QItemSelection &now, const QItemSelection &before)
{
    QTableView::selectionChanged(now, before);
    if (!m_isOurs)
        emit selectedByUser();
}

bool LineList::event(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        static_cast<LineDelegate *>(itemDelegate())->usePalette(palette());
    // F2 edits the value here, whatever a menu would do with the key elsewhere.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_F2 && currentRow() >= 0)
        for (const ListColumn &column : m_model->columns())
            if (column.isEditable)
                event->accept();
    return QTableView::event(event);
}

bool LineList::editValue()
{
    const int row = currentRow();
    const std::vector<ListColumn> &columns = m_model->columns();
    for (size_t i = 0; row >= 0 && i < columns.size(); i++) {
        if (!columns[i].isEditable)
            continue;
        const QModelIndex cell = m_model->index(row, static_cast<int>(i));
        selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
        edit(cell);
        return isEditing();
    }
    return false;
}

void LineList::keyPressEvent(QKeyEvent *event)
{
    if (isEditing())
        return; // what the cell's field has left over
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
    if (isPlain && (isEnter || event->key() == Qt::Key_F2) && editValue())
        return;
    if (isEnter)
        emit lineCommitted();
    else
        QTableView::keyPressEvent(event);
}

// The keyboard walks from line to line; Home and End mean the whole list.
QModelIndex LineList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const int column = qMax(0, currentIndex().column());
    if (action == MoveHome)
        return m_model->index(0, column);
    if (action == MoveEnd)
        return m_model->index(m_model->rowCount() - 1, column);
    if (action == MoveLeft || action == MoveRight)
        return currentIndex();
    return QTableView::moveCursor(action, modifiers);
}

void LineList::focusInEvent(QFocusEvent *event)
{
    QTableView::focusInEvent(event);
    const bool isByMouse = event->reason() == Qt::MouseFocusReason; // the click selects a line
    if (!isByMouse && currentRow() < 0 && m_model->rowCount() > 0)
        setCurrentIndex(m_model->index(qBound(0, firstVisible(), m_model->rowCount() - 1), 0));
}

void LineList::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() != Qt::LeftButton || !indexAt(event->pos()).isValid())
        return;
    const QModelIndex under = indexAt(event->pos());
    if (m_model->columns()[static_cast<size_t>(under.column())].isEditable)
        editValue();
    else
        emit lineDoubleClicked();
}

// Several selected lines stay selected when the pointer is on one of them.
void LineList::contextMenuEvent(QContextMenuEvent *event)
{
    const QModelIndex under = indexAt(event->pos());
    if (event->reason() == QContextMenuEvent::Mouse && under.isValid() &&
        !selectionModel()->isRowSelected(under.row()))
        setCurrentIndex(under);
    emit contextRequested();
    event->accept();
}

// The program moves the lines itself: the table only says which line went where.
void LineList::dropEvent(QDropEvent *event)
{
    const int source = currentRow();
    const QModelIndex under = indexAt(event->position().toPoint());
    const int target = under.isValid() ? under.row() : m_model->rowCount() - 1;
    stopAutoScroll();
    setState(NoState);
    event->setDropAction(Qt::IgnoreAction); // or the view would take the line out
    event->accept();
    if (event->source() == this && source >= 0 && target >= 0 && source != target)
        emit lineDropped(source, target);
}

void LineList::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    showColumnsThatFit();
    emit viewMoved();
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
    return QSize(400, ROWS_AT_FIRST * ROW_HEIGHT + header + 2 * frameWidth());
}
