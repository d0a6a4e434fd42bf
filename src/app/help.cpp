// Help text and about box.
#include "app/help.h"

#include "app/version.h"

#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"

namespace {

// Where the manual stands relative to the program: beside it (Windows), installed, or
// in the tree it was built in. Its first page lists the others.
constexpr const char *HELP_PLACES[] = {
    "/manual/index.md",
    "/../share/vireo2/manual/index.md",
    "/../../../docs/manual/index.md",
};

} // namespace

std::string VR_FindHelpFile()
{
    for (const char *place : HELP_PLACES) {
        const std::string path = PLT_ProgramDir() + place;
        if (PLT_FileExists(path))
            return path;
    }
    return "";
}

void DisplayHelp()
{
    const std::string path = VR_FindHelpFile();
    if (path.empty())
        MessagePopup("Help", "The help text is not installed.");
    else
        ShowHelpText(path);
}

void HelpCB(int, int)
{
    DisplayHelp();
}

void AboutCB(int, int)
{
    // Two versions where the installed configuration tool has another one than the program.
    std::string text = std::string("Vireo2 ") + VR_GetBuildVersion();
    if (!VR_szVersion.empty() && VR_szVersion != VR_GetBuildVersion())
        text += "\n" + VR_szVersion;
    text += "\n\nService tool for C166/C167 and TMS320F28xx controllers.\n"
            "Free software under the GNU General Public License, version 3 or later.";
    MessagePopup("About Vireo2", text);
}
