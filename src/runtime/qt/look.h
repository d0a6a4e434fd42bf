// Colours and contrast. The desktop's palette is followed, dark ones included; what the
// program colours itself (states, lamps, marks) is moved lighter or darker until it can
// be read on the ground it stands on.
#ifndef RUNTIME_QT_LOOK_H
#define RUNTIME_QT_LOOK_H

#include <QColor>

class QPalette;

constexpr double QTV_CONTRAST_MIN = 4.5; // text against its ground

// One style and one font size on every system; palette, font family and scale are the
// desktop's. Once, after the application object exists.
void QTV_ApplyLook();
// Ratio of the brightness of two opaque colours, 1 to 21.
double QTV_GetContrast(const QColor &one, const QColor &other);
// `wanted`, or the nearest lighter or darker one that reads on `ground`.
QColor QTV_ReadableColor(const QColor &wanted, const QColor &ground);
// Quieter than text, but still readable on `ground`.
QColor QTV_QuietColor(const QPalette &palette, const QColor &ground);
// `share` (0 to 1) of `over` laid on `ground`.
QColor QTV_BlendColors(const QColor &over, const QColor &ground, double share);

// What a list is drawn with: the grounds a cell may have, and for each the colours of
// what may stand on it.
enum QTV_Ground { LG_BASE, LG_STRIPED, LG_FRESH, LG_SELECTED, LG_ACTIVE, LG_COUNT };
enum QTV_Tone { LT_PLAIN, LT_QUIET, LT_GOOD, LT_BAD, LT_COUNT };
struct QTV_LineColors {
    QColor ground[LG_COUNT];
    QColor text[LG_COUNT][LT_COUNT];
};
QTV_LineColors QTV_MakeLineColors(const QPalette &palette);

#endif
