// How soon the window answers: from start to the first picture, from a key to the line it
// moves to while the target does not answer (with the same without communication as the
// peer), the processor time of 10 sweeps a second (as a share of the time that passed), and
// the redraw of a sweep over 500 lines (with plain drawing of as many texts as the floor).
// Offscreen, so that no window system is measured. Aims: first picture under 200 ms warm, a
// key under 50 ms, 10 sweeps a second under 10 % of a core, a redraw under 5 ms.
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <pthread.h>
#include <string>
#include <thread>
#include <vector>

#include "app/main_panel.h"
#include "app/startup.h"
#include "bench.h"
#include "gui/wait.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/qt_view.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "sim/sim.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"

namespace {

constexpr int PORT = 4;
constexpr int KEYS = 200;
constexpr int SWEEPS = 200;
constexpr int LINES = LITEMS_MAX;
constexpr int COLUMNS = 4;
constexpr int KEY_PAUSE_MS = 5;
constexpr int HEIGHT_USUAL = 491;      // pixels
constexpr int HEIGHT_4K = 2160;        // pixels
constexpr int HEIGHT_ALL = LINES * 18; // all lines in view

void Print(const char *what, const BEN_Cost &cost)
{
    std::printf("%-44s %8.3f ms mean %8.3f ms worst  (%d)\n", what, cost.MeanMs(), cost.worstMs,
                cost.count);
}

double PassedMs(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double ThreadSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// What this thread has worked: others on the machine do not count.
double WorkedMs()
{
    return 1000 * ThreadSeconds(CLOCK_THREAD_CPUTIME_ID);
}

int RunMeasuredProgram(int argc, char **argv)
{
    if (VR_StartUp(argc, argv) < 0)
        return -1;
    for (nLItems = 0; nLItems < LINES; ++nLItems) {
        LItem &item = aLItems[nLItems];
        item.name = "Module_Variable" + std::to_string(nLItems);
        item.address = item.givenAddress = 0x8000;
        VAL_SetFromField(&item, "u2");
    }
    openLItems = 1;
    ncom = PORT;
    Option_nSweepRate = 10;
    Option_AutoOff = 0;
    WindowCB(0, ITEM_WATCH_VIEW);
    VR_FillDebugItems();
    return RunUserInterface();
}

LineList *List()
{
    QTV_Control *control = QTV_FindControl(PANEL_MAIN, MAIN_LIST);
    return control ? static_cast<LineList *>(control->widget) : nullptr;
}

// From a key's arrival at the window until the list has been painted anew.
BEN_Cost MeasureKeys(LineList *list)
{
    BEN_Cost cost;
    list->setFocus();
    for (int i = 0; i < KEYS; i++) {
        QKeyEvent key(QEvent::KeyPress, i % 2 ? Qt::Key_Up : Qt::Key_Down, Qt::NoModifier);
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::sendEvent(list, &key);
        list->repaint();
        cost.Add(PassedMs(timer));
        BEN_Pause(KEY_PAUSE_MS);
    }
    return cost;
}

// Of the program's thread and the window's; the target, on a thread of its own, is another
// machine in life.
void MeasureShare(std::thread *program, int height)
{
    constexpr int MEASURED_MS = 5000, SETTLE_MS = 500;
    QTV_MainWindow()->resize(900, height);
    BEN_Pause(SETTLE_MS);
    clockid_t programClock;
    pthread_getcpuclockid(program->native_handle(), &programClock);
    const double window = ThreadSeconds(CLOCK_THREAD_CPUTIME_ID);
    const double core = ThreadSeconds(programClock);
    VIEW_Counters before, after;
    VIEW_GetCounters(&before);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < MEASURED_MS)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    VIEW_GetCounters(&after);
    const double passed = PassedMs(timer) / 1000;
    const double windowShare = (ThreadSeconds(CLOCK_THREAD_CPUTIME_ID) - window) / passed;
    const double coreShare = (ThreadSeconds(programClock) - core) / passed;
    const int lines = std::min(List()->linesInView(), LINES);
    const double sweeps = static_cast<double>(after.callbacks - before.callbacks) / lines / passed;
    std::printf("500 items, %3d in view, %4.1f sweeps a second: window %4.1f %% + program %4.1f %% "
                "= %4.1f %% of a core\n",
                lines, sweeps, 100 * windowShare, 100 * coreShare, 100 * (windowShare + coreShare));
}

// Communication on or off, as the menu does it.
void ToggleCommunication(bool wasOn)
{
    VIEW_Event event;
    event.kind = VIEW_EVENT_MENU;
    event.item = ITEM_CONNECT;
    event.value = wasOn;
    VIEW_Post(event);
}

VIEW_Batch MakeSweep(int sweep)
{
    VIEW_Batch batch;
    batch.lists.resize(1);
    VIEW_List &change = batch.lists[0];
    change.panel = PANEL_MAIN;
    change.control = MAIN_LIST;
    change.mask = VIEW_LIST_LINES;
    change.count = LINES;
    for (int i = 0; i < LINES; i++) {
        VIEW_Line line;
        line.id = static_cast<uint32_t>(i + 1);
        line.cells = {{"Module_Variable" + std::to_string(i), UIS_NORMAL, ""},
                      {"012340", UIS_NORMAL, ""},
                      {i % 2 ? "u2" : "f4", UIS_NORMAL, ""},
                      {std::to_string(sweep * 7 + i) + (i % 2 ? "" : ".25"), UIS_CHANGED, ""}};
        change.changed.push_back({i, line});
    }
    return batch;
}

BEN_Cost MeasureSweeps()
{
    BEN_Cost cost;
    for (int sweep = 0; sweep < SWEEPS; sweep++) {
        const VIEW_Batch batch = MakeSweep(sweep);
        const double before = WorkedMs();
        QTV_Draw(batch);
        QCoreApplication::processEvents(); // paints what has changed
        cost.Add(WorkedMs() - before);
    }
    return cost;
}

// As many texts as the lines in view have cells, on nothing but an image.
BEN_Cost MeasureFloor(LineList *list)
{
    const int rows = std::min(list->linesInView(), LINES);
    QImage image(list->viewport()->size(), QImage::Format_RGB32);
    const QString text = "1234.25";
    BEN_Cost cost;
    for (int sweep = 0; sweep < SWEEPS; sweep++) {
        const double before = WorkedMs();
        QPainter painter(&image);
        image.fill(Qt::white);
        for (int row = 0; row < rows; row++)
            for (int column = 0; column < COLUMNS; column++)
                painter.drawText(QPoint(column * 90, row * 18 + 14), text);
        painter.end();
        cost.Add(WorkedMs() - before);
    }
    return cost;
}

void MeasureRedraw(LineList *list, int height, const char *what)
{
    QTV_MainWindow()->resize(900, height);
    list->setColumns({{"Name", 200, UIA_LEFT, false, false},
                      {"Address", 80, UIA_LEFT, false, false},
                      {"Type", 50, UIA_LEFT, false, false},
                      {"Value", 200, UIA_POINT, false, false}});
    BEN_Pause(50);
    const BEN_Cost sweep = MeasureSweeps(), floor = MeasureFloor(list);
    Print(what, sweep);
    Print("  as many texts on an image (floor)", floor);
    std::printf("  sweep : floor %.2f, %d lines in view\n", sweep.totalMs / floor.totalMs,
                std::min(list->linesInView(), LINES));
}

} // namespace

int main(int argc, char **argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (QTV_StartApplication(&argc, argv) < 0)
        return 1;
    std::thread program([argc, argv] { VIEW_RunProgram(argc, argv, RunMeasuredProgram); });
    bool isShown = BEN_WaitFor([] { return QTV_MainWindow() && QTV_MainWindow()->isVisible(); });
    if (isShown)
        QTV_MainWindow()->repaint();
    std::printf("%-44s %8.3f ms\n", "from main to the first picture", PassedMs(sinceStart));
    isShown = isShown && BEN_WaitFor([] { return List() && List()->lines()->rowCount() == LINES; });

    SIM_Options silent;
    silent.stations = 0;
    std::string error;
    SIM_Target *good = SIM_Start(SIM_Options(), &error);
    SIM_Target *target = SIM_Start(silent, &error);
    if (!isShown || !target || !good) {
        std::fprintf(stderr, "%s\n", isShown ? error.c_str() : "the window did not come up");
        std::_Exit(1);
    }
    setenv("VIREO2_COM4", SIM_DevicePath(good), 1);
    ToggleCommunication(false);
    for (const int height : {HEIGHT_USUAL, HEIGHT_4K})
        MeasureShare(&program, height);
    ToggleCommunication(true);
    BEN_WaitFor([] {
        VIEW_Counters counters;
        VIEW_GetCounters(&counters);
        return counters.handled == counters.posted;
    });
    QTV_MainWindow()->resize(900, HEIGHT_USUAL);
    setenv("VIREO2_COM4", SIM_DevicePath(target), 1);
    const BEN_Cost idle = MeasureKeys(List());
    ToggleCommunication(false);
    VIEW_Busy busy;
    if (!BEN_WaitFor([&busy] {
            VIEW_GetBusy(&busy);
            return busy.isBusy;
        }))
        std::fprintf(stderr, "communication did not begin\n");
    const BEN_Cost waiting = MeasureKeys(List());
    Print("key to picture, communication off (peer)", idle);
    Print("key to picture, target silent", waiting);
    std::printf("silent : off %.2f\n", waiting.totalMs / idle.totalMs);
    MeasureRedraw(List(), HEIGHT_4K, "sweep over 500 lines, a 4K window");
    MeasureRedraw(List(), HEIGHT_ALL, "sweep over 500 lines, all in view");
    std::fflush(stdout);
    std::_Exit(0); // the program still waits for the target; nothing of it is to be kept
}
