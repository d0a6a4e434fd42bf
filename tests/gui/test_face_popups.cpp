// Pop-ups, answered as a user would.
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>

#include "gui/gui_support.h"

namespace {

void PressEscape(QWidget *popup)
{
    QTest::keyClick(popup, Qt::Key_Escape);
}

std::function<void(QWidget *)> Click(const QString &text)
{
    return [text](QWidget *popup) { GuiClickButton(popup, text); };
}

TEST_F(FaceTest, ConfirmTellsYesFromEverythingElse)
{
    GuiAnswerNext(Click("Yes"));
    EXPECT_EQ(ConfirmPopup("Message", "Enable communication?"), 1);
    GuiAnswerNext(Click("No"));
    EXPECT_EQ(ConfirmPopup("Message", "Enable communication?"), 0);
    GuiAnswerNext(PressEscape);
    EXPECT_EQ(ConfirmPopup("Message", "Enable communication?"), 0);
}

TEST_F(FaceTest, MessageShowsItsTextAsItIs)
{
    QString title, text;
    GuiAnswerNext([&](QWidget *popup) {
        auto *box = qobject_cast<QMessageBox *>(popup);
        title = popup->windowTitle();
        text = box ? box->text() : "not a message box";
        EXPECT_TRUE(box && (box->textInteractionFlags() & Qt::TextSelectableByMouse));
        GuiClickButton(popup, "OK");
    });
    EXPECT_EQ(MessagePopup("Error", "<b>%s</b>\nb"), 0);
    EXPECT_EQ(title, "Error");
    EXPECT_EQ(text, "<b>%s</b>\nb");
}

TEST_F(FaceTest, GenericGivesTheButtonAndTheText)
{
    const std::vector<std::string> buttons = {"__Yes", "__No", "__Cancel"};
    const char *const names[] = {"Yes", "No", "Cancel"};
    for (int i = 0; i < 3; i++) {
        GuiAnswerNext(Click(names[i]));
        EXPECT_EQ(GenericMessagePopup("Vireo2", "Save?", buttons, nullptr, 0), i + 1);
    }
    std::string port = "1";
    GuiAnswerNext([](QWidget *popup) {
        auto *entry = popup->findChild<QLineEdit *>();
        EXPECT_TRUE(entry->hasFocus());
        QTest::keyClicks(entry, "12345"); // over the selected proposal
        QTest::keyClick(entry, Qt::Key_Return);
    });
    EXPECT_EQ(GenericMessagePopup("Message", "Port?", {"Retry", "Cancel"}, &port, 3), 1);
    EXPECT_EQ(port, "123") << "no more than the bound";
    GuiAnswerNext(PressEscape);
    EXPECT_EQ(GenericMessagePopup("Message", "Port?", {"Retry", "Cancel"}, &port, 3), 0);
    EXPECT_EQ(GenericMessagePopup("Message", "Port?", {}, nullptr, 0), UIE_BAD_TYPE);
}

TEST_F(FaceTest, PromptLeavesTheTextAloneWhenCancelled)
{
    const auto type = [](const QString &text, const QString &button) {
        return [text, button](QWidget *popup) {
            popup->findChild<QLineEdit *>()->setText(text);
            GuiClickButton(popup, button);
        };
    };
    std::string text = "old";
    GuiAnswerNext(type("new", "Cancel"));
    EXPECT_LT(PromptPopup("Port", "Number", &text, 10), 0);
    EXPECT_EQ(text, "old");
    GuiAnswerNext(type(QString::fromUtf8("\u017Elu\u0165"), "OK"));
    EXPECT_EQ(PromptPopup("Port", "Number", &text, 5), 0);
    EXPECT_EQ(text, "\u017Elu") << "the bound counts bytes and splits no character";
}

TEST_F(FaceTest, HoldsTimersBackWhileAPopupIsUp)
{
    SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_INTERVAL, 0.002);
    ResumeTimerCallbacks();
    size_t ticks = 0, ticksWhileUp = 0;
    GuiAnswerNext([&](QWidget *popup) {
        ticks = guiEvents.size();
        QTest::qWait(50);
        ticksWhileUp = guiEvents.size() - ticks;
        GuiClickButton(popup, "OK");
    });
    MessagePopup("Message", "wait");
    EXPECT_EQ(ticksWhileUp, 0u);
    EXPECT_TRUE(QTest::qWaitFor([&] { return guiEvents.size() > ticks; }));
}

TEST_F(FaceTest, FileSelectTellsNewFromExisting)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("a.dbg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto choose = [](const QString &name) {
        return [name](QWidget *popup) {
            auto *entry = popup->findChild<QLineEdit *>("fileNameEdit");
            entry->setFocus();
            entry->selectAll();
            QTest::keyClicks(entry, name);
            static_cast<QDialog *>(popup)->accept();
        };
    };
    const std::string directory = folder.path().toStdString();
    std::string path = "untouched";
    GuiAnswerNext([](QWidget *popup) { static_cast<QDialog *>(popup)->reject(); });
    EXPECT_EQ(FileSelectPopup(directory, "*.d*", "*.dbg;*.dat", "Open Icon", FILE_LOAD, &path),
              VAL_NO_FILE_SELECTED);
    EXPECT_EQ(path, "untouched");
    GuiAnswerNext(choose("a.dbg"));
    EXPECT_EQ(FileSelectPopup(directory, "*.d*", "*.dbg;*.dat", "Open Icon", FILE_LOAD, &path),
              VAL_EXISTING_FILE_SELECTED);
    EXPECT_EQ(path, directory + "/a.dbg");
    GuiAnswerNext(choose("b"));
    EXPECT_EQ(FileSelectPopup("", directory + "/a.dbg", "*.dbg;*.dat", "Save", FILE_SAVE, &path),
              VAL_NEW_FILE_SELECTED);
    EXPECT_EQ(path, directory + "/b.dbg") << "the first type's suffix is added";
}

TEST_F(FaceTest, ProgressCanBeCancelled)
{
    const int dialog = CreateProgressDialog("Upload", "0 %");
    ASSERT_GT(dialog, 0);
    EXPECT_EQ(UpdateProgressDialog(dialog, 10, "10 %"), 0);
    EXPECT_EQ(UpdateProgressDialog(dialog, 250, "full"), 0) << "out of range is held at the end";
    GuiClickButton(QApplication::activeModalWidget(), "Cancel");
    EXPECT_EQ(UpdateProgressDialog(dialog, 20, "20 %"), 1);
    EXPECT_EQ(UpdateProgressDialog(dialog, 30, "30 %"), 1);
    EXPECT_EQ(DiscardProgressDialog(dialog), 0);
    EXPECT_LT(UpdateProgressDialog(dialog, 40, ""), 0);
}

} // namespace
