// Start, the event loop and the desktop's services.
#include "runtime/qt/face.h"

#include <QApplication>
#include <QClipboard>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "platform/system.h"

namespace {

constexpr int EXIT_NO_SCREEN = 255; // what -1 becomes as an exit code
constexpr int RETRY_MS = 20;        // how soon the end of the loop is tried again

bool isQuit = false;
bool isRunning = false;
int quitCode = 0;

// Qt ends the program with a core dump when it finds no screen; a plain message and
// an exit code do.
void ReportNoScreen(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    if (type == QtFatalMsg)
        std::_Exit(EXIT_NO_SCREEN);
}

// Not in the middle of a callback: a pop-up it still wants to show would be closed at
// once, as if cancelled.
void EndLoop()
{
    if (FACE_IsBusy())
        QTimer::singleShot(RETRY_MS, qApp, EndLoop);
    else
        QCoreApplication::exit(quitCode);
}

} // namespace

int InitCVIRTE(int *argc, char **argv)
{
    if (qApp)
        return 0;
    static int argumentCount; // Qt keeps a reference to it for the program's life
    argumentCount = *argc;
    const QtMessageHandler usual = qInstallMessageHandler(ReportNoScreen);
    static QApplication *application = new QApplication(argumentCount, argv);
    qInstallMessageHandler(usual);
    *argc = argumentCount;
    std::setlocale(LC_NUMERIC, "C"); // numbers in files and on the wire have a point
    application->setApplicationName("Vireo2");
    application->setQuitOnLastWindowClosed(false); // the program says when it ends
    FACE_ApplyLook();
    FACE_InstallKeyRouting();
    return 0;
}

int RunUserInterface()
{
    isRunning = true;
    if (!isQuit)
        QApplication::exec();
    isRunning = isQuit = false;
    return quitCode;
}

int QuitUserInterface(int code)
{
    quitCode = code;
    if (isRunning && !isQuit)
        QTimer::singleShot(0, qApp, EndLoop);
    isQuit = true;
    return 0;
}

int ProcessSystemEvents()
{
    const FaceBusy busy;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    return 0;
}

int LaunchExecutable(const std::string &commandLine)
{
    return PLT_Launch(commandLine);
}

int ClipboardPutText(const std::string &text)
{
    QGuiApplication::clipboard()->setText(FACE_ToQt(text));
    return 0;
}
