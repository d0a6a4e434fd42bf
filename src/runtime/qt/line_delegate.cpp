// A sweep changes one cell in each of some hundred lines once a second, so what can be found once
// is found once: fonts and glyphs for the list, colours for the palette, widths for a cell.
#include "runtime/qt/line_delegate.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QPainter>
#include <algorithm>

namespace {

constexpr int MARGIN = 6; // pixels between a column's edge and its text

// Where the whole part of a number ends; -1 for what is no decimal number.
qsizetype PointIndex(const QString &text)
{
    qsizetype at = 0;
    while (at < text.size() && (text[at] == ' ' || text[at] == '-' || text[at] == '+'))
        at++;
    const qsizetype first = at;
    while (at < text.size() && text[at].isDigit())
        at++;
    // "0x1F" has its zero in front as well.
    const bool isHexadecimal = at == first + 1 && at < text.size() && text[at].toLower() == 'x';
    return at == first || isHexadecimal ? -1 : at;
}

// How the watch list marks a value that could not be read: not to be overlooked.
const QLatin1String FAILED_SUFFIX(" (!)");

QTV_Tone ToneOf(const ListCell &cell)
{
    // A failure before anything else; a value that is no longer true is quiet, not coloured.
    if ((cell.style & UIS_WARNING) || cell.text.endsWith(FAILED_SUFFIX))
        return LT_BAD;
    if (cell.style & UIS_GOOD)
        return LT_GOOD;
    return cell.style & (UIS_DIM | UIS_STRUCK) ? LT_QUIET : LT_PLAIN;
}

} // namespace

LineDelegate::LineDelegate(QWidget *list, const LineModel *model)
    : QStyledItemDelegate(list), m_list(list), m_model(model)
{
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPixelSize(list->font().pixelSize());
    m_plain = makeFace(list->font(), false);
    m_fixed = makeFace(fixed, true);
    usePalette(list->palette());
}

LineDelegate::Face LineDelegate::makeFace(const QFont &font, bool isFixed)
{
    const QFontMetricsF metrics(font);
    Face made;
    made.font = font;
    made.digit = isFixed ? metrics.horizontalAdvance('0') : 0;
    made.height = qRound(metrics.height());
    made.ascent = qRound(metrics.ascent());
    made.raw = QRawFont::fromFont(font);
    for (int c = ' '; c < 0x7F; c++) {
        const QList<quint32> glyph = made.raw.glyphIndexesForString(QString(QChar(c)));
        made.glyphs[static_cast<size_t>(c)] = glyph.isEmpty() ? 0 : glyph.constFirst();
    }
    return made;
}

QFont LineDelegate::fontOf(const ListCell &cell, int column) const
{
    if (!(cell.style & (UIS_BOLD | UIS_STRUCK))) // nearly all: no font is made for them
        return face(column).font;
    QFont font = face(column).font;
    font.setStrikeOut(cell.style & UIS_STRUCK);
    font.setBold(cell.style & UIS_BOLD);
    return font;
}

void LineDelegate::usePalette(const QPalette &palette)
{
    m_colors = QTV_MakeLineColors(palette);
}

// Once for a cell: its text's end and its decimal point.
void LineDelegate::measure(const ListCell &cell, int column) const
{
    if (cell.width >= 0)
        return;
    const qsizetype point = PointIndex(cell.text);
    const double digit = face(column).digit;
    const bool isAscii =
        std::all_of(cell.text.begin(), cell.text.end(), [](QChar c) { return c.unicode() < 0x7F; });
    if (digit > 0 && isAscii) { // counted: measuring is what took most of the time
        cell.isEven = true;
        cell.width = digit * static_cast<double>(cell.text.size());
        cell.beforePoint = point < 0 ? -1 : digit * static_cast<double>(point);
        return;
    }
    const QFontMetricsF metrics(fontOf(cell, column));
    cell.width = metrics.horizontalAdvance(cell.text);
    cell.beforePoint = point < 0 ? -1 : metrics.horizontalAdvance(cell.text.left(point));
}

double LineDelegate::pointPlace(int row, int column) const
{
    const size_t group = m_model->group(row, column);
    const auto known = m_points.constFind(group);
    if (known != m_points.constEnd())
        return *known;
    // Over what is in view, not over all lines: a long number far below moves nothing here.
    double widest = 0;
    for (int other = m_first; other < m_end; other++) {
        if (m_model->group(other, column) != group)
            continue;
        const ListCell &cell = m_model->cell(other, column);
        measure(cell, column);
        widest = qMax(widest, cell.beforePoint);
    }
    m_points.insert(group, widest);
    return widest;
}

void LineDelegate::beginPainting(int first, int end)
{
    m_first = first;
    m_end = end;
    m_points.clear();
}

// A point that has moved since lines were painted that are not painted now.
bool LineDelegate::endPainting()
{
    bool hasMoved = false;
    for (auto point = m_points.constBegin(); point != m_points.constEnd(); ++point) {
        hasMoved = hasMoved || m_paintedPoints.value(point.key(), *point) != *point;
        m_paintedPoints.insert(point.key(), *point);
    }
    return hasMoved;
}

// Called for every cell of a sweep: no more than a filled rectangle and one run of glyphs.
void LineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    const int column = index.column();
    const ListCell &cell = m_model->cell(index.row(), column);
    const bool isSelected = option.state & QStyle::State_Selected;
    const QTV_Ground ground = isSelected ? (m_list->hasFocus() ? LG_ACTIVE : LG_SELECTED)
                              : m_model->isFresh(cell) ? LG_FRESH
                              : index.row() % 2        ? LG_STRIPED
                                                       : LG_BASE;
    painter->fillRect(option.rect, m_colors.ground[ground]);
    if (cell.text.isEmpty())
        return;
    measure(cell, column);
    painter->setPen(option.state & QStyle::State_Enabled ? m_colors.text[ground][ToneOf(cell)]
                                                         : m_colors.text[ground][LT_QUIET]);
    const QRect room = option.rect.adjusted(MARGIN, 0, -MARGIN, 0);
    double left = room.left();
    const UI_Align align = m_model->columns()[static_cast<size_t>(column)].align;
    if (align == UIA_RIGHT)
        left = room.right() + 1 - cell.width;
    else if (align == UIA_POINT && cell.beforePoint >= 0)
        left += pointPlace(index.row(), column) - cell.beforePoint;
    // Too long for its column: shortened, with dots at the end.
    if (left < room.left() || left + cell.width > room.right() + 1) {
        painter->setFont(fontOf(cell, column));
        const QFontMetrics metrics = painter->fontMetrics();
        painter->drawText(room, Qt::AlignVCenter | Qt::TextSingleLine,
                          metrics.elidedText(cell.text, Qt::ElideRight, room.width()));
        return;
    }
    const Face &drawn = face(column);
    const int baseline = room.top() + (room.height() - drawn.height) / 2 + drawn.ascent;
    drawText(painter, cell, column, QPointF(left, baseline));
}

// Values in a font of one width need no shaping: their glyphs stand side by side. That is
// the text of nearly all cells of a sweep, and a fourth of the time.
void LineDelegate::drawText(QPainter *painter, const ListCell &cell, int column,
                            const QPointF &at) const
{
    constexpr qsizetype GLYPHS_MAX = 64;
    if (!cell.isEven || cell.text.size() > GLYPHS_MAX || (cell.style & (UIS_BOLD | UIS_STRUCK))) {
        painter->setFont(fontOf(cell, column));
        painter->drawText(at, cell.text);
        return;
    }
    const Face &drawn = face(column);
    quint32 glyphs[GLYPHS_MAX];
    QPointF places[GLYPHS_MAX];
    for (qsizetype i = 0; i < cell.text.size(); i++) {
        glyphs[i] = drawn.glyphs[cell.text[i].unicode() & 0x7F];
        places[i] = QPointF(drawn.digit * static_cast<double>(i), 0);
    }
    QGlyphRun run;
    run.setRawFont(drawn.raw);
    run.setRawData(glyphs, places, static_cast<int>(cell.text.size()));
    painter->drawGlyphRun(at, run);
}

QWidget *LineDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                    const QModelIndex &) const
{
    auto *field = new QLineEdit(parent);
    field->setFont(m_fixed.font);
    field->setFrame(false);
    field->setTextMargins(MARGIN - 2, 0, 0, 0); // the field's own margin makes up the rest
    return field;
}

// Once, when the field opens: a refresh must not take away what is being typed.
void LineDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *field = static_cast<QLineEdit *>(editor);
    if (field->property("filled").toBool())
        return;
    field->setProperty("filled", true);
    field->setText(m_model->cell(index.row(), index.column()).text.trimmed());
    field->selectAll();
}

void LineDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                const QModelIndex &index) const
{
    model->setData(index, static_cast<QLineEdit *>(editor)->text(), Qt::EditRole);
}
