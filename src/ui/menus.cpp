#include "ui/ui_table.h"

#include "app/connect_page.h"
#include "app/help.h"
#include "app/main_panel.h"
#include "app/options.h"
#include "app/startup.h"
#include "console/monitor/text_box.h"
#include "graphs/window.h"
#include "inspect/array_inspector.h"
#include "inspect/record_inspector.h"
#include "logger/log_window.h"
#include "sampler/record_watch.h"
#include "terminal/window.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_events.h"
#include "watch/list/litem.h"
#include "watch/list/snapshot.h"
#include "watch/windows/map_loading.h"
#include "watch/windows/selectors.h"

const int UI_nMenuPanel = PANEL_MAIN;

const UI_Menu UI_aMenus[] = {
    {MENU_FILE, 0, "__File"},
    {MENU_EDIT, 0, "__Edit"},
    {MENU_OPTIONS, 0, "__Options"},
    {MENU_PORT, MENU_OPTIONS, "__Port"},
    {MENU_BAUD, MENU_OPTIONS, "__Baud rate"},
    {MENU_STATION, MENU_OPTIONS, "__Station"},
    {MENU_PROCESSOR, MENU_OPTIONS, "P__rocessor"},
    {MENU_PROTOCOL, MENU_OPTIONS, "Pro__tocol"},
    {MENU_RATE, MENU_OPTIONS, "S__weeps a second"},
    {MENU_CONSOLE, 0, "__Console"},
    {MENU_WINDOW, 0, "__Window"},
    {MENU_HELP, 0, "__Help"},
};
const int UI_cnMenus = sizeof UI_aMenus / sizeof UI_aMenus[0];

const UI_MenuItem UI_aMenuItems[] = {
    {MENU_FILE, ITEM_OPEN, "__Open watch list...", KEY_CTRL | 'O', OpenDatCB},
    {MENU_FILE, ITEM_SAVE, "__Save watch list", KEY_CTRL | 'S', SaveDbgCB},
    {MENU_FILE, ITEM_SAVE_AS, "Save watch list __as...", KEY_CTRL | KEY_SHIFT | 'S', SaveDbgAsCB},
    {MENU_FILE, ITEM_RELOAD, "__Reload watch list...", KEY_CTRL | 'R', OpenDatCB},
    {MENU_FILE, ITEM_RELOAD_NOW, "Reload without as__king", KEY_CTRL | KEY_SHIFT | 'R',
     ReloadNowCB},
    {MENU_FILE, ITEM_EDIT_FILE, "__Edit watch list file", KEY_CTRL | 'E', EditDbgCB},
    {MENU_FILE, 0, "", 0, nullptr},
    {MENU_FILE, ITEM_RECORD, "Re__cord watch list...", KEY_CTRL | KEY_SHIFT | 'E', REC_ToggleCB},
    {MENU_FILE, ITEM_RECORD_MARK, "Set marker in recordin__g...", KEY_CTRL | 'D', REC_MarkCB},
    {MENU_FILE, ITEM_RECORD_WHEN, "Record __when...", 0, REC_TriggersCB},
    {MENU_FILE, 0, "", 0, nullptr},
    {MENU_FILE, ITEM_OPEN_MAP, "Open __map file...", KEY_CTRL | 'M', OpenMapCB},
    {MENU_FILE, ITEM_OPEN_TYPE_MAP, "Open __type map...", KEY_CTRL | 'T', OpenTypeMapCB},
    {MENU_FILE, ITEM_RELOAD_MAP, "Re__load map file", KEY_F1 + 4, ReloadMapFile},
    {MENU_FILE, 0, "", 0, nullptr},
    {MENU_FILE, ITEM_RECENT_END, "", 0, nullptr},
    {MENU_FILE, ITEM_EXIT, "E__xit", KEY_CTRL | 'Q', ExitCB},

    {MENU_EDIT, ITEM_ADD, "__Add item...", KEY_INSERT, LSV_AddCB},
    {MENU_EDIT, ITEM_EDIT, "__Edit item...", KEY_F1 + 2, LSV_EditCB},
    {MENU_EDIT, ITEM_COMMENT, "Comme__nt...", KEY_SHIFT | (KEY_F1 + 1), LSV_CommentCB},
    {MENU_EDIT, ITEM_REMOVE, "__Remove items", KEY_DELETE, LSV_RemoveCB},
    {MENU_EDIT, ITEM_UNDO, "__Undo", KEY_CTRL | 'Z', LSV_UndoCB},
    {MENU_EDIT, ITEM_REDO, "Red__o", KEY_CTRL | 'Y', LSV_RedoCB},
    {MENU_EDIT, 0, "", 0, nullptr},
    {MENU_EDIT, ITEM_MOVE_UP, "Move u__p", KEY_ALT | KEY_UP, LSV_MoveCB},
    {MENU_EDIT, ITEM_MOVE_DOWN, "Move __down", KEY_ALT | KEY_DOWN, LSV_MoveCB},
    {MENU_EDIT, 0, "", 0, nullptr},
    {MENU_EDIT, ITEM_WRITE_VALUE, "__Write value...", KEY_CTRL | KEY_ENTER, LSV_WriteCB},
    {MENU_EDIT, ITEM_OTHER_BASE, "__Hexadecimal or decimal", KEY_F1 + 3, LSV_OtherBaseCB},
    {MENU_EDIT, ITEM_MEMORY, "__Memory...", KEY_CTRL | KEY_SHIFT | 'M', LSV_MemoryCB},
    {MENU_EDIT, 0, "", 0, nullptr},
    {MENU_EDIT, ITEM_COPY_LIST, "__Copy list", KEY_CTRL | KEY_SHIFT | 'C', LSV_CopyListCB},
    {MENU_EDIT, ITEM_COPY_MEMORY, "Copy memory __box", 0, LSV_CopyMemoryCB},
    {MENU_EDIT, ITEM_SNAPSHOT, "__Save snapshot as CSV...", 0, LSV_SnapshotCB},

    {MENU_OPTIONS, ITEM_CONNECT_PAGE, "Co__nnect...", 0, ConnectPageCB},
    {MENU_OPTIONS, ITEM_CONNECT, "__Communication", KEY_F1 + 8, ConnectCB},
    {MENU_OPTIONS, ITEM_CLOSE_PORT, "C__lose port", 0, ClosePortCB},
    {MENU_OPTIONS, 0, "", 0, nullptr},
    {MENU_OPTIONS, ITEM_AUTO_OFF, "__Auto-off after errors", 0, AutoOffCB},
    {MENU_OPTIONS, ITEM_COM_WIN32, "Win__32 services", 0, ComWin32CB},
    {MENU_OPTIONS, ITEM_ECHO, "Two-wire line __echoes", 0, EchoCB},
    {MENU_OPTIONS, ITEM_FULL_COMMANDS, "__Full command set", 0, FullCommandsCB},

    {MENU_BAUD, ITEM_BAUD_FIRST, "__9600", 0, BRateCB},
    {MENU_BAUD, ITEM_BAUD_FIRST + 1, "__19200", 0, BRateCB},
    {MENU_BAUD, ITEM_BAUD_FIRST + 2, "__38400", 0, BRateCB},
    {MENU_BAUD, ITEM_BAUD_FIRST + 3, "__57600", 0, BRateCB},
    {MENU_BAUD, ITEM_BAUD_LAST, "115__200", 0, BRateCB},

    {MENU_PORT, ITEM_PORT_FIRST, "COM__1", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 1, "COM__2", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 2, "COM__3", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 3, "COM__4", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 4, "COM__5", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 5, "COM__6", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 6, "COM__7", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 7, "COM__8", 0, PortCB},
    {MENU_PORT, ITEM_PORT_FIRST + 8, "COM__9", 0, PortCB},
    {MENU_PORT, ITEM_PORT_OTHER, "__Other...", 0, PortCB},

    {MENU_STATION, ITEM_STATION_FIRST, "__0", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 1, "__1", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 2, "__2", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 3, "__3", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 4, "__4", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 5, "__5", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 6, "__6", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 7, "__7", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 8, "__8", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 9, "__9", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 10, "10 (__A)", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 11, "11 (__B)", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 12, "12 (__C)", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 13, "13 (__D)", 0, StationCB},
    {MENU_STATION, ITEM_STATION_FIRST + 14, "14 (__E)", 0, StationCB},
    {MENU_STATION, ITEM_STATION_LAST, "15 (__F)", 0, StationCB},

    {MENU_PROCESSOR, ITEM_CPU_C166, "__AC166", 0, ProcesorCB},
    {MENU_PROCESSOR, ITEM_CPU_C167, "A__C167", 0, ProcesorCB},
    {MENU_PROCESSOR, ITEM_CPU_F283XX, "__F283xx", 0, ProcesorCB},
    {MENU_PROCESSOR, ITEM_CPU_F2803X, "F28__03x", 0, ProcesorCB},

    {MENU_PROTOCOL, ITEM_MR166, "__mr166", 0, ProtocolCB},
    {MENU_PROTOCOL, ITEM_MODBUS, "Mod__bus", 0, ProtocolCB},

    {MENU_RATE, ITEM_RATE_FIRST, "__1", 0, RateCB},
    {MENU_RATE, ITEM_RATE_FIRST + 1, "__2", 0, RateCB},
    {MENU_RATE, ITEM_RATE_FIRST + 2, "__5", 0, RateCB},
    {MENU_RATE, ITEM_RATE_FIRST + 3, "1__0", 0, RateCB},
    {MENU_RATE, ITEM_RATE_LAST, "__As fast as the line allows", 0, RateCB},

    {MENU_CONSOLE, ITEM_RUN_SCRIPT, "__Run script...", KEY_F1 + 5, CON_RunScriptCB},
    {MENU_CONSOLE, 0, "", 0, nullptr},
    {MENU_CONSOLE, ITEM_SAVE_CONSOLE, "__Save text...", KEY_F1 + 6, CON_SaveTextCB},
    {MENU_CONSOLE, ITEM_COPY_CONSOLE, "__Copy text", KEY_F1 + 7, CON_CopyTextCB},
    {MENU_CONSOLE, ITEM_CLEAR_CONSOLE, "C__lear text", 0, CON_ClearTextCB},

    {MENU_WINDOW, ITEM_WATCH_VIEW, "__Watch view", KEY_CTRL | 'W', WindowCB},
    {MENU_WINDOW, ITEM_CONSOLE_VIEW, "__Console view", KEY_CTRL | 'K', WindowCB},
    {MENU_WINDOW, 0, "", 0, nullptr},
    {MENU_WINDOW, ITEM_VARIABLES, "__Variables...", KEY_CTRL | 'L', SEL_VariableOpenCB},
    {MENU_WINDOW, ITEM_STRUCTURES, "Str__uctures...", KEY_CTRL | KEY_SHIFT | 'L',
     SEL_StructureOpenCB},
    {MENU_WINDOW, 0, "", 0, nullptr},
    {MENU_WINDOW, ITEM_STATISTICS, "Communication __statistics", 0, WindowCB},
    {MENU_WINDOW, ITEM_TRACE, "Wire t__race", 0, WindowCB},
    {MENU_WINDOW, ITEM_GRAPH, "__Graph", KEY_CTRL | 'G', GRA_OpenCB},
    {MENU_WINDOW, ITEM_SCOPE, "Data sco__pe", 0, WindowCB},
    {MENU_WINDOW, ITEM_LOADER, "Flash __loader", 0, WindowCB},
    {MENU_WINDOW, ITEM_ARRAY, "__Array inspector", KEY_CTRL | KEY_SHIFT | 'A', INS_ArrayOpenCB},
    {MENU_WINDOW, ITEM_RECORD_INSPECTOR, "R__ecord inspector", KEY_CTRL | KEY_SHIFT | 'T',
     INS_RecordOpenCB},
    {MENU_WINDOW, ITEM_CONFIG, "Device con__figuration", KEY_CTRL | KEY_SHIFT | 'P', WindowCB},
    {MENU_WINDOW, ITEM_DEBUGGER, "__Debugger", KEY_CTRL | KEY_SHIFT | 'D', WindowCB},
    {MENU_WINDOW, ITEM_SIMULATOR, "S__imulated target", 0, WindowCB},
    {MENU_WINDOW, ITEM_TERMINAL, "Service ter__minal", KEY_CTRL | 'J', T166_OpenCB},
    {MENU_WINDOW, ITEM_LCD, "LCD and key__board", 0, TRM_LcdOpenCB},
    {MENU_WINDOW, ITEM_DATA_LOG, "Data l__og", KEY_CTRL | KEY_SHIFT | 'G', LOGV_OpenCB},

    {MENU_HELP, ITEM_HELP, "__Help", KEY_F1, HelpCB},
    {MENU_HELP, 0, "", 0, nullptr},
    {MENU_HELP, ITEM_ABOUT, "__About", 0, AboutCB},
};
const int UI_cnMenuItems = sizeof UI_aMenuItems / sizeof UI_aMenuItems[0];
