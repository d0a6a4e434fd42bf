// Time, files, folders and shared libraries on POSIX. Starting programs is in
// launch_posix.cpp.
#include "platform/system.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// "." for a bare name, so that the result can be opened.
std::string FolderOf(const std::string &path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string EnvText(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

uint64_t PLT_TickUs()
{
    struct timespec now;
    // Runs on when somebody sets the clock: no wait gets shorter or longer by that.
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000u +
           static_cast<uint64_t>(now.tv_nsec) / 1000u;
}

uint32_t PLT_TickMs()
{
    return static_cast<uint32_t>(PLT_TickUs() / 1000u);
}

void PLT_SleepMs(unsigned ms)
{
    struct timespec left = {static_cast<time_t>(ms / 1000u),
                            static_cast<long>(ms % 1000u) * 1000000};
    // A signal ends the call early and leaves what remains.
    while (nanosleep(&left, &left) != 0) {
    }
}

int PLT_GetFileStamp(const std::string &path, PLT_FileStamp *stamp)
{
    struct stat status;
    struct tm local;
    if (stat(path.c_str(), &status) != 0 || localtime_r(&status.st_mtime, &local) == nullptr)
        return -1;
    *stamp = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
              local.tm_hour,        local.tm_min,     local.tm_sec};
    return 0;
}

int64_t PLT_UtcMs()
{
    struct timespec wall;
    clock_gettime(CLOCK_REALTIME, &wall);
    return static_cast<int64_t>(wall.tv_sec) * 1000 + wall.tv_nsec / 1000000;
}

void PLT_LocalTime(PLT_Date *now)
{
    struct timespec wall;
    struct tm local;
    clock_gettime(CLOCK_REALTIME, &wall);
    localtime_r(&wall.tv_sec, &local);
    *now = {local.tm_year + 1900,
            local.tm_mon + 1,
            local.tm_mday,
            local.tm_hour,
            local.tm_min,
            local.tm_sec,
            static_cast<int>(wall.tv_nsec / 1000000)};
}

std::string PLT_CurrentDir()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path) != nullptr ? path : "";
}

std::string PLT_ConfigDir()
{
    std::string base = EnvText("XDG_CONFIG_HOME");
    // The standard says that a relative one is to be ignored.
    if (base.empty() || base[0] != '/')
        base = EnvText("HOME") + "/.config";
    return base + "/vireo2";
}

std::string PLT_ProgramDir()
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0 || length >= static_cast<ssize_t>(sizeof path))
        return "";
    return FolderOf(std::string(path, static_cast<size_t>(length)));
}

char PLT_PathSeparator()
{
    return '/';
}

int PLT_MakeDirs(const std::string &path)
{
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        // Most are there already; whether the last one is, is asked at the end.
        (void)mkdir(path.substr(0, end).c_str(), 0777);
        if (end == std::string::npos)
            break;
    }
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? 0 : -1;
}

void *PLT_LoadLibrary(const std::string &name)
{
    return dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void *PLT_GetSymbol(void *library, const char *name)
{
    return library != nullptr ? dlsym(library, name) : nullptr;
}

int PLT_ReplaceFile(const std::string &from, const std::string &to)
{
    // Before the new file takes the name: at no time may more people read it than the old one.
    struct stat old;
    if (stat(to.c_str(), &old) == 0)
        (void)chmod(from.c_str(), old.st_mode & 07777);
    if (std::rename(from.c_str(), to.c_str()) != 0)
        return -1;
    // The new name is safe only when the folder is on the disk too.
    const int folder = open(FolderOf(to).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        (void)fsync(folder);
        close(folder);
    }
    return 0;
}

int PLT_ResolveFile(const std::string &path, std::string *real)
{
    struct stat status;
    *real = path;
    if (stat(path.c_str(), &status) != 0)
        return 0;
    // Behind links, because a file that is renamed over a link would replace the link only.
    char resolved[PATH_MAX];
    if (!S_ISREG(status.st_mode) || realpath(path.c_str(), resolved) == nullptr)
        return -1;
    *real = resolved;
    return 0;
}

int PLT_SyncFile(std::FILE *file)
{
    return fsync(fileno(file)) == 0 ? 0 : -1;
}

// Opening without waiting: a pipe that nobody writes would keep its reader for ever.
int PLT_OpenPlainFile(const std::string &path, std::FILE **file, int64_t *size)
{
    *file = nullptr;
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat status;
    if (fd < 0)
        return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) ? -2 : -1;
    const bool isKnown = fstat(fd, &status) == 0;
    if (isKnown && S_ISREG(status.st_mode))
        *file = fdopen(fd, "rb");
    if (*file == nullptr) {
        close(fd);
        return isKnown && !S_ISREG(status.st_mode) ? -2 : -1;
    }
    *size = status.st_size;
    return 0;
}

int PLT_Seek(std::FILE *file, int64_t offset)
{
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0 ? 0 : -1;
}

int PLT_CreateExclusive(const std::string &path, const char *mode, std::FILE **file)
{
    *file = nullptr;
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0)
        return -1;
    (void)flock(fd, LOCK_EX | LOCK_NB); // a file system without locks does without
    *file = fdopen(fd, mode);
    if (*file != nullptr)
        return 0;
    close(fd);
    (void)unlink(path.c_str());
    return -1;
}

std::FILE *PLT_OpenFile(const std::string &path, const char *mode)
{
    return std::fopen(path.c_str(), mode);
}

int PLT_RemoveFile(const std::string &path)
{
    return std::remove(path.c_str()) == 0 ? 0 : -1;
}

void PLT_GetArguments(int *, char ***)
{
    // main's own are UTF-8 already.
}

int PLT_RemoveAbandoned(const std::string &path)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat status;
    if (fd < 0)
        return -1;
    // Whoever still writes it holds the lock, whatever its process number says.
    const bool isOurs = fstat(fd, &status) == 0 && S_ISREG(status.st_mode) &&
                        (flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK);
    const int result = isOurs ? unlink(path.c_str()) : -1;
    close(fd);
    return result;
}

// By its permission bits: the superuser may write everything, and still did not mean to.
bool PLT_IsReadOnly(const std::string &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 &&
           ((status.st_mode & 0222) == 0 || (access(path.c_str(), W_OK) != 0 && errno == EACCES));
}

int PLT_ProcessId()
{
    return static_cast<int>(getpid());
}

bool PLT_IsProcessAlive(long processId)
{
    // Signal 0 is sent to nobody; "not permitted" means that there is somebody.
    return kill(static_cast<pid_t>(processId), 0) == 0 || errno != ESRCH;
}

std::string PLT_PathArgument(const std::string &path)
{
    return path.empty() || path[0] == '/' ? path : "./" + path;
}

void PLT_GuardStandardStreams()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened the wrong way round: reading or writing it is an error, not silence.
        if (fcntl(fd, F_GETFD) < 0)
            (void)!open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    // A reader that goes away ("| head") must not end a program in the middle of writing to a
    // target: the write fails instead.
    std::signal(SIGPIPE, SIG_IGN);
}
