// The list control: the lines the program wrote, the model that shows them, and the
// view. Writing touches only the program's lines; the model takes them over once the
// event loop turns and changes nothing but the rows that differ, so that a list that
// is cleared and refilled every second does not flicker, scroll or lose its selection.
#ifndef RUNTIME_QT_LINE_LIST_H
#define RUNTIME_QT_LINE_LIST_H

#include <QAbstractListModel>
#include <QListView>
#include <string>
#include <vector>

#include "runtime/list_columns.h"

struct ListLine {
    std::string label; // with column escapes
    int value = 0;
    std::string tip;
};

class LineModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;
    const std::vector<UIC_Column> &columns(int row) const;
    // Takes the lines over: one dataChanged for each row that differs, rows added or
    // removed at the end only.
    void show(const std::vector<ListLine> &lines);

private:
    struct ShownLine {
        ListLine line;
        std::vector<UIC_Column> columns;
    };
    std::vector<ShownLine> m_shown;
};

class LineList : public QListView {
    Q_OBJECT

public:
    explicit LineList(QWidget *parent = nullptr);

    const std::vector<ListLine> &lines() const
    {
        return m_lines;
    }
    void clearLines();
    void insertLine(int index, const ListLine &line); // index within 0..count
    void setLine(int index, const ListLine &line);
    void deleteLines(int index, int count);
    int selected() const; // -1 when nothing is selected
    void select(int index);
    int firstVisible();
    void setFirstVisible(int line); // as far as the list reaches
    void setDraggable(bool isDraggable);
    void applyPending(); // shows what was written

signals:
    void lineSelected();  // by the user
    void lineCommitted(); // Enter
    void lineDoubleClicked();
    void contextRequested(); // the line under the pointer has been selected
    void lineDropped(int source, int target);

protected:
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = QList<int>()) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void selectionChanged(const QItemSelection &now, const QItemSelection &before) override;

private:
    void markPending();

    LineModel *m_model;
    std::vector<ListLine> m_lines;
    int m_selected = -1;
    bool m_isPending = false;
    bool m_isOurs = false; // the program is moving the selection, not the user
};

#endif
