// Draws the cells of a list and gives the field for editing one: the first column in the
// window's font, every column after it in the fixed-width one, so that digits stay put
// while values change.
#ifndef RUNTIME_QT_LINE_DELEGATE_H
#define RUNTIME_QT_LINE_DELEGATE_H

#include <QFont>
#include <QGlyphRun>
#include <QHash>
#include <QRawFont>
#include <QStyledItemDelegate>
#include <array>

#include "runtime/qt/line_model.h"
#include "runtime/qt/look.h"

class LineDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    LineDelegate(QWidget *list, const LineModel *model);
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void usePalette(const QPalette &palette);
    QColor ground() const // where there is no line
    {
        return m_colors.ground[LG_BASE];
    }
    // Around the painting of the rows from `first` up to `end`, which are in view. True when a
    // number longer than those so far has moved the points of lines that were not painted.
    void beginPainting(int first, int end);
    bool endPainting();
    // The widest part before the point in the group, over the lines in view.
    double pointPlace(int row, int column) const;

private:
    struct Face {
        QFont font;
        double digit = 0; // width of a digit when all characters are of one width, else 0
        int height = 0, ascent = 0;
        QRawFont raw;
        std::array<quint32, 128> glyphs{}; // of the ASCII characters
    };
    static Face makeFace(const QFont &font, bool isFixed);
    const Face &face(int column) const
    {
        return column == 0 ? m_plain : m_fixed;
    }
    QFont fontOf(const ListCell &cell, int column) const;
    void drawText(QPainter *painter, const ListCell &cell, int column, const QPointF &at) const;
    void measure(const ListCell &cell, int column) const;

    QWidget *m_list;
    const LineModel *m_model;
    int m_first = 0, m_end = 0;             // rows in view
    mutable QHash<size_t, double> m_points; // by group; for one painting
    QHash<size_t, double> m_paintedPoints;  // where they were painted last
    Face m_plain, m_fixed;
    QTV_LineColors m_colors;
};

#endif
