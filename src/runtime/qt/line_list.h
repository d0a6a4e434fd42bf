// The list control: a table of the lines the program hands over. Only the rows that
// differ are repainted, so that a list refilled every second neither flickers nor
// scrolls nor loses its selection; a cell whose value has changed is marked for a moment.
// What the user does is told by signals; nothing here asks the program anything.
#ifndef RUNTIME_QT_LINE_LIST_H
#define RUNTIME_QT_LINE_LIST_H

#include <QTableView>
#include <vector>

#include "runtime/qt/line_model.h"

class LineDelegate;

class LineList : public QTableView {
    Q_OBJECT
    // "Title@pixels|Title@pixels": titles of a list whose lines say the rest.
    Q_PROPERTY(QString columns READ titles WRITE setTitles)

public:
    explicit LineList(QWidget *parent = nullptr);
    LineModel *lines() const
    {
        return m_model;
    }
    QString titles() const
    {
        return m_titles;
    }
    void setTitles(const QString &titles);
    void setColumns(const std::vector<UI_Column> &columns);
    std::vector<int> columnWidths() const
    {
        return m_widths;
    }
    std::vector<int> selectedRows() const; // ascending
    int currentRow() const;                // -1 when no line is selected
    // The program's own selecting and scrolling: no signal.
    void select(const std::vector<int> &rows, int current);
    void setFirstVisible(int row); // as far as the list reaches
    int firstVisible() const;
    int linesInView() const;
    void setDraggable(bool isDraggable);
    bool isEditing() const;
    // Lines have changed places: what is being edited is not there any more.
    void abandonEdit();
    void keyboardSearch(const QString &typed) override;

signals:
    void selectedByUser();
    void lineCommitted(); // Enter
    void lineDoubleClicked();
    void contextRequested(); // the line under the pointer has been selected
    void lineDropped(int source, int target);
    void viewMoved();      // scrolled, or another number of lines is in view
    void columnsDragged(); // by the user

protected:
    bool event(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void selectionChanged(const QItemSelection &now, const QItemSelection &before) override;
    QSize sizeHint() const override;
    void updateGeometries() override;

private:
    bool editCell();
    void paintCells(const QRegion &region, int first, int end);
    void noteWidth(int column, int before, int now);
    void showColumnsThatFit();

    LineModel *m_model;
    LineDelegate *m_delegate;
    QString m_titles;
    // Of the columns, as given by the program or the user; pixels. A list starts with one column.
    std::vector<int> m_widths = {0};
    bool m_isOurs = false; // the program moves the selection or a width, not the user
};

#endif
