// Mouse and keys of a list: what they mean to the program goes out as a signal, the rest is the
// table's. Nothing is moved, deleted or entered here.
#include <QContextMenuEvent>
#include <QDropEvent>

#include "runtime/qt/line_delegate.h"
#include "runtime/qt/line_list.h"

namespace {

// Alone: with Shift, Ctrl or Alt it is another key.
bool IsPlainKey(const QKeyEvent &event, Qt::Key key)
{
    return event.key() == key && !(event.modifiers() & ~Qt::KeypadModifier);
}

} // namespace

// The search goes through the column the keyboard is in: always the names here.
void LineList::keyboardSearch(const QString &typed)
{
    if (currentIndex().column() > 0)
        selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(0),
                                          QItemSelectionModel::NoUpdate);
    // The line that is found is selected by the table, as if an arrow had gone there.
    QTableView::keyboardSearch(typed);
}

bool LineList::event(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        m_delegate->usePalette(palette());
    // F2 edits the value here, whatever a menu would do with the key elsewhere.
    if (event->type() == QEvent::ShortcutOverride && currentRow() >= 0 &&
        IsPlainKey(*static_cast<QKeyEvent *>(event), Qt::Key_F2))
        for (const UI_Column &column : m_model->columns())
            if (column.isEditable)
                event->accept();
    return QTableView::event(event);
}

// The cell the pointer was on last, or else the first one that can be edited: the value.
bool LineList::editCell()
{
    const int row = currentRow();
    const std::vector<UI_Column> &columns = m_model->columns();
    int column = currentIndex().column();
    const auto isEditable = [&](int i) {
        return i >= 0 && columns[static_cast<size_t>(i)].isEditable && !isColumnHidden(i);
    };
    if (row < 0)
        return false;
    for (int i = 0; !isEditable(column) && i < static_cast<int>(columns.size()); i++)
        column = i;
    if (!isEditable(column))
        return false;
    const QModelIndex cell = m_model->index(row, column);
    selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    edit(cell);
    return isEditing();
}

void LineList::keyPressEvent(QKeyEvent *event)
{
    if (isEditing())
        return; // what the cell's field has left over
    // Enter edits where something can be edited, with Ctrl or elsewhere it commits the line.
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isEditKey = IsPlainKey(*event, Qt::Key_F2) || IsPlainKey(*event, Qt::Key_Return) ||
                           IsPlainKey(*event, Qt::Key_Enter);
    if (isEditKey && editCell())
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

// By Tab into a list without a selected line: the first one in view, so that Enter and arrows have
// a line to begin with.
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
        editCell();
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
    setState(NoState);                      // the base class, which would do so, is not called
    event->setDropAction(Qt::IgnoreAction); // or the view would take the line out
    event->accept();
    if (event->source() == this && source >= 0 && target >= 0 && source != target)
        emit lineDropped(source, target);
}
