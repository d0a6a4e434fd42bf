// Without Qt's SVG module: the menu does not offer the ending.
#include "runtime/qt/plot_svg.h"

bool PSV_CanSave()
{
    return false;
}

bool PSV_Save(QCustomPlot *, const QString &)
{
    return false;
}
