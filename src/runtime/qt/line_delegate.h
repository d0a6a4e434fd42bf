// Draws a list line: the name in the window's font, every column after it in the
// fixed-width one, so that digits stay put while values change.
#ifndef RUNTIME_QT_LINE_DELEGATE_H
#define RUNTIME_QT_LINE_DELEGATE_H

#include <QFont>
#include <QStyledItemDelegate>

class LineDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int ROW_HEIGHT = 18; // pixels

    explicit LineDelegate(QObject *parent);
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    QFont m_fixed;
};

#endif
