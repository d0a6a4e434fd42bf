// Questions and progress boxes, answered as a user would.
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QTemporaryDir>

#include "gui/gui_support.h"

namespace {

// Opens a question, does `act` to its dialog and gives the answer that was handed in.
VIEW_Event Ask(VIEW_Question question, const std::function<void(QDialog *)> &act)
{
    static int lastId = 100;
    guiEvents.clear();
    VIEW_Batch batch;
    batch.question = std::move(question);
    batch.question.id = ++lastId;
    QTV_Draw(batch);
    QDialog *dialog = GuiDialog();
    if (!dialog)
        return VIEW_Event();
    act(dialog);
    GuiSettle();
    EXPECT_EQ(guiEvents.size(), 1u) << "one answer to one question";
    const VIEW_Event answer = guiEvents.empty() ? VIEW_Event() : guiEvents[0];
    EXPECT_EQ(answer.kind, VIEW_EVENT_ANSWER);
    EXPECT_EQ(answer.id, lastId);
    return answer;
}

VIEW_Question Make(VIEW_QuestionKind kind, const std::vector<std::string> &buttons = {},
                   bool hasEntry = false, const std::string &text = "", size_t maxLength = 0)
{
    VIEW_Question question;
    question.kind = kind;
    question.title = "Message";
    question.message = "<b>%s</b>\nb";
    question.buttons = buttons;
    question.hasEntry = hasEntry;
    question.text = text;
    question.maxLength = maxLength;
    return question;
}

void PressEscape(QDialog *dialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
}

std::function<void(QDialog *)> Click(const QString &text)
{
    return [text](QDialog *dialog) { GuiClickButton(dialog, text); };
}

TEST_F(ViewTest, AConfirmationTellsYesFromEverythingElse)
{
    EXPECT_EQ(Ask(Make(VIEW_CONFIRM), Click("Yes")).button, 1);
    EXPECT_EQ(Ask(Make(VIEW_CONFIRM), Click("No")).button, 2);
    EXPECT_EQ(Ask(Make(VIEW_CONFIRM), PressEscape).button, 2);
    const auto pressEnter = [](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Return); };
    EXPECT_EQ(Ask(Make(VIEW_CONFIRM), pressEnter).button, 1);
    VIEW_Question dangerous = Make(VIEW_CONFIRM);
    dangerous.defaultButton = 2;
    EXPECT_EQ(Ask(dangerous, pressEnter).button, 2);
    Ask(Make(VIEW_MESSAGE), [](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        ASSERT_TRUE(box);
        EXPECT_EQ(box->text(), "<b>%s</b>\nb") << "as it is, no markup";
        GuiClickButton(dialog, "OK");
    });
}

TEST_F(ViewTest, AGenericQuestionGivesTheButtonAndTheText)
{
    const char *const names[] = {"Yes", "No", "Cancel"};
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(Ask(Make(VIEW_GENERIC, {"__Yes", "__No", "__Cancel"}), Click(names[i])).button,
                  i + 1);
    const VIEW_Event typed =
        Ask(Make(VIEW_GENERIC, {"Retry", "Cancel"}, true, "1", 3), [](QDialog *dialog) {
            auto *entry = dialog->findChild<QLineEdit *>();
            EXPECT_TRUE(entry->hasFocus());
            QTest::keyClicks(entry, "12345"); // over the selected proposal
            QTest::keyClick(entry, Qt::Key_Return);
        });
    EXPECT_EQ(typed.button, 1);
    EXPECT_EQ(typed.text, "123") << "no more than the bound";
    EXPECT_EQ(Ask(Make(VIEW_GENERIC, {"Retry"}, true, "1", 3), PressEscape).button, 0);
    const VIEW_Event prompt = Ask(Make(VIEW_PROMPT, {}, true, "old", 5), [](QDialog *dialog) {
        dialog->findChild<QLineEdit *>()->setText(QString::fromUtf8("\u017Elu\u0165"));
        GuiClickButton(dialog, "OK");
    });
    EXPECT_EQ(prompt.text, "\u017Elu") << "the bound counts bytes and splits no character";
    EXPECT_EQ(Ask(Make(VIEW_PROMPT, {}, true), Click("Cancel")).button, 2);
}

TEST_F(ViewTest, AQuestionNobodyWantsAnsweredGoesUnanswered)
{
    VIEW_Batch batch;
    batch.question = Make(VIEW_CONFIRM);
    batch.question.id = 77;
    QTV_Draw(batch);
    ASSERT_TRUE(GuiDialog());
    batch = VIEW_Batch();
    batch.closedQuestion = 77;
    QTV_Draw(batch);
    GuiSettle();
    EXPECT_FALSE(QApplication::activeModalWidget());
    EXPECT_TRUE(guiEvents.empty());
}

TEST_F(ViewTest, AFileIsChosenWithItsWholePath)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("a.dbg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto choose = [](const QString &name) {
        return [name](QDialog *dialog) {
            auto *entry = dialog->findChild<QLineEdit *>("fileNameEdit");
            ASSERT_TRUE(entry);
            entry->setFocus();
            entry->selectAll();
            QTest::keyClicks(entry, name);
            dialog->accept();
        };
    };
    VIEW_Question load = Make(VIEW_FILE);
    load.directory = folder.path().toStdString();
    load.spec = "*.d*";
    load.types = "*.dbg;*.dat";
    EXPECT_EQ(Ask(load, [](QDialog *dialog) { dialog->reject(); }).button, 0);
    const VIEW_Event chosen = Ask(load, choose("a.dbg"));
    EXPECT_EQ(chosen.button, 1);
    EXPECT_EQ(chosen.text, load.directory + "/a.dbg");
    VIEW_Question save = load;
    save.spec = load.directory + "/a.dbg";
    save.directory.clear();
    save.mode = FILE_SAVE;
    EXPECT_EQ(Ask(save, choose("b")).text, load.directory + "/b.dbg") << "with the first suffix";
}

TEST_F(ViewTest, AProgressBoxStaysUntilTheProgramEndsIt)
{
    VIEW_Batch batch;
    batch.progress.resize(1);
    VIEW_Progress &box = batch.progress[0];
    box.id = 5;
    box.title = "Upload";
    for (const int percent : {10, 250}) {
        box.percent = percent;
        QTV_Draw(batch);
    }
    QDialog *dialog = GuiDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->findChild<QProgressBar *>()->value(), 100) << "held at the end";
    PressEscape(dialog);
    GuiClickButton(dialog, "Cancel");
    ASSERT_EQ(guiEvents.size(), 1u) << "cancelled once";
    EXPECT_EQ(guiEvents[0].kind, VIEW_EVENT_CANCEL);
    EXPECT_EQ(guiEvents[0].id, 5);
    EXPECT_TRUE(dialog->isVisible());
    box.isGone = true;
    QTV_Draw(batch);
    GuiSettle();
    EXPECT_FALSE(QApplication::activeModalWidget());
}

} // namespace
