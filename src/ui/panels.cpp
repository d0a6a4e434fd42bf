#include "ui/ui_table.h"

#include "app/main_panel.h"
#include "app/options.h"
#include "console/monitor/monitor.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "logger/log_window.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_events.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/windows/item_panel.h"
#include "watch/windows/map_loading.h"
#include "watch/windows/memory_panel.h"
#include "watch/windows/selectors.h"
#include "watch/windows/value_panel.h"

const UI_Panel UI_aPanels[] = {
    {PANEL_MAIN, "main", "Vireo2", PanelCB},
    {PANEL_VALUE, "value", "Write value", VLP_PanelCB},
    {PANEL_MEMORY, "memory", "Memory", MMP_PanelCB},
    {PANEL_ITEM, "item", "Watch item", ITP_PanelCB},
    {PANEL_CONSOLE, "console", "Console", nullptr},
    {PANEL_STATISTICS, "statistics", "Communication statistics", STP_PanelCB},
    {PANEL_TRACE, "trace", "Wire trace", TRP_PanelCB},
    {PANEL_DATA_LOG, "data_log", "Data log", LGW_PanelCB},
    {PANEL_VAR_SELECTOR, "var_selector", "Variables", VSL_PanelCB},
    {PANEL_STRUCT_SELECTOR, "struct_selector", "Structures", SSL_PanelCB},
    {PANEL_SCOPE, "scope", "Data scope", nullptr},
    {PANEL_TERMINAL_ENTRY, "terminal_entry", "Terminal entry", nullptr},
    {PANEL_CONFIG, "config", "Device configuration", ConfigPanelCB},
    {PANEL_CONFIG_EDIT, "config_edit", "Device configuration editor", nullptr},
    {PANEL_DEBUGGER, "debugger", "Debugger", nullptr},
    {PANEL_SIMULATOR, "simulator", "Simulator", nullptr},
    {PANEL_TERMINAL, "terminal", "Service terminal", nullptr},
};
const int UI_cnPanels = sizeof UI_aPanels / sizeof UI_aPanels[0];

const UI_Control UI_aControls[] = {
    {PANEL_MAIN, MAIN_LIST, UIK_LIST, "list", LEV_ListCB},
    {PANEL_MAIN, MAIN_TIMER, UIK_TIMER, "timer", timerCB},
    {PANEL_MAIN, MAIN_COMM, UIK_SWITCH, "comm", CommSwitchCB},
    {PANEL_MAIN, MAIN_STOPPED, UIK_LED, "stopped", nullptr},
    {PANEL_MAIN, MAIN_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_MAIN, MAIN_STATUS, UIK_TEXT, "status", nullptr},
    {PANEL_MAIN, MAIN_LED_MAPFILE, UIK_LED, "ledMapFile", nullptr},
    {PANEL_MAIN, MAIN_LED_MAPMEM, UIK_LED, "ledMapMemory", nullptr},
    {PANEL_MAIN, MAIN_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_MAIN, MAIN_BTN_RELOAD, UIK_BUTTON, "reload", RldDbgBtnCB},
    {PANEL_MAIN, MAIN_BTN_EDIT, UIK_BUTTON, "edit", DbgFileBtnCB},
    {PANEL_MAIN, MAIN_BTN_MAP, UIK_BUTTON, "reloadMap", MapBtnCB},
    {PANEL_MAIN, MAIN_BTN_SAVE, UIK_BUTTON, "save", SaveDbgBtnCB},
    {PANEL_MAIN, MAIN_MEM_BOX, UIK_TEXTBOX, "memBox", nullptr},
    {PANEL_MAIN, MAIN_MEM_SWITCH, UIK_SWITCH, "memSwitch", nullptr},
    {PANEL_MAIN, MAIN_MEM_ADDR, UIK_STRING, "memAddress", nullptr},
    {PANEL_MAIN, MAIN_MEM_TYPED, UIK_SWITCH, "memTyped", nullptr},
    {PANEL_MAIN, MAIN_MEM_MODE, UIK_RING, "memMode", nullptr},
    {PANEL_MAIN, MAIN_FM_SWITCH, UIK_SWITCH, "fmSwitch", nullptr},
    {PANEL_MAIN, MAIN_FM_SAMPLES, UIK_NUMBER, "fmSamples", nullptr},
    {PANEL_MAIN, MAIN_FM_FREQ, UIK_TEXT, "fmFrequency", nullptr},
    {PANEL_MAIN, MAIN_FM_PERIOD, UIK_TEXT, "fmPeriod", nullptr},

    {PANEL_CONSOLE, CONSOLE_BOX, UIK_TEXTBOX, "box", nullptr},
    {PANEL_CONSOLE, CONSOLE_PROMPT, UIK_TEXT, "prompt", nullptr},
    {PANEL_CONSOLE, CONSOLE_INPUT, UIK_STRING, "input", StrinCB},

    {PANEL_ITEM, WITEM_NAME, UIK_STRING, "name", ITP_NameCB},
    {PANEL_ITEM, WITEM_PLACE, UIK_TEXT, "place", nullptr},
    {PANEL_ITEM, WITEM_TYPE, UIK_RING, "type", ITP_TypeCB},
    {PANEL_ITEM, WITEM_SIZE, UIK_RING, "valueSize", ITP_TypeCB},
    {PANEL_ITEM, WITEM_POSITION, UIK_RING, "position", ITP_RingCB},
    {PANEL_ITEM, WITEM_ERROR, UIK_TEXT, "error", nullptr},
    {PANEL_ITEM, WITEM_OK, UIK_BUTTON, "ok", ITP_OkCB},
    {PANEL_ITEM, WITEM_CANCEL, UIK_BUTTON, "cancel", ITP_CancelCB},

    {PANEL_VALUE, VALUE_NAME, UIK_TEXT, "name", nullptr},
    {PANEL_VALUE, VALUE_ADDRESS, UIK_TEXT, "address", nullptr},
    {PANEL_VALUE, VALUE_STATION, UIK_TEXT, "station", nullptr},
    {PANEL_VALUE, VALUE_TYPE, UIK_TEXT, "type", nullptr},
    {PANEL_VALUE, VALUE_SHOWN, UIK_TEXT, "shown", nullptr},
    {PANEL_VALUE, VALUE_DECIMAL, UIK_TEXT, "decimal", nullptr},
    {PANEL_VALUE, VALUE_HEX, UIK_TEXT, "hex", nullptr},
    {PANEL_VALUE, VALUE_BINARY, UIK_TEXT, "binary", nullptr},
    {PANEL_VALUE, VALUE_FLOAT, UIK_TEXT, "single", nullptr},
    {PANEL_VALUE, VALUE_READ, UIK_BUTTON, "read", VLP_ReadCB},
    {PANEL_VALUE, VALUE_NEW, UIK_STRING, "newValue", VLP_NewCB},
    {PANEL_VALUE, VALUE_HINT, UIK_TEXT, "hint", nullptr},
    {PANEL_VALUE, VALUE_WRITE, UIK_BUTTON, "write", VLP_WriteCB},
    {PANEL_VALUE, VALUE_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_VALUE, VALUE_CLOSE, UIK_BUTTON, "closePanel", VLP_CloseCB},
    {PANEL_VALUE, VALUE_TIMER, UIK_TIMER, "timer", VLP_TimerCB},

    {PANEL_MEMORY, MEMORY_ADDRESS, UIK_STRING, "address", MMP_AddressCB},
    {PANEL_MEMORY, MEMORY_COUNT, UIK_NUMBER, "count", MMP_CountCB},
    {PANEL_MEMORY, MEMORY_PLACE, UIK_TEXT, "place", nullptr},
    {PANEL_MEMORY, MEMORY_READ, UIK_BUTTON, "read", MMP_ReadCB},
    {PANEL_MEMORY, MEMORY_LIST, UIK_LIST, "list", MMP_ListCB},
    {PANEL_MEMORY, MEMORY_LINE, UIK_STRING, "line", MMP_LineCB},
    {PANEL_MEMORY, MEMORY_WRITE, UIK_BUTTON, "write", MMP_WriteCB},
    {PANEL_MEMORY, MEMORY_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_MEMORY, MEMORY_COPY, UIK_BUTTON, "copy", MMP_CopyCB},
    {PANEL_MEMORY, MEMORY_CLOSE, UIK_BUTTON, "closePanel", MMP_CloseCB},

    {PANEL_STATISTICS, STATISTICS_ANSWERED, UIK_TEXT, "answered", nullptr},
    {PANEL_STATISTICS, STATISTICS_TIMEOUTS, UIK_TEXT, "timeouts", nullptr},
    {PANEL_STATISTICS, STATISTICS_DAMAGED, UIK_TEXT, "damaged", nullptr},
    {PANEL_STATISTICS, STATISTICS_REPEATED, UIK_TEXT, "repeated", nullptr},
    {PANEL_STATISTICS, STATISTICS_SHARE, UIK_TEXT, "share", nullptr},
    {PANEL_STATISTICS, STATISTICS_LAST, UIK_TEXT, "lastFailure", nullptr},
    {PANEL_STATISTICS, STATISTICS_SINCE, UIK_TEXT, "since", nullptr},
    {PANEL_STATISTICS, STATISTICS_ADVICE, UIK_TEXT, "advice", nullptr},
    {PANEL_STATISTICS, STATISTICS_CAUSES, UIK_LIST, "causes", nullptr},
    {PANEL_STATISTICS, STATISTICS_COUNTERS, UIK_LIST, "counters", nullptr},
    {PANEL_STATISTICS, STATISTICS_RESET, UIK_BUTTON, "reset", STP_ResetCB},
    {PANEL_STATISTICS, STATISTICS_COPY, UIK_BUTTON, "copy", STP_CopyCB},
    {PANEL_STATISTICS, STATISTICS_TIMER, UIK_TIMER, "timer", STP_TimerCB},

    {PANEL_TRACE, TRACE_LIST, UIK_LIST, "list", TRP_ListCB},
    {PANEL_TRACE, TRACE_DETAIL, UIK_TEXTBOX, "detail", nullptr},
    {PANEL_TRACE, TRACE_PAUSE, UIK_BUTTON, "pause", TRP_PauseCB},
    {PANEL_TRACE, TRACE_CLEAR, UIK_BUTTON, "clear", TRP_ClearCB},
    {PANEL_TRACE, TRACE_COPY, UIK_BUTTON, "copy", TRP_CopyCB},
    {PANEL_TRACE, TRACE_COPY_ALL, UIK_BUTTON, "copyAll", TRP_CopyAllCB},
    {PANEL_TRACE, TRACE_SAVE, UIK_BUTTON, "save", TRP_SaveCB},
    {PANEL_TRACE, TRACE_FAILURES, UIK_SWITCH, "failuresOnly", TRP_FilterCB},
    {PANEL_TRACE, TRACE_COUNT, UIK_TEXT, "count", nullptr},
    {PANEL_TRACE, TRACE_TIMER, UIK_TIMER, "timer", TRP_TimerCB},

    {PANEL_DATA_LOG, LOG_VARIABLE, UIK_RING, "variable", nullptr},
    {PANEL_DATA_LOG, LOG_READ, UIK_BUTTON, "read", LGW_ReadCB},
    {PANEL_DATA_LOG, LOG_OPEN, UIK_BUTTON, "open", LGW_OpenFileCB},
    {PANEL_DATA_LOG, LOG_COMPARE, UIK_BUTTON, "compare", LGW_CompareCB},
    {PANEL_DATA_LOG, LOG_FILTER, UIK_STRING, "filter", LGW_FilterCB},
    {PANEL_DATA_LOG, LOG_TYPE, UIK_RING, "type", LGW_FilterCB},
    {PANEL_DATA_LOG, LOG_FROM, UIK_STRING, "from", LGW_FilterCB},
    {PANEL_DATA_LOG, LOG_TO, UIK_STRING, "to", LGW_FilterCB},
    {PANEL_DATA_LOG, LOG_SORT, UIK_RING, "sort", LGW_SortCB},
    {PANEL_DATA_LOG, LOG_DESCENDING, UIK_SWITCH, "descending", LGW_SortCB},
    {PANEL_DATA_LOG, LOG_LOCAL, UIK_SWITCH, "localTime", LGW_LocalCB},
    {PANEL_DATA_LOG, LOG_LIST, UIK_LIST, "list", LGW_ListCB},
    {PANEL_DATA_LOG, LOG_DETAIL, UIK_LIST, "detail", nullptr},
    {PANEL_DATA_LOG, LOG_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_DATA_LOG, LOG_PREVIOUS, UIK_BUTTON, "previous", LGW_PageCB},
    {PANEL_DATA_LOG, LOG_NEXT, UIK_BUTTON, "next", LGW_PageCB},
    {PANEL_DATA_LOG, LOG_JUMP, UIK_STRING, "jump", LGW_JumpCB},
    {PANEL_DATA_LOG, LOG_COPY, UIK_BUTTON, "copy", LGW_CopyCB},
    {PANEL_DATA_LOG, LOG_EXPORT, UIK_BUTTON, "exportCsv", LGW_ExportCB},

    {PANEL_VAR_SELECTOR, VARSEL_FILTER, UIK_STRING, "filter", VSL_FilterCB},
    {PANEL_VAR_SELECTOR, VARSEL_LIST, UIK_LIST, "list", VSL_ListCB},
    {PANEL_VAR_SELECTOR, VARSEL_SOURCE, UIK_RING, "source", VSL_SourceCB},
    {PANEL_VAR_SELECTOR, VARSEL_ADD, UIK_BUTTON, "add", VSL_ButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_MEMBERS, UIK_BUTTON, "members", VSL_ButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_COPY, UIK_BUTTON, "copy", VSL_ButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_CLOSE, UIK_BUTTON, "close", VSL_ButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_DETAIL, UIK_TEXT, "detail", nullptr},
    {PANEL_VAR_SELECTOR, VARSEL_COUNT, UIK_TEXT, "count", nullptr},

    {PANEL_STRUCT_SELECTOR, STRSEL_PATH, UIK_STRING, "path", SSL_PathCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_LIST, UIK_LIST, "list", SSL_ListCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_UP, UIK_BUTTON, "up", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_ADD, UIK_BUTTON, "add", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_OPEN, UIK_BUTTON, "open", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_COPY, UIK_BUTTON, "copy", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_CLOSE, UIK_BUTTON, "close", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_DETAIL, UIK_TEXT, "detail", nullptr},
    {PANEL_STRUCT_SELECTOR, STRSEL_COUNT, UIK_TEXT, "count", nullptr},
    {PANEL_STRUCT_SELECTOR, STRSEL_PREVIOUS, UIK_BUTTON, "previous", SSL_ButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_NEXT, UIK_BUTTON, "next", SSL_ButtonCB},
};
const int UI_cnControls = sizeof UI_aControls / sizeof UI_aControls[0];
