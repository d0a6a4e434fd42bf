#include "support/program_state.h"

#include "app/startup.h"
#include "app/window_places.h"
#include "comm/modbus.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "inspect/inspectors.h"
#include "logger/dlld_record.h"
#include "sets/window.h"
#include "simulator/target.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "watch/list/debug_file.h"
#include "watch/list/edit.h"
#include "watch/list/edit_history.h"
#include "watch/list/list_file.h"
#include "watch/list/list_layout.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

void ResetProgram()
{
    INS_Free();
    TGT_Stop();
    // The line: closed, with the usual patience.
    UCM_Close();
    MrASC_Close();
    UCM_Init();
    UCM_UseWin32(1);
    UCM_ResetStatistics();
    Mr166_nTimeoutMs = MBM_nTimeoutMs = 400;
    Mr166_CnBlkRpt = 3;
    MBM_isEcho = 0;
    TRC_SetSink(nullptr, nullptr);
    TRC_Enable(0);

    HL_Reset();
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    for (int &item : anRecentItems)
        item = 0;
    APP_ForgetPlaces();

    Procesor = CPU_C166;
    VR_nProtocol = PROTOCOL_MR166;
    ncom = STATION = Option_AutoOff = Option_ComWin32 = Option_nSweepRate = 1;
    bRate = 19200;
    Option_Echo = isTimer = oldTimer = 0;
    VR_enAppMode = MODE_NORMAL;
    VR_isEchoOnce = VR_isFullOnce = VR_isWatchView = VR_isScriptRun = false;
    VR_isFullCommandSet = false;
    oldHeight = 491;

    FreeNodes(aVarNode, &nNodes);
    FreeNodes(aVarNode166, &nNodes166);
    FreeNodes(aVarTMSNode, &nTMSNodes);
    openStruct = openStruct166 = openTMSStruct = OPEN_NONE;
    for (std::string *name : {&szMapFileName, &mapFile, &TMS_mapFile, &TMF_szFileName})
        name->clear();
    TMF_CleanTables();
    DLLD_ClearRecIds();

    nLItems = openLItems = readLItems = IsDBGChange = nDebugFileNames = 0;
    UpdItem = eTMS = nErrors = 0;
    szDebugFileName.clear();
    szaDebugFileNames = {};
    EDT_ForgetEdits();
    LIT_SetLayout({});
    CFW_SetHeader("");
    Option_nLanguage = LANGUAGE_CZ;

    command = CMD_C166;
    nASC_Opened = 0;
    aOldCommand.fill("");
    iOldCmd = iOldCmd2 = 0;
}
