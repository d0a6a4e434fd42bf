// The library draws PNG and PDF by itself, SVG it leaves to Qt's own module.
#include "runtime/qt/plot_svg.h"

#include <QSaveFile>
#include <QSvgGenerator>
#include <qcustomplot.h>

bool PLOT_CanSaveSvg()
{
    return true;
}

bool PLOT_SaveSvg(QCustomPlot *plot, const QString &path)
{
    QSaveFile file(path); // the old picture stays until the new one is whole
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setSize(plot->size());
    generator.setViewBox(plot->rect());
    QCPPainter painter;
    if (!painter.begin(&generator))
        return false;
    // Lines as lines: what is cached is an image of pixels.
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    plot->toPainter(&painter, plot->width(), plot->height());
    return painter.end() && file.commit();
}
