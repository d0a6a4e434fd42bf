// Two fixtures: the view alone, drawing what a test says and noting what it hands in; and
// the whole program on a thread of its own beside the window's, as in the desktop program.
#ifndef TESTS_GUI_GUI_SUPPORT_H
#define TESTS_GUI_GUI_SUPPORT_H

#include <QAbstractScrollArea>
#include <QDialog>
#include <QtTest/QtTest>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "runtime/qt/line_list.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/qt_view.h"
#include "runtime/qt/text_box.h"
#include "sim/sim.h"
#include "support/scratch.h"
#include "ui/resource.h"

extern std::vector<VIEW_Event> guiEvents; // handed in by the view alone

// All panels loaded; what is drawn comes from the test, what is handed in goes to guiEvents.
class ViewTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// The program on the example project and a simulated target, its watch view shown.
class GuiProgramTest : public testing::Test {
protected:
    static constexpr int PATIENCE_MS = 20000; // never reached by a program that works
    static constexpr int PORT = 1;            // the one in the example's settings

    void SetUp() override;
    void TearDown() override;
    void plug(const SIM_Options &options = SIM_Options());
    void unplug();
    // Runs `job` between the program's callbacks, on its thread, and waits for it.
    static void onProgram(std::function<void()> job);
    // Hands `job` in and goes on: what the program is busy with until the job is done.
    static void startOnProgram(std::function<void()> job);
    // Until the program has handled what was handed in and everything is drawn.
    static bool settle();

    const ScratchFolder folder{true};
    SIM_Target *target = nullptr;
    std::thread program;
};

template <class W = QWidget> W *GuiWidget(int panel, int control)
{
    QTV_Control *found = QTV_FindControl(panel, control);
    return found ? qobject_cast<W *>(found->widget) : nullptr;
}
PanelWindow *GuiWindow(int panel);
QString GuiText(int panel, int control); // of a label or a field
// Shows a panel and waits until it has the keyboard.
void GuiShow(int panel);
// Lets the event loop turn until nothing is left to do.
void GuiSettle();
// The open dialog, waited for; null and a failed test when none comes.
QDialog *GuiDialog();
void GuiRightClick(QAbstractScrollArea *view, const QPoint &at); // in its viewport
void GuiClickButton(QWidget *dialog, const QString &text);       // text without the access mark

// --- what the program says, for the view alone ----------------------------------------
// One change of a control or list, drawn at once.
void GuiDraw(int panel, int control, unsigned mask, const std::function<void(VIEW_Control &)> &set);
void GuiDrawList(int panel, int control, unsigned mask,
                 const std::function<void(VIEW_List &)> &set);
void GuiDrawText(int panel, int control, const std::string &text, bool isReset);
void GuiDrawPanel(int panel, unsigned mask, const std::function<void(VIEW_Panel &)> &set);
std::vector<VIEW_Event> GuiEventsOf(int panel, int control, int event); // of one kind

#endif
