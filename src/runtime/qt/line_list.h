// The list control: a table of the lines the program hands over. Only the rows that
// differ are repainted, so that a list refilled every second neither flickers nor
// scrolls nor loses its selection; a cell whose value has changed is marked for a moment.
// What the user does is told by signals; nothing here asks the program anything.
#ifndef RUNTIME_QT_LINE_LIST_H
#define RUNTIME_QT_LINE_LIST_H

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QHash>
#include <QTableView>
#include <QTimer>
#include <vector>

#include "runtime/userint.h"

struct ListColumn {
    QString title;
    int width = 0; // pixels at first; 0 = as the title needs. The last column takes the rest
    UI_Align align = UIA_LEFT;
    bool isEditable = false;
    bool isSpare = false; // hidden where there is no room for it
};

struct ListCell {
    QString text;
    unsigned style = UIS_NORMAL;
    QString tip;

    // Kept by the table, -1 while not measured: how far the text reaches, in pixels, ...
    mutable double width = -1;
    mutable double beforePoint = -1; // ... and its part before the decimal point, -1 no number
    qint64 changedAt = 0;            // milliseconds of the table's clock; 0 = long ago
    bool isSame(const ListCell &other) const
    {
        return text == other.text && style == other.style && tip == other.tip;
    }
};

struct ListLine {
    uint32_t id = 0;
    std::vector<ListCell> cells;
    QString tip; // of the whole line
};

// Rows and columns from ... to, both included; empty while no row is in it.
struct ListSpan {
    int firstRow = -1, lastRow = -1, firstColumn = 0, lastColumn = 0;
};

class LineModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit LineModel(QObject *parent);
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;

    const std::vector<ListColumn> &columns() const
    {
        return m_columns;
    }
    void setColumns(const std::vector<ListColumn> &columns);
    // Rows are added and removed at the end; the lines themselves follow by setLine.
    void setLineCount(int count);
    // Whether anything of the line differs; *span grows by what does. The caller then says
    // so by reportChanged, for many lines at once.
    bool setLine(int row, ListLine line, ListSpan *span);
    void reportChanged(const ListSpan &span);
    const ListCell &cell(int row, int column) const; // an empty one where a line is shorter
    uint32_t id(int row) const;
    // Numbers of one group have their decimal points below each other: those whose cell
    // before them, where the watch list has the type, says the same.
    size_t group(int row, int column) const;
    // Whether the cell was given another text a moment ago.
    bool isFresh(const ListCell &cell) const;

signals:
    void cellEdited(int row, int column, const QString &text); // by the user

private:
    void fadeMarks();

    std::vector<ListColumn> m_columns;
    std::vector<ListLine> m_lines;
    QElapsedTimer m_clock;
    QTimer m_fading; // runs while a mark is to be taken away
};

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
    void setColumns(const std::vector<ListColumn> &columns);
    std::vector<int> columnWidths() const;
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
    // The widest part before the point in the group, over the lines in view.
    double pointPlace(int row, int column) const;

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
    bool editValue();
    void showColumnsThatFit();

    LineModel *m_model;
    QString m_titles;
    bool m_isOurs = false;                  // the program is moving the selection, not the user
    mutable QHash<size_t, double> m_points; // by group; for one painting
    QHash<size_t, double> m_paintedPoints;  // where they were painted last
};

#endif
