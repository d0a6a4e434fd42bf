// The loader window on a simulated boot-strap loader: a HEX file chosen and programmed with
// the mouse.
#include <QAction>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include "gui/gui_support.h"
#include "runtime/qt/look.h"
#include "runtime/qt/segment_bar.h"
#include "sim/loader.h"

namespace {

class LoaderWindow : public GuiProgramTest {
protected:
    void SetUp() override
    {
        GuiProgramTest::SetUp();
        unplug();
        SIM_Options options;
        options.loader = true;
        plug(options);
        QTV_MenuAction(ITEM_LOADER)->trigger();
        ASSERT_TRUE(
            QTest::qWaitFor([] { return GuiWindow(PANEL_LOADER)->isVisible(); }, PATIENCE_MS));
        ASSERT_TRUE(settle());
    }
    static void click(int control)
    {
        QTest::mouseClick(GuiWidget(PANEL_LOADER, control), Qt::LeftButton);
    }
    void choose(const std::string &name)
    {
        click(LOADER_CHOOSE);
        auto *dialog = qobject_cast<QFileDialog *>(GuiDialog());
        ASSERT_TRUE(dialog);
        dialog->findChild<QLineEdit *>()->setText(QString::fromStdString((folder / name).string()));
        GuiSettle();
        static_cast<QDialog *>(dialog)->accept();
        ASSERT_TRUE(settle());
    }
    static bool waitForResult(const QString &start)
    {
        return QTest::qWaitFor(
            [&] { return GuiText(PANEL_LOADER, LOADER_RESULT).startsWith(start); }, PATIENCE_MS);
    }
    static QColor pixel(double share) // in the middle of the bar's height
    {
        auto *bar = GuiWidget<SegmentBar>(PANEL_LOADER, LOADER_BAR);
        const QImage image = bar->grab().toImage();
        const int x = static_cast<int>(share * image.width());
        return image.pixelColor(x, image.height() / 2);
    }
};

TEST_F(LoaderWindow, ProgramsWhatWasChosen)
{
    auto *bar = GuiWidget<SegmentBar>(PANEL_LOADER, LOADER_BAR);
    EXPECT_FALSE(GuiWidget(PANEL_LOADER, LOADER_PROGRAM)->isEnabled());
    choose("demo.hex");
    ASSERT_EQ(2u, bar->segments().size());
    EXPECT_EQ(pixel(0.505), bar->colorOf(UIS_DIM));
    EXPECT_EQ(pixel(0.75), bar->palette().color(QPalette::Base)) << "nothing of the file there";

    click(LOADER_PROGRAM);
    QDialog *question = GuiDialog();
    ASSERT_TRUE(question);
    EXPECT_TRUE(question->property("text").toString().contains("COM1"));
    GuiClickButton(question, "Yes");
    ASSERT_TRUE(waitForResult("Done: 2112 bytes in the flash"));
    ASSERT_TRUE(settle());
    EXPECT_EQ(nullptr, QApplication::activeModalWidget());
    EXPECT_EQ(pixel(0.51), bar->colorOf(UIS_GOOD));
    SIM_WithLoader(target, [](SIM_Loader *loader) { EXPECT_EQ(1u, loader->erases); });
    auto *steps = GuiWidget<LineList>(PANEL_LOADER, LOADER_STEPS)->lines();
    EXPECT_EQ("done", steps->cell(2, 1).text);
    GuiWidget(PANEL_LOADER, LOADER_COMPARE)->setFocus();
    QTest::keyClick(GuiWidget(PANEL_LOADER, LOADER_COMPARE), Qt::Key_Escape);
    ASSERT_TRUE(settle());
    EXPECT_FALSE(GuiWindow(PANEL_LOADER)->isVisible());
}

// Every colour stands out from the ground and from the others.
TEST_F(ViewTest, BarSegmentsCanBeSeenAndToldApart)
{
    GuiShow(PANEL_LOADER);
    auto *bar = GuiWidget<SegmentBar>(PANEL_LOADER, LOADER_BAR);
    const QPalette usual = QApplication::palette();
    QPalette dark(QColor(0x3A, 0x3A, 0x3A), QColor(0x2B, 0x2B, 0x2B));
    dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
    const unsigned styles[] = {UIS_NORMAL, UIS_DIM, UIS_GOOD, UIS_WARNING};
    for (const QPalette &palette : {usual, dark}) {
        QApplication::setPalette(palette);
        GuiSettle();
        const QColor ground = bar->palette().color(QPalette::Base);
        EXPECT_EQ(palette.color(QPalette::Base), ground);
        for (const unsigned style : styles) {
            EXPECT_GE(LOOK_Contrast(bar->colorOf(style), ground), 2.0) << style;
            for (const unsigned other : styles)
                EXPECT_TRUE(style == other || bar->colorOf(style) != bar->colorOf(other));
        }
    }
    QApplication::setPalette(usual);
    GuiSettle();
}

} // namespace
