// A line that comes again is compared cell by cell, and only what differs is reported: the table
// repaints that and nothing else. A refill tells nothing at all when all is as it was.
#include "runtime/qt/line_model.h"

#include "runtime/qt/qt_view.h"

namespace {

constexpr int FRESH_MS = 700; // how long a changed value is marked

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
    static const ListCell NOTHING; // labels of one list may have different numbers of columns
    const std::vector<ListCell> &cells = m_lines[static_cast<size_t>(row)].cells;
    return static_cast<size_t>(column) < cells.size() ? cells[static_cast<size_t>(column)]
                                                      : NOTHING;
}

uint32_t LineModel::id(int row) const // for events: the row may be another line's by then
{
    return m_lines[static_cast<size_t>(row)].id;
}

size_t LineModel::group(int row, int column) const
{
    // Values of one type below each other, whatever stands in other lines between them.
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
    if (role == Qt::ToolTipRole) { // a cell's own tip before the line's
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
        return QTV_ToQt(m_columns[static_cast<size_t>(section)].title);
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

void LineModel::setColumns(const std::vector<UI_Column> &columns)
{
    beginResetModel();
    m_columns = columns;
    if (m_columns.empty())
        m_columns.resize(1); // a line has at least its text
    endResetModel();
}

void LineModel::setLineCount(int count)
{
    // Whatever is new is empty here; selection and scrolling stay with the rows that stay.
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
        fresh.changedAt = m_clock.elapsed() + 1; // 0 means never
        if (!m_fading.isActive())
            m_fading.start();
    }
    if (last < 0)
        return false;
    shown = std::move(line);
    // One rectangle around all of it: the caller begins another where rows are left out.
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

// Runs only while there are marks; those that came meanwhile get a turn of their own.
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
