#include "wire.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

struct SIM_Wire {
    int io = -1;        // the terminal's master, or the connection; -1 = nobody is connected
    int slave = -1;     // kept open: a program that closes the port must not hang up the master
    int listening = -1; // the socket that is listened at
    int wake[2] = {-1, -1};
    std::string device, link;
};

namespace {

constexpr int64_t NS_PER_S = 1000000000;
constexpr int BACKLOG = 4;
constexpr int SEND_WAIT_MS = 1000; // a connection that takes nothing for so long loses bytes
const char LOOPBACK[] = "127.0.0.1";

bool Fail(std::string *error, const std::string &what)
{
    *error = what + ": " + strerror(errno);
    return false;
}

// Binary characters both ways, no echo by the terminal itself.
bool MakeRaw(int fd)
{
    termios settings;
    if (tcgetattr(fd, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    settings.c_cflag |= CSTOPB;
    return tcsetattr(fd, TCSANOW, &settings) == 0;
}

bool OpenTerminal(SIM_Wire *wire, std::string *error)
{
    // Not to wait: what a program does not read must not hold the target up.
    wire->io = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (wire->io < 0 || grantpt(wire->io) != 0 || unlockpt(wire->io) != 0)
        return Fail(error, "Cannot get a pseudo terminal");
    char name[PATH_MAX];
    if (ptsname_r(wire->io, name, sizeof name) != 0)
        return Fail(error, "Cannot name the pseudo terminal");
    wire->device = name;
    wire->slave = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (wire->slave < 0 || !MakeRaw(wire->slave))
        return Fail(error, "Cannot open " + wire->device);
    return true;
}

// A link left by a target that was killed is replaced; any other file is not touched.
bool MakeLink(SIM_Wire *wire, const std::string &link, std::string *error)
{
    struct stat status;
    if (lstat(link.c_str(), &status) == 0 && S_ISLNK(status.st_mode))
        unlink(link.c_str());
    if (symlink(wire->device.c_str(), link.c_str()) != 0)
        return Fail(error, "Cannot make the link " + link);
    wire->link = link;
    return true;
}

// The link is removed only while it still names this device: another target may have
// taken it over.
void RemoveLink(SIM_Wire *wire)
{
    char device[PATH_MAX];
    const ssize_t length = readlink(wire->link.c_str(), device, sizeof device);
    if (length >= 0 &&
        wire->device.compare(0, std::string::npos, device, static_cast<size_t>(length)) == 0)
        unlink(wire->link.c_str());
    wire->link.clear();
}

void CloseFd(int *fd)
{
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

bool OpenPipe(SIM_Wire *wire, std::string *error)
{
    return pipe2(wire->wake, O_CLOEXEC | O_NONBLOCK) == 0 || Fail(error, "Cannot make a pipe");
}

bool ListenAt(SIM_Wire *wire, const addrinfo &place)
{
    const int on = 1;
    wire->listening = socket(place.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (wire->listening < 0)
        return false;
    (void)setsockopt(wire->listening, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(wire->listening, place.ai_addr, place.ai_addrlen) == 0 &&
        listen(wire->listening, BACKLOG) == 0)
        return true;
    CloseFd(&wire->listening);
    return false;
}

// The port as it is: it may have been left to the system.
std::string BoundPort(int socketFd)
{
    sockaddr_storage name;
    socklen_t size = sizeof name;
    char port[NI_MAXSERV] = "";
    auto *generic = reinterpret_cast<sockaddr *>(&name);
    if (getsockname(socketFd, generic, &size) == 0)
        getnameinfo(generic, size, nullptr, 0, port, sizeof port, NI_NUMERICSERV);
    return port;
}

bool OpenSocket(SIM_Wire *wire, const std::string &address, std::string *error)
{
    // The port is the last part, so that the host may be an address with colons.
    const size_t colon = address.rfind(':');
    std::string host = colon == std::string::npos ? LOOPBACK : address.substr(0, colon);
    const std::string port = colon == std::string::npos ? address : address.substr(colon + 1);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    // A name may have several addresses; the first that can be listened at is taken.
    addrinfo hints;
    memset(&hints, 0, sizeof hints);
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo *list = nullptr;
    const int result = getaddrinfo(host.c_str(), port.c_str(), &hints, &list);
    if (result != 0) {
        *error = "Cannot listen at " + address + ": " + gai_strerror(result);
        return false;
    }
    for (const addrinfo *item = list; item && wire->listening < 0; item = item->ai_next)
        ListenAt(wire, *item);
    freeaddrinfo(list);
    if (wire->listening < 0)
        return Fail(error, "Cannot listen at " + address);
    const bool isV6 = host.find(':') != std::string::npos;
    wire->device = "tcp:" + (isV6 ? "[" + host + "]" : host) + ":" + BoundPort(wire->listening);
    return true;
}

// One program at a time, as a port has one: who comes while another is there is turned away.
void AcceptProgram(SIM_Wire *wire)
{
    int fresh = accept4(wire->listening, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fresh < 0)
        return;
    if (wire->io >= 0) {
        close(fresh);
        return;
    }
    const int on = 1;
    (void)setsockopt(fresh, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    wire->io = fresh;
}

SIM_Wire *FinishOpening(SIM_Wire *wire, bool isGood, std::string *device)
{
    if (!isGood) {
        SIM_CloseWire(wire);
        return nullptr;
    }
    *device = wire->device;
    return wire;
}

sigset_t MakeEndings()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int ending : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, ending);
    return set;
}

} // namespace

int64_t SIM_NowNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * NS_PER_S + now.tv_nsec;
}

void SIM_GetUtc(time_t when, struct tm *date)
{
    gmtime_r(&when, date);
}

SIM_Wire *SIM_OpenPty(const std::string &link, std::string *device, std::string *error)
{
    auto *wire = new SIM_Wire;
    const bool isGood = OpenTerminal(wire, error) && OpenPipe(wire, error) &&
                        (link.empty() || MakeLink(wire, link, error));
    return FinishOpening(wire, isGood, device);
}

SIM_Wire *SIM_OpenTcp(const std::string &address, std::string *device, std::string *error)
{
    auto *wire = new SIM_Wire;
    return FinishOpening(wire, OpenSocket(wire, address, error) && OpenPipe(wire, error), device);
}

void SIM_CloseWire(SIM_Wire *wire)
{
    if (!wire->link.empty())
        RemoveLink(wire);
    for (int *fd : {&wire->slave, &wire->io, &wire->listening, &wire->wake[0], &wire->wake[1]})
        CloseFd(fd);
    delete wire;
}

void SIM_WakeWire(SIM_Wire *wire)
{
    const char mark = 0;
    // Nothing reads the pipe, so one character wakes all waits that follow.
    while (write(wire->wake[1], &mark, 1) < 0 && errno == EINTR)
        ;
}

int SIM_ReadWire(SIM_Wire *wire, uint8_t *bytes, size_t capacity, bool isWaiting)
{
    // A negative descriptor is passed over.
    pollfd fds[3] = {
        {wire->wake[0], POLLIN, 0}, {wire->io, POLLIN, 0}, {wire->listening, POLLIN, 0}};
    if (poll(fds, 3, isWaiting ? -1 : 0) < 0)
        return errno == EINTR ? 0 : -1;
    if (fds[0].revents != 0)
        return -1;
    ssize_t count = 0;
    if (fds[1].revents != 0) {
        count = read(wire->io, bytes, capacity);
        const bool isPassing = count < 0 && (errno == EAGAIN || errno == EINTR);
        // The program has closed its connection; the next one may come.
        if (wire->listening >= 0 && count <= 0 && !isPassing)
            CloseFd(&wire->io);
        else if (count < 0 && !isPassing)
            return -1;
    }
    if (fds[2].revents != 0)
        AcceptProgram(wire);
    return count > 0 ? static_cast<int>(count) : 0;
}

void SIM_WriteWire(SIM_Wire *wire, const uint8_t *bytes, size_t count)
{
    while (count > 0 && wire->io >= 0) {
        const ssize_t done = wire->listening < 0 ? write(wire->io, bytes, count)
                                                 : send(wire->io, bytes, count, MSG_NOSIGNAL);
        if (done < 0 && errno == EINTR)
            continue;
        // A network may pause; a full terminal has nobody who reads, and loses the rest.
        if (done < 0 && errno == EAGAIN && wire->listening >= 0) {
            pollfd fds[2] = {{wire->io, POLLOUT, 0}, {wire->wake[0], POLLIN, 0}};
            if (poll(fds, 2, SEND_WAIT_MS) > 0 && fds[1].revents == 0)
                continue;
        }
        if (done <= 0)
            return;
        bytes += done;
        count -= static_cast<size_t>(done);
    }
}

bool SIM_WaitWire(SIM_Wire *wire, int64_t timeNs)
{
    // Without this the kernel may round every wait up by 50 us to save wake-ups.
    static thread_local const int slack = prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    (void)slack;
    pollfd fd = {wire->wake[0], POLLIN, 0};
    for (;;) {
        const int64_t left = timeNs - SIM_NowNs();
        if (left <= 0)
            return true;
        const timespec wait = {static_cast<time_t>(left / NS_PER_S),
                               static_cast<long>(left % NS_PER_S)};
        if (ppoll(&fd, 1, &wait, nullptr) > 0)
            return false;
    }
}

// Blocked before the target's thread exists, so that only the first thread takes them.
void SIM_PrepareEnding()
{
    const sigset_t set = MakeEndings();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);
}

void SIM_WaitForEnding()
{
    const sigset_t set = MakeEndings();
    int received;
    sigwait(&set, &received);
}

// As if the system had asked for it: the first thread waits for just that.
void SIM_EndProgram()
{
    kill(getpid(), SIGTERM);
}

size_t SIM_ReadInput(char *bytes, size_t capacity)
{
    ssize_t count = 0;
    do
        count = read(STDIN_FILENO, bytes, capacity);
    while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<size_t>(count) : 0;
}
