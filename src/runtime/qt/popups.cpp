// Pop-ups: each blocks until it is answered. Timers are held back meanwhile.
#include "runtime/qt/face.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int ENTRY_MIN_WIDTH = 320; // pixels
constexpr size_t BUTTONS_MAX = 3;
constexpr size_t ENTRY_MAX_CHARS = 32767; // what an entry field can hold at all

// An open menu would keep the mouse and the keyboard from the pop-up.
void CloseMenus()
{
    while (QWidget *menu = QApplication::activePopupWidget())
        menu->close();
}

int RunMessageBox(QMessageBox *box)
{
    const FaceBusy busy;
    CloseMenus();
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return box->exec();
}

// A bound in bytes: characters outside ASCII take more than one.
void KeepWithin(QLineEdit *entry, size_t maxLength)
{
    const size_t bound =
        maxLength == 0 || maxLength > ENTRY_MAX_CHARS ? ENTRY_MAX_CHARS : maxLength;
    entry->setMaxLength(static_cast<int>(bound));
    QObject::connect(entry, &QLineEdit::textChanged, [entry, bound](const QString &now) {
        QString text = now;
        while (FACE_ToStd(text).size() > bound)
            text.chop(1);
        if (text != now)
            entry->setText(text);
    });
}

struct Question {
    std::string title;
    std::string message;
    std::vector<std::string> buttons;
    std::string *text; // null = no entry field
    size_t maxLength;
};

QLineEdit *AddEntry(QDialog *dialog, const Question &question)
{
    auto *entry = new QLineEdit(dialog);
    entry->setMinimumWidth(ENTRY_MIN_WIDTH);
    KeepWithin(entry, question.maxLength);
    entry->setText(FACE_ToQt(*question.text));
    entry->selectAll();
    dialog->layout()->addWidget(entry);
    return entry;
}

void AddButtons(QDialog *dialog, const Question &question)
{
    auto *row = new QDialogButtonBox(dialog);
    for (size_t i = 0; i < question.buttons.size(); i++) {
        const QString text = FACE_AccessText(question.buttons[i]);
        QPushButton *button = row->addButton(text, QDialogButtonBox::ActionRole);
        const int number = static_cast<int>(i) + 1;
        QObject::connect(button, &QPushButton::clicked, dialog,
                         [dialog, number] { dialog->done(number); });
        button->setDefault(i == 0);
    }
    dialog->layout()->addWidget(row);
}

// The number of the button, 0 when the box was closed. The text is taken with any
// button: which ones mean it is the caller's affair.
int Ask(const Question &question)
{
    const FaceBusy busy;
    CloseMenus();
    QDialog dialog(FACE_PopupParent());
    dialog.setWindowTitle(FACE_ToQt(question.title));
    auto *layout = new QVBoxLayout(&dialog);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    auto *label = new QLabel(FACE_ToQt(question.message), &dialog);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(label);
    QLineEdit *entry = question.text ? AddEntry(&dialog, question) : nullptr;
    AddButtons(&dialog, question);
    if (entry)
        entry->setFocus();
    const int button = dialog.exec();
    if (entry && button > 0)
        *question.text = FACE_ToStd(entry->text());
    return button;
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

void PrepareFileDialog(QFileDialog *dialog, const QString &spec, const QString &types, int mode)
{
    dialog->setNameFilters(NameFilters(spec, types));
    const bool isSave = mode == FILE_SAVE;
    dialog->setAcceptMode(isSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(isSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QString suffix = QFileInfo(types.section(';', 0, 0)).suffix();
    if (isSave && !IsPattern(suffix))
        dialog->setDefaultSuffix(suffix);
    if (IsPattern(spec) || spec.isEmpty())
        return;
    const QFileInfo file(QDir(dialog->directory()), spec);
    if (file.dir().exists())
        dialog->setDirectory(file.dir());
    dialog->selectFile(file.fileName());
}

} // namespace

int MessagePopup(const std::string &title, const std::string &message)
{
    QMessageBox box(QMessageBox::NoIcon, FACE_ToQt(title), FACE_ToQt(message), QMessageBox::Ok,
                    FACE_PopupParent());
    box.setIcon(title == "Error" ? QMessageBox::Warning : QMessageBox::Information);
    RunMessageBox(&box);
    return 0;
}

int ConfirmPopup(const std::string &title, const std::string &message)
{
    QMessageBox box(QMessageBox::Question, FACE_ToQt(title), FACE_ToQt(message),
                    QMessageBox::Yes | QMessageBox::No, FACE_PopupParent());
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    return RunMessageBox(&box) == QMessageBox::Yes ? 1 : 0;
}

int PromptPopup(const std::string &title, const std::string &message, std::string *text,
                size_t maxLength)
{
    std::string entered = *text;
    if (Ask({title, message, {"OK", "Cancel"}, &entered, maxLength}) != 1)
        return -1;
    *text = entered;
    return 0;
}

int GenericMessagePopup(const std::string &title, const std::string &message,
                        const std::vector<std::string> &buttons, std::string *text,
                        size_t maxLength)
{
    if (buttons.empty() || buttons.size() > BUTTONS_MAX)
        return UIE_BAD_TYPE;
    return Ask({title, message, buttons, text, maxLength});
}

int FileSelectPopup(const std::string &directory, const std::string &spec, const std::string &types,
                    const std::string &title, int mode, std::string *path)
{
    const FaceBusy busy;
    CloseMenus();
    QFileDialog dialog(FACE_PopupParent(), FACE_ToQt(title), FACE_ToQt(directory));
    PrepareFileDialog(&dialog, FACE_ToQt(spec), FACE_ToQt(types), mode);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return VAL_NO_FILE_SELECTED;
    const QString chosen = dialog.selectedFiles().constFirst();
    const QByteArray encoded = QFile::encodeName(QDir::toNativeSeparators(chosen));
    *path = encoded.toStdString();
    return QFileInfo::exists(chosen) ? VAL_EXISTING_FILE_SELECTED : VAL_NEW_FILE_SELECTED;
}
