// A graph as a picture: on the clipboard and in files, as it is on the screen. The window's own
// affair: the program neither asks where it goes nor waits for it.
#include "platform/safe_file.h"
#include "runtime/qt/plot_svg.h"
#include "runtime/qt/plot_widget.h"

void PlotWidget::copyPicture()
{
    QApplication::clipboard()->setPixmap(toPixmap());
}

bool PlotWidget::saveTo(const QString &path)
{
    if (path.endsWith(".pdf", Qt::CaseInsensitive))
        return savePdf(path);
    if (path.endsWith(".svg", Qt::CaseInsensitive))
        return PLOT_SaveSvg(this, path);
    return savePng(path);
}

void PlotWidget::savePicture()
{
    QStringList filters = {"PNG (*.png)", "PDF (*.pdf)"};
    if (PLOT_CanSaveSvg())
        filters << "SVG (*.svg)";
    // Not exec: curves go on growing behind it, and the program goes on drawing.
    auto *dialog = new QFileDialog(this, "Save picture", QString(), filters.join(";;"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("png");
    // A name without an ending gets that of the chosen kind; a name with one is the wish.
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString &filter) {
        dialog->setDefaultSuffix(filter.left(3).toLower());
    });
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        if (!saveTo(path))
            QMessageBox::warning(this, "Error",
                                 QString::fromStdString(PLT_SaveFailureText(path.toStdString())));
    });
    dialog->open();
}
