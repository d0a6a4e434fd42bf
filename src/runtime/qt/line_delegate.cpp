#include "runtime/qt/line_delegate.h"

#include <QFontDatabase>
#include <QPainter>

#include "runtime/qt/face.h"
#include "runtime/qt/line_list.h"

namespace {

constexpr int MARGIN_LEFT = 6;
constexpr int COLUMN_GAP = 8;

const QColor selectedNoFocus(0xD5, 0xE3, 0xF0);
const QColor striped(0xF6, 0xF8, 0xFA);
const QColor warning(0xC0, 0x1C, 0x28);
// How the watch list marks a value that could not be read: not to be overlooked.
const QLatin1String warningSuffix(" (!)");

QColor Background(const QStyleOptionViewItem &option, int row)
{
    if (!(option.state & QStyle::State_Selected))
        return row % 2 ? striped : option.palette.color(QPalette::Base);
    const bool isActive = option.state & QStyle::State_HasFocus;
    return isActive ? option.palette.color(QPalette::Highlight) : selectedNoFocus;
}

QColor Foreground(const QStyleOptionViewItem &option, const QString &text)
{
    if (!(option.state & QStyle::State_Enabled))
        return option.palette.color(QPalette::Disabled, QPalette::Text);
    const bool isInverse =
        (option.state & QStyle::State_Selected) && (option.state & QStyle::State_HasFocus);
    if (isInverse)
        return option.palette.color(QPalette::HighlightedText);
    return text.endsWith(warningSuffix) ? warning : option.palette.color(QPalette::Text);
}

} // namespace

LineDelegate::LineDelegate(QObject *parent)
    : QStyledItemDelegate(parent), m_fixed(QFontDatabase::systemFont(QFontDatabase::FixedFont))
{
}

void LineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    const auto *model = static_cast<const LineModel *>(index.model());
    const std::vector<UIC_Column> &columns = model->columns(index.row());
    painter->save();
    painter->fillRect(option.rect, Background(option, index.row()));
    QFont fixed = m_fixed;
    fixed.setPixelSize(option.font.pixelSize());
    for (size_t i = 0; i < columns.size(); i++) {
        const QString text = FACE_ToQt(columns[i].text);
        const int left = option.rect.left() + MARGIN_LEFT + columns[i].left;
        const int right = i + 1 < columns.size()
                              ? option.rect.left() + MARGIN_LEFT + columns[i + 1].left - COLUMN_GAP
                              : option.rect.right();
        painter->setFont(i == 0 ? option.font : fixed);
        painter->setPen(Foreground(option, text));
        const QRect cell(left, option.rect.top(), right - left, option.rect.height());
        painter->drawText(cell, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                          painter->fontMetrics().elidedText(text, Qt::ElideRight, cell.width()));
    }
    painter->restore();
}

QSize LineDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return QSize(1, ROW_HEIGHT);
}
