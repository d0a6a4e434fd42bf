// Completion of one-line fields: a list under the field while the user types. What it
// offers comes from the program some time after the typing, and only if it still fits.
#include "runtime/qt/qt_view.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>

namespace {

constexpr int VISIBLE_LINES = 10;
const char CHOOSING[] = "choosing"; // property of the field: a completion is marked

} // namespace

bool QTV_IsChoosing(const QLineEdit *field)
{
    const QCompleter *completer = field->completer();
    return completer && completer->popup()->isVisible() && field->property(CHOOSING).toBool();
}

void QTV_SetCompletion(const QTV_Control &control, bool isOn)
{
    auto *field = qobject_cast<QLineEdit *>(control.widget);
    if (!field || isOn == (field->completer() != nullptr))
        return;
    field->setCompleter(nullptr); // an earlier one goes with all its connections
    if (!isOn)
        return;
    auto *completer = new QCompleter(field);
    completer->setModel(new QStringListModel(completer));
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains); // what is typed may stand anywhere in a name
    completer->setMaxVisibleItems(VISIBLE_LINES);
    field->setCompleter(completer);
    QObject::connect(field, &QLineEdit::textEdited, completer,
                     [field] { field->setProperty(CHOOSING, false); });
    // The field has taken the marked text by the time the event loop turns: hence queued.
    const auto report = [&control] { QTV_PostControl(control, EVENT_VAL_CHANGED); };
    const auto highlighted = QOverload<const QString &>::of(&QCompleter::highlighted);
    const auto activated = QOverload<const QString &>::of(&QCompleter::activated);
    QObject::connect(completer, highlighted, field,
                     [field] { field->setProperty(CHOOSING, true); });
    QObject::connect(completer, highlighted, completer, report, Qt::QueuedConnection);
    QObject::connect(completer, activated, completer, report, Qt::QueuedConnection);
}

void QTV_DrawCompletion(const VIEW_Completion &change)
{
    const QTV_Control *control = QTV_FindControl(change.panel, change.control);
    auto *field = control ? qobject_cast<QLineEdit *>(control->widget) : nullptr;
    QCompleter *completer = field ? field->completer() : nullptr;
    if (!completer || QTV_IsChoosing(field) || field->text() != QTV_ToQt(change.typed))
        return; // more has been typed, or one been picked: the answer came too late
    QStringList texts;
    for (const std::string &text : change.candidates)
        texts << QTV_ToQt(text);
    static_cast<QStringListModel *>(completer->model())->setStringList(texts);
    if (texts.isEmpty()) {
        completer->popup()->hide();
    } else if (field->hasFocus()) { // not over another field
        completer->setCompletionPrefix(field->text());
        completer->complete();
    }
}
