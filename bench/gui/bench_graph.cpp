// What a live graph costs: the whole program with its window (offscreen) on the simulated target
// behind a paced line of 115200 baud, sixteen curves as fast as the line goes, as a share of one
// core that the program's thread and the window's thread work together. The peer is the same
// program with communication on and the graph closed. Aim: under 30 % more than the peer, 20
// pictures a second where the window can show them.
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <pthread.h>
#include <string>
#include <thread>

#include "app/main_panel.h"
#include "app/startup.h"
#include "graphs/window.h"
#include "gui/wait.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/qt_view.h"
#include "runtime/userint.h"
#include "runtime/view.h"
#include "settings/settings.h"
#include "sim/sim.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"

namespace {

constexpr int PORT = 4, BAUD = 115200;
constexpr int CURVES = 16;
constexpr int MEASURED_MS = 6000;
constexpr uint32_t LIVE_ADDRESS = 0x8000; // of the demo's variables, which move

double ThreadSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void AddItems(int begin)
{
    for (int i = 0; i < CURVES; ++i) {
        LItem &item = aLItems[begin + i];
        const uint32_t distance = begin == 0 ? 2 : 0x100;
        item.address = item.givenAddress = LIVE_ADDRESS + distance * static_cast<uint32_t>(i);
        char name[20];
        std::snprintf(name, sizeof name, "[0x%04X]", static_cast<unsigned>(item.address));
        item.name = name;
        VAL_SetFromField(&item, "u2");
    }
    nLItems = begin + CURVES;
}

int RunMeasuredProgram(int argc, char **argv)
{
    if (VR_StartUp(argc, argv) < 0)
        return -1;
    AddItems(0);
    AddItems(CURVES);
    openLItems = 1;
    ncom = PORT;
    bRate = BAUD;
    Option_AutoOff = 0;
    WindowCB(0, ITEM_WATCH_VIEW);
    VR_FillDebugItems();
    return RunUserInterface();
}

void ClickMenu(int item, bool isChecked)
{
    VIEW_Event event;
    event.kind = VIEW_EVENT_MENU;
    event.item = item;
    event.value = isChecked;
    VIEW_Post(event);
}

// As the user does it, by the entry's place.
void Choose(int control, int entry)
{
    auto *ring = static_cast<QComboBox *>(QTV_FindControl(PANEL_GRAPH, control)->widget);
    ring->setCurrentIndex(entry);
    emit ring->activated(entry);
}

// What both threads have worked, as a share of one core.
double MeasureShare(std::thread *program, const char *what, PlotWidget *plot)
{
    clockid_t programClock;
    pthread_getcpuclockid(program->native_handle(), &programClock);
    int pictures = 0;
    QMetaObject::Connection counting;
    if (plot != nullptr)
        counting = QObject::connect(plot, &QCustomPlot::afterReplot, [&pictures] { ++pictures; });
    const double window = ThreadSeconds(CLOCK_THREAD_CPUTIME_ID);
    const double core = ThreadSeconds(programClock);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < MEASURED_MS)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double passed = static_cast<double>(timer.elapsed()) / 1000;
    const double windowShare = (ThreadSeconds(CLOCK_THREAD_CPUTIME_ID) - window) / passed;
    const double coreShare = (ThreadSeconds(programClock) - core) / passed;
    QObject::disconnect(counting);
    std::printf("%-40s window %5.1f %% + program %5.1f %% = %5.1f %% of a core, %.1f pictures a "
                "second\n",
                what, 100 * windowShare, 100 * coreShare, 100 * (windowShare + coreShare),
                pictures / passed);
    std::fflush(stdout);
    return windowShare + coreShare;
}

// The lines of the list from `first` on become the graph's curves; those that were there go.
void OpenGraph(int first)
{
    VIEW_Event event;
    event.event = EVENT_VAL_CHANGED;
    event.panel = PANEL_MAIN;
    event.control = MAIN_LIST;
    QTV_Control *list = QTV_FindControl(PANEL_MAIN, MAIN_LIST);
    auto *view = static_cast<QAbstractItemView *>(list->widget);
    view->clearSelection();
    for (int i = first; i < first + CURVES; ++i)
        view->selectionModel()->select(view->model()->index(i, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    BEN_Pause(300);
    ClickMenu(ITEM_GRAPH, false);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (QTV_StartApplication(&argc, argv) < 0)
        return 1;
    SIM_Options paced;
    paced.baud = BAUD;
    std::string error;
    SIM_Target *target = SIM_Start(paced, &error);
    if (target == nullptr) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    setenv("VIREO2_COM4", SIM_DevicePath(target), 1);
    std::thread program([argc, argv] { VIEW_RunProgram(argc, argv, RunMeasuredProgram); });
    const bool isShown =
        BEN_WaitFor([] { return QTV_MainWindow() && QTV_MainWindow()->isVisible(); });
    if (!isShown)
        std::_Exit(1);
    BEN_Pause(500);
    ClickMenu(ITEM_CONNECT, false);
    BEN_Pause(1000);
    const double peer = MeasureShare(&program, "communication on, no graph (peer)", nullptr);
    OpenGraph(0);
    PlotWidget *plot = nullptr;
    BEN_WaitFor([&plot] {
        QTV_Control *control = QTV_FindControl(PANEL_GRAPH, STRIP_GRAPH);
        plot = control != nullptr ? static_cast<PlotWidget *>(control->widget) : nullptr;
        return plot != nullptr && plot->isVisible();
    });
    plot->window()->resize(1200, 800);
    Choose(STRIP_PERIOD, 0); // as fast as it goes
    BEN_Pause(11000);        // the whole width is filled
    const double live = MeasureShare(&program, "16 neighbours, 10 s in view", plot);
    const auto stateText = [] {
        QTV_Control *control = QTV_FindControl(PANEL_GRAPH, STRIP_STATE);
        return static_cast<QLabel *>(control->widget)->text().toStdString();
    };
    std::printf("  %s, %d curves\n", stateText().c_str(), plot->plottableCount());
    Choose(STRIP_WINDOW, 0);
    BEN_Pause(1500);
    const double narrow = MeasureShare(&program, "16 neighbours, 1 s in view", plot);
    std::printf("beyond the peer: %.1f %% and %.1f %% of one core\n", 100 * (live - peer),
                100 * (narrow - peer));
    std::fflush(stdout);
    std::_Exit(0);
}
