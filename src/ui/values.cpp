// What the controls hold from the start, the keys they want, and what stops the program.
#include "ui/ui_table.h"

#include "settings/limits.h"
#include "ui/inspector_windows.h"
#include "ui/resource.h"

const UI_RingEntry UI_aRingEntries[] = {
    {PANEL_MAIN, MAIN_MEM_MODE, "C166", 0},
    {PANEL_MAIN, MAIN_MEM_MODE, "TMS320", 1},
    {PANEL_DATA_LOG, LOG_SORT, "order of the log", 0},
    {PANEL_DATA_LOG, LOG_SORT, "time", 1},
    {PANEL_DATA_LOG, LOG_SORT, "type", 2},
    {PANEL_DATA_LOG, LOG_SORT, "text", 3},
    {PANEL_GRAPH, STRIP_PERIOD, "fastest", 0},
    {PANEL_GRAPH, STRIP_PERIOD, "10 ms", 10},
    {PANEL_GRAPH, STRIP_PERIOD, "20 ms", 20},
    {PANEL_GRAPH, STRIP_PERIOD, "50 ms", 50},
    {PANEL_GRAPH, STRIP_PERIOD, "100 ms", 100},
    {PANEL_GRAPH, STRIP_PERIOD, "200 ms", 200},
    {PANEL_GRAPH, STRIP_PERIOD, "500 ms", 500},
    {PANEL_GRAPH, STRIP_PERIOD, "1 s", 1000},
    {PANEL_GRAPH, STRIP_PERIOD, "10 s", 10000},
    {PANEL_GRAPH, STRIP_PERIOD, "1 min", 60000},
    {PANEL_GRAPH, STRIP_WINDOW, "1 s", 1},
    {PANEL_GRAPH, STRIP_WINDOW, "5 s", 5},
    {PANEL_GRAPH, STRIP_WINDOW, "10 s", 10},
    {PANEL_GRAPH, STRIP_WINDOW, "30 s", 30},
    {PANEL_GRAPH, STRIP_WINDOW, "1 min", 60},
    {PANEL_GRAPH, STRIP_WINDOW, "5 min", 300},
    {PANEL_GRAPH, STRIP_WINDOW, "15 min", 900},
    {PANEL_GRAPH, STRIP_WINDOW, "1 h", 3600},
    {PANEL_GRAPH, STRIP_WINDOW, "6 h", 21600},
    {PANEL_GRAPH, STRIP_WINDOW, "24 h", 86400},
    {PANEL_SCOPE, SCOPE_MODE, "Single", 0},
    {PANEL_SCOPE, SCOPE_MODE, "Normal", 1},
    {PANEL_SCOPE, SCOPE_MODE, "Auto", 2},
    {PANEL_SCOPE, SCOPE_EDGE, "Rising", 0},
    {PANEL_SCOPE, SCOPE_EDGE, "Falling", 1},
    {PANEL_SCOPE, SCOPE_EDGE, "Free run", 2},
    {PANEL_SIMULATOR, SIMUL_PROGRAM, "Demo", 0},
    {PANEL_SIMULATOR, SIMUL_PROGRAM, "Empty memory", 1},
    {PANEL_SIMULATOR, SIMUL_PROGRAM, "Boot-strap loader", 2},
    {PANEL_SIMULATOR, SIMUL_PROTOCOL, "mr166", 1},
    {PANEL_SIMULATOR, SIMUL_PROTOCOL, "Modbus RTU", 2},
    {PANEL_SIMULATOR, SIMUL_BAUD, "as fast as it goes", 0},
    {PANEL_SIMULATOR, SIMUL_BAUD, "9600 baud", 9600},
    {PANEL_SIMULATOR, SIMUL_BAUD, "19200 baud", 19200},
    {PANEL_SIMULATOR, SIMUL_BAUD, "57600 baud", 57600},
    {PANEL_SIMULATOR, SIMUL_BAUD, "115200 baud", 115200},
    {PANEL_SIMULATOR, SIMUL_SCOPES, "All scopes", 0},
    {PANEL_SIMULATOR, SIMUL_SCOPES, "No scope", 1},
    {PANEL_SIMULATOR, SIMUL_SCOPES, "Scope 2", 2},
    {PANEL_SIMULATOR, SIMUL_SCOPES, "Scope 3", 3},
    {PANEL_SIMULATOR, SIMUL_SCOPES, "Scope 3 of a C166", 4},
    {PANEL_SCOPE, SCOPE_SHOWN, "Curves", -1},
    {PANEL_SCOPE, SCOPE_TYPE, "i1   signed byte", 0},
    {PANEL_SCOPE, SCOPE_TYPE, "u1   unsigned byte", 3},
    {PANEL_SCOPE, SCOPE_TYPE, "i2   signed", 1},
    {PANEL_SCOPE, SCOPE_TYPE, "u2   unsigned", 4},
    {PANEL_SCOPE, SCOPE_TYPE, "i4   signed, 32 bits", 2},
    {PANEL_SCOPE, SCOPE_TYPE, "u4   unsigned, 32 bits", 5},
    {PANEL_SCOPE, SCOPE_TYPE, "f4   single", 6},
    {PANEL_SCOPE, SCOPE_TYPE, "f2   packed single", 7},
};
const int UI_cnRingEntries = sizeof UI_aRingEntries / sizeof UI_aRingEntries[0];

const UI_Number UI_aNumbers[] = {
    {PANEL_MAIN, MAIN_FM_SAMPLES, 1, 9999, 10},
    {PANEL_MEMORY, MEMORY_COUNT, 1, 1024, 64},
    {PANEL_CONNECT, CONNECT_STATION, 0, MODBUS_STATION_MAX, 1},
    {PANEL_SCOPE, SCOPE_POSITION, 0, 100, 50},
    {PANEL_SCOPE, SCOPE_SUB, 1, 65535, 1},
    {PANEL_SIMULATOR, SIMUL_DROP, 0, 100, 0},
    {PANEL_SIMULATOR, SIMUL_CORRUPT, 0, 100, 0},
    {PANEL_SIMULATOR, SIMUL_REPEAT, 0, 100, 0},
    {PANEL_SIMULATOR, SIMUL_REFUSE, 0, 100, 0},
    {PANEL_SIMULATOR, SIMUL_DELAY, 0, 2000, 0},
};
const int UI_cnNumbers = sizeof UI_aNumbers / sizeof UI_aNumbers[0];

namespace {

constexpr UI_KeyRow KEYS[] = {
    {PANEL_MAIN, 0, KEY_F1, KEY_F1, true},
    {PANEL_MAIN, 0, KEY_UP, KEY_DOWN, false}, // move the list's selection from anywhere
    {PANEL_MAIN, 0, KEY_CTRL | 's', KEY_CTRL | 's', true},
    {PANEL_MAIN, 0, KEY_CTRL | 'S', KEY_CTRL | 'S', true},

    {PANEL_CONSOLE, CONSOLE_INPUT, KEY_ESC, KEY_TAB, true},
    {PANEL_CONSOLE, CONSOLE_INPUT, KEY_UP, KEY_DOWN, true}, // earlier lines

    {PANEL_CONNECT, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_STATISTICS, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_TRACE, 0, KEY_ESC, KEY_ESC, true},

    {PANEL_ITEM, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_ITEM, WITEM_TYPE, KEY_ENTER, KEY_ENTER, true},
    {PANEL_ITEM, WITEM_SIZE, KEY_ENTER, KEY_ENTER, true},
    {PANEL_ITEM, WITEM_POSITION, KEY_ENTER, KEY_ENTER, true},
    {PANEL_ITEM, WITEM_OK, KEY_ENTER, KEY_ENTER, true},
    {PANEL_ITEM, WITEM_CANCEL, KEY_ENTER, KEY_ENTER, true},

    {PANEL_CONFIG_EDIT, 0, KEY_ESC, KEY_ESC, true},

    {PANEL_VALUE, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_VALUE, VALUE_READ, KEY_ENTER, KEY_ENTER, true},
    {PANEL_VALUE, VALUE_WRITE, KEY_ENTER, KEY_ENTER, true},
    {PANEL_VALUE, VALUE_CLOSE, KEY_ENTER, KEY_ENTER, true},

    {PANEL_MEMORY, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_MEMORY, MEMORY_READ, KEY_ENTER, KEY_ENTER, true},
    {PANEL_MEMORY, MEMORY_WRITE, KEY_ENTER, KEY_ENTER, true},
    {PANEL_MEMORY, MEMORY_COPY, KEY_ENTER, KEY_ENTER, true},
    {PANEL_MEMORY, MEMORY_CLOSE, KEY_ENTER, KEY_ENTER, true},

    {PANEL_SIMULATOR, 0, KEY_ESC, KEY_ESC, true},

    {PANEL_DEBUGGER, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_DEBUGGER, DEBUG_CODE, KEY_LEFT, KEY_RIGHT, true}, // back, into a jump
    {PANEL_DEBUGGER, DEBUG_CODE, KEY_BACKSPACE, KEY_BACKSPACE, true},

    {PANEL_TERMINAL_ENTRY, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_TERMINAL, TERM_LINE, KEY_UP, KEY_DOWN, true}, // earlier lines
    {PANEL_TERMINAL, TERM_SCREEN, ' ', '~', true},       // keys are the target's
    {PANEL_TERMINAL, TERM_SCREEN, KEY_ENTER, KEY_ESC, true},
    {PANEL_TERMINAL, TERM_SCREEN, KEY_BACKSPACE, KEY_BACKSPACE, true},

    {PANEL_LCD, LCD_SCREEN, '0', '9', true},
    {PANEL_LCD, LCD_SCREEN, '+', '+', true},
    {PANEL_LCD, LCD_SCREEN, '-', '.', true},
    {PANEL_LCD, LCD_SCREEN, KEY_ENTER, KEY_ESC, true},
    {PANEL_LCD, LCD_SCREEN, KEY_UP, KEY_RIGHT, true},
    {PANEL_LCD, LCD_SCREEN, KEY_BACKSPACE, KEY_BACKSPACE, true},
    {PANEL_LCD, LCD_SCREEN, KEY_F1, KEY_F1 + 3, true},

    {PANEL_DATA_LOG, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_DATA_LOG, 0, KEY_CTRL | '1', KEY_CTRL | '4', true}, // sort, again: the other way
    {PANEL_DATA_LOG, LOG_LIST, KEY_CTRL | 'C', KEY_CTRL | 'C', true},

    {PANEL_GRAPH, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_GRAPH, STRIP_GRAPH, ' ', ' ', true}, // pause
    {PANEL_GRAPH, STRIP_GRAPH, 'm', 'm', true}, // marker
    {PANEL_GRAPH, STRIP_CURVES, KEY_DELETE, KEY_DELETE, true},

    {PANEL_VAR_SELECTOR, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_VAR_SELECTOR, VARSEL_FILTER, KEY_DOWN, KEY_DOWN, true},
    {PANEL_VAR_SELECTOR, VARSEL_LIST, ' ', '~', true}, // goes on typing in the filter
    {PANEL_VAR_SELECTOR, VARSEL_LIST, KEY_BACKSPACE, KEY_BACKSPACE, true},
    {PANEL_VAR_SELECTOR, VARSEL_LIST, KEY_UP, KEY_UP, false}, // from the first line to the filter

    {PANEL_STRUCT_SELECTOR, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_STRUCT_SELECTOR, STRSEL_PATH, KEY_DOWN, KEY_DOWN, true},
    {PANEL_STRUCT_SELECTOR, STRSEL_LIST, KEY_BACKSPACE, KEY_BACKSPACE, true},
    {PANEL_STRUCT_SELECTOR, STRSEL_LIST, KEY_LEFT, KEY_RIGHT, true},
};
constexpr UI_KeyRow ARRAY_KEYS[] = {
    {PANEL_ARRAY, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_ARRAY, ARRAY_SLICE, KEY_UP, KEY_DOWN, true}, // another slice
};
constexpr UI_KeyRow RECORD_KEYS[] = {
    {PANEL_RECORD, 0, KEY_ESC, KEY_ESC, true},
    {PANEL_RECORD, RECORD_LIST, KEY_LEFT, KEY_RIGHT, true}, // close and open a line
};
constexpr auto ALL_KEYS = UI_AddInspectors(KEYS, ARRAY_KEYS, RECORD_KEYS);

} // namespace

const UI_KeyRow *const UI_aKeys = ALL_KEYS.data();
const int UI_cnKeys = static_cast<int>(ALL_KEYS.size());

const UI_Urgent UI_aUrgent[] = {
    {PANEL_MAIN, MAIN_COMM, 0, 0},    // switched off
    {PANEL_MAIN, 0, ITEM_CONNECT, 1}, // was on
    {PANEL_MAIN, 0, ITEM_CLOSE_PORT, -1},
    {PANEL_MAIN, 0, ITEM_EXIT, -1},
    {PANEL_MAIN, 0, 0, -1}, // the main window is closed
};
const int UI_cnUrgent = sizeof UI_aUrgent / sizeof UI_aUrgent[0];

const int UI_nPrintPanel = PANEL_CONSOLE;
const int UI_nPrintControl = CONSOLE_BOX;

const UI_KeyRow *UI_FindKey(int panel, int control, int key)
{
    for (const UI_KeyRow &row : ALL_KEYS)
        if (row.panel == panel && row.control == control && key >= row.first && key <= row.last)
            return &row;
    return nullptr;
}
