// Any file as the settings file: it is read without harm, and what is saved then says the
// same when it is read again.
#include "app/ini_file.h"
#include "platform/plain_file.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "sets/window.h"
#include "settings/settings.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/list/list_layout.h"
#include "watch/list/litem.h"

namespace {

// A program that has just been started.
void Forget()
{
    Procesor = CPU_C166;
    VR_nProtocol = PROTOCOL_MR166;
    ncom = STATION = Option_AutoOff = Option_ComWin32 = 1;
    bRate = 19200;
    nDebugFileNames = nLItems = openLItems = 0;
    szaDebugFileNames = {};
    szDebugFileName.clear();
    szMapFileName.clear();
    VR_isFullCommandSet = VR_isFullOnce = VR_isWatchView = false;
    TMF_CleanTables();
    TMF_szFileName.clear();
    FreeNodes(aVarNode, &nNodes);
    FreeNodes(aVarTMSNode, &nTMSNodes);
    openStruct = openTMSStruct = OPEN_NONE;
    LIT_SetLayout({});
    CFW_SetHeader("");
}

std::string ReadAndSave()
{
    Forget();
    FUZ_Check(OpenIniFile(mainPanel) == 0);
    FUZ_Check(nDebugFileNames >= 0 && nDebugFileNames <= RECENT_MAX);
    APP_GetRangeProblem();
    FUZ_Check(SaveIniFile() == 0);
    std::string text;
    FUZ_Check(PLT_ReadFile("Vireo2.ini", PLT_FILE_SIZE_MAX, &text) == PLT_FILE_OK);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const bool isReady = HL_LoadAllPanels() == 0;
    static const std::filesystem::path home = std::filesystem::current_path();
    mainPanel = PANEL_MAIN;
    FUZ_Check(isReady);
    static const bool hasFiles = [] {
        FUZ_WriteFile("a",
                      "0FA00H   counter" + std::string(30, ' ') + "NDATA\n0000C002   _speed\n");
        FUZ_WriteFile("w", "counter, u2\n");
        FUZ_WriteFile("t", "## 1 VARS\n1: 'speed' _@0x122\n## 0 TYPES\n## 1 STRUCTS\n# 1 / 1:\n"
                           "'x' _@0x122\n");
        return true;
    }();
    FUZ_Check(hasFiles);
    std::filesystem::current_path(FUZ_Folder());
    FUZ_WriteFile("Vireo2.ini", std::string(reinterpret_cast<const char *>(data), size));
    const std::string once = ReadAndSave();
    FUZ_Check(ReadAndSave() == once);
    std::filesystem::current_path(home);
    return 0;
}
