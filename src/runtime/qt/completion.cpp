// Completion of one-line fields: a list under the field while the user types.
#include "runtime/qt/face.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>

namespace {

constexpr int VISIBLE_LINES = 10;
const char CHOOSING[] = "choosing"; // property of the field: a completion is marked

QStringList Candidates(const FaceControl &control, CompletionCallback callback,
                       const QString &typed)
{
    const FaceBusy busy;
    QStringList texts;
    for (const std::string &text :
         callback(control.row->panel, control.row->control, FACE_ToStd(typed)))
        texts << FACE_ToQt(text);
    return texts;
}

// The field has taken the marked text by the time the event loop turns.
void ReportChosen(QCompleter *completer, FaceControl *control, QLineEdit *field)
{
    const auto report = [control] {
        if (!FACE_IsBusy())
            FACE_Call(*control, EVENT_VAL_CHANGED, 0);
    };
    const auto highlighted = QOverload<const QString &>::of(&QCompleter::highlighted);
    const auto activated = QOverload<const QString &>::of(&QCompleter::activated);
    QObject::connect(completer, highlighted, field,
                     [field] { field->setProperty(CHOOSING, true); });
    QObject::connect(completer, highlighted, completer, report, Qt::QueuedConnection);
    QObject::connect(completer, activated, completer, report, Qt::QueuedConnection);
}

} // namespace

bool FACE_IsChoosing(const QLineEdit *field)
{
    const QCompleter *completer = field->completer();
    return completer && completer->popup()->isVisible() && field->property(CHOOSING).toBool();
}

int SetCtrlCompletion(int panel, int control, CompletionCallback callback)
{
    FaceControl *found = nullptr;
    const int error = FACE_FindControl(panel, control, &found);
    if (error < 0)
        return error;
    auto *field = qobject_cast<QLineEdit *>(found->widget);
    if (!field)
        return UIE_BAD_TYPE;
    field->setCompleter(nullptr); // an earlier one goes with all its connections
    if (!callback)
        return 0;
    auto *completer = new QCompleter(field);
    auto *model = new QStringListModel(completer);
    completer->setModel(model);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setMaxVisibleItems(VISIBLE_LINES);
    field->setCompleter(completer);
    QObject::connect(field, &QLineEdit::textEdited, completer,
                     [found, callback, model, field](const QString &typed) {
                         field->setProperty(CHOOSING, false);
                         model->setStringList(Candidates(*found, callback, typed));
                     });
    ReportChosen(completer, found, field);
    return 0;
}
