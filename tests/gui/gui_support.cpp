#include "gui/gui_support.h"

#include "app/main_panel.h"
#include "app/startup.h"
#include "comm/communication.h"
#include "settings/settings.h"
#include "support/sim_fixture.h"
#include "watch/main_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <memory>

std::vector<GuiEvent> guiEvents;
std::function<int(const GuiEvent &)> guiAnswer;

namespace {

constexpr int POPUP_TRIES = 500; // at 10 ms

// Which window is in use changes with every pop-up: not what these tests are about.
int Note(const GuiEvent &event)
{
    if (event.event == EVENT_ACTIVATED)
        return 0;
    guiEvents.push_back(event);
    return guiAnswer ? guiAnswer(event) : 0;
}

int NoteControl(int panel, int control, int event, int data)
{
    return Note({panel, control, event, data});
}

// Which window is in front is the window system's affair: it would make every test differ.
int NotePanel(int panel, int event, int data)
{
    if (event == EVENT_ACTIVATED)
        return 0;
    return Note({panel, 0, event, data});
}

void PutCallbacks(bool isNoting)
{
    for (int i = 0; i < UI_cnPanels; i++) {
        FacePanel *panel = FACE_PanelRecord(UI_aPanels[i].panel);
        panel->callback = isNoting && panel->row->callback ? NotePanel : panel->row->callback;
        for (FaceControl &control : panel->controls)
            control.callback = isNoting ? NoteControl : control.row->callback;
    }
}

} // namespace

std::ostream &operator<<(std::ostream &out, const GuiEvent &e)
{
    return out << "{panel " << e.panel << ", control " << e.control << ", event " << e.event
               << ", data " << e.data << "}";
}

void FaceTest::SetUp()
{
    SuspendTimerCallbacks();
    for (int i = 0; i < UI_cnPanels; i++) {
        const int panel = UI_aPanels[i].panel;
        ASSERT_EQ(LoadPanel(panel == PANEL_CONSOLE ? PANEL_MAIN : 0, panel), panel);
    }
    ClearListCtrl(PANEL_MAIN, MAIN_LIST);
    ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "");
    GuiSettle(); // a list that was seen empty has no selected line
    PutCallbacks(true);
    guiEvents.clear();
}

void FaceTest::TearDown()
{
    guiAnswer = nullptr;
    SuspendTimerCallbacks();
    for (int i = 0; i < UI_cnPanels; i++)
        HidePanel(UI_aPanels[i].panel);
    ClearListCtrl(PANEL_MAIN, MAIN_LIST);
    ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "");
    GuiSettle();
    PutCallbacks(false);
}

void GuiProgramTest::SetUp()
{
    std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    target = SIMT_Start(PORT, SIM_Options());
    ASSERT_TRUE(target);
    char name[] = "vireo2";
    char *arguments[] = {name, nullptr};
    ASSERT_EQ(VR_StartUp(1, arguments), 0);
    GuiShow(PANEL_MAIN);
    WindowCB(0, ITEM_WATCH_VIEW);
    ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "");
}

void GuiProgramTest::TearDown()
{
    VIR2_StopPeriodicASC();
    IsDBGChange = 0;
    szDebugFileName.clear();
    nDebugFileNames = 0;
    SetMainPanelAttributes(); // takes the recent files off the menu
    for (const int panel : {PANEL_ITEM, PANEL_VALUE, PANEL_MEMORY, PANEL_MAIN})
        HidePanel(panel);
    unplug();
}

void GuiProgramTest::unplug()
{
    if (target)
        SIMT_Stop(PORT, target);
    target = nullptr;
}

PanelWindow *GuiWindow(int panel)
{
    return FACE_PanelRecord(panel)->window;
}

void GuiShow(int panel)
{
    ASSERT_EQ(DisplayPanel(panel), 0);
    QApplication::setActiveWindow(GuiWindow(panel)->window());
    ASSERT_TRUE(QTest::qWaitForWindowActive(GuiWindow(panel)->window()));
    GuiSettle();
}

void GuiSettle()
{
    for (int i = 0; i < 3; i++) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void GuiAnswerNext(std::function<void(QWidget *popup)> act)
{
    auto *timer = new QTimer(qApp);
    auto tries = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, [timer, tries, act] {
        QWidget *popup = QApplication::activeModalWidget();
        if (!popup && ++*tries < POPUP_TRIES)
            return;
        timer->deleteLater();
        timer->stop();
        if (!popup) {
            ADD_FAILURE() << "no pop-up came";
            return;
        }
        QApplication::setActiveWindow(popup);
        act(popup);
    });
    timer->start(10);
}

void GuiClickButton(QWidget *popup, const QString &text)
{
    const QList<QAbstractButton *> buttons = popup->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text().remove('&') == text) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << text.toStdString();
    popup->close();
}
