// The desktop program.
#include <cstdio>
#include <cstring>

#include "app/connect_page.h"
#include "app/ini_file.h"
#include "app/startup.h"
#include "app/version.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "runtime/view.h"
#include "settings/settings.h"

namespace {

constexpr int EXIT_WRONG_OPTION = 2;

const char USAGE[] = "vireo2 [-1 ... -4] [-bBAUD] [-sSTATION] [-C] [--types FILE] [SCRIPT]\n"
                     "\n"
                     "  -1 to -4    serial port\n"
                     "  -bBAUD      baud rate\n"
                     "  -sSTATION   station\n"
                     "  -C          configuration mode\n"
                     "  --types FILE  a type map (.tmf) to open at start\n"
                     "  SCRIPT      a console script to run at start\n"
                     "  --help      this text\n"
                     "  --version   the version\n"
                     "\n"
                     "Options win over what Vireo2.ini in the current folder says.\n"
                     "vireo2-console is the same program for a terminal.\n";

int RunDesktop(int argc, char **argv)
{
    if (VR_StartUp(argc, argv) < 0)
        return -1;
    // Without settings nothing could be reached yet.
    if (APP_IsSettingsMissing() && VR_enAppMode == MODE_NORMAL && !VR_isScriptRun)
        APP_OpenConnectPage();
    return RunUserInterface();
}

} // namespace

int main(int argc, char **argv)
{
    PLT_GuardStandardStreams();
    PLT_GetArguments(&argc, &argv);
    // Answered before any window opens: packaging and scripts ask without a display.
    for (int i = 1; i < argc; i++) {
        if (std::strcmp(argv[i], "--help") == 0)
            return std::fputs(USAGE, stdout) < 0 ? 1 : 0;
        if (std::strcmp(argv[i], "--version") == 0)
            return std::printf("vireo2 %s\n", VR_GetBuildVersion()) < 0 ? 1 : 0;
    }
    // The other options have one dash; this one would not be known among them.
    if (VR_RemoveTypesOption(&argc, argv) < 0) {
        std::fprintf(stderr, "vireo2: --types needs a file\nTry --help.\n");
        return EXIT_WRONG_OPTION;
    }
    return VIEW_Main(argc, argv, RunDesktop);
}
