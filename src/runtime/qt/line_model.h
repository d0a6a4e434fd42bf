// The lines of a list as the program hands them over, and what of them has changed: what a
// table draws. Nothing here knows how it is drawn.
#ifndef RUNTIME_QT_LINE_MODEL_H
#define RUNTIME_QT_LINE_MODEL_H

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QTimer>
#include <vector>

#include "runtime/userint.h"

struct ListCell {
    QString text;
    unsigned style = UIS_NORMAL;
    QString tip;

    // Kept by the table, -1 while not measured: how far the text reaches, in pixels, ...
    mutable double width = -1;
    mutable double beforePoint = -1; // ... and its part before the decimal point, -1 no number
    mutable bool isEven = false;     // all its characters are of one width
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

    const std::vector<UI_Column> &columns() const
    {
        return m_columns;
    }
    void setColumns(const std::vector<UI_Column> &columns);
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

    std::vector<UI_Column> m_columns;
    std::vector<ListLine> m_lines;
    QElapsedTimer m_clock;
    QTimer m_fading; // runs while a mark is to be taken away
};

#endif
