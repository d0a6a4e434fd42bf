// The files of `load`, `loadcsv` and `loadcsvn` behind a link that is closed: whatever
// the file holds, the command answers with one error and hangs on to nothing.
#include "app/rooms.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/script/script_command.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

const char *const TYPES[] = {"i1", "i2", "i4", "u1", "u2", "u4", "f4"};

void Run(const std::string &line)
{
    szScrFnErrMsg.clear();
    // Without a target nothing can succeed.
    FUZ_Check(ExecScrCmd(line.c_str(), SCR_aTable, SCR_cnTarget) < 0 && !szScrFnErrMsg.empty());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    VR_ConnectRooms();
    HL_Reset();
    HL_LoadAllPanels();
    HL_SetStreams(nullptr, nullptr);
    consolePanel = PANEL_CONSOLE;
    UCM_Init();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    FUZ_WriteFile("f", std::string(reinterpret_cast<const char *>(data) + 2, size - 2));
    const std::string name = FUZ_Folder() + "/f";
    const std::string type = TYPES[data[0] % 7];
    const std::string count = std::to_string(1 + data[1]);
    Run("load 8000H, " + type + ", " + count + ", " + name);
    Run("loadcsv 8000H, " + type + ", " + count + ", " + name);
    Run("loadcsvn 8000H, " + type + ", " + count + ", 1, " + name);
    ResetTextBox(consolePanel, CONSOLE_BOX, "");
    return 0;
}
