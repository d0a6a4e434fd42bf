#include "runtime/qt/plot_svg.h"

#include <QSaveFile>
#include <QSvgGenerator>
#include <qcustomplot.h>

bool PSV_CanSave()
{
    return true;
}

bool PSV_Save(QCustomPlot *plot, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setSize(plot->size());
    generator.setViewBox(plot->rect());
    QCPPainter painter;
    if (!painter.begin(&generator))
        return false;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    plot->toPainter(&painter, plot->width(), plot->height());
    return painter.end() && file.commit();
}
