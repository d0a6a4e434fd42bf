// Contrast is counted as the accessibility guidelines for web pages do: light as the eye weighs it,
// red, green and blue by different shares, and a ratio with a little stray light added to both.
#include "runtime/qt/look.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyleFactory>
#include <cmath>

namespace {

constexpr int FONT_PIXELS = 12; // the main window shows 13 list lines at its first size
constexpr int ICON_PIXELS = 128;
constexpr int LIGHTNESS_STEPS = 64; // from the wished colour to black or white
constexpr double QUIET_SHARE = 0.6; // of the text in the colour of quiet text

// Share of light a channel gives off: screens raise its number to a power.
double Linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor &color)
{
    return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) +
           0.0722 * Linear(color.blueF());
}

// A square wave on a dark screen.
QIcon MakeIcon()
{
    QPixmap pixmap(ICON_PIXELS, ICON_PIXELS);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1D, 0x3A, 0x57));
    painter.drawRoundedRect(4, 4, ICON_PIXELS - 8, ICON_PIXELS - 8, 22, 22);
    painter.setPen(QPen(QColor(0x6F, 0xE0, 0x9A), 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QPoint wave[] = {{20, 84}, {42, 84}, {42, 44}, {66, 44},
                           {66, 84}, {88, 84}, {88, 44}, {108, 44}};
    painter.drawPolyline(wave, sizeof wave / sizeof wave[0]);
    return QIcon(pixmap);
}

} // namespace

double QTV_GetContrast(const QColor &one, const QColor &other)
{
    const double a = Luminance(one), b = Luminance(other);
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

QColor QTV_ReadableColor(const QColor &wanted, const QColor &ground)
{
    if (QTV_GetContrast(wanted, ground) >= QTV_CONTRAST_MIN)
        return wanted;
    // Away from the ground, towards whichever end gives more contrast in the end.
    const QColor end = QTV_GetContrast(Qt::white, ground) > QTV_GetContrast(Qt::black, ground)
                           ? QColor(Qt::white)
                           : QColor(Qt::black);
    for (int step = 1; step < LIGHTNESS_STEPS; step++) {
        const QColor tried =
            QTV_BlendColors(end, wanted, static_cast<double>(step) / LIGHTNESS_STEPS);
        if (QTV_GetContrast(tried, ground) >= QTV_CONTRAST_MIN)
            return tried;
    }
    return end;
}

QColor QTV_QuietColor(const QPalette &palette, const QColor &ground)
{
    return QTV_ReadableColor(QTV_BlendColors(palette.color(QPalette::Text), ground, QUIET_SHARE),
                             ground);
}

QColor QTV_BlendColors(const QColor &over, const QColor &ground, double share)
{
    const auto mix = [share](int a, int b) {
        return static_cast<int>(std::lround(a * share + b * (1.0 - share)));
    };
    return QColor(mix(over.red(), ground.red()), mix(over.green(), ground.green()),
                  mix(over.blue(), ground.blue()));
}

QTV_LineColors QTV_MakeLineColors(const QPalette &palette)
{
    const QColor base = palette.color(QPalette::Base), text = palette.color(QPalette::Text);
    const QColor marked = palette.color(QPalette::Highlight);
    // Grounds differ a little from the desktop's own, so that a mark is still told from a stripe.
    QTV_LineColors lines;
    lines.ground[LG_BASE] = base;
    lines.ground[LG_STRIPED] = QTV_BlendColors(text, base, 0.035);
    lines.ground[LG_FRESH] = QTV_BlendColors(QColor(0xF5, 0xB0, 0x00), base, 0.28);
    lines.ground[LG_SELECTED] = QTV_BlendColors(marked, base, 0.22);
    // Rather a deeper mark than another pen: many desktops' own pair is too pale to read.
    lines.ground[LG_ACTIVE] = QTV_ReadableColor(marked, palette.color(QPalette::HighlightedText));
    for (int i = 0; i < LG_COUNT; i++) {
        const QColor &ground = lines.ground[i];
        const QColor plain = i == LG_ACTIVE ? palette.color(QPalette::HighlightedText) : text;
        lines.text[i][LT_PLAIN] = QTV_ReadableColor(plain, ground);
        if (i == LG_ACTIVE) { // on so strong a ground colours say nothing
            for (QColor &pen : lines.text[i])
                pen = lines.text[i][LT_PLAIN];
            continue;
        }
        lines.text[i][LT_QUIET] =
            QTV_ReadableColor(QTV_BlendColors(plain, ground, QUIET_SHARE), ground);
        lines.text[i][LT_GOOD] = QTV_ReadableColor(QColor(0x1F, 0x8A, 0x4C), ground);
        lines.text[i][LT_BAD] = QTV_ReadableColor(QColor(0xC0, 0x1C, 0x28), ground);
    }
    return lines;
}

void QTV_ApplyLook()
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QFont font = QApplication::font();
    font.setPixelSize(FONT_PIXELS);
    QApplication::setFont(font);
    QApplication::setWindowIcon(MakeIcon());
}
