// Time, files, folders, programs and shared libraries on Windows.
#include "platform/system.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

std::string EnvText(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool StartProcess(const std::string &commandLine)
{
    // The call may write into its argument.
    std::vector<char> line(commandLine.begin(), commandLine.end());
    line.push_back('\0');
    STARTUPINFOA startup;
    PROCESS_INFORMATION process;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return false;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

} // namespace

uint64_t PLT_TickUs()
{
    LARGE_INTEGER count, perSecond;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&perSecond);
    // Whole seconds apart: the product would overflow after some weeks.
    const uint64_t ticks = static_cast<uint64_t>(count.QuadPart);
    const uint64_t rate = static_cast<uint64_t>(perSecond.QuadPart);
    return ticks / rate * 1000000u + ticks % rate * 1000000u / rate;
}

uint32_t PLT_TickMs()
{
    return static_cast<uint32_t>(PLT_TickUs() / 1000u);
}

void PLT_SleepMs(unsigned ms)
{
    Sleep(ms);
}

int PLT_GetFileStamp(const std::string &path, PLT_FileStamp *stamp)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    SYSTEMTIME universal, local;
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) ||
        !FileTimeToSystemTime(&data.ftLastWriteTime, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local))
        return -1;
    *stamp = {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
    return 0;
}

int64_t PLT_UtcMs()
{
    constexpr int64_t FROM_1601_TO_1970_MS = 11644473600000;
    FILETIME wall; // in units of 100 ns
    GetSystemTimeAsFileTime(&wall);
    const uint64_t units = static_cast<uint64_t>(wall.dwHighDateTime) << 32 | wall.dwLowDateTime;
    return static_cast<int64_t>(units / 10000) - FROM_1601_TO_1970_MS;
}

void PLT_LocalTime(PLT_Date *now)
{
    SYSTEMTIME local;
    GetLocalTime(&local);
    *now = {local.wYear,   local.wMonth,  local.wDay,         local.wHour,
            local.wMinute, local.wSecond, local.wMilliseconds};
}

int PLT_Launch(const std::string &commandLine)
{
    return StartProcess(commandLine) ? 0 : -1;
}

int PLT_OpenInEditor(const std::string &path)
{
    return PLT_Launch("notepad.exe \"" + PLT_PathArgument(path) + "\"");
}

int PLT_OpenInViewer(const std::string &path)
{
    const HINSTANCE result = ShellExecuteA(nullptr, "open", PLT_PathArgument(path).c_str(), nullptr,
                                           nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > 32 ? 0 : -1; // up to 32 are error codes
}

std::string PLT_CurrentDir()
{
    char path[MAX_PATH];
    const DWORD length = GetCurrentDirectoryA(sizeof path, path);
    if (length == 0 || length >= sizeof path)
        return "";
    std::string text(path, length);
    if (text.size() > 3 && text.back() == '\\')
        text.pop_back();
    return text;
}

std::string PLT_ConfigDir()
{
    return EnvText("APPDATA") + "\\Vireo2";
}

std::string PLT_ProgramDir()
{
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    if (length == 0 || length >= sizeof path)
        return "";
    const std::string text(path, length);
    return text.substr(0, text.rfind('\\'));
}

char PLT_PathSeparator()
{
    return '\\';
}

int PLT_MakeDirs(const std::string &path)
{
    for (size_t end = path.find_first_of("\\/", 1);; end = path.find_first_of("\\/", end + 1)) {
        (void)CreateDirectoryA(path.substr(0, end).c_str(), nullptr);
        if (end == std::string::npos)
            break;
    }
    const DWORD kind = GetFileAttributesA(path.c_str());
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 0 : -1;
}

void *PLT_LoadLibrary(const std::string &name)
{
    return reinterpret_cast<void *>(LoadLibraryA(name.c_str()));
}

void *PLT_GetSymbol(void *library, const char *name)
{
    if (library == nullptr)
        return nullptr;
    const FARPROC entry = GetProcAddress(reinterpret_cast<HMODULE>(library), name);
    return reinterpret_cast<void *>(entry);
}

int PLT_ReplaceFile(const std::string &from, const std::string &to)
{
    const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    const DWORD kind = GetFileAttributesA(to.c_str());
    const bool isReadOnly = PLT_IsReadOnly(to); // asked for already; the call would refuse
    if (isReadOnly)
        (void)SetFileAttributesA(to.c_str(), kind & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    const bool isMoved = MoveFileExA(from.c_str(), to.c_str(), how) != 0;
    if (isReadOnly)
        (void)SetFileAttributesA(to.c_str(), kind);
    return isMoved ? 0 : -1;
}

int PLT_ResolveFile(const std::string &path, std::string *real)
{
    *real = path;
    const DWORD kind = GetFileAttributesA(path.c_str());
    const bool isPlain = kind == INVALID_FILE_ATTRIBUTES ||
                         (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
    return isPlain ? 0 : -1;
}

int PLT_SyncFile(std::FILE *file)
{
    return _commit(_fileno(file)) == 0 ? 0 : -1;
}

int PLT_OpenPlainFile(const std::string &path, std::FILE **file, int64_t *size)
{
    *file = nullptr;
    const DWORD kind = GetFileAttributesA(path.c_str());
    if (kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return -2;
    const int fd = _open(path.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (fd < 0)
        return -1;
    // A reserved name ("CON", "COM3") opens like a file and is a device.
    const bool isPlain =
        GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(fd))) == FILE_TYPE_DISK;
    *size = isPlain ? _filelengthi64(fd) : 0;
    *file = isPlain ? _fdopen(fd, "rb") : nullptr;
    if (*file != nullptr)
        return 0;
    _close(fd);
    return isPlain ? -1 : -2;
}

// An open file cannot be deleted here: that is the lock.
int PLT_Seek(std::FILE *file, int64_t offset)
{
    return _fseeki64(file, offset, SEEK_SET) == 0 ? 0 : -1;
}

int PLT_CreateExclusive(const std::string &path, const char *mode, std::FILE **file)
{
    *file = nullptr;
    const int fd =
        _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (fd < 0)
        return -1;
    *file = _fdopen(fd, mode);
    if (*file != nullptr)
        return 0;
    _close(fd);
    (void)DeleteFileA(path.c_str());
    return -1;
}

int PLT_RemoveAbandoned(const std::string &path)
{
    return DeleteFileA(path.c_str()) ? 0 : -1;
}

bool PLT_IsReadOnly(const std::string &path)
{
    const DWORD kind = GetFileAttributesA(path.c_str());
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_READONLY) != 0;
}

int PLT_ProcessId()
{
    return static_cast<int>(GetCurrentProcessId());
}

bool PLT_IsProcessAlive(long processId)
{
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(processId));
    if (process == nullptr)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool isAlive = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return isAlive;
}

std::string PLT_PathArgument(const std::string &path)
{
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return length > 0 && length < sizeof full ? std::string(full, length) : ".\\" + path;
}

// Ports are no file numbers here and the C library keeps the first three to itself.
void PLT_GuardStandardStreams()
{
}
