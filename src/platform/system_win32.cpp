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

#include "platform/utf8_win32.h"

namespace {

// A call that fills a buffer and says how much it had to say: asked again with more room.
template <typename Call> std::string LongText(Call call)
{
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(text.data(), static_cast<DWORD>(text.size()));
        if (length == 0)
            return "";
        if (length < text.size())
            return PLT_Utf8(text.substr(0, length));
        text.resize(2 * text.size());
    }
}

// INVALID_FILE_ATTRIBUTES when there is no such file.
DWORD Attributes(const std::string &path)
{
    return GetFileAttributesW(PLT_Wide(path).c_str());
}

} // namespace

uint64_t PLT_TickUs()
{
    // The counter runs on when somebody sets the clock: no wait gets shorter or longer by that.
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
    if (!GetFileAttributesExW(PLT_Wide(path).c_str(), GetFileExInfoStandard, &data) ||
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
    // The call may write into its argument.
    std::wstring line = PLT_Wide(commandLine);
    STARTUPINFOW startup;
    PROCESS_INFORMATION process;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return -1;
    // Nobody waits for it: the system forgets it when it ends.
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return 0;
}

int PLT_OpenInEditor(const std::string &path)
{
    // The one editor that every Windows has.
    return PLT_Launch("notepad.exe \"" + PLT_PathArgument(path) + "\"");
}

int PLT_OpenInViewer(const std::string &path)
{
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", PLT_Wide(PLT_PathArgument(path)).c_str(), nullptr, nullptr,
                      SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > 32 ? 0 : -1; // up to 32 are error codes
}

std::string PLT_CurrentDir()
{
    std::string text =
        LongText([](wchar_t *buffer, DWORD size) { return GetCurrentDirectoryW(size, buffer); });
    // "C:\" keeps its separator: without it the name would mean another folder.
    if (text.size() > 3 && text.back() == '\\')
        text.pop_back();
    return text;
}

std::string PLT_ConfigDir()
{
    const wchar_t *folder = _wgetenv(L"APPDATA");
    return PLT_Utf8(folder != nullptr ? folder : L"") + "\\Vireo2";
}

std::string PLT_ProgramDir()
{
    const std::string text = LongText(
        [](wchar_t *buffer, DWORD size) { return GetModuleFileNameW(nullptr, buffer, size); });
    return text.substr(0, text.rfind('\\'));
}

char PLT_PathSeparator()
{
    return '\\';
}

int PLT_MakeDirs(const std::string &path)
{
    for (size_t end = path.find_first_of("\\/", 1);; end = path.find_first_of("\\/", end + 1)) {
        // Most are there already; whether the last one is, is asked at the end.
        (void)CreateDirectoryW(PLT_Wide(path.substr(0, end)).c_str(), nullptr);
        if (end == std::string::npos)
            break;
    }
    const DWORD kind = Attributes(path);
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 0 : -1;
}

void *PLT_LoadLibrary(const std::string &name)
{
    return reinterpret_cast<void *>(LoadLibraryW(PLT_Wide(name).c_str()));
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
    const DWORD kind = Attributes(to);
    const bool isReadOnly = PLT_IsReadOnly(to); // asked for already; the call would refuse
    if (isReadOnly)
        (void)SetFileAttributesW(PLT_Wide(to).c_str(),
                                 kind & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    // The moved file has no protection of its own: it gets that of the one it replaces.
    const bool isMoved = MoveFileExW(PLT_Wide(from).c_str(), PLT_Wide(to).c_str(), how) != 0;
    if (isReadOnly)
        (void)SetFileAttributesW(PLT_Wide(to).c_str(), kind);
    return isMoved ? 0 : -1;
}

int PLT_ResolveFile(const std::string &path, std::string *real)
{
    // A link to a file is rare here and is replaced by the file.
    *real = path;
    const DWORD kind = Attributes(path);
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
    const DWORD kind = Attributes(path);
    if (kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return -2;
    const int fd = _wopen(PLT_Wide(path).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
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

int PLT_Seek(std::FILE *file, int64_t offset)
{
    return _fseeki64(file, offset, SEEK_SET) == 0 ? 0 : -1;
}

// An open file cannot be deleted here: that is the lock.
int PLT_CreateExclusive(const std::string &path, const char *mode, std::FILE **file)
{
    *file = nullptr;
    const int fd = _wopen(PLT_Wide(path).c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_NOINHERIT,
                          _S_IREAD | _S_IWRITE);
    if (fd < 0)
        return -1;
    *file = _fdopen(fd, mode);
    if (*file != nullptr)
        return 0;
    _close(fd);
    (void)PLT_RemoveFile(path);
    return -1;
}

int PLT_RemoveAbandoned(const std::string &path)
{
    return PLT_RemoveFile(path);
}

std::FILE *PLT_OpenFile(const std::string &path, const char *mode)
{
    return _wfopen(PLT_Wide(path).c_str(), PLT_Wide(mode).c_str());
}

int PLT_RemoveFile(const std::string &path)
{
    return DeleteFileW(PLT_Wide(path).c_str()) ? 0 : -1;
}

bool PLT_IsReadOnly(const std::string &path)
{
    const DWORD kind = Attributes(path);
    return kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_READONLY) != 0;
}

int PLT_ProcessId()
{
    return static_cast<int>(GetCurrentProcessId());
}

bool PLT_IsProcessAlive(long processId)
{
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(processId));
    // A process that we may not look at is there all the same.
    if (process == nullptr)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool isAlive = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return isAlive;
}

std::string PLT_PathArgument(const std::string &path)
{
    const std::wstring wide = PLT_Wide(path);
    const std::string full = LongText([&wide](wchar_t *buffer, DWORD size) {
        return GetFullPathNameW(wide.c_str(), size, buffer, nullptr);
    });
    return full.empty() ? ".\\" + path : full;
}

// What the C library hands over is in the machine's code page and has lost what that lacks.
void PLT_GetArguments(int *argc, char ***argv)
{
    static std::vector<std::string> texts;
    static std::vector<char *> pointers;
    wchar_t **wide = CommandLineToArgvW(GetCommandLineW(), argc);
    for (int i = 0; i < *argc; i++)
        texts.push_back(PLT_Utf8(wide[i]));
    LocalFree(wide);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    *argv = pointers.data();
}

// Ports are no file numbers here and the C library keeps the first three to itself. A terminal
// is told what texts are in.
void PLT_GuardStandardStreams()
{
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
}
