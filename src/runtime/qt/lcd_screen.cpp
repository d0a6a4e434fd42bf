#include "runtime/qt/lcd_screen.h"

#include <QFontDatabase>
#include <QPainter>
#include <algorithm>

#include "runtime/lcd_text.h"
#include "runtime/qt/look.h"

namespace {

constexpr int BLINK_MS = 500;         // on and off, as such displays do
constexpr int FRAME = 10, RIM = 6;    // pixels around the cells; of them inside the rim
constexpr double DOTS_SHARE = 0.84;   // of a cell: its own characters leave as much room around
constexpr double FONT_SHARE = 0.68;   // of a cell's height
constexpr double CELL_ASPECT = 1.7;   // height of a cell by its width
constexpr double CELL_WIDTH_MAX = 36; // a window may be large, a display stays one
constexpr int CELL_WIDTH_HINT = 16, CELL_WIDTH_MIN = 8;
constexpr int ROWS_AT_FIRST = 4, COLUMNS_AT_FIRST = 20;

struct Colors {
    QColor ground, ink;
};
// As such displays look: with and without their light.
const Colors LIT = {QColor(0xB8, 0xD4, 0x4A), QColor(0x16, 0x20, 0x08)};
const Colors UNLIT = {QColor(0x8E, 0x9A, 0x7C), QColor(0x14, 0x1A, 0x10)};

QSize SizeOf(const QString &text, int cellWidth)
{
    const UI_LcdPicture picture = UI_ParseLcd(text.toStdString());
    const int rows = picture.rows.empty() ? ROWS_AT_FIRST : static_cast<int>(picture.rows.size());
    const int columns =
        picture.rows.empty() ? COLUMNS_AT_FIRST : static_cast<int>(picture.rows[0].size());
    return QSize(columns * cellWidth + 2 * FRAME,
                 static_cast<int>(rows * cellWidth * CELL_ASPECT) + 2 * FRAME);
}

} // namespace

LcdScreen::LcdScreen(QWidget *parent) : QLabel(parent)
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_blinking.setInterval(BLINK_MS);
    connect(&m_blinking, &QTimer::timeout, this, [this] {
        m_isDark = !m_isDark;
        update();
    });
}

QSize LcdScreen::sizeHint() const
{
    return SizeOf(text(), CELL_WIDTH_HINT);
}

// A display of 80 columns must fit on a small screen, too.
QSize LcdScreen::minimumSizeHint() const
{
    return SizeOf("", CELL_WIDTH_MIN);
}

void LcdScreen::drawCell(QPainter *painter, const UI_LcdPicture &picture, const QRectF &cell,
                         char32_t code) const
{
    // A letter of the font, or eight lines of five dots the target has drawn itself.
    if (code < UI_LCD_GLYPH || code >= UI_LCD_GLYPH + picture.glyphs.size() / UI_LCD_GLYPH_LINES) {
        painter->drawText(cell, Qt::AlignCenter, QString::fromUcs4(&code, 1));
        return;
    }
    const size_t first = (code - UI_LCD_GLYPH) * UI_LCD_GLYPH_LINES;
    const double width = cell.width() * DOTS_SHARE / UI_LCD_GLYPH_COLUMNS;
    const double height = cell.height() * DOTS_SHARE / UI_LCD_GLYPH_LINES;
    const QPointF corner(cell.left() + cell.width() * (1 - DOTS_SHARE) / 2,
                         cell.top() + cell.height() * (1 - DOTS_SHARE) / 2);
    for (int line = 0; line < UI_LCD_GLYPH_LINES; ++line)
        for (int column = 0; column < UI_LCD_GLYPH_COLUMNS; ++column)
            if (picture.glyphs[first + static_cast<size_t>(line)] >>
                    (UI_LCD_GLYPH_COLUMNS - 1 - column) &
                1)
                painter->fillRect(QRectF(corner.x() + column * width, corner.y() + line * height,
                                         width * 0.9, height * 0.9), // dots do not touch
                                  painter->pen().color());
}

void LcdScreen::drawCursor(QPainter *painter, const UI_LcdPicture &picture,
                           const QRectF &cell) const
{
    const QRectF line(cell.left() + 1, cell.bottom() - cell.height() * 0.12, cell.width() - 2,
                      cell.height() * 0.08);
    if (picture.cursor == UI_LCD_CURSOR_UNDERLINE)
        painter->fillRect(line, painter->pen().color());
    else if (picture.cursor == UI_LCD_CURSOR_BLINKING && m_isDark)
        painter->fillRect(cell.adjusted(1, 1, -1, -1), painter->pen().color());
}

void LcdScreen::paintEvent(QPaintEvent *)
{
    const UI_LcdPicture picture = UI_ParseLcd(text().toStdString());
    // The timer runs only where it is needed: nobody wants a repaint twice a second for nothing.
    const bool isBlinking = picture.cursor == UI_LCD_CURSOR_BLINKING;
    if (isBlinking != m_blinking.isActive())
        isBlinking ? m_blinking.start() : m_blinking.stop();
    const Colors &colors = picture.isLit ? LIT : UNLIT;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto rows = static_cast<double>(std::max<size_t>(picture.rows.size(), 1));
    const auto columns =
        static_cast<double>(picture.rows.empty() ? COLUMNS_AT_FIRST : picture.rows[0].size());
    // As large as the window allows, but of one shape.
    const double cellWidth =
        std::min({(width() - 2 * FRAME) / columns, (height() - 2 * FRAME) / rows / CELL_ASPECT,
                  CELL_WIDTH_MAX});
    const double cellHeight = cellWidth * CELL_ASPECT;
    QRectF panel(0, 0, columns * cellWidth, rows * cellHeight);
    panel.moveCenter(QRectF(rect()).center());
    // Keys go to the target only while the display has the keyboard: that must be seen.
    const QColor rim = hasFocus() ? palette().color(QPalette::Highlight)
                                  : QTV_BlendColors(colors.ink, colors.ground, 0.4);
    painter.setPen(QPen(rim, 2));
    painter.setBrush(colors.ground);
    painter.drawRoundedRect(panel.adjusted(-RIM, -RIM, RIM, RIM), 4, 4);
    QFont fixed = font();
    fixed.setPixelSize(std::max(static_cast<int>(cellHeight * FONT_SHARE), 4));
    painter.setFont(fixed);
    painter.setPen(colors.ink);
    for (size_t row = 0; row < picture.rows.size(); ++row)
        for (size_t column = 0; column < picture.rows[row].size(); ++column) {
            const QRectF cell(panel.left() + static_cast<double>(column) * cellWidth,
                              panel.top() + static_cast<double>(row) * cellHeight, cellWidth,
                              cellHeight);
            // Each cell a shade darker, as the dots of a real one that are off can be seen.
            painter.fillRect(cell.adjusted(0.5, 0.5, -0.5, -0.5),
                             QTV_BlendColors(colors.ink, colors.ground, 0.04));
            drawCell(&painter, picture, cell, picture.rows[row][column]);
            if (static_cast<int>(row) == picture.cursorRow &&
                static_cast<int>(column) == picture.cursorColumn)
                drawCursor(&painter, picture, cell);
        }
}

void LcdScreen::focusInEvent(QFocusEvent *event)
{
    QLabel::focusInEvent(event);
    update();
}

void LcdScreen::focusOutEvent(QFocusEvent *event)
{
    QLabel::focusOutEvent(event);
    update();
}

void LcdScreen::mousePressEvent(QMouseEvent *event)
{
    setFocus(Qt::MouseFocusReason);
    QLabel::mousePressEvent(event);
}
