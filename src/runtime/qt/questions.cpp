// Questions and progress boxes. None of them blocks: a question stays open until it is
// answered or not wanted any more, and its answer is one event.
#include "runtime/qt/qt_view.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int ENTRY_MIN_WIDTH = 320;      // pixels
constexpr int PROGRESS_WIDTH = 360;       // pixels
constexpr size_t ENTRY_MAX_CHARS = 32767; // what an entry field can hold at all

QPointer<QDialog> openQuestion;
int openId = 0; // of the question that is open; 0 = none

// An open menu would keep the mouse and the keyboard from the dialog.
void CloseMenus()
{
    while (QWidget *menu = QApplication::activePopupWidget())
        menu->close();
}

// Once for each question, however its dialog ended.
void Answer(int id, int button, const std::string &text = "")
{
    if (id != openId)
        return;
    openId = 0;
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_ANSWER);
    event.id = id;
    event.button = button;
    event.text = text;
    QTV_Post(event);
}

QDialog *MakeMessage(const VIEW_Question &question)
{
    const bool isQuestion = question.kind == VIEW_CONFIRM;
    auto *box = new QMessageBox(isQuestion                  ? QMessageBox::Question
                                : question.title == "Error" ? QMessageBox::Warning
                                                            : QMessageBox::Information,
                                QTV_ToQt(question.title), QTV_ToQt(question.message),
                                isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok,
                                QTV_DialogParent());
    // File names and target texts may look like tags; a message is often copied into a report.
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (isQuestion) {
        box->setDefaultButton(question.defaultButton == 2 ? QMessageBox::No : QMessageBox::Yes);
        box->setEscapeButton(QMessageBox::No);
    }
    const int id = question.id;
    QObject::connect(box, &QDialog::finished, [id, isQuestion](int result) {
        // Closed in any way, a message has been read and a question denied.
        Answer(id, isQuestion && result != QMessageBox::Yes ? 2 : 1);
    });
    return box;
}

QLineEdit *AddEntry(QDialog *dialog, const VIEW_Question &question)
{
    const size_t wished = question.maxLength == 0 ? ENTRY_MAX_CHARS : question.maxLength;
    const size_t bound = std::min(wished, ENTRY_MAX_CHARS);
    auto *entry = new QLineEdit(dialog);
    entry->setMinimumWidth(ENTRY_MIN_WIDTH);
    entry->setMaxLength(static_cast<int>(bound));
    // The program's bound is in bytes, and letters outside ASCII take more than one.
    QObject::connect(entry, &QLineEdit::textChanged, [entry, bound](const QString &now) {
        QString text = now;
        while (text.toStdString().size() > bound)
            text.chop(1);
        if (text != now)
            entry->setText(text);
    });
    entry->setText(QTV_ToQt(question.text));
    entry->selectAll();
    dialog->layout()->addWidget(entry);
    return entry;
}

// Buttons of the program's own, numbered from 1. The text goes with any of them: which
// ones mean it is the program's affair.
QDialog *MakeGeneric(const VIEW_Question &question)
{
    auto *dialog = new QDialog(QTV_DialogParent());
    dialog->setWindowTitle(QTV_ToQt(question.title));
    auto *layout = new QVBoxLayout(dialog);
    layout->setSizeConstraint(QLayout::SetFixedSize); // there is nothing to be made larger
    auto *label = new QLabel(QTV_ToQt(question.message), dialog);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(label);
    const bool isPrompt = question.kind == VIEW_PROMPT;
    QLineEdit *entry = question.hasEntry || isPrompt ? AddEntry(dialog, question) : nullptr;
    std::vector<std::string> texts = question.buttons;
    if (isPrompt)
        texts = {"OK", "Cancel"};
    auto *row = new QDialogButtonBox(dialog);
    for (size_t i = 0; i < texts.size(); i++) {
        QPushButton *button =
            row->addButton(QTV_AccessText(texts[i]), QDialogButtonBox::ActionRole);
        const int number = static_cast<int>(i) + 1;
        QObject::connect(button, &QPushButton::clicked, dialog,
                         [dialog, number] { dialog->done(number); });
        button->setDefault(i == 0); // Enter in the entry presses it
    }
    layout->addWidget(row);
    if (entry)
        entry->setFocus();
    const int id = question.id;
    QObject::connect(dialog, &QDialog::finished, [id, entry](int result) {
        Answer(id, result, entry ? entry->text().toStdString() : "");
    });
    return dialog;
}

bool IsPattern(const QString &spec)
{
    return spec.contains('*') || spec.contains('?');
}

// "*.dbg;*.dat" as the dialog wants it, the pattern that was asked for after it.
QStringList NameFilters(const QString &spec, const QString &types)
{
    QStringList filters;
    QString patterns = types;
    patterns.replace(';', ' ');
    if (!patterns.isEmpty())
        filters << QString("Files (%1)").arg(patterns);
    if (IsPattern(spec) && QFileInfo(spec).fileName() != patterns)
        filters << QString("Files (%1)").arg(QFileInfo(spec).fileName());
    filters << "All files (*)";
    return filters;
}

QDialog *MakeFileDialog(const VIEW_Question &question)
{
    auto *dialog =
        new QFileDialog(QTV_DialogParent(), QTV_ToQt(question.title), QTV_ToQt(question.directory));
    const QString spec = QTV_ToQt(question.spec), types = QTV_ToQt(question.types);
    const bool isSave = question.mode == FILE_SAVE;
    dialog->setNameFilters(NameFilters(spec, types));
    dialog->setAcceptMode(isSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(isSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QString suffix = QFileInfo(types.section(';', 0, 0)).suffix();
    // "*.d*" names no ending that could be put behind a name.
    if (isSave && !IsPattern(suffix))
        dialog->setDefaultSuffix(suffix);
    // A proposed name may bring its folder along.
    if (!IsPattern(spec) && !spec.isEmpty()) {
        const QFileInfo file(QDir(dialog->directory()), spec);
        if (file.dir().exists())
            dialog->setDirectory(file.dir());
        dialog->selectFile(file.fileName());
    }
    const int id = question.id;
    QObject::connect(dialog, &QDialog::finished, [id, dialog](int result) {
        const QStringList chosen = dialog->selectedFiles();
        if (result != QDialog::Accepted || chosen.isEmpty()) {
            Answer(id, 0);
            return;
        }
        const QString path = QDir::toNativeSeparators(chosen.constFirst());
        Answer(id, 1, QFile::encodeName(path).toStdString());
    });
    return dialog;
}

struct ProgressBox {
    QDialog *dialog = nullptr;
    QLabel *label = nullptr;
    QProgressBar *bar = nullptr;
};
QHash<int, ProgressBox> progressBoxes;

// Escape and the frame's cross mean Cancel too; the box stays until the program has ended
// what it does.
class ProgressDialog : public QDialog {
public:
    ProgressDialog(int id, QWidget *parent) : QDialog(parent), m_id(id)
    {
        m_cancel = new QPushButton("Cancel", this);
        connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    }
    QPushButton *cancelButton() const
    {
        return m_cancel;
    }
    void reject() override
    {
        if (!m_cancel->isEnabled()) // said once: the program is on its way out
            return;
        m_cancel->setEnabled(false);
        VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_CANCEL);
        event.id = m_id;
        QTV_Post(event);
    }

private:
    int m_id;
    QPushButton *m_cancel;
};

ProgressBox MakeProgressBox(const VIEW_Progress &change)
{
    ProgressBox box;
    auto *dialog = new ProgressDialog(change.id, QTV_DialogParent());
    box.dialog = dialog;
    box.label = new QLabel(dialog);
    box.label->setTextFormat(Qt::PlainText);
    box.label->setWordWrap(true);
    box.bar = new QProgressBar(dialog);
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(box.label);
    layout->addWidget(box.bar);
    layout->addWidget(dialog->cancelButton(), 0, Qt::AlignRight);
    dialog->setMinimumWidth(PROGRESS_WIDTH);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setWindowTitle(QTV_ToQt(change.title));
    CloseMenus();
    dialog->show(); // over all windows: nothing else is to be begun meanwhile
    return box;
}

} // namespace

void QTV_OpenQuestion(const VIEW_Question &question)
{
    if (question.kind == VIEW_CLIPBOARD) {
        openId = question.id;
        Answer(question.id, 1, QGuiApplication::clipboard()->text().toStdString());
        return;
    }
    CloseMenus();
    QDialog *dialog = question.kind == VIEW_FILE ? MakeFileDialog(question)
                      : question.kind == VIEW_MESSAGE || question.kind == VIEW_CONFIRM
                          ? MakeMessage(question)
                          : MakeGeneric(question);
    openId = question.id;
    openQuestion = dialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void QTV_CloseQuestion(int id)
{
    if (id != openId)
        return;
    openId = 0; // first, so that closing it answers nothing
    if (openQuestion)
        openQuestion->close();
}

void QTV_DrawProgress(const VIEW_Progress &change)
{
    if (change.isGone) {
        delete progressBoxes.take(change.id).dialog;
        return;
    }
    if (!progressBoxes.contains(change.id))
        progressBoxes.insert(change.id, MakeProgressBox(change));
    const ProgressBox &box = progressBoxes[change.id];
    box.label->setText(QTV_ToQt(change.text));
    box.bar->setValue(qBound(0, change.percent, 100));
}
