// Serial ports on termios and poll. A handle is an index into a small table that keeps
// the device's descriptors and time-outs. The device is opened twice: one descriptor never
// blocks, so that a line that takes nothing cannot hold a write; the other lets the
// terminal itself do the waiting of a read, which saves an exchange the call of poll.
// Every wait is bounded, for a silent target and for a device that vanished alike.
#include "platform/serial_device.h"

#include "platform/deadline.h"
#include "platform/system.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int PORTS_MAX = 16;
// The terminal counts its wait in a byte of tenths of a second.
constexpr unsigned VTIME_UNIT_MS = 100, VTIME_MAX_MS = 25500;

struct Port {
    int fd = -1;            // never blocks
    int readFd = -1;        // a read blocks for terminalMs
    bool exclusive = false; // TIOCEXCL was set and must be taken back
    int terminalMs = -1;    // what a read of nothing waits by itself; -1 until configured
    unsigned readTotalMs = 0, writeTotalMs = 0;
};
Port ports[PORTS_MAX];
SER_Why lastReason = SER_WHY_OTHER;

struct BaudCode {
    uint32_t baud;
    speed_t code;
};
constexpr BaudCode BAUDS[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},
    {150, B150},         {200, B200},         {300, B300},         {600, B600},
    {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
    {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
    {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000},
    {3500000, B3500000}, {4000000, B4000000},
};

Port *FindPort(SER_Handle handle)
{
    if (handle < 0 || handle >= PORTS_MAX || ports[handle].fd < 0)
        return nullptr;
    return &ports[handle];
}

// Only rates that the system has a code for can be asked for.
bool FindBaud(uint32_t baud, speed_t *code)
{
    for (const BaudCode &row : BAUDS) {
        if (row.baud == baud) {
            *code = row.code;
            return true;
        }
    }
    return false;
}

// 1 ready (or gone, which the following read or write finds out), 0 time is over, negative error.
int WaitFor(int fd, short events, int timeoutMs)
{
    const uint64_t deadline = PLT_DeadlineUs(static_cast<unsigned>(timeoutMs));
    struct pollfd item = {fd, events, 0};
    int result = poll(&item, 1, timeoutMs);
    // A signal is no silence: whoever proves a line by silence must have heard all of it.
    while (result < 0 && errno == EINTR)
        result = poll(&item, 1, PLT_LeftMs(deadline));
    if (result > 0)
        return (item.revents & POLLNVAL) != 0 ? -1 : 1;
    return result;
}

// Waits up to `waitMs` for the first bytes. Bytes read, 0 when none came, SER_ERR_IO.
int ReadWaiting(const Port &port, void *buffer, size_t count, int waitMs)
{
    if (waitMs != port.terminalMs) {
        const int ready = WaitFor(port.readFd, POLLIN, waitMs);
        if (ready <= 0)
            return ready < 0 ? SER_ERR_IO : 0;
    }
    const ssize_t got = read(port.readFd, buffer, count);
    if (got > 0)
        return static_cast<int>(got);
    if (got < 0)
        return errno == EAGAIN || errno == EINTR ? 0 : SER_ERR_IO;
    // A terminal that hung up reads as end of file, which looks like a time-out.
    struct pollfd item = {port.fd, 0, 0};
    return poll(&item, 1, 0) > 0 ? SER_ERR_IO : 0;
}

// The kernel's own lock belongs to the terminal and outlives a killed program as long
// as somebody else holds the terminal, which on a pseudo terminal its maker does. There
// the lock on the file is enough: it dies with the process.
bool IsPseudoTerminal(int fd)
{
    struct stat status;
    if (fstat(fd, &status) != 0)
        return false;
    const unsigned number = major(status.st_rdev);
    return number >= 136 && number <= 143; // the numbers the kernel has set apart for them
}

// Opened twice and locked. On failure errno says why; what is open of it is the caller's to close.
bool OpenDevice(const std::string &path, Port *port)
{
    // Opening must not wait for a carrier; only afterwards may reads wait.
    constexpr int FLAGS = O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    port->fd = open(path.c_str(), O_RDWR | FLAGS);
    if (port->fd < 0)
        return false;
    port->readFd = open(path.c_str(), O_RDONLY | FLAGS);
    if (port->readFd < 0 || fcntl(port->readFd, F_SETFL, 0) != 0)
        return false;
    if (!isatty(port->fd) || flock(port->fd, LOCK_EX | LOCK_NB) != 0)
        return false;
    port->exclusive = !IsPseudoTerminal(port->fd);
    return !port->exclusive || ioctl(port->fd, TIOCEXCL) == 0;
}

void SetFrame(struct termios *tio, const SER_Settings &settings)
{
    constexpr tcflag_t SIZES[] = {CS5, CS6, CS7, CS8};
    cfmakeraw(tio);
    // cfmakeraw leaves these: flow control, hang-up on close, modem control.
    tio->c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK | IGNPAR | IUCLC);
    tio->c_iflag |= IGNBRK;
    tio->c_cflag &= ~static_cast<tcflag_t>(CSIZE | CSTOPB | PARENB | PARODD | CRTSCTS | HUPCL);
    tio->c_cflag |= CREAD | CLOCAL | SIZES[settings.dataBits - 5];
    if (settings.stopBits == 2)
        tio->c_cflag |= CSTOPB;
    if (settings.parity != 'n')
        tio->c_cflag |= PARENB;
    if (settings.parity == 'o')
        tio->c_cflag |= PARODD;
    // A read returns what there is, after the terminal's own wait when there is nothing.
    tio->c_cc[VMIN] = 0;
    tio->c_cc[VTIME] = 0;
}

// The terminal waits in steps of 100 ms; any other time-out is left to poll.
int SetTerminalWait(Port *port, unsigned waitMs)
{
    const bool isStep = waitMs % VTIME_UNIT_MS == 0 && waitMs <= VTIME_MAX_MS;
    const unsigned terminalMs = isStep ? waitMs : 0;
    struct termios tio;
    if (tcgetattr(port->fd, &tio) != 0)
        return SER_ERR_IO;
    tio.c_cc[VMIN] = 0;
    tio.c_cc[VTIME] = static_cast<cc_t>(terminalMs / VTIME_UNIT_MS);
    if (tcsetattr(port->fd, TCSANOW, &tio) != 0)
        return SER_ERR_IO;
    port->terminalMs = static_cast<int>(terminalMs);
    return SER_OK;
}

void CloseBoth(const Port &port)
{
    for (const int fd : {port.readFd, port.fd}) {
        if (fd >= 0)
            close(fd);
    }
}

bool AreSettingsValid(const SER_Settings &settings)
{
    return settings.dataBits >= 5 && settings.dataBits <= 8 &&
           (settings.stopBits == 1 || settings.stopBits == 2) &&
           (settings.parity == 'n' || settings.parity == 'e' || settings.parity == 'o');
}

// Pseudo terminals have no such lines: the result is of no interest.
void SetLine(int fd, int line, bool on)
{
    (void)ioctl(fd, on ? TIOCMBIS : TIOCMBIC, &line);
}

// A number without a device, a device that is unplugged and one that is no serial port are
// the same to a user: there is no such port.
SER_Why WhyNotOpened(int error)
{
    switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case ENOTTY:
    case EIO:
        return SER_WHY_MISSING;
    case EBUSY:
    case EWOULDBLOCK:
        return SER_WHY_BUSY;
    case EACCES:
    case EPERM:
        return SER_WHY_ACCESS;
    default:
        return SER_WHY_OTHER;
    }
}

} // namespace

SER_Why DEV_LastReason()
{
    return lastReason;
}

std::string DEV_DevicePath(int port)
{
    const std::string number = std::to_string(port);
    // A link that points nowhere still decides: its device is unplugged, not another one.
    const std::string link = PLT_ConfigDir() + "/ports/COM" + number;
    struct stat status;
    if (lstat(link.c_str(), &status) == 0)
        return link;
    return port > 0 ? "/dev/ttyS" + std::to_string(port - 1) : std::string();
}

int DEV_Open(const std::string &path, SER_Handle *handle)
{
    *handle = SER_INVALID;
    lastReason = SER_WHY_OTHER;
    int slot = 0;
    while (slot < PORTS_MAX && ports[slot].fd >= 0)
        ++slot;
    if (slot == PORTS_MAX)
        return SER_ERR_OPEN;
    Port fresh;
    errno = 0;
    if (!OpenDevice(path, &fresh)) {
        lastReason = WhyNotOpened(errno);
        CloseBoth(fresh);
        return SER_ERR_OPEN;
    }
    ports[slot] = fresh;
    *handle = slot;
    return SER_OK;
}

int DEV_Configure(SER_Handle handle, const SER_Settings &settings)
{
    Port *port = FindPort(handle);
    struct termios tio;
    if (port == nullptr || tcgetattr(port->fd, &tio) != 0)
        return SER_ERR_GET;
    speed_t code = B0;
    lastReason = FindBaud(settings.baud, &code) ? SER_WHY_OTHER : SER_WHY_BAUD;
    if (!AreSettingsValid(settings) || code == B0)
        return SER_ERR_SET;
    // A pseudo terminal has no parity, and asking for it fails when nothing else changes.
    SER_Settings possible = settings;
    if (IsPseudoTerminal(port->fd))
        possible.parity = 'n';
    SetFrame(&tio, possible);
    if (cfsetispeed(&tio, code) != 0 || cfsetospeed(&tio, code) != 0 ||
        tcsetattr(port->fd, TCSANOW, &tio) != 0)
        return SER_ERR_SET;
    // Setting succeeds when any part of it did: speed and parity are what must not differ.
    constexpr tcflag_t PARITY = PARENB | PARODD;
    struct termios now;
    const bool isKnown = tcgetattr(port->fd, &now) == 0;
    if (!isKnown || cfgetospeed(&now) != code) {
        lastReason = SER_WHY_BAUD;
        return SER_ERR_SET;
    }
    if ((now.c_cflag & PARITY) != (tio.c_cflag & PARITY)) {
        lastReason = SER_WHY_OTHER;
        return SER_ERR_SET;
    }
    port->terminalMs = 0;
    SetLine(port->fd, TIOCM_DTR, settings.dtr);
    SetLine(port->fd, TIOCM_RTS, settings.rts);
    return SER_OK;
}

int DEV_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs)
{
    Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    port->readTotalMs = readTotalMs;
    port->writeTotalMs = writeTotalMs;
    return SetTerminalWait(port, readTotalMs);
}

int DEV_Write(SER_Handle handle, const void *bytes, size_t count)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    const uint64_t deadline = PLT_DeadlineUs(port->writeTotalMs);
    const char *data = static_cast<const char *>(bytes);
    size_t done = 0;
    while (done < count) {
        const ssize_t wrote = write(port->fd, data + done, count - done);
        if (wrote > 0) {
            done += static_cast<size_t>(wrote);
            continue;
        }
        if (wrote < 0 && errno != EAGAIN && errno != EINTR)
            return SER_ERR_IO;
        const int left = PLT_LeftMs(deadline);
        if (left == 0)
            break;
        if (WaitFor(port->fd, POLLOUT, left) < 0)
            return SER_ERR_IO;
    }
    return static_cast<int>(done);
}

int DEV_Read(SER_Handle handle, void *buffer, size_t count)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    const uint64_t deadline = PLT_DeadlineUs(port->readTotalMs);
    char *data = static_cast<char *>(buffer);
    size_t done = 0;
    // The first wait is the whole time-out, which the terminal may do by itself.
    int left = static_cast<int>(port->readTotalMs);
    while (done < count) {
        const int got = ReadWaiting(*port, data + done, count - done, left);
        if (got < 0)
            return done > 0 ? static_cast<int>(done) : SER_ERR_IO;
        done += static_cast<size_t>(got);
        if (done == count || (left == 0 && got == 0))
            break;
        left = PLT_LeftMs(deadline);
    }
    return static_cast<int>(done);
}

int DEV_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    return ReadWaiting(*port, buffer, capacity,
                       waitMs > INT_MAX ? INT_MAX : static_cast<int>(waitMs));
}

int DEV_BytesWaiting(SER_Handle handle)
{
    const Port *port = FindPort(handle);
    int count = 0;
    if (port == nullptr || ioctl(port->fd, FIONREAD, &count) != 0)
        return SER_ERR_IO;
    return count;
}

// Asking is cheaper than discarding, which wakes the other side, and mostly there is nothing.
int DEV_DropInput(SER_Handle handle)
{
    const int waiting = DEV_BytesWaiting(handle);
    if (waiting <= 0)
        return waiting < 0 ? SER_ERR_IO : SER_OK;
    return tcflush(ports[handle].fd, TCIFLUSH) == 0 ? SER_OK : SER_ERR_IO;
}

int DEV_DropOutput(SER_Handle handle)
{
    const Port *port = FindPort(handle);
    return port != nullptr && tcflush(port->fd, TCOFLUSH) == 0 ? SER_OK : SER_ERR_IO;
}

// A write has already handed its bytes to the driver, which sends them on its own;
// draining would add a system call to every exchange and has no time-out.
int DEV_FlushOutput(SER_Handle handle)
{
    return FindPort(handle) != nullptr ? SER_OK : SER_ERR_IO;
}

void DEV_Close(SER_Handle handle)
{
    Port *port = FindPort(handle);
    if (port == nullptr)
        return;
    if (port->exclusive)
        (void)ioctl(port->fd, TIOCNXCL);
    CloseBoth(*port);
    *port = Port();
}
