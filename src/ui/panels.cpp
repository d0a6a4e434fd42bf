// Which window and which control has which number, widget and callback.
#include "ui/ui_table.h"

#include "app/connect_page.h"
#include "app/main_panel.h"
#include "app/options.h"
#include "code/debugger.h"
#include "console/monitor/monitor.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "graphs/window.h"
#include "inspect/array_inspector.h"
#include "inspect/inspectors.h"
#include "inspect/record_inspector.h"
#include "loader/window.h"
#include "logger/log_window.h"
#include "scope/window.h"
#include "sets/editor.h"
#include "sets/window.h"
#include "simulator/window.h"
#include "terminal/entry.h"
#include "terminal/window.h"
#include "ui/inspector_windows.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_events.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"
#include "watch/windows/item_panel.h"
#include "watch/windows/map_loading.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/memory_panel.h"
#include "watch/windows/selectors.h"
#include "watch/windows/value_panel.h"

namespace {

constexpr UI_Panel PANELS[] = {
    {PANEL_MAIN, "main", "Vireo2", PanelCB},
    {PANEL_VALUE, "value", "Write value", WIN_CloseWindowCB},
    {PANEL_MEMORY, "memory", "Memory", WIN_CloseWindowCB},
    {PANEL_ITEM, "item", "Watch item", WIN_CloseWindowCB},
    {PANEL_CONSOLE, "console", "Console", nullptr},
    {PANEL_STATISTICS, "statistics", "Communication statistics", DIA_StatisticsPanelCB},
    {PANEL_TRACE, "trace", "Wire trace", DIA_TracePanelCB},
    {PANEL_LOADER, "loader", "Flash loader", LDR_PanelCB},
    {PANEL_DATA_LOG, "data_log", "Data log", LOGV_PanelCB},
    {PANEL_VAR_SELECTOR, "var_selector", "Variables", WIN_CloseWindowCB},
    {PANEL_STRUCT_SELECTOR, "struct_selector", "Structures", WIN_CloseWindowCB},
    {PANEL_SCOPE, "scope", "Data scope", DTSC_PanelCB},
    {PANEL_GRAPH, "graph", "Graph", GRA_PanelCB},
    {PANEL_TERMINAL_ENTRY, "terminal_entry", "Send text", TRM_EntryPanelCB},
    {PANEL_CONFIG, "config", "Device configuration", ConfigPanelCB},
    {PANEL_CONFIG_EDIT, "config_edit", "Parameter", WIN_CloseWindowCB},
    {PANEL_DEBUGGER, "debugger", "Debugger", WIN_CloseWindowCB},
    {PANEL_SIMULATOR, "simulator", "Simulated target", WIN_CloseWindowCB},
    {PANEL_TERMINAL, "terminal", "Service terminal", T166_PanelCB},
    {PANEL_LCD, "lcd", "LCD and keyboard", TRM_LcdPanelCB},
    {PANEL_CONNECT, "connect", "Connect", APP_ConnectPanelCB},
};
constexpr UI_Panel ARRAY_PANEL[] = {{PANEL_ARRAY, "array", "Array", INS_PanelCB}};
constexpr UI_Panel RECORD_PANEL[] = {{PANEL_RECORD, "record", "Record", INS_PanelCB}};

// The controls of an inspector, which has ten windows of a kind.
#define ARRAY_WINDOW(panel)                                                                        \
    {panel, ARRAY_PLACE, UIK_STRING, "place", INS_ArrayPlaceCB},                                   \
        {panel, ARRAY_SLICE, UIK_STRING, "slice", INS_ArraySliceCB},                               \
        {panel, ARRAY_STATE, UIK_TEXT, "state", nullptr},                                          \
        {panel, ARRAY_LIST, UIK_LIST, "list", INS_ArrayListCB},                                    \
        {panel, ARRAY_GRAPH, UIK_GRAPH, "graph", nullptr},                                         \
        {panel, ARRAY_CURVE, UIK_BUTTON, "curve", INS_ArrayButtonCB},                              \
        {panel, ARRAY_COPY, UIK_BUTTON, "copy", INS_ArrayButtonCB},                                \
        {panel, ARRAY_SAVE, UIK_BUTTON, "saveCsv", INS_ArrayButtonCB},                             \
        {panel, ARRAY_LOAD, UIK_BUTTON, "loadCsv", INS_ArrayButtonCB},                             \
        {panel, ARRAY_PREVIOUS, UIK_BUTTON, "previous", INS_ArrayButtonCB},                        \
        {panel, ARRAY_NEXT, UIK_BUTTON, "next", INS_ArrayButtonCB},                                \
        {panel, ARRAY_MESSAGE, UIK_TEXT, "message", nullptr},                                      \
    {                                                                                              \
        panel, ARRAY_TIMER, UIK_TIMER, "timer", INS_ArrayTimerCB                                   \
    }
#define RECORD_WINDOW(panel)                                                                       \
    {panel, RECORD_PLACE, UIK_STRING, "place", INS_RecordPlaceCB},                                 \
        {panel, RECORD_LIST, UIK_LIST, "list", INS_RecordListCB},                                  \
        {panel, RECORD_OPEN, UIK_BUTTON, "open", INS_RecordButtonCB},                              \
        {panel, RECORD_ADD, UIK_BUTTON, "add", INS_RecordButtonCB},                                \
        {panel, RECORD_MESSAGE, UIK_TEXT, "message", nullptr},                                     \
    {                                                                                              \
        panel, RECORD_TIMER, UIK_TIMER, "timer", INS_RecordTimerCB                                 \
    }

constexpr UI_Control CONTROLS[] = {
    {PANEL_MAIN, MAIN_LIST, UIK_LIST, "list", LSV_ListCB},
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
    {PANEL_MAIN, MAIN_MEM_SWITCH, UIK_SWITCH, "memSwitch", WIN_MemoryBoxPlaceCB},
    {PANEL_MAIN, MAIN_MEM_ADDR, UIK_STRING, "memAddress", WIN_MemoryBoxPlaceCB},
    {PANEL_MAIN, MAIN_MEM_TYPED, UIK_SWITCH, "memTyped", WIN_MemoryBoxPlaceCB},
    {PANEL_MAIN, MAIN_MEM_MODE, UIK_RING, "memMode", nullptr},
    {PANEL_MAIN, MAIN_FM_SWITCH, UIK_SWITCH, "fmSwitch", nullptr},
    {PANEL_MAIN, MAIN_FM_SAMPLES, UIK_NUMBER, "fmSamples", nullptr},
    {PANEL_MAIN, MAIN_FM_FREQ, UIK_TEXT, "fmFrequency", nullptr},
    {PANEL_MAIN, MAIN_FM_PERIOD, UIK_TEXT, "fmPeriod", nullptr},

    {PANEL_CONSOLE, CONSOLE_BOX, UIK_TEXTBOX, "box", nullptr},
    {PANEL_CONSOLE, CONSOLE_PROMPT, UIK_TEXT, "prompt", nullptr},
    {PANEL_CONSOLE, CONSOLE_INPUT, UIK_STRING, "input", StrinCB},

    {PANEL_CONNECT, CONNECT_PORT, UIK_RING, "port", APP_ConnectPortCB},
    {PANEL_CONNECT, CONNECT_BAUD, UIK_RING, "baud", APP_ConnectSettingCB},
    {PANEL_CONNECT, CONNECT_PROTOCOL, UIK_RING, "protocol", APP_ConnectSettingCB},
    {PANEL_CONNECT, CONNECT_STATION, UIK_NUMBER, "station", APP_ConnectSettingCB},
    {PANEL_CONNECT, CONNECT_PROCESSOR, UIK_RING, "processor", APP_ConnectSettingCB},
    {PANEL_CONNECT, CONNECT_TEST, UIK_BUTTON, "test", APP_ConnectButtonCB},
    {PANEL_CONNECT, CONNECT_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_CONNECT, CONNECT_MAP, UIK_BUTTON, "map", APP_ConnectButtonCB},
    {PANEL_CONNECT, CONNECT_MAP_NAME, UIK_TEXT, "mapName", nullptr},
    {PANEL_CONNECT, CONNECT_LIST, UIK_BUTTON, "watchList", APP_ConnectButtonCB},
    {PANEL_CONNECT, CONNECT_LIST_NAME, UIK_TEXT, "watchListName", nullptr},
    {PANEL_CONNECT, CONNECT_START, UIK_BUTTON, "start", APP_ConnectButtonCB},
    {PANEL_CONNECT, CONNECT_CLOSE, UIK_BUTTON, "closePage", APP_ConnectButtonCB},

    {PANEL_ITEM, WITEM_NAME, UIK_STRING, "name", WIN_ItemNameCB},
    {PANEL_ITEM, WITEM_PLACE, UIK_TEXT, "place", nullptr},
    {PANEL_ITEM, WITEM_TYPE, UIK_RING, "type", WIN_ItemTypeCB},
    {PANEL_ITEM, WITEM_SIZE, UIK_RING, "valueSize", WIN_ItemTypeCB},
    {PANEL_ITEM, WITEM_POSITION, UIK_RING, "position", WIN_ItemRingCB},
    {PANEL_ITEM, WITEM_ERROR, UIK_TEXT, "error", nullptr},
    {PANEL_ITEM, WITEM_OK, UIK_BUTTON, "ok", WIN_ItemButtonCB},
    {PANEL_ITEM, WITEM_CANCEL, UIK_BUTTON, "cancel", WIN_ItemButtonCB},

    {PANEL_VALUE, VALUE_NAME, UIK_TEXT, "name", nullptr},
    {PANEL_VALUE, VALUE_ADDRESS, UIK_TEXT, "address", nullptr},
    {PANEL_VALUE, VALUE_STATION, UIK_TEXT, "station", nullptr},
    {PANEL_VALUE, VALUE_TYPE, UIK_TEXT, "type", nullptr},
    {PANEL_VALUE, VALUE_SHOWN, UIK_TEXT, "shown", nullptr},
    {PANEL_VALUE, VALUE_DECIMAL, UIK_TEXT, "decimal", nullptr},
    {PANEL_VALUE, VALUE_HEX, UIK_TEXT, "hex", nullptr},
    {PANEL_VALUE, VALUE_BINARY, UIK_TEXT, "binary", nullptr},
    {PANEL_VALUE, VALUE_FLOAT, UIK_TEXT, "single", nullptr},
    {PANEL_VALUE, VALUE_READ, UIK_BUTTON, "read", WIN_ValueButtonCB},
    {PANEL_VALUE, VALUE_NEW, UIK_STRING, "newValue", WIN_ValueNewCB},
    {PANEL_VALUE, VALUE_HINT, UIK_TEXT, "hint", nullptr},
    {PANEL_VALUE, VALUE_WRITE, UIK_BUTTON, "write", WIN_ValueButtonCB},
    {PANEL_VALUE, VALUE_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_VALUE, VALUE_CLOSE, UIK_BUTTON, "closePanel", WIN_ValueButtonCB},
    {PANEL_VALUE, VALUE_TIMER, UIK_TIMER, "timer", WIN_ValueTimerCB},

    {PANEL_MEMORY, MEMORY_ADDRESS, UIK_STRING, "address", WIN_MemoryAddressCB},
    {PANEL_MEMORY, MEMORY_COUNT, UIK_NUMBER, "count", WIN_MemoryCountCB},
    {PANEL_MEMORY, MEMORY_PLACE, UIK_TEXT, "place", nullptr},
    {PANEL_MEMORY, MEMORY_READ, UIK_BUTTON, "read", WIN_MemoryButtonCB},
    {PANEL_MEMORY, MEMORY_LIST, UIK_LIST, "list", WIN_MemoryListCB},
    {PANEL_MEMORY, MEMORY_LINE, UIK_STRING, "line", WIN_MemoryLineCB},
    {PANEL_MEMORY, MEMORY_WRITE, UIK_BUTTON, "write", WIN_MemoryButtonCB},
    {PANEL_MEMORY, MEMORY_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_MEMORY, MEMORY_COPY, UIK_BUTTON, "copy", WIN_MemoryButtonCB},
    {PANEL_MEMORY, MEMORY_CLOSE, UIK_BUTTON, "closePanel", WIN_MemoryButtonCB},

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
    {PANEL_STATISTICS, STATISTICS_RESET, UIK_BUTTON, "reset", DIA_StatisticsResetCB},
    {PANEL_STATISTICS, STATISTICS_COPY, UIK_BUTTON, "copy", DIA_StatisticsCopyCB},
    {PANEL_STATISTICS, STATISTICS_TIMER, UIK_TIMER, "timer", DIA_StatisticsTimerCB},

    {PANEL_TRACE, TRACE_LIST, UIK_LIST, "list", DIA_TraceListCB},
    {PANEL_TRACE, TRACE_DETAIL, UIK_TEXTBOX, "detail", nullptr},
    {PANEL_TRACE, TRACE_PAUSE, UIK_BUTTON, "pause", DIA_TracePauseCB},
    {PANEL_TRACE, TRACE_CLEAR, UIK_BUTTON, "clear", DIA_TraceClearCB},
    {PANEL_TRACE, TRACE_COPY, UIK_BUTTON, "copy", DIA_TraceCopyCB},
    {PANEL_TRACE, TRACE_COPY_ALL, UIK_BUTTON, "copyAll", DIA_TraceCopyAllCB},
    {PANEL_TRACE, TRACE_SAVE, UIK_BUTTON, "save", DIA_TraceSaveCB},
    {PANEL_TRACE, TRACE_FAILURES, UIK_SWITCH, "failuresOnly", DIA_TraceFilterCB},
    {PANEL_TRACE, TRACE_COUNT, UIK_TEXT, "count", nullptr},
    {PANEL_TRACE, TRACE_TIMER, UIK_TIMER, "timer", DIA_TraceTimerCB},

    {PANEL_LOADER, LOADER_FILE, UIK_STRING, "file", nullptr},
    {PANEL_LOADER, LOADER_CHOOSE, UIK_BUTTON, "choose", LDR_ChooseCB},
    {PANEL_LOADER, LOADER_BAR, UIK_BAR, "bar", nullptr},
    {PANEL_LOADER, LOADER_BAR_FIRST, UIK_TEXT, "barFirst", nullptr},
    {PANEL_LOADER, LOADER_BAR_LAST, UIK_TEXT, "barLast", nullptr},
    {PANEL_LOADER, LOADER_CONTENTS, UIK_LIST, "contents", nullptr},
    {PANEL_LOADER, LOADER_STEPS, UIK_LIST, "steps", nullptr},
    {PANEL_LOADER, LOADER_ERASE, UIK_SWITCH, "erase", nullptr},
    {PANEL_LOADER, LOADER_READ_BACK, UIK_SWITCH, "readBack", nullptr},
    {PANEL_LOADER, LOADER_PORT, UIK_TEXT, "port", nullptr},
    {PANEL_LOADER, LOADER_PROGRESS, UIK_TEXT, "progress", nullptr},
    {PANEL_LOADER, LOADER_LOG, UIK_TEXTBOX, "log", nullptr},
    {PANEL_LOADER, LOADER_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_LOADER, LOADER_FLASH, UIK_TEXT, "flash", nullptr},
    {PANEL_LOADER, LOADER_PROGRAM, UIK_BUTTON, "program", LDR_ProgramCB},
    {PANEL_LOADER, LOADER_COMPARE, UIK_BUTTON, "compare", LDR_CompareCB},

    {PANEL_DATA_LOG, LOG_VARIABLE, UIK_RING, "variable", nullptr},
    {PANEL_DATA_LOG, LOG_READ, UIK_BUTTON, "read", LOGV_ReadCB},
    {PANEL_DATA_LOG, LOG_OPEN, UIK_BUTTON, "open", LOGV_OpenFileCB},
    {PANEL_DATA_LOG, LOG_COMPARE, UIK_BUTTON, "compare", LOGV_CompareCB},
    {PANEL_DATA_LOG, LOG_FILTER, UIK_STRING, "filter", LOGV_FilterCB},
    {PANEL_DATA_LOG, LOG_TYPE, UIK_RING, "type", LOGV_FilterCB},
    {PANEL_DATA_LOG, LOG_FROM, UIK_STRING, "from", LOGV_FilterCB},
    {PANEL_DATA_LOG, LOG_TO, UIK_STRING, "to", LOGV_FilterCB},
    {PANEL_DATA_LOG, LOG_SORT, UIK_RING, "sort", LOGV_SortCB},
    {PANEL_DATA_LOG, LOG_DESCENDING, UIK_SWITCH, "descending", LOGV_SortCB},
    {PANEL_DATA_LOG, LOG_LOCAL, UIK_SWITCH, "localTime", LOGV_LocalCB},
    {PANEL_DATA_LOG, LOG_LIST, UIK_LIST, "list", LOGV_ListCB},
    {PANEL_DATA_LOG, LOG_DETAIL, UIK_LIST, "detail", nullptr},
    {PANEL_DATA_LOG, LOG_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_DATA_LOG, LOG_PREVIOUS, UIK_BUTTON, "previous", LOGV_PageCB},
    {PANEL_DATA_LOG, LOG_NEXT, UIK_BUTTON, "next", LOGV_PageCB},
    {PANEL_DATA_LOG, LOG_JUMP, UIK_STRING, "jump", LOGV_JumpCB},
    {PANEL_DATA_LOG, LOG_COPY, UIK_BUTTON, "copy", LOGV_CopyCB},
    {PANEL_DATA_LOG, LOG_EXPORT, UIK_BUTTON, "exportCsv", LOGV_ExportCB},

    {PANEL_VAR_SELECTOR, VARSEL_FILTER, UIK_STRING, "filter", SEL_VariableFilterCB},
    {PANEL_VAR_SELECTOR, VARSEL_LIST, UIK_LIST, "list", SEL_VariableListCB},
    {PANEL_VAR_SELECTOR, VARSEL_SOURCE, UIK_RING, "source", SEL_VariableSourceCB},
    {PANEL_VAR_SELECTOR, VARSEL_ADD, UIK_BUTTON, "add", SEL_VariableButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_MEMBERS, UIK_BUTTON, "members", SEL_VariableButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_COPY, UIK_BUTTON, "copy", SEL_VariableButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_CLOSE, UIK_BUTTON, "close", SEL_VariableButtonCB},
    {PANEL_VAR_SELECTOR, VARSEL_DETAIL, UIK_TEXT, "detail", nullptr},
    {PANEL_VAR_SELECTOR, VARSEL_COUNT, UIK_TEXT, "count", nullptr},

    {PANEL_STRUCT_SELECTOR, STRSEL_PATH, UIK_STRING, "path", SEL_StructurePathCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_LIST, UIK_LIST, "list", SEL_StructureListCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_UP, UIK_BUTTON, "up", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_ADD, UIK_BUTTON, "add", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_OPEN, UIK_BUTTON, "open", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_COPY, UIK_BUTTON, "copy", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_CLOSE, UIK_BUTTON, "close", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_DETAIL, UIK_TEXT, "detail", nullptr},
    {PANEL_STRUCT_SELECTOR, STRSEL_COUNT, UIK_TEXT, "count", nullptr},
    {PANEL_STRUCT_SELECTOR, STRSEL_PREVIOUS, UIK_BUTTON, "previous", SEL_StructureButtonCB},
    {PANEL_STRUCT_SELECTOR, STRSEL_NEXT, UIK_BUTTON, "next", SEL_StructureButtonCB},

    {PANEL_GRAPH, STRIP_START, UIK_BUTTON, "start", GRA_StartCB},
    {PANEL_GRAPH, STRIP_PAUSE, UIK_BUTTON, "pause", GRA_PauseCB},
    {PANEL_GRAPH, STRIP_RECORD, UIK_BUTTON, "record", GRA_RecordCB},
    {PANEL_GRAPH, STRIP_WHEN, UIK_BUTTON, "when", GRA_WhenCB},
    {PANEL_GRAPH, STRIP_MARKER, UIK_BUTTON, "marker", GRA_MarkerCB},
    {PANEL_GRAPH, STRIP_TEXT, UIK_STRING, "markerText", nullptr},
    {PANEL_GRAPH, STRIP_PERIOD, UIK_RING, "period", GRA_RingCB},
    {PANEL_GRAPH, STRIP_WINDOW, UIK_RING, "window", GRA_RingCB},
    {PANEL_GRAPH, STRIP_REMOVE, UIK_BUTTON, "remove", GRA_RemoveCB},
    {PANEL_GRAPH, STRIP_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_GRAPH, STRIP_GRAPH, UIK_GRAPH, "graph", GRA_GraphCB},
    {PANEL_GRAPH, STRIP_CURVES, UIK_LIST, "curves", GRA_CurvesCB},
    {PANEL_GRAPH, STRIP_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_GRAPH, STRIP_OPEN_DATA, UIK_BUTTON, "openData", GRA_FileCB},
    {PANEL_GRAPH, STRIP_SAVE_DATA, UIK_BUTTON, "saveData", GRA_FileCB},
    {PANEL_GRAPH, STRIP_OPEN_SETUP, UIK_BUTTON, "openSetup", GRA_FileCB},
    {PANEL_GRAPH, STRIP_SAVE_SETUP, UIK_BUTTON, "saveSetup", GRA_FileCB},
    {PANEL_GRAPH, STRIP_TIMER, UIK_TIMER, "timer", GRA_TimerCB},

    {PANEL_TERMINAL, TERM_SCREEN, UIK_TEXTBOX, "screen", T166_ScreenCB},
    {PANEL_TERMINAL, TERM_LINE, UIK_STRING, "line", T166_LineCB},
    {PANEL_TERMINAL, TERM_PLACE, UIK_STRING, "place", T166_PlaceCB},
    {PANEL_TERMINAL, TERM_STATION, UIK_RING, "station", T166_PlaceCB},
    {PANEL_TERMINAL, TERM_PAGE, UIK_RING, "codePage", nullptr},
    {PANEL_TERMINAL, TERM_ENDING, UIK_RING, "ending", nullptr},
    {PANEL_TERMINAL, TERM_ECHO, UIK_SWITCH, "echo", nullptr},
    {PANEL_TERMINAL, TERM_LOG, UIK_SWITCH, "log", T166_LogCB},
    {PANEL_TERMINAL, TERM_CLEAR, UIK_BUTTON, "clear", T166_ButtonCB},
    {PANEL_TERMINAL, TERM_COPY, UIK_BUTTON, "copy", T166_ButtonCB},
    {PANEL_TERMINAL, TERM_PASTE, UIK_BUTTON, "paste", T166_ButtonCB},
    {PANEL_TERMINAL, TERM_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_TERMINAL, TERM_MESSAGE, UIK_TEXT, "message", nullptr},

    {PANEL_TERMINAL_ENTRY, ENTRY_TEXT, UIK_TEXTBOX, "entry", nullptr},
    {PANEL_TERMINAL_ENTRY, ENTRY_PASTE, UIK_BUTTON, "paste", TRM_EntryButtonCB},
    {PANEL_TERMINAL_ENTRY, ENTRY_FILE, UIK_BUTTON, "file", TRM_EntryButtonCB},
    {PANEL_TERMINAL_ENTRY, ENTRY_SEND, UIK_BUTTON, "send", TRM_EntryButtonCB},
    {PANEL_TERMINAL_ENTRY, ENTRY_STOP, UIK_BUTTON, "stop", TRM_EntryButtonCB},
    {PANEL_TERMINAL_ENTRY, ENTRY_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_TERMINAL_ENTRY, ENTRY_BAR, UIK_BAR, "bar", nullptr},
    {PANEL_TERMINAL_ENTRY, ENTRY_CLOSE, UIK_BUTTON, "closePanel", TRM_EntryButtonCB},

    {PANEL_LCD, LCD_SCREEN, UIK_TEXT, "screen", TRM_LcdScreenCB},
    {PANEL_LCD, LCD_PLACE, UIK_STRING, "place", TRM_LcdPlaceCB},
    {PANEL_LCD, LCD_STATION, UIK_RING, "station", TRM_LcdPlaceCB},
    {PANEL_LCD, LCD_PAGE, UIK_RING, "codePage", TRM_LcdPlaceCB},
    {PANEL_LCD, LCD_COPY, UIK_BUTTON, "copy", TRM_LcdCopyCB},
    {PANEL_LCD, LCD_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_LCD, LCD_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_LCD, LCD_TIMER, UIK_TIMER, "timer", TRM_LcdTimerCB},
    {PANEL_LCD, LCD_KEY_FIRST + 0, UIK_BUTTON, "key0", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 1, UIK_BUTTON, "key1", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 2, UIK_BUTTON, "key2", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 3, UIK_BUTTON, "key3", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 4, UIK_BUTTON, "key4", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 5, UIK_BUTTON, "key5", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 6, UIK_BUTTON, "key6", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 7, UIK_BUTTON, "key7", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 8, UIK_BUTTON, "key8", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 9, UIK_BUTTON, "key9", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 10, UIK_BUTTON, "keyEnter", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 11, UIK_BUTTON, "keyEsc", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 12, UIK_BUTTON, "keyUp", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 13, UIK_BUTTON, "keyDown", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 14, UIK_BUTTON, "keyLeft", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 15, UIK_BUTTON, "keyRight", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 16, UIK_BUTTON, "keyPlus", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 17, UIK_BUTTON, "keyMinus", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 18, UIK_BUTTON, "keyPoint", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 19, UIK_BUTTON, "keyDelete", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 20, UIK_BUTTON, "keyF1", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 21, UIK_BUTTON, "keyF2", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 22, UIK_BUTTON, "keyF3", TRM_LcdKeyCB},
    {PANEL_LCD, LCD_KEY_FIRST + 23, UIK_BUTTON, "keyF4", TRM_LcdKeyCB},

    {PANEL_CONFIG, CONFIG_HEADER, UIK_STRING, "header", nullptr},
    {PANEL_CONFIG, CONFIG_OPEN, UIK_BUTTON, "open", CFW_OpenCB},
    {PANEL_CONFIG, CONFIG_GROUPS, UIK_LIST, "groups", CFW_GroupsCB},
    {PANEL_CONFIG, CONFIG_LIST, UIK_LIST, "list", CFW_ListCB},
    {PANEL_CONFIG, CONFIG_ONLY_MARKED, UIK_SWITCH, "onlyMarked", CFW_MarkedCB},
    {PANEL_CONFIG, CONFIG_READ, UIK_BUTTON, "read", CFW_ReadCB},
    {PANEL_CONFIG, CONFIG_WRITE_ONE, UIK_BUTTON, "writeOne", CFW_WriteCB},
    {PANEL_CONFIG, CONFIG_WRITE_ALL, UIK_BUTTON, "writeAll", CFW_WriteCB},
    {PANEL_CONFIG, CONFIG_LOAD, UIK_BUTTON, "load", CFW_FileCB},
    {PANEL_CONFIG, CONFIG_SAVE, UIK_BUTTON, "save", CFW_FileCB},
    {PANEL_CONFIG, CONFIG_COMPARE, UIK_BUTTON, "compare", CFW_FileCB},
    {PANEL_CONFIG, CONFIG_PRINT, UIK_BUTTON, "print", CFW_FileCB},
    {PANEL_CONFIG, CONFIG_TERMINAL, UIK_BUTTON, "terminal", CFW_TerminalCB},
    {PANEL_CONFIG, CONFIG_RESULT, UIK_TEXT, "result", nullptr},
    {PANEL_CONFIG, CONFIG_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_CONFIG, CONFIG_DETAILS, UIK_BUTTON, "details", CFW_DetailsCB},
    {PANEL_CONFIG, CONFIG_FILE, UIK_TEXT, "file", nullptr},

    {PANEL_CONFIG_EDIT, CFGEDIT_NAME, UIK_TEXT, "name", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_TEXT, UIK_TEXT, "meaning", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_TYPE, UIK_TEXT, "type", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_LIMITS, UIK_TEXT, "limits", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_DEFAULT, UIK_TEXT, "defaultValue", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_DEVICE, UIK_TEXT, "device", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_FILE, UIK_TEXT, "file", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_NEW, UIK_STRING, "newValue", CFW_EditorNewCB},
    {PANEL_CONFIG_EDIT, CFGEDIT_HINT, UIK_TEXT, "hint", nullptr},
    {PANEL_CONFIG_EDIT, CFGEDIT_TAKE, UIK_BUTTON, "take", CFW_EditorButtonCB},
    {PANEL_CONFIG_EDIT, CFGEDIT_FROM_DEFAULT, UIK_BUTTON, "fromDefault", CFW_EditorButtonCB},
    {PANEL_CONFIG_EDIT, CFGEDIT_FROM_FILE, UIK_BUTTON, "fromFile", CFW_EditorButtonCB},
    {PANEL_CONFIG_EDIT, CFGEDIT_WRITE, UIK_BUTTON, "write", CFW_EditorButtonCB},
    {PANEL_CONFIG_EDIT, CFGEDIT_CLOSE, UIK_BUTTON, "closePanel", CFW_EditorButtonCB},

    {PANEL_DEBUGGER, DEBUG_PLACE, UIK_STRING, "place", CODE_PlaceCB},
    {PANEL_DEBUGGER, DEBUG_GO, UIK_BUTTON, "go", CODE_DebuggerButtonCB},
    {PANEL_DEBUGGER, DEBUG_BACK, UIK_BUTTON, "back", CODE_DebuggerButtonCB},
    {PANEL_DEBUGGER, DEBUG_FOLLOW, UIK_BUTTON, "follow", CODE_DebuggerButtonCB},
    {PANEL_DEBUGGER, DEBUG_MORE, UIK_BUTTON, "more", CODE_DebuggerButtonCB},
    {PANEL_DEBUGGER, DEBUG_LIVE, UIK_SWITCH, "live", CODE_LiveCB},
    {PANEL_DEBUGGER, DEBUG_CODE, UIK_LIST, "code", CODE_CodeCB},
    {PANEL_DEBUGGER, DEBUG_GROUP, UIK_RING, "group", CODE_GroupCB},
    {PANEL_DEBUGGER, DEBUG_REGISTERS, UIK_LIST, "registers", CODE_RegistersCB},
    {PANEL_DEBUGGER, DEBUG_STACK, UIK_LIST, "stack", nullptr},
    {PANEL_DEBUGGER, DEBUG_MEM_PLACE, UIK_STRING, "memoryPlace", CODE_MemPlaceCB},
    {PANEL_DEBUGGER, DEBUG_MEMORY, UIK_LIST, "memory", nullptr},
    {PANEL_DEBUGGER, DEBUG_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_DEBUGGER, DEBUG_COPY, UIK_BUTTON, "copy", CODE_DebuggerButtonCB},
    {PANEL_DEBUGGER, DEBUG_TIMER, UIK_TIMER, "timer", CODE_DebuggerTimerCB},

    {PANEL_SIMULATOR, SIMUL_START, UIK_BUTTON, "start", TGT_ButtonCB},
    {PANEL_SIMULATOR, SIMUL_CONNECT, UIK_BUTTON, "connectTarget", TGT_ButtonCB},
    {PANEL_SIMULATOR, SIMUL_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_SIMULATOR, SIMUL_PROGRAM, UIK_RING, "program", TGT_OptionCB},
    {PANEL_SIMULATOR, SIMUL_PROTOCOL, UIK_RING, "protocol", TGT_OptionCB},
    {PANEL_SIMULATOR, SIMUL_BAUD, UIK_RING, "baud", nullptr},
    {PANEL_SIMULATOR, SIMUL_STATIONS, UIK_STRING, "stations", nullptr},
    {PANEL_SIMULATOR, SIMUL_SCOPES, UIK_RING, "scopes", nullptr},
    {PANEL_SIMULATOR, SIMUL_DROP, UIK_NUMBER, "drop", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_CORRUPT, UIK_NUMBER, "corrupt", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_REPEAT, UIK_NUMBER, "repeat", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_REFUSE, UIK_NUMBER, "refuse", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_DELAY, UIK_NUMBER, "delay", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_DROP_TEXT, UIK_TEXT, "dropText", nullptr},
    {PANEL_SIMULATOR, SIMUL_CORRUPT_TEXT, UIK_TEXT, "corruptText", nullptr},
    {PANEL_SIMULATOR, SIMUL_REPEAT_TEXT, UIK_TEXT, "repeatText", nullptr},
    {PANEL_SIMULATOR, SIMUL_REFUSE_TEXT, UIK_TEXT, "refuseText", nullptr},
    {PANEL_SIMULATOR, SIMUL_DELAY_TEXT, UIK_TEXT, "delayText", nullptr},
    {PANEL_SIMULATOR, SIMUL_SILENT, UIK_SWITCH, "silent", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_ECHO, UIK_SWITCH, "echo", TGT_FaultCB},
    {PANEL_SIMULATOR, SIMUL_NO_FAULTS, UIK_BUTTON, "noFaults", TGT_ButtonCB},
    {PANEL_SIMULATOR, SIMUL_LOG, UIK_LIST, "log", nullptr},
    {PANEL_SIMULATOR, SIMUL_COPY, UIK_BUTTON, "copy", TGT_ButtonCB},
    {PANEL_SIMULATOR, SIMUL_CLEAR, UIK_BUTTON, "clear", TGT_ButtonCB},
    {PANEL_SIMULATOR, SIMUL_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_SIMULATOR, SIMUL_TIMER, UIK_TIMER, "timer", TGT_TimerCB},

    {PANEL_SCOPE, SCOPE_ID, UIK_STRING, "scopeId", nullptr},
    {PANEL_SCOPE, SCOPE_INIT, UIK_BUTTON, "init", DTSC_OnInit},
    {PANEL_SCOPE, SCOPE_RUN, UIK_BUTTON, "run", DTSC_OnRun},
    {PANEL_SCOPE, SCOPE_SNAP, UIK_BUTTON, "snap", DTSC_OnSnap},
    {PANEL_SCOPE, SCOPE_UPLOAD, UIK_BUTTON, "upload", DTSC_OnUpload},
    {PANEL_SCOPE, SCOPE_MODE, UIK_RING, "mode", nullptr},
    {PANEL_SCOPE, SCOPE_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_SCOPE, SCOPE_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_SCOPE, SCOPE_CHANNELS, UIK_LIST, "channels", DTSC_ChannelsCB},
    {PANEL_SCOPE, SCOPE_ON, UIK_SWITCH, "on", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_PLACE, UIK_STRING, "place", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_TYPE, UIK_RING, "type", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_UNIT, UIK_STRING, "unit", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_FACTOR, UIK_STRING, "factor", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_OFFSET, UIK_STRING, "offset", DTSC_ChannelCB},
    {PANEL_SCOPE, SCOPE_EDGE, UIK_RING, "edge", DTSC_OnTriggerMode},
    {PANEL_SCOPE, SCOPE_LEVEL, UIK_STRING, "level", DTSC_OnTriggerMode},
    {PANEL_SCOPE, SCOPE_POSITION, UIK_NUMBER, "position", DTSC_OnTriggerMode},
    {PANEL_SCOPE, SCOPE_SUB, UIK_NUMBER, "sub", DTSC_OnSubPd},
    {PANEL_SCOPE, SCOPE_RATE, UIK_TEXT, "rate", nullptr},
    {PANEL_SCOPE, SCOPE_GRAPH, UIK_GRAPH, "graph", DTSC_GraphCB},
    {PANEL_SCOPE, SCOPE_MEASURES, UIK_LIST, "measures", nullptr},
    {PANEL_SCOPE, SCOPE_OPEN_SETUP, UIK_BUTTON, "openSetup", DTSC_FileCB},
    {PANEL_SCOPE, SCOPE_SAVE_SETUP, UIK_BUTTON, "saveSetup", DTSC_FileCB},
    {PANEL_SCOPE, SCOPE_OPEN_DATA, UIK_BUTTON, "openData", DTSC_FileCB},
    {PANEL_SCOPE, SCOPE_SAVE_DATA, UIK_BUTTON, "saveData", DTSC_FileCB},
    {PANEL_SCOPE, SCOPE_REFERENCE, UIK_BUTTON, "reference", DTSC_FileCB},
    {PANEL_SCOPE, SCOPE_SHOWN, UIK_RING, "shown", DTSC_ShownCB},
    {PANEL_SCOPE, SCOPE_TIMER, UIK_TIMER, "timer", DTSC_TimerCB},
};
constexpr UI_Control ARRAY_CONTROLS[] = {
    {PANEL_ARRAY, ARRAY_PLACE, UIK_STRING, "place", INS_ArrayPlaceCB},
    {PANEL_ARRAY, ARRAY_SLICE, UIK_STRING, "slice", INS_ArraySliceCB},
    {PANEL_ARRAY, ARRAY_STATE, UIK_TEXT, "state", nullptr},
    {PANEL_ARRAY, ARRAY_LIST, UIK_LIST, "list", INS_ArrayListCB},
    {PANEL_ARRAY, ARRAY_GRAPH, UIK_GRAPH, "graph", nullptr},
    {PANEL_ARRAY, ARRAY_CURVE, UIK_BUTTON, "curve", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_COPY, UIK_BUTTON, "copy", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_SAVE, UIK_BUTTON, "saveCsv", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_LOAD, UIK_BUTTON, "loadCsv", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_PREVIOUS, UIK_BUTTON, "previous", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_NEXT, UIK_BUTTON, "next", INS_ArrayButtonCB},
    {PANEL_ARRAY, ARRAY_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_ARRAY, ARRAY_TIMER, UIK_TIMER, "timer", INS_ArrayTimerCB},
};
constexpr UI_Control RECORD_CONTROLS[] = {
    {PANEL_RECORD, RECORD_PLACE, UIK_STRING, "place", INS_RecordPlaceCB},
    {PANEL_RECORD, RECORD_LIST, UIK_LIST, "list", INS_RecordListCB},
    {PANEL_RECORD, RECORD_OPEN, UIK_BUTTON, "open", INS_RecordButtonCB},
    {PANEL_RECORD, RECORD_ADD, UIK_BUTTON, "add", INS_RecordButtonCB},
    {PANEL_RECORD, RECORD_MESSAGE, UIK_TEXT, "message", nullptr},
    {PANEL_RECORD, RECORD_TIMER, UIK_TIMER, "timer", INS_RecordTimerCB},
};

constexpr auto ALL_PANELS = UI_AddInspectors(PANELS, ARRAY_PANEL, RECORD_PANEL);
constexpr auto ALL_CONTROLS = UI_AddInspectors(CONTROLS, ARRAY_CONTROLS, RECORD_CONTROLS);

} // namespace

const UI_Panel *const UI_aPanels = ALL_PANELS.data();
const int UI_cnPanels = static_cast<int>(ALL_PANELS.size());
const UI_Control *const UI_aControls = ALL_CONTROLS.data();
const int UI_cnControls = static_cast<int>(ALL_CONTROLS.size());

int UI_GetFirstAlike(int panel)
{
    if (panel >= PANEL_ARRAY_MORE && panel < PANEL_ARRAY_MORE + INSPECTORS_MAX - 1)
        return PANEL_ARRAY;
    if (panel >= PANEL_RECORD_MORE && panel < PANEL_RECORD_MORE + INSPECTORS_MAX - 1)
        return PANEL_RECORD;
    return panel;
}
