// What the benches of the desktop program do while its event loop runs.
#ifndef BENCH_GUI_WAIT_H
#define BENCH_GUI_WAIT_H

#include <QCoreApplication>
#include <QElapsedTimer>

constexpr int BEN_WAIT_MAX_MS = 20000;

// Waits with the event loop running. False when `isDone` never came.
template <class Done> bool BEN_WaitFor(Done isDone)
{
    QElapsedTimer timer;
    timer.start();
    while (!isDone()) {
        if (timer.elapsed() > BEN_WAIT_MAX_MS)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

inline void BEN_Pause(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
}

#endif
