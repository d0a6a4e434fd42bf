// Progress boxes. While one is up, the only thing the user can reach is its Cancel
// button: events are let through on every update.
#include "runtime/qt/face.h"

#include <QApplication>
#include <QHash>
#include <QProgressDialog>

namespace {

QHash<int, QProgressDialog *> dialogs;
int nextDialog = 1;

void LetEventsThrough()
{
    const FaceBusy busy; // timers stay out
    QCoreApplication::processEvents();
}

} // namespace

int CreateProgressDialog(const std::string &title, const std::string &text)
{
    auto *dialog = new QProgressDialog(FACE_PopupParent());
    dialog->setWindowTitle(FACE_ToQt(title));
    dialog->setLabelText(FACE_ToQt(text));
    dialog->setRange(0, 100);
    dialog->setAutoClose(false);
    dialog->setAutoReset(false);
    dialog->setMinimumDuration(0);
    dialog->setMinimumWidth(360);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
    dialogs.insert(nextDialog, dialog);
    LetEventsThrough();
    return nextDialog++;
}

int UpdateProgressDialog(int dialog, int percent, const std::string &text)
{
    QProgressDialog *box = dialogs.value(dialog);
    if (!box)
        return UIE_NO_CONTROL;
    if (!box->wasCanceled()) {
        const FaceBusy busy; // a modal box lets events through by itself
        box->setLabelText(FACE_ToQt(text));
        box->setValue(qBound(0, percent, 100));
    }
    LetEventsThrough();
    return box->wasCanceled() ? 1 : 0;
}

int DiscardProgressDialog(int dialog)
{
    QProgressDialog *box = dialogs.take(dialog);
    if (!box)
        return UIE_NO_CONTROL;
    delete box;
    return 0;
}
