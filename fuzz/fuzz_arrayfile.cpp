// The files of `load`, `loadcsv` and `loadcsvn` behind a link that is closed: whatever
// the file holds, the command answers with one error and hangs on to nothing.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "app/VR.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/script/script_command.h"
#include "runtime/headless/headless.h"
#include "ui/resource.h"

namespace {

const char *const TYPES[] = {"i1", "i2", "i4", "u1", "u2", "u4", "f4"};

std::string WriteFile(const uint8_t *data, size_t size)
{
    static const std::string name =
        std::filesystem::temp_directory_path() / ("fuzz_arrayfile." + std::to_string(getpid()));
    std::FILE *file = std::fopen(name.c_str(), "wb");
    if (!file)
        std::abort();
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    return name;
}

void Run(const std::string &line)
{
    szScrFnErrMsg.clear();
    if (ExecScrCmd(line.c_str(), SCR_aTable, SCR_cnTarget) >= 0 || szScrFnErrMsg.empty())
        std::abort(); // without a target nothing can succeed
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
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
    const std::string name = WriteFile(data + 2, size - 2);
    const std::string type = TYPES[data[0] % 7];
    const std::string count = std::to_string(1 + data[1]);
    Run("load 8000H, " + type + ", " + count + ", " + name);
    Run("loadcsv 8000H, " + type + ", " + count + ", " + name);
    Run("loadcsvn 8000H, " + type + ", " + count + ", 1, " + name);
    ResetTextBox(consolePanel, CONSOLE_BOX, "");
    return 0;
}
