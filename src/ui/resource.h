// Resource numbers: panels, controls and menu items. The numbers are part of the
// program's contract with its panels, with settings files and with tests: none is given anew.
// Names follow the panel they belong to.
#ifndef UI_RESOURCE_H
#define UI_RESOURCE_H

enum {
    // The main window and what stands in it.
    PANEL_CONSOLE = 11,
    PANEL_MAIN = 13,
    PANEL_CONNECT = 25, // first steps
    // The watch list and what may be put into it.
    PANEL_ITEM = 1,   // adding and editing a watch item
    PANEL_VALUE = 4,  // value editor
    PANEL_MEMORY = 5, // memory editor: a range of bytes
    PANEL_STRUCT_SELECTOR = 18,
    PANEL_VAR_SELECTOR = 19,
    // The line.
    PANEL_STATISTICS = 6, // communication statistics
    PANEL_TRACE = 15,     // wire trace
    PANEL_SIMULATOR = 22,
    // Device configuration.
    PANEL_CONFIG_EDIT = 2, // device configuration editor
    PANEL_CONFIG = 8,      // device configuration
    // Code, flash and what the target records.
    PANEL_DEBUGGER = 9,
    PANEL_SCOPE = 17,
    PANEL_LOADER = 30,   // flash loader
    PANEL_DATA_LOG = 31, // the data logger's log
    PANEL_GRAPH = 32,
    // Terminals.
    PANEL_TERMINAL_ENTRY = 16,
    PANEL_TERMINAL = 24,
    PANEL_LCD = 41, // LCD and keyboard terminal
    // Inspectors; further windows of each have a stretch of numbers, see inspector_windows.h.
    PANEL_ARRAY = 39,       // array inspector
    PANEL_RECORD = 40,      // record inspector
    PANEL_ARRAY_MORE = 42,  // to 50
    PANEL_RECORD_MORE = 51, // to 59
};

// Main panel.
enum {
    MAIN_LIST = 1, // the watch list
    MAIN_TIMER = 2,
    MAIN_COMM = 3,    // communication switch
    MAIN_STOPPED = 4, // indicator: communication is off
    MAIN_STATE = 5,   // state line, two rows
    MAIN_STATUS = 6,  // RUN, Error, Error TMS
    MAIN_LED_MAPFILE = 7,
    MAIN_LED_MAPMEM = 8,
    MAIN_MESSAGE = 9,     // message area
    MAIN_BTN_RELOAD = 10, // reload the debug file
    MAIN_BTN_EDIT = 11,   // debug file in the user's editor
    MAIN_BTN_MAP = 12,    // reload the map file
    MAIN_BTN_SAVE = 13,   // save the debug file
    MAIN_MEM_BOX = 14,
    MAIN_MEM_SWITCH = 15,
    MAIN_MEM_ADDR = 16,  // hexadecimal
    MAIN_MEM_TYPED = 17, // 0 bytes, 1 typed by the selected item
    MAIN_MEM_MODE = 18,  // 0 C166, 1 TMS320
    MAIN_FM_SWITCH = 19, // frequency meter
    MAIN_FM_SAMPLES = 20,
    MAIN_FM_FREQ = 21,
    MAIN_FM_PERIOD = 22,
};

// Console panel.
enum {
    CONSOLE_BOX = 1,
    CONSOLE_PROMPT = 2,
    CONSOLE_INPUT = 3,
};

// Connect page.
enum {
    CONNECT_PORT = 1,
    CONNECT_BAUD = 2,
    CONNECT_PROTOCOL = 3,
    CONNECT_STATION = 4,
    CONNECT_PROCESSOR = 5,
    CONNECT_TEST = 6,
    CONNECT_RESULT = 7, // what answered, in words
    CONNECT_MAP = 8,
    CONNECT_MAP_NAME = 9,
    CONNECT_LIST = 10,
    CONNECT_LIST_NAME = 11,
    CONNECT_START = 12,
    CONNECT_CLOSE = 13,
};

// Item panel.
enum {
    WITEM_NAME = 1,     // name or address
    WITEM_PLACE = 2,    // what the name resolves to
    WITEM_TYPE = 3,     // value = type letter
    WITEM_SIZE = 4,     // value = bytes
    WITEM_POSITION = 5, // only when adding
    WITEM_ERROR = 6,
    WITEM_OK = 7,
    WITEM_CANCEL = 8,
};

// Value editor.
enum {
    VALUE_NAME = 1,
    VALUE_ADDRESS = 2,
    VALUE_STATION = 3,
    VALUE_TYPE = 4,
    VALUE_SHOWN = 5, // as the list shows it
    VALUE_DECIMAL = 6,
    VALUE_HEX = 7,
    VALUE_BINARY = 8,
    VALUE_FLOAT = 9,
    VALUE_READ = 10,
    VALUE_NEW = 11,
    VALUE_HINT = 12,
    VALUE_WRITE = 13,
    VALUE_RESULT = 14,
    VALUE_CLOSE = 15,
    VALUE_TIMER = 16,
};

// Memory editor.
enum {
    MEMORY_ADDRESS = 1,
    MEMORY_COUNT = 2,
    MEMORY_PLACE = 3, // what the address text designates
    MEMORY_READ = 4,
    MEMORY_LIST = 5,
    MEMORY_LINE = 6, // bytes of the selected line
    MEMORY_WRITE = 7,
    MEMORY_RESULT = 8,
    MEMORY_COPY = 9,
    MEMORY_CLOSE = 10,
};

// Statistics panel.
enum {
    STATISTICS_ANSWERED = 1,
    STATISTICS_TIMEOUTS = 2,
    STATISTICS_DAMAGED = 3,
    STATISTICS_REPEATED = 4,
    STATISTICS_SHARE = 5, // failed messages of all
    STATISTICS_LAST = 6,  // last failure in words
    STATISTICS_SINCE = 7,
    STATISTICS_ADVICE = 8,
    STATISTICS_CAUSES = 9,    // failed exchanges by cause
    STATISTICS_COUNTERS = 10, // counters of the communication layer that are not 0
    STATISTICS_RESET = 11,
    STATISTICS_COPY = 12,
    STATISTICS_TIMER = 13,
};

// Trace panel.
enum {
    TRACE_LIST = 1,
    TRACE_DETAIL = 2, // the selected exchange whole
    TRACE_PAUSE = 3,
    TRACE_CLEAR = 4,
    TRACE_COPY = 5, // the selected exchange
    TRACE_COPY_ALL = 6,
    TRACE_SAVE = 7,
    TRACE_FAILURES = 8, // only those that failed are listed
    TRACE_COUNT = 9,
    TRACE_TIMER = 10,
};

// Flash loader.
enum {
    LOADER_FILE = 1,
    LOADER_CHOOSE = 2,
    LOADER_BAR = 3,       // the file's ranges in the address space
    LOADER_BAR_FIRST = 4, // addresses at both ends of it
    LOADER_BAR_LAST = 5,
    LOADER_CONTENTS = 6, // problems and ranges of the file
    LOADER_STEPS = 7,
    LOADER_ERASE = 8,
    LOADER_READ_BACK = 9,
    LOADER_PORT = 10, // the port that will be used
    LOADER_PROGRESS = 11,
    LOADER_LOG = 12,
    LOADER_RESULT = 13,
    LOADER_FLASH = 14, // what the flash holds
    LOADER_PROGRAM = 15,
    LOADER_COMPARE = 16,
};

// Data log.
enum {
    LOG_VARIABLE = 1, // logs of the map
    LOG_READ = 2,
    LOG_OPEN = 3,
    LOG_COMPARE = 4, // with another file, or ends that
    LOG_FILTER = 5,
    LOG_TYPE = 6, // LOGV_TypeChoice, or the type
    LOG_FROM = 7, // times
    LOG_TO = 8,
    LOG_SORT = 9, // value = LOGV_Column
    LOG_DESCENDING = 10,
    LOG_LOCAL = 11,  // local time instead of the time as logged
    LOG_LIST = 12,   // one page of it
    LOG_DETAIL = 13, // fields of the selected message
    LOG_STATE = 14,  // what is shown, and what there is to know about it
    LOG_PREVIOUS = 15,
    LOG_NEXT = 16,
    LOG_JUMP = 17, // time
    LOG_COPY = 18,
    LOG_EXPORT = 19,
};

// Variable selector.
enum {
    VARSEL_FILTER = 1,
    VARSEL_LIST = 2,
    VARSEL_SOURCE = 3, // map, registers or TMS320
    VARSEL_ADD = 4,
    VARSEL_MEMBERS = 5,
    VARSEL_COPY = 6,
    VARSEL_CLOSE = 7,
    VARSEL_DETAIL = 8, // the selected line whole, or what was done with it
    VARSEL_COUNT = 9,
};

// Structure selector.
enum {
    STRSEL_PATH = 1,
    STRSEL_LIST = 2,
    STRSEL_UP = 3,
    STRSEL_ADD = 4,
    STRSEL_OPEN = 5,
    STRSEL_COPY = 6,
    STRSEL_CLOSE = 7,
    STRSEL_DETAIL = 8, // as in the variable selector
    STRSEL_COUNT = 9,
    STRSEL_PREVIOUS = 10, // page of a large array
    STRSEL_NEXT = 11,
};

// Graph panel.
enum {
    STRIP_START = 1,
    STRIP_PAUSE = 2,
    STRIP_RECORD = 3,
    STRIP_MARKER = 4,
    STRIP_PERIOD = 5, // ms; 0 as fast as the line allows
    STRIP_WINDOW = 6, // seconds
    STRIP_REMOVE = 7,
    STRIP_STATE = 8,
    STRIP_GRAPH = 9,
    STRIP_CURVES = 10,
    STRIP_MESSAGE = 11,
    STRIP_OPEN_DATA = 12,
    STRIP_SAVE_DATA = 13,
    STRIP_OPEN_SETUP = 14,
    STRIP_SAVE_SETUP = 15,
    STRIP_TIMER = 16,
    STRIP_TEXT = 17, // of the next markers
    STRIP_WHEN = 18, // triggers
};

// Scope panel.
enum {
    SCOPE_ID = 1,
    SCOPE_INIT = 2,
    SCOPE_RUN = 3,
    SCOPE_SNAP = 4,
    SCOPE_UPLOAD = 5,
    SCOPE_MODE = 6, // single, normal, auto
    SCOPE_STATE = 7,
    SCOPE_MESSAGE = 8,
    SCOPE_CHANNELS = 9,
    SCOPE_ON = 10, // this and the fields below: of the chosen channel
    SCOPE_PLACE = 11,
    SCOPE_TYPE = 12,
    SCOPE_UNIT = 13,
    SCOPE_FACTOR = 14,
    SCOPE_OFFSET = 15,
    SCOPE_EDGE = 16,     // rising, falling, free run
    SCOPE_LEVEL = 17,    // as the target counts
    SCOPE_POSITION = 18, // percent of the record before the trigger
    SCOPE_SUB = 19,      // every how manieth sample is kept
    SCOPE_RATE = 20,
    SCOPE_GRAPH = 21,
    SCOPE_MEASURES = 22,
    SCOPE_OPEN_SETUP = 23,
    SCOPE_SAVE_SETUP = 24,
    SCOPE_OPEN_DATA = 25,
    SCOPE_SAVE_DATA = 26,
    SCOPE_REFERENCE = 27,
    SCOPE_TIMER = 28,
    SCOPE_SHOWN = 29, // curves, or the spectrum of one
};

// Array inspector.
enum {
    ARRAY_PLACE = 1,
    ARRAY_STATE = 2, // type, size and place
    ARRAY_LIST = 3,
    ARRAY_GRAPH = 4,
    ARRAY_CURVE = 5,
    ARRAY_COPY = 6,
    ARRAY_SAVE = 7,
    ARRAY_LOAD = 8,
    ARRAY_PREVIOUS = 9,
    ARRAY_NEXT = 10,
    ARRAY_MESSAGE = 11,
    ARRAY_TIMER = 12,
    ARRAY_SLICE = 13, // indices of the dimensions in front of the last two
};

// Record inspector.
enum {
    RECORD_PLACE = 1,
    RECORD_LIST = 2,
    RECORD_OPEN = 3, // opens or closes the selected line
    RECORD_ADD = 4,
    RECORD_MESSAGE = 5,
    RECORD_TIMER = 6,
};

// Simulator.
enum {
    SIMUL_START = 1,   // or stop
    SIMUL_CONNECT = 2, // or disconnect
    SIMUL_STATE = 3,
    SIMUL_PROGRAM = 4, // value = TGT_Program
    SIMUL_PROTOCOL = 5,
    SIMUL_BAUD = 6, // 0 = as fast as the machine
    SIMUL_STATIONS = 7,
    SIMUL_SCOPES = 8,
    SIMUL_DROP = 9, // percent, as the next three
    SIMUL_CORRUPT = 10,
    SIMUL_REPEAT = 11,
    SIMUL_REFUSE = 12,
    SIMUL_DELAY = 13,     // ms
    SIMUL_DROP_TEXT = 14, // the values in words, in the same order
    SIMUL_CORRUPT_TEXT = 15,
    SIMUL_REPEAT_TEXT = 16,
    SIMUL_REFUSE_TEXT = 17,
    SIMUL_DELAY_TEXT = 18,
    SIMUL_SILENT = 19,
    SIMUL_ECHO = 20,
    SIMUL_NO_FAULTS = 21,
    SIMUL_LOG = 22,
    SIMUL_COPY = 23,
    SIMUL_CLEAR = 24,
    SIMUL_MESSAGE = 25,
    SIMUL_TIMER = 26,
};

// Device configuration.
enum {
    CONFIG_HEADER = 1, // path
    CONFIG_OPEN = 2,
    CONFIG_GROUPS = 3,
    CONFIG_LIST = 4,
    CONFIG_ONLY_MARKED = 5,
    CONFIG_READ = 6,
    CONFIG_WRITE_ONE = 7,
    CONFIG_WRITE_ALL = 8, // all that are changed
    CONFIG_LOAD = 9,
    CONFIG_SAVE = 10,
    CONFIG_COMPARE = 11,
    CONFIG_PRINT = 12,
    CONFIG_TERMINAL = 13, // opens the port; in configuration mode only
    CONFIG_RESULT = 14,
    CONFIG_STATE = 15, // port and station
    CONFIG_DETAILS = 16,
    CONFIG_FILE = 17, // name of the loaded data file
};

// Editor of one parameter.
enum {
    CFGEDIT_NAME = 1,
    CFGEDIT_TEXT = 2,
    CFGEDIT_TYPE = 3,
    CFGEDIT_LIMITS = 4,
    CFGEDIT_DEFAULT = 5,
    CFGEDIT_DEVICE = 6,
    CFGEDIT_FILE = 7,
    CFGEDIT_NEW = 8,
    CFGEDIT_HINT = 9,
    CFGEDIT_TAKE = 10,
    CFGEDIT_FROM_DEFAULT = 11,
    CFGEDIT_FROM_FILE = 12,
    CFGEDIT_WRITE = 13,
    CFGEDIT_CLOSE = 14,
};

// Debugger: a live view of code, registers, stack and memory.
enum {
    DEBUG_PLACE = 1,
    DEBUG_GO = 2,
    DEBUG_BACK = 3,
    DEBUG_FOLLOW = 4,
    DEBUG_MORE = 5, // the code behind the last line
    DEBUG_LIVE = 6,
    DEBUG_CODE = 7,
    DEBUG_GROUP = 8, // value = place in CODE_GetRegisterGroups, -1 = general registers
    DEBUG_REGISTERS = 9,
    DEBUG_STACK = 10,
    DEBUG_MEM_PLACE = 11,
    DEBUG_MEMORY = 12,
    DEBUG_MESSAGE = 13,
    DEBUG_COPY = 14,
    DEBUG_TIMER = 15,
};

// Service terminal.
enum {
    TERM_SCREEN = 1,  // what the target writes; keys go to it
    TERM_LINE = 2,    // a line to be sent by Enter
    TERM_PLACE = 3,   // name or address of the block
    TERM_STATION = 4, // -1 = the program's
    TERM_PAGE = 5,    // code page, CPT_...
    TERM_ENDING = 6,  // 0 CR, 1 LF, 2 CR LF, 3 none
    TERM_ECHO = 7,
    TERM_LOG = 8,
    TERM_CLEAR = 9,
    TERM_COPY = 10,
    TERM_PASTE = 11, // opens the entry panel
    TERM_STATE = 12,
    TERM_MESSAGE = 13,
};

// Entry of a longer text for it.
enum {
    ENTRY_TEXT = 1,
    ENTRY_PASTE = 2,
    ENTRY_FILE = 3,
    ENTRY_SEND = 4,
    ENTRY_STOP = 5,
    ENTRY_STATE = 6,
    ENTRY_BAR = 7,
    ENTRY_CLOSE = 8,
};

// LCD and keyboard terminal.
enum {
    LCD_SCREEN = 1, // UI_FormatLcd's text
    LCD_PLACE = 2,
    LCD_STATION = 3, // -1 = the program's
    LCD_PAGE = 4,    // code page; -1 = the target's
    LCD_COPY = 5,
    LCD_STATE = 6,
    LCD_MESSAGE = 7,
    LCD_TIMER = 8,
    LCD_KEY_FIRST = 20, // buttons in the order of the target's keys
    LCD_KEY_LAST = 43,
};

// Menus (bar and submenus).
enum {
    MENU_FILE = 2,
    MENU_EDIT = 3,
    MENU_OPTIONS = 4,
    MENU_BAUD = 5,
    MENU_PORT = 6,
    MENU_STATION = 7,
    MENU_PROCESSOR = 8,
    MENU_PROTOCOL = 9,
    MENU_WINDOW = 10,
    MENU_HELP = 11,
    MENU_CONSOLE = 12,
    MENU_RATE = 16,
};

// Menu items; a name space of their own.
enum {
    // File.
    ITEM_OPEN = 1,
    ITEM_RELOAD_MAP = 2, // nothing to reload until a map was read
    ITEM_SAVE = 3,
    ITEM_SAVE_AS = 4,
    ITEM_RELOAD = 5,
    ITEM_EDIT_FILE = 6,
    ITEM_OPEN_MAP = 7,
    ITEM_OPEN_TYPE_MAP = 8,
    ITEM_RECENT_END = 19, // recent files stand before this separator
    ITEM_EXIT = 20,
    ITEM_RELOAD_NOW = 131,  // the same file again, without asking
    ITEM_RECORD = 160,      // the watch list into a file, on or off
    ITEM_RECORD_MARK = 161, // a text into it
    ITEM_RECORD_WHEN = 162, // what starts and stops it
    // Edit.
    ITEM_UNDO = 73, // of an edit of the list; nothing to undo at start
    ITEM_ADD = 100,
    ITEM_EDIT = 101,
    ITEM_REMOVE = 102,
    ITEM_MOVE_UP = 103,
    ITEM_MOVE_DOWN = 104,
    ITEM_WRITE_VALUE = 105,
    ITEM_MEMORY = 106,
    ITEM_COPY_LIST = 107,
    ITEM_COPY_MEMORY = 108,
    ITEM_SNAPSHOT = 109,
    ITEM_REDO = 110,
    ITEM_OTHER_BASE = 111, // the selected lines in hexadecimal or decimal
    ITEM_COMMENT = 142,
    // Options and their submenus.
    ITEM_CONNECT = 21,    // communication on or off
    ITEM_BAUD_FIRST = 24, // 9600, 19200, 38400, 57600, 115200
    ITEM_BAUD_LAST = 28,
    ITEM_PORT_FIRST = 31, // COM1 to COM9
    ITEM_PORT_OTHER = 40,
    ITEM_STATION_FIRST = 43, // 0 to 15
    ITEM_STATION_LAST = 58,
    ITEM_CPU_C166 = 61,
    ITEM_CPU_C167 = 62,
    ITEM_CPU_F283XX = 63,
    ITEM_CPU_F2803X = 64,
    ITEM_MR166 = 67,
    ITEM_MODBUS = 68,
    ITEM_AUTO_OFF = 69,
    ITEM_COM_WIN32 = 70,
    ITEM_FULL_COMMANDS = 71, // every console command is admitted
    ITEM_ECHO = 72,          // the two-wire line echoes what is sent (Modbus)
    ITEM_CLOSE_PORT = 87,    // no port is open at start
    ITEM_CONNECT_PAGE = 130,
    ITEM_RATE_FIRST = 240, // sweeps a second: 1, 2, 5, 10, as fast as the line allows
    ITEM_RATE_LAST = 244,
    // Console.
    ITEM_RUN_SCRIPT = 120,
    ITEM_SAVE_CONSOLE = 121,
    ITEM_COPY_CONSOLE = 122,
    ITEM_CLEAR_CONSOLE = 123,
    // Window.
    ITEM_WATCH_VIEW = 74,
    ITEM_CONSOLE_VIEW = 75,
    ITEM_STATISTICS = 76,
    ITEM_TERMINAL = 77,
    ITEM_SCOPE = 78,
    ITEM_CONFIG = 79,
    ITEM_DEBUGGER = 80,
    ITEM_SIMULATOR = 81,
    ITEM_TRACE = 82,
    ITEM_VARIABLES = 90,
    ITEM_STRUCTURES = 91,
    ITEM_LOADER = 140,
    ITEM_DATA_LOG = 141,
    ITEM_GRAPH = 150,
    ITEM_ARRAY = 180,
    ITEM_RECORD_INSPECTOR = 181,
    ITEM_LCD = 190,
    // Help.
    ITEM_HELP = 85,
    ITEM_ABOUT = 86,
};

#endif
