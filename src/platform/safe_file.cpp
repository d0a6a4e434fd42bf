// The temporary file stands beside the target: "NAME.PID.tmp". The process number tells two
// programs that save the same file apart, and a living program's file from a dead one's.
#include "platform/safe_file.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/system.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t NAME_MAX_BYTES = 255; // of a name in a folder, on all common systems
constexpr size_t SUFFIX_BYTES = 20;    // ".4294967295-9.tmp" and some room
constexpr size_t STEM_BYTES = 200;     // what stays of a name that is too long for its suffix
constexpr int TRIES = 10;              // names that something else may have taken
const char SUFFIX[] = ".tmp";

PLT_SaveQuestion mayReplace = nullptr;

// Beginning of the temporary files' names for a file: its own name, or for a long one its
// beginning and a check sum (FNV-1a) that keeps files apart which begin alike.
std::string StemOf(const std::string &name)
{
    if (name.size() <= NAME_MAX_BYTES - SUFFIX_BYTES)
        return name;
    uint32_t sum = 2166136261u;
    for (const char c : name)
        sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    return name.substr(0, STEM_BYTES) + "~" + std::to_string(sum);
}

// The process number in "STEM.PID.tmp" or "STEM.PID-n.tmp"; 0 for any other name.
long OwnerOf(const std::string &name, const std::string &stem)
{
    const size_t fixed = stem.size() + 1 + sizeof SUFFIX - 1;
    if (name.size() <= fixed || name.compare(0, stem.size() + 1, stem + ".") != 0 ||
        name.compare(name.size() - (sizeof SUFFIX - 1), std::string::npos, SUFFIX) != 0)
        return 0;
    const std::string owner = name.substr(stem.size() + 1, name.size() - fixed);
    const size_t digits = owner.find_first_not_of("0123456789");
    const bool isPlain = digits == std::string::npos ||
                         (owner.size() == digits + 2 && owner[digits] == '-' && digits > 0);
    return isPlain && owner.size() < SUFFIX_BYTES ? std::strtol(owner.c_str(), nullptr, 10) : 0;
}

// What programs that ended in the middle of a save have left. A file that somebody still
// writes stays: it is locked, whoever it belongs to.
void RemoveStale(const fs::path &folder, const std::string &stem)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const long owner = OwnerOf(entry->path().filename().u8string(), stem);
        if (owner > 0 && (owner == PLT_ProcessId() || !PLT_IsProcessAlive(owner)))
            (void)PLT_RemoveAbandoned(entry->path().u8string());
    }
}

} // namespace

std::string PLT_SaveFailureText(const std::string &path)
{
    return "Could not write the file " + path + ".";
}

void PLT_SetSaveQuestion(PLT_SaveQuestion question)
{
    mayReplace = question;
}

int PLT_BeginSave(SafeFile *safe, const std::string &path, const char *mode)
{
    *safe = SafeFile();
    std::string real;
    if (path.empty() || PLT_ResolveFile(path, &real) != 0)
        return PLT_SAVE_ERR_OPEN;
    if (PLT_IsReadOnly(real) && (mayReplace == nullptr || !mayReplace(path)))
        return PLT_SAVE_ERR_READ_ONLY;
    const fs::path target = fs::u8path(real);
    const std::string stem = StemOf(target.filename().u8string());
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    RemoveStale(folder, stem);
    const std::string start = stem + "." + std::to_string(PLT_ProcessId());
    for (int i = 0; i < TRIES; ++i) {
        const std::string name = start + (i > 0 ? "-" + std::to_string(i) : "") + SUFFIX;
        const std::string temp = (target.parent_path() / fs::u8path(name)).u8string();
        if (PLT_CreateExclusive(temp, mode, &safe->file) != 0)
            continue;
        safe->path = real;
        safe->tempPath = temp;
        return 0;
    }
    return PLT_SAVE_ERR_OPEN;
}

void PLT_SaveText(std::FILE *file, const std::string &text)
{
    for (const char c : text) {
        if (c == '\n')
            std::fputc('\r', file);
        std::fputc(c, file);
    }
}

int PLT_CommitSave(SafeFile *safe)
{
    if (safe->file == nullptr)
        return -1;
    // A full disk may show only when the last buffer is written or the file is closed.
    const bool isWritten = std::fflush(safe->file) == 0 && std::ferror(safe->file) == 0 &&
                           PLT_SyncFile(safe->file) == 0;
    const bool isClosed = std::fclose(safe->file) == 0;
    safe->file = nullptr;
    const bool isReplaced =
        isWritten && isClosed && PLT_ReplaceFile(safe->tempPath, safe->path) == 0;
    if (!isReplaced)
        (void)PLT_RemoveFile(safe->tempPath);
    *safe = SafeFile();
    return isReplaced ? 0 : -1;
}

void PLT_CancelSave(SafeFile *safe)
{
    if (safe->file != nullptr) {
        std::fclose(safe->file);
        (void)PLT_RemoveFile(safe->tempPath);
    }
    *safe = SafeFile();
}
