// Draws the cells of a list and gives the field for editing one: the first column in the
// window's font, every column after it in the fixed-width one, so that digits stay put
// while values change.
#ifndef RUNTIME_QT_LINE_DELEGATE_H
#define RUNTIME_QT_LINE_DELEGATE_H

#include <QFont>
#include <QStyledItemDelegate>

#include "runtime/qt/look.h"

class LineList;
struct ListCell;

class LineDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit LineDelegate(LineList *list);
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    // Measures a cell once; its text's end and its decimal point.
    void measure(const ListCell &cell, int column) const;
    void usePalette(const QPalette &palette);

private:
    struct Face {
        QFont font;
        double digit = 0; // width of a digit when all characters are of one width, else 0
        int height = 0, ascent = 0;
    };
    static Face makeFace(const QFont &font, bool isFixed);
    const Face &face(int column) const
    {
        return column == 0 ? m_plain : m_fixed;
    }
    QFont fontOf(const ListCell &cell, int column) const;

    LineList *m_list;
    Face m_plain, m_fixed;
    LOOK_Lines m_colors;
};

#endif
