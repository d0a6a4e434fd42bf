// The fixture of the face's own tests: all panels loaded, every callback replaced by
// one that notes what it was called with, so that no test depends on the program.
#ifndef TESTS_GUI_GUI_SUPPORT_H
#define TESTS_GUI_GUI_SUPPORT_H

#include <QtTest/QtTest>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

#include "runtime/qt/face.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/text_box.h"
#include "sim/sim.h"
#include "support/scratch.h"
#include "support/ui_reading.h"
#include "ui/resource.h"

struct GuiEvent {
    int panel, control, event, data; // control 0 = the panel itself
    bool operator==(const GuiEvent &other) const
    {
        return panel == other.panel && control == other.control && event == other.event &&
               data == other.data;
    }
};
std::ostream &operator<<(std::ostream &out, const GuiEvent &event);

extern std::vector<GuiEvent> guiEvents;
extern std::function<int(const GuiEvent &)> guiAnswer; // may be empty: 0

class FaceTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

// The whole program on the example project and a simulated target, its watch view shown.
class GuiProgramTest : public testing::Test {
protected:
    static constexpr int PATIENCE_MS = 60000; // never reached by a program that works
    static constexpr int PORT = 1;            // the one in the example's settings

    void SetUp() override;
    void TearDown() override;
    void unplug();

    const ScratchFolder folder{true};
    SIM_Target *target = nullptr;
};

template <class W = QWidget> W *GuiWidget(int panel, int control)
{
    FaceControl *found = nullptr;
    return FACE_FindControl(panel, control, &found) < 0 ? nullptr
                                                        : qobject_cast<W *>(found->widget);
}
PanelWindow *GuiWindow(int panel);
// Shows a panel and waits until it has the keyboard.
void GuiShow(int panel);
// Lets the event loop turn until nothing is left to do.
void GuiSettle();
// Once a pop-up is up, does `act` to it; fails the test when none comes.
void GuiAnswerNext(std::function<void(QWidget *popup)> act);
void GuiClickButton(QWidget *popup, const QString &text); // text without the access mark

#endif
