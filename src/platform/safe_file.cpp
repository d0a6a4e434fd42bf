// Saving by writing beside and renaming over. The temporary name carries the process
// number, so that two programs saving the same file do not write into each other.
#include "platform/safe_file.h"

#include "platform/system.h"

int SAF_Open(SafeFile *safe, const std::string &path, const char *mode)
{
    *safe = SafeFile();
    std::string real;
    if (path.empty() || PLT_ResolveFile(path, &real) != 0)
        return -1;
    const std::string temp = real + "." + std::to_string(PLT_ProcessId()) + ".tmp";
    safe->file = std::fopen(temp.c_str(), mode);
    if (safe->file == nullptr)
        return -1;
    safe->path = real;
    safe->tempPath = temp;
    return 0;
}

int SAF_Commit(SafeFile *safe)
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
        std::remove(safe->tempPath.c_str());
    *safe = SafeFile();
    return isReplaced ? 0 : -1;
}

void SAF_Cancel(SafeFile *safe)
{
    if (safe->file != nullptr) {
        std::fclose(safe->file);
        std::remove(safe->tempPath.c_str());
    }
    *safe = SafeFile();
}
