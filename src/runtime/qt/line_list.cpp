#include "runtime/qt/line_list.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTimer>

#include "runtime/qt/face.h"
#include "runtime/qt/line_delegate.h"

int LineModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

const std::vector<UIC_Column> &LineModel::columns(int row) const
{
    return m_shown[static_cast<size_t>(row)].columns;
}

QVariant LineModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return QVariant();
    const ListLine &line = m_shown[static_cast<size_t>(index.row())].line;
    if (role == Qt::DisplayRole) // what type-ahead search and screen readers see
        return FACE_ToQt(UIC_JoinColumns(line.label, "  "));
    if (role == Qt::ToolTipRole && !line.tip.empty())
        return FACE_ToQt(line.tip);
    return QVariant();
}

Qt::ItemFlags LineModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

Qt::DropActions LineModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

void LineModel::show(const std::vector<ListLine> &lines)
{
    const int before = rowCount(), now = static_cast<int>(lines.size());
    if (now < before) {
        beginRemoveRows(QModelIndex(), now, before - 1);
        m_shown.resize(lines.size());
        endRemoveRows();
    }
    for (size_t i = 0; i < m_shown.size(); i++) {
        ShownLine &shown = m_shown[i];
        shown.line.value = lines[i].value; // not shown: no reason to repaint
        if (shown.line.label == lines[i].label && shown.line.tip == lines[i].tip)
            continue;
        shown = {lines[i], UIC_SplitColumns(lines[i].label)};
        const QModelIndex changed = index(static_cast<int>(i));
        emit dataChanged(changed, changed);
    }
    if (now > before) {
        beginInsertRows(QModelIndex(), before, now - 1);
        for (size_t i = m_shown.size(); i < lines.size(); i++)
            m_shown.push_back({lines[i], UIC_SplitColumns(lines[i].label)});
        endInsertRows();
    }
}

LineList::LineList(QWidget *parent) : QListView(parent), m_model(new LineModel(this))
{
    setModel(m_model);
    setItemDelegate(new LineDelegate(this));
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
}

void LineList::markPending()
{
    if (m_isPending)
        return;
    m_isPending = true;
    QTimer::singleShot(0, this, &LineList::applyPending);
}

void LineList::applyPending()
{
    if (!m_isPending)
        return;
    m_isPending = false;
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    const int top = verticalScrollBar()->value();
    m_model->show(m_lines);
    if (m_selected >= m_model->rowCount())
        m_selected = -1;
    if (m_selected < 0)
        clearSelection();
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(top);
}

void LineList::clearLines()
{
    m_lines.clear();
    markPending();
}

void LineList::insertLine(int index, const ListLine &line)
{
    m_lines.insert(m_lines.begin() + index, line);
    markPending();
}

void LineList::setLine(int index, const ListLine &line)
{
    m_lines[static_cast<size_t>(index)] = line;
    markPending();
}

void LineList::deleteLines(int index, int count)
{
    m_lines.erase(m_lines.begin() + index, m_lines.begin() + index + count);
    markPending();
}

int LineList::selected() const
{
    return m_selected < static_cast<int>(m_lines.size()) ? m_selected : -1;
}

void LineList::select(int index)
{
    applyPending();
    if (index == m_selected)
        return; // setting it anew would scroll it into view
    const QScopedValueRollback<bool> ours(m_isOurs, true);
    setCurrentIndex(m_model->index(index));
    m_selected = index;
}

int LineList::firstVisible()
{
    applyPending();
    return verticalScrollBar()->value();
}

void LineList::setFirstVisible(int line)
{
    applyPending();
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(line);
}

void LineList::setDraggable(bool isDraggable)
{
    setDragDropMode(isDraggable ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
}

// All rows are of one size: no reason to lay the whole list out and paint it again.
void LineList::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                           const QList<int> &roles)
{
    QAbstractItemView::dataChanged(topLeft, bottomRight, roles);
}

void LineList::selectionChanged(const QItemSelection &now, const QItemSelection &before)
{
    QListView::selectionChanged(now, before);
    if (m_isOurs)
        return;
    const QModelIndexList chosen = selectedIndexes();
    m_selected = chosen.isEmpty() ? -1 : chosen.first().row();
    emit lineSelected();
}

void LineList::focusInEvent(QFocusEvent *event)
{
    QListView::focusInEvent(event);
    const bool isByMouse = event->reason() == Qt::MouseFocusReason; // the click selects a line
    if (!isByMouse && m_selected < 0 && m_model->rowCount() > 0)
        setCurrentIndex(m_model->index(qBound(0, firstVisible(), m_model->rowCount() - 1)));
}

void LineList::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        emit lineCommitted();
    else
        QListView::keyPressEvent(event);
}

void LineList::mouseDoubleClickEvent(QMouseEvent *event)
{
    QListView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->pos()).isValid())
        emit lineDoubleClicked();
}

void LineList::contextMenuEvent(QContextMenuEvent *event)
{
    const QModelIndex under = indexAt(event->pos());
    if (event->reason() == QContextMenuEvent::Mouse && under.isValid())
        setCurrentIndex(under);
    emit contextRequested();
    event->accept();
}

// The program moves the lines itself: the view only says which line went where.
void LineList::dropEvent(QDropEvent *event)
{
    const int source = m_selected;
    const QModelIndex under = indexAt(event->position().toPoint());
    const int target = under.isValid() ? under.row() : m_model->rowCount() - 1;
    stopAutoScroll();
    setState(NoState);
    event->setDropAction(Qt::IgnoreAction); // or the view would take the line out
    event->accept();
    if (event->source() == this && source >= 0 && target >= 0 && source != target)
        emit lineDropped(source, target);
}
