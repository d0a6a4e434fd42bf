#include "gui/gui_support.h"

#include "app/main_panel.h"
#include "app/startup.h"
#include "comm/communication.h"
#include "runtime/model/model.h"
#include "settings/settings.h"
#include "support/sim_fixture.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <atomic>
#include <mutex>

std::vector<VIEW_Event> guiEvents;

namespace {

constexpr int DIALOG_PATIENCE_MS = 20000;

bool Note(const VIEW_Event &event)
{
    const bool isPlace = event.kind == VIEW_EVENT_FOCUS || event.kind == VIEW_EVENT_PLACED;
    // Which window is in front is the window system's affair.
    const bool isActivation = event.kind == VIEW_EVENT_PANEL && event.event == EVENT_ACTIVATED;
    if (!isPlace && !isActivation)
        guiEvents.push_back(event);
    return true;
}

// Jobs of a test, called by a menu item that nobody sees.
std::mutex jobMutex;
std::function<void()> job;
std::atomic<int> jobsDone{0};
std::atomic<int> jobItem{0};

void RunJob(int, int)
{
    std::function<void()> mine;
    {
        const std::lock_guard<std::mutex> lock(jobMutex);
        mine.swap(job);
    }
    if (mine)
        mine();
    jobsDone++;
}

int RunTestedProgram(int argc, char **argv)
{
    if (VR_StartUp(argc, argv) < 0)
        return -1;
    WindowCB(0, ITEM_WATCH_VIEW);
    jobItem = NewMenuItem(GetPanelMenuBar(PANEL_MAIN), MENU_HELP, "", ITEM_ABOUT, 0, RunJob);
    return RunUserInterface();
}

} // namespace

void ViewTest::SetUp()
{
    QTV_postTo = Note;
    VIEW_Batch batch;
    for (int i = 0; i < UI_cnPanels; i++) {
        VIEW_Panel panel;
        panel.panel = UI_aPanels[i].panel;
        if (UI_GetFirstAlike(panel.panel) != panel.panel)
            continue; // an inspector's other windows
        const bool isInside = panel.panel == PANEL_CONSOLE || panel.panel == PANEL_CONNECT;
        panel.parent = isInside ? PANEL_MAIN : 0;
        panel.mask = VIEW_PANEL_LOADED;
        batch.panels.push_back(panel);
    }
    std::stable_partition(batch.panels.begin(), batch.panels.end(),
                          [](const VIEW_Panel &panel) { return panel.panel == PANEL_MAIN; });
    QTV_Draw(batch);
    GuiDrawPanel(PANEL_MAIN, VIEW_PANEL_SIZE, [](VIEW_Panel &panel) {
        panel.rect.width = 780;
        panel.rect.height = 491;
    });
    guiEvents.clear();
}

void ViewTest::TearDown()
{
    QTV_UnloadPanels();
    GuiSettle();
    QTV_postTo = VIEW_Post;
}

void GuiProgramTest::SetUp()
{
    std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    plug();
    ASSERT_TRUE(target);
    MDL_Reset(); // also of what the view alone has left at the door
    jobItem = 0;
    program = std::thread([] {
        static char name[] = "vireo2";
        char *arguments[] = {name, nullptr};
        VIEW_RunProgram(1, arguments, RunTestedProgram);
    });
    ASSERT_TRUE(QTest::qWaitFor([] { return jobItem > 0; }, PATIENCE_MS));
    ASSERT_TRUE(settle());
    GuiShow(PANEL_MAIN);
    ASSERT_TRUE(settle());
}

void GuiProgramTest::TearDown()
{
    startOnProgram([] {
        VIR2_StopPeriodicASC();
        IsDBGChange = 0;
        QuitUserInterface(0);
    });
    program.join();
    szDebugFileName.clear();
    nDebugFileNames = 0;
    unplug();
    QTV_UnloadPanels();
    GuiSettle();
}

void GuiProgramTest::plug(const SIM_Options &options)
{
    target = SIMT_Start(PORT, options);
}

void GuiProgramTest::unplug()
{
    if (target)
        SIMT_Stop(PORT, target);
    target = nullptr;
}

void GuiProgramTest::startOnProgram(std::function<void()> next)
{
    {
        const std::lock_guard<std::mutex> lock(jobMutex);
        job = std::move(next);
    }
    VIEW_Event event;
    event.kind = VIEW_EVENT_MENU;
    event.item = jobItem;
    VIEW_Post(event);
}

void GuiProgramTest::onProgram(std::function<void()> next)
{
    const int before = jobsDone;
    startOnProgram(std::move(next));
    ASSERT_TRUE(QTest::qWaitFor([before] { return jobsDone > before; }, PATIENCE_MS));
    ASSERT_TRUE(settle());
}

bool GuiProgramTest::settle()
{
    return QTest::qWaitFor(
        [] {
            QTV_DrawChanges();
            VIEW_Counters counters;
            VIEW_GetCounters(&counters);
            return counters.handled == counters.posted && !QTV_DrawChanges();
        },
        PATIENCE_MS);
}

PanelWindow *GuiWindow(int panel)
{
    return QTV_FindPanel(panel)->window;
}

QString GuiText(int panel, int control)
{
    return GuiWidget(panel, control)->property("text").toString();
}

void GuiShow(int panel)
{
    if (QTV_postTo != VIEW_Post)
        GuiDrawPanel(panel, VIEW_PANEL_VISIBLE | VIEW_PANEL_RAISED,
                     [](VIEW_Panel &change) { change.isVisible = true; });
    GuiWindow(panel)->window()->activateWindow();
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

QDialog *GuiDialog()
{
    const auto isUp = [] { return qobject_cast<QDialog *>(QApplication::activeModalWidget()); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return isUp() != nullptr; }, DIALOG_PATIENCE_MS));
    QDialog *dialog = isUp();
    if (dialog)
        QApplication::setActiveWindow(dialog);
    return dialog;
}

void GuiRightClick(QAbstractScrollArea *view, const QPoint &at)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, view->viewport()->mapToGlobal(at));
    QApplication::sendEvent(view->viewport(), &event);
}

void GuiClickButton(QWidget *dialog, const QString &text)
{
    const QList<QAbstractButton *> buttons = dialog->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text().remove('&') == text) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << text.toStdString();
    dialog->close();
}

void GuiDraw(int panel, int control, unsigned mask, const std::function<void(VIEW_Control &)> &set)
{
    VIEW_Batch batch;
    batch.controls.resize(1);
    VIEW_Control &change = batch.controls.front();
    change.panel = panel;
    change.control = control;
    change.mask = mask;
    set(change);
    QTV_Draw(batch);
}

void GuiDrawList(int panel, int control, unsigned mask, const std::function<void(VIEW_List &)> &set)
{
    VIEW_Batch batch;
    batch.lists.resize(1);
    VIEW_List &change = batch.lists.front();
    change.panel = panel;
    change.control = control;
    change.mask = mask;
    set(change);
    QTV_Draw(batch);
}

void GuiDrawText(int panel, int control, const std::string &text, bool isReset)
{
    VIEW_Batch batch;
    batch.boxes.resize(1);
    VIEW_TextBox &change = batch.boxes.front();
    change.panel = panel;
    change.control = control;
    change.text = text;
    change.isReset = isReset;
    QTV_Draw(batch);
}

void GuiDrawPanel(int panel, unsigned mask, const std::function<void(VIEW_Panel &)> &set)
{
    VIEW_Batch batch;
    batch.panels.resize(1);
    VIEW_Panel &change = batch.panels.front();
    change.panel = panel;
    change.mask = mask;
    set(change);
    QTV_Draw(batch);
}

std::vector<VIEW_Event> GuiEventsOf(int panel, int control, int event)
{
    std::vector<VIEW_Event> found;
    for (const VIEW_Event &one : guiEvents)
        if (one.panel == panel && one.control == control && one.event == event)
            found.push_back(one);
    return found;
}
