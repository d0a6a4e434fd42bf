// The window's thread: start, the rate of drawing, what the program is busy with, the end. The
// program runs on a thread of its own and wakes this one by an event; the two share nothing else.
#include "runtime/qt/qt_view.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLabel>
#include <QSessionManager>
#include <QTimer>
#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "platform/system.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/look.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/text_box.h"

namespace {

constexpr int EXIT_NO_SCREEN = 255;        // what -1 becomes as an exit code
constexpr int FRAME_MS = 16;               // changes are drawn at most 60 times a second
constexpr int BUSY_LOOK_MS = 100;          // how often the program's work is looked at
constexpr uint32_t BUSY_MS = 300;          // how long a callback may take before it is mentioned
constexpr uint32_t SECONDS_FROM_MS = 2000; // from here on the time is said too

bool isDrawing = false;

// Qt ends the program with a core dump when it finds no screen; a plain message and an
// exit code do.
void ReportNoScreen(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    if (type == QtFatalMsg)
        std::_Exit(EXIT_NO_SCREEN);
}

// Turns the program's wake-ups into drawings, no more of them than the eye needs.
class Drawer : public QObject {
public:
    explicit Drawer(QObject *parent) : QObject(parent)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            m_since.start();
            QTV_DrawChanges();
        });
    }
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        // The first change after a pause is drawn at once, the others at the rate of the eye.
        if (!m_timer.isActive()) {
            const qint64 passed = m_since.isValid() ? m_since.elapsed() : FRAME_MS;
            m_timer.start(static_cast<int>(qMax<qint64>(0, FRAME_MS - passed)));
        }
        return true;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_since; // the last drawing
};
std::atomic<Drawer *> drawer{nullptr}; // set before the program starts, until the end

void DrawPanel(const VIEW_Panel &change)
{
    QTV_Panel *panel = QTV_FindPanel(change.panel);
    if (!panel || !panel->window)
        return;
    PanelWindow *window = panel->window;
    if (change.mask & VIEW_PANEL_TITLE) // Qt would take "[*]" for its mark of a changed file
        window->setWindowTitle(QTV_ToQt(change.title).replace("[*]", "[*][*]"));
    // Size and place before it is shown: it must not jump.
    if (change.mask & VIEW_PANEL_SIZABLE)
        window->setSizable(change.isSizable);
    if (change.mask & VIEW_PANEL_SIZE)
        window->resizeByProgram(QSize(change.rect.width, change.rect.height));
    if (change.mask & VIEW_PANEL_PLACE)
        window->placeByProgram(QPoint(change.rect.left, change.rect.top));
    if (change.mask & VIEW_PANEL_VISIBLE)
        window->setShown(change.isVisible);
    if ((change.mask & VIEW_PANEL_RAISED) && window->isWindow()) {
        window->raise();
        window->activateWindow();
    }
}

// The panels come in the order in which they were shown; the one the others belong to, or
// are inside of, must be there first.
void LoadPanels(const std::vector<VIEW_Panel> &panels)
{
    for (const bool isMain : {true, false})
        for (const VIEW_Panel &panel : panels)
            if ((panel.mask & VIEW_PANEL_LOADED) && (panel.panel == UI_nMenuPanel) == isMain)
                QTV_LoadPanel(panel.panel, panel.parent);
}

// After everything else: a control may have been made able to take the keyboard just now.
void DrawFocus(const VIEW_Panel &change)
{
    const QTV_Control *control = QTV_FindControl(change.panel, change.focus);
    if ((change.mask & VIEW_PANEL_FOCUS) && control && control->widget &&
        control->widget->focusPolicy() != Qt::NoFocus)
        control->widget->setFocus();
}

void DrawTextBox(const VIEW_TextBox &change)
{
    const QTV_Control *control = QTV_FindControl(change.panel, change.control);
    auto *box = control ? qobject_cast<TextBox *>(control->widget) : nullptr;
    if (!box)
        return;
    if (change.isReset)
        box->resetText(QTV_ToQt(change.text));
    else
        box->appendText(QTV_ToQt(change.text));
    if (change.dropped > 0)
        box->dropLines(change.dropped);
    if (change.firstVisible >= 0)
        box->setFirstVisibleLine(change.firstVisible);
}

void DrawGraph(const VIEW_Graph &change)
{
    const QTV_Control *control = QTV_FindControl(change.panel, change.control);
    auto *plot = control ? qobject_cast<PlotWidget *>(control->widget) : nullptr;
    if (!plot)
        return;
    // The view at last: cursors stand on samples that must be there.
    if (change.mask & VIEW_GRAPH_AXES)
        plot->setAxes(change.axes);
    if (change.mask & VIEW_GRAPH_PLOTS)
        plot->setPlots(change.plots);
    if (change.mask & VIEW_GRAPH_VIEW)
        plot->setView(change.view);
}

// Where the keyboard is, for the program's GetActiveCtrl.
void ReportFocus(QWidget *, QWidget *now)
{
    const PanelWindow *window = PanelWindow::holding(now);
    if (!window)
        return;
    const QTV_Control *control = QTV_ControlOf(now);
    QTV_Post(VIEW_MakeEvent(VIEW_EVENT_FOCUS, window->record()->row->panel,
                            control ? control->row->control : 0));
}

void PostEnd()
{
    QTV_Post(VIEW_MakeEvent(VIEW_EVENT_END));
}

std::atomic<bool> isProgramRunning{false};

// Qt leaves the process when the screen goes away, and all that it says before is this. The
// program ends in order all the same: it saves what must be saved and is not cut off in the
// middle of a file.
QtMessageHandler usualHandler = nullptr;

void NoticeLostScreen(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    constexpr int END_WITHIN_MS = 10000, LOOK_MS = 10;
    usualHandler(type, context, message);
    if (!message.contains("connection broke"))
        return;
    drawer = nullptr; // nobody draws any more
    PostEnd();
    for (int waited = 0; isProgramRunning && waited < END_WITHIN_MS; waited += LOOK_MS)
        PLT_SleepMs(LOOK_MS);
    std::_Exit(EXIT_NO_SCREEN);
}

} // namespace

int QTV_StartApplication(int *argc, char **argv)
{
    static int argumentCount; // Qt keeps a reference to it for the program's life
    argumentCount = *argc;
    const QtMessageHandler usual = qInstallMessageHandler(ReportNoScreen); // while it is made
    static QApplication *application = new QApplication(argumentCount, argv);
    qInstallMessageHandler(usual);
    *argc = argumentCount;
    std::setlocale(LC_NUMERIC, "C"); // numbers in files and on the wire have a point
    application->setApplicationName("Vireo2");
    application->setQuitOnLastWindowClosed(false); // the program says when it ends
    QObject::connect(application, &QApplication::focusChanged, ReportFocus);
    QObject::connect(application, &QGuiApplication::commitDataRequest, application, PostEnd,
                     Qt::DirectConnection);
    QTV_ApplyLook();
    QTV_InstallKeyRouting();
    drawer = new Drawer(application);
    auto *busyTimer = new QTimer(application);
    QObject::connect(busyTimer, &QTimer::timeout, QTV_ShowBusy);
    busyTimer->start(BUSY_LOOK_MS);
    return 0;
}

bool QTV_IsDrawing()
{
    return isDrawing;
}

bool QTV_DrawChanges()
{
    VIEW_Batch batch;
    if (!VIEW_Fetch(&batch))
        return false;
    QTV_Draw(batch);
    return true;
}

void QTV_Draw(const VIEW_Batch &batch)
{
    // Widgets report what is done to them here as well (bind.cpp): nothing of it is the user's.
    isDrawing = true;
    LoadPanels(batch.panels);
    for (const UI_Layout &layout : batch.layouts)
        QTV_UseLayout(layout);
    for (const VIEW_Panel &panel : batch.panels)
        DrawPanel(panel);
    for (const VIEW_MenuItem &item : batch.items)
        QTV_DrawMenuItem(item);
    for (const VIEW_List &list : batch.lists)
        QTV_DrawList(list);
    for (const VIEW_Control &control : batch.controls) // a ring's value after its entries
        QTV_DrawControl(control);
    for (const VIEW_TextBox &box : batch.boxes)
        DrawTextBox(box);
    for (const VIEW_Graph &graph : batch.graphs)
        DrawGraph(graph);
    for (const VIEW_Completion &completion : batch.completions)
        QTV_DrawCompletion(completion);
    for (const VIEW_Panel &panel : batch.panels)
        DrawFocus(panel);
    for (const VIEW_Progress &progress : batch.progress)
        QTV_DrawProgress(progress);
    if (batch.closedQuestion != 0)
        QTV_CloseQuestion(batch.closedQuestion);
    if (batch.question.id != 0)
        QTV_OpenQuestion(batch.question);
    if (batch.popupMenu != 0)
        QTV_OpenPopupMenu(batch.popupMenu);
    if (!batch.helpFile.empty())
        QTV_ShowHelp(batch.helpFile);
    if (batch.isBeep)
        QApplication::beep();
    if (batch.hasClipboard)
        QGuiApplication::clipboard()->setText(QTV_ToQt(batch.clipboard));
    isDrawing = false;
    if (batch.isEnded) // the last of all batches: there is no program any more
        QCoreApplication::exit(batch.exitCode);
}

void QTV_ShowBusy()
{
    PanelWindow *main = QTV_MainWindow();
    auto *label = main ? main->findChild<QLabel *>("busy") : nullptr;
    if (!label)
        return;
    // Looked at by a timer: a program that waits for a station tells nobody.
    VIEW_Busy busy;
    VIEW_GetBusy(&busy);
    const uint32_t passedMs = PLT_TickMs() - busy.sinceMs;
    QString text;
    if (busy.isBusy && passedMs >= BUSY_MS) {
        text = busy.text.empty() ? QString("working") : QTV_ToQt(busy.text);
        if (passedMs >= SECONDS_FROM_MS)
            text += QString(", %1 s").arg(passedMs / 1000);
    }
    if (label->text() != text)
        label->setText(text);
}

// On the program's thread: posting an event is a call of Qt that any thread may make.
void VIEW_Wake()
{
    if (Drawer *waiting = drawer)
        QCoreApplication::postEvent(waiting, new QEvent(QEvent::User));
}

int VIEW_Main(int argc, char **argv, int (*program)(int argc, char **argv))
{
    if (QTV_StartApplication(&argc, argv) < 0)
        return -1;
    int code = 0;
    isProgramRunning = true;
    usualHandler = qInstallMessageHandler(NoticeLostScreen);
    std::thread runner([&code, argc, argv, program] {
        code = VIEW_RunProgram(argc, argv, program);
        isProgramRunning = false;
    });
    QApplication::exec();
    runner.join();
    return code;
}
