// The signals that ask a program to end, handed to a thread that may do what a handler
// may not: lock, allocate, wake others.
#include "platform/system.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace {

int wakePipe[2] = {-1, -1};
// Whoever asks twice, and was not heard, means it.
std::atomic<bool> isAsked{false};

void OnSignal(int signal)
{
    const int error = errno;
    if (isAsked.exchange(true))
        std::signal(signal, SIG_DFL);
    const char kind = signal == SIGINT ? 'i' : 'e';
    if (write(wakePipe[1], &kind, 1) < 0)
        std::signal(signal, SIG_DFL); // nobody reads: the next one ends the program
    errno = error;
}

// Signals go to the other threads, so that one that waits in a read comes back from it.
void Watch(void (*notify)(bool isInterrupt))
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    for (;;) {
        char kind = 0;
        const ssize_t count = read(wakePipe[0], &kind, 1);
        if (count == 1)
            notify(kind == 'i');
        else if (count == 0 || errno != EINTR)
            return;
    }
}

} // namespace

int PLT_WatchSignals(void (*notify)(bool isInterrupt))
{
    if (wakePipe[0] >= 0)
        return 0;
    if (pipe(wakePipe) < 0)
        return -1;
    for (const int end : wakePipe)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    std::thread(Watch, notify).detach();
    struct sigaction action = {};
    action.sa_handler = OnSignal; // without SA_RESTART: a read for a line ends
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old = {};
        // What nohup has told us to ignore stays ignored. A shell's script has its background
        // jobs ignore interrupts, too; one that is sent on purpose is meant all the same.
        const bool isKept = sigaction(signal, nullptr, &old) != 0 || old.sa_handler == SIG_IGN;
        if (signal == SIGINT || !isKept)
            sigaction(signal, &action, nullptr);
    }
    return 0;
}

void PLT_SignalHeard()
{
    isAsked = false;
}
