#include "line.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int64_t NS_PER_S = 1000000000;
constexpr int CHAR_BITS = 11; // start, eight data, two stop
constexpr int64_t CHUNK_NS = 2000000;
constexpr int64_t CHUNK_MAX = 16;
constexpr int64_t LATE_MAX_NS = 2000000;

bool fail(std::string *error, const std::string &what)
{
    *error = what + ": " + strerror(errno);
    return false;
}

// Binary characters both ways, no echo by the terminal itself.
bool makeRaw(int fd)
{
    termios settings;
    if (tcgetattr(fd, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    settings.c_cflag |= CSTOPB;
    return tcsetattr(fd, TCSANOW, &settings) == 0;
}

bool openTerminal(SIM_Line *line, std::string *error)
{
    line->master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (line->master < 0 || grantpt(line->master) != 0 || unlockpt(line->master) != 0)
        return fail(error, "Cannot get a pseudo terminal");
    char name[PATH_MAX];
    if (ptsname_r(line->master, name, sizeof name) != 0)
        return fail(error, "Cannot name the pseudo terminal");
    line->device = name;
    line->slave = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (line->slave < 0 || !makeRaw(line->slave))
        return fail(error, "Cannot open " + line->device);
    return true;
}

// A link left by a target that was killed is replaced; any other file is not touched.
bool makeLink(SIM_Line *line, const std::string &link, std::string *error)
{
    struct stat status;
    if (lstat(link.c_str(), &status) == 0 && S_ISLNK(status.st_mode))
        unlink(link.c_str());
    if (symlink(line->device.c_str(), link.c_str()) != 0)
        return fail(error, "Cannot make the link " + link);
    line->link = link;
    return true;
}

// The link is removed only while it still names this device: another target may have
// taken it over.
void removeLink(SIM_Line *line)
{
    char device[PATH_MAX];
    const ssize_t length = readlink(line->link.c_str(), device, sizeof device);
    if (length >= 0 &&
        line->device.compare(0, std::string::npos, device, static_cast<size_t>(length)) == 0)
        unlink(line->link.c_str());
    line->link.clear();
}

void closeFd(int *fd)
{
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

// What the program's side does not take is lost, as on a wire.
void put(SIM_Line *line, const uint8_t *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t done = write(line->master, bytes, count);
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return;
        bytes += done;
        count -= static_cast<size_t>(done);
    }
}

} // namespace

int64_t SIM_NowNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * NS_PER_S + now.tv_nsec;
}

bool SIM_OpenLine(SIM_Line *line, int baud, const std::string &link, std::string *error)
{
    bool good = openTerminal(line, error);
    if (good && pipe2(line->wake, O_CLOEXEC | O_NONBLOCK) != 0)
        good = fail(error, "Cannot make a pipe");
    if (good && !link.empty())
        good = makeLink(line, link, error);
    if (!good)
        SIM_CloseLine(line);
    line->charNs = baud > 0 ? CHAR_BITS * NS_PER_S / baud : 0;
    return good;
}

void SIM_CloseLine(SIM_Line *line)
{
    if (!line->link.empty())
        removeLink(line);
    closeFd(&line->slave);
    closeFd(&line->master);
    closeFd(&line->wake[0]);
    closeFd(&line->wake[1]);
}

void SIM_WakeLine(SIM_Line *line)
{
    const char mark = 0;
    // Nothing reads the pipe, so one character wakes all waits that follow.
    while (write(line->wake[1], &mark, 1) < 0 && errno == EINTR)
        ;
}

int SIM_ReadLine(SIM_Line *line, uint8_t *bytes, size_t capacity)
{
    pollfd fds[2] = {{line->wake[0], POLLIN, 0}, {line->master, POLLIN, 0}};
    if (poll(fds, 2, -1) < 0)
        return errno == EINTR ? 0 : -1;
    if (fds[0].revents != 0)
        return -1;
    const ssize_t count = read(line->master, bytes, capacity);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR ? 0 : -1;
    // The program could not know that this side woke late: do not charge the wire for it.
    line->receiveNs = std::max({line->receiveNs, line->sendNs, SIM_NowNs() - line->lateNs});
    line->lateNs = 0;
    return static_cast<int>(count);
}

void SIM_PassReceived(SIM_Line *line)
{
    line->receiveNs += line->charNs;
}

bool SIM_WaitUntil(SIM_Line *line, int64_t timeNs)
{
    // Without this the kernel may round every wait up by 50 us to save wake-ups.
    static thread_local const int slack = prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    (void)slack;
    pollfd fd = {line->wake[0], POLLIN, 0};
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

bool SIM_SendLine(SIM_Line *line, const uint8_t *bytes, size_t count, int64_t startNs)
{
    if (line->charNs == 0) {
        const bool go = SIM_WaitUntil(line, startNs);
        if (go)
            put(line, bytes, count);
        return go;
    }
    // Deadlines count from the start of the frame, so lateness never adds up; small chunks
    // keep the program fed without a wake-up for every character.
    const auto chunk =
        static_cast<size_t>(std::clamp<int64_t>(CHUNK_NS / line->charNs, 1, CHUNK_MAX));
    line->sendNs = std::max(line->sendNs, startNs);
    for (size_t i = 0; i < count; i += chunk) {
        const size_t run = std::min(chunk, count - i);
        line->sendNs += static_cast<int64_t>(run) * line->charNs;
        if (!SIM_WaitUntil(line, line->sendNs))
            return false;
        put(line, bytes + i, run);
    }
    line->lateNs = std::min(SIM_NowNs() - line->sendNs, LATE_MAX_NS);
    return true;
}
