// Without Qt's SVG module: the menu does not offer the ending.
#include "runtime/qt/plot_svg.h"

bool PLOT_CanSaveSvg()
{
    return false;
}

bool PLOT_SaveSvg(QCustomPlot *, const QString &)
{
    return false;
}
