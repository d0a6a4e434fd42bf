// A graph as SVG: plot_svg.cpp where Qt's SVG library was found when the program was built,
// plot_no_svg.cpp elsewhere.
#ifndef RUNTIME_QT_PLOT_SVG_H
#define RUNTIME_QT_PLOT_SVG_H

#include <QString>

class QCustomPlot;

bool PLOT_CanSaveSvg();
bool PLOT_SaveSvg(QCustomPlot *plot, const QString &path); // false when it could not be written

#endif
