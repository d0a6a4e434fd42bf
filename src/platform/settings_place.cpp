#include "platform/settings_place.h"

#include "platform/plain_file.h"
#include "platform/system.h"

namespace {

bool CanWrite(const std::string &folder)
{
    const std::string probe =
        folder + PLT_PathSeparator() + ".vireo2-" + std::to_string(PLT_ProcessId()) + ".tmp";
    std::FILE *file = nullptr;
    if (folder.empty() || PLT_CreateExclusive(probe, "wb", &file) != 0)
        return false;
    std::fclose(file);
    (void)PLT_RemoveFile(probe);
    return true;
}

} // namespace

PLT_SettingsPlace PLT_FindSettingsPlace(const std::string &name)
{
    const std::string current = PLT_CurrentDir(); // "" when it was removed under the program
    const std::string beside = current.empty() ? name : current + PLT_PathSeparator() + name;
    if (CanWrite(current))
        return {beside, beside, false};
    const std::string folder = PLT_ConfigDir();
    if (folder.empty() || PLT_MakeDirs(folder) != 0 || !CanWrite(folder))
        return {beside, beside, false};
    // Until the user has settings of his own, those beside the program are where he begins.
    const std::string users = folder + PLT_PathSeparator() + name;
    return {users, PLT_FileExists(users) || !PLT_FileExists(beside) ? users : beside, true};
}
