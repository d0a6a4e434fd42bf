#include "terminal.h"

#include "demo.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// --- layout of the blocks -------------------------------------------------------------------
constexpr uint32_t BLOCK = 0x8400;
constexpr uint16_t SERVICE_MARK = 0x7166, DISPLAY_MARK = 0x71CD, VERSION = 0x0100;
constexpr uint32_t OUT_SIZE = 256, IN_SIZE = 64, HEAD = 24;
constexpr uint32_t SESSION = 4, LOST = 6;
constexpr uint32_t OUT_WRITE = BLOCK + 10, IN_READ = BLOCK + 14;
constexpr uint32_t OUT_READ = BLOCK + 16, IN_WRITE = BLOCK + 20; // the program's, with session
constexpr uint32_t OUT_RING = BLOCK + HEAD, IN_RING = OUT_RING + OUT_SIZE;
constexpr uint32_t BLOCK_END = IN_RING + IN_SIZE;

constexpr uint32_t DISPLAY = 0x8600;
constexpr uint32_t ROWS = 4, COLUMNS = 20, KEY_SIZE = 16;
constexpr uint32_t CHANGES = DISPLAY + 6, FLAGS = DISPLAY + 12;
constexpr uint32_t KEY_READ = DISPLAY + 16, KEY_WRITE = DISPLAY + 24;
constexpr uint32_t GLYPHS = DISPLAY + 28, KEY_RING = GLYPHS + 64;
constexpr uint32_t SCREEN = KEY_RING + KEY_SIZE;
constexpr uint32_t DISPLAY_END = SCREEN + ROWS * COLUMNS;

// --- variables the menus show ---------------------------------------------------------------
constexpr uint32_t GAIN = 0x8100, MODE = 0x8102, TEMPERATURE = 0x801C, SINE = 0x8010;
constexpr uint32_t LIVE_VARIABLES = 0x8000, LIVE_BYTES = 0x60;
constexpr int GAIN_MAX = 999;

enum Key { KEY_UP = 12, KEY_DOWN = 13, KEY_F1 = 20, KEY_F2 = 21, RELEASED = 0x80 };
enum State { MENU, ENTRY, LIVE };

// An index of the program, which counts with this start's session only.
uint32_t GetIndex(const SIM_Station &station, uint32_t block, uint32_t address)
{
    const bool isMeant = SIM_GetWord(station, address + 2) == SIM_GetWord(station, block + SESSION);
    return isMeant ? SIM_GetWord(station, address) : 0;
}

int16_t GetSine(const SIM_Station &station)
{
    return static_cast<int16_t>(SIM_GetWord(station, SINE));
}

// --- service terminal -----------------------------------------------------------------------

// What the ring has no room for waits in the firmware; very much of it is lost and counted.
void Print(SIM_Station *station, const std::string &text)
{
    constexpr size_t WAITING_MAX = 8192;
    std::string &waiting = station->terminal.waiting;
    const size_t fits = std::min(text.size(), WAITING_MAX - std::min(waiting.size(), WAITING_MAX));
    waiting += text.substr(0, fits);
    SIM_SetValue(station, BLOCK + LOST, 2,
                 SIM_GetWord(*station, BLOCK + LOST) + text.size() - fits);
}

void PrintMenu(SIM_Station *station, int number)
{
    char title[64];
    std::snprintf(title, sizeof title, "\r\nVireo2 demo, station %d\r\n", number);
    Print(station, title);
    Print(station, " 1 live values, any key ends\r\n 2 set wGain\r\n 3 switch byMode\r\n"
                   " 4 a longer text\r\n ? this menu\r\n> ");
}

void PrintLive(SIM_Station *station)
{
    char text[80];
    std::snprintf(text, sizeof text, "\rnSine %6d  fTemp %6.2f  wGain %3u ", GetSine(*station),
                  static_cast<double>(SIM_GetFloat(*station, TEMPERATURE)),
                  SIM_GetWord(*station, GAIN));
    Print(station, text);
}

// Several times what the ring holds: it waits and is put out as a reader empties the ring.
void PrintLong(SIM_Station *station)
{
    char line[80];
    for (int i = 1; i <= 40; i++) {
        std::snprintf(line, sizeof line, "%02d the quick brown fox jumps over the lazy dog\r\n", i);
        Print(station, line);
    }
    Print(station, "> ");
}

void Choose(SIM_Station *station, int number, char c)
{
    SIM_Terminal &terminal = station->terminal;
    if (c == '1') {
        terminal.state = LIVE;
        Print(station, "1\r\n");
        PrintLive(station);
    } else if (c == '2') {
        terminal.state = ENTRY;
        terminal.line.clear();
        Print(station, "2\r\nwGain (0 to 999): ");
    } else if (c == '3') {
        SIM_SetValue(station, MODE, 1, SIM_GetValue(*station, MODE, 1) ^ 1);
        Print(station, SIM_GetValue(*station, MODE, 1) != 0 ? "3\r\nbyMode is on.\r\n> "
                                                            : "3\r\nbyMode is off.\r\n> ");
    } else if (c == '4') {
        Print(station, "4\r\n");
        PrintLong(station);
    } else if (c == '?') {
        PrintMenu(station, number);
    } else if (c == '\r') {
        Print(station, "\r\n> ");
    }
}

// Digits of the gain; what else is typed is passed over without an echo.
void Enter(SIM_Station *station, char c)
{
    SIM_Terminal &terminal = station->terminal;
    if (c == '\b' && !terminal.line.empty()) {
        terminal.line.pop_back();
        Print(station, "\b \b");
    } else if (c >= '0' && c <= '9' && terminal.line.size() < 3) {
        terminal.line += c;
        Print(station, std::string(1, c));
    } else if (c == '\r') {
        terminal.state = MENU;
        if (!terminal.line.empty())
            SIM_SetValue(station, GAIN, 2, static_cast<uint64_t>(std::atoi(terminal.line.c_str())));
        Print(station, terminal.line.empty() ? "\r\nunchanged\r\n> " : "\r\nset\r\n> ");
    }
}

void Receive(SIM_Station *station, int number, char c)
{
    SIM_Terminal &terminal = station->terminal;
    if (terminal.state == ENTRY) {
        Enter(station, c);
    } else if (terminal.state == LIVE) {
        terminal.state = MENU;
        Print(station, "\r\n> ");
    } else {
        Choose(station, number, c);
    }
}

// An index that the other side must not have written stops the work until it is good.
void UpdateService(SIM_Station *station, int number, double seconds)
{
    SIM_Terminal &terminal = station->terminal;
    uint32_t in = SIM_GetWord(*station, IN_READ);
    const uint32_t inEnd = GetIndex(*station, BLOCK, IN_WRITE);
    while (in < IN_SIZE && inEnd < IN_SIZE && in != inEnd) {
        const char c = static_cast<char>(SIM_GetValue(*station, IN_RING + in, 1));
        in = (in + 1) % IN_SIZE;
        SIM_SetValue(station, IN_READ, 2, in);
        Receive(station, number, c);
    }
    // Live values are printed once a second, when somebody asks: there is no other clock here.
    const auto second = static_cast<int64_t>(seconds);
    if (terminal.state == LIVE && second != terminal.second)
        PrintLive(station);
    terminal.second = second;
    uint32_t out = SIM_GetWord(*station, OUT_WRITE);
    const uint32_t read = GetIndex(*station, BLOCK, OUT_READ);
    size_t put = 0;
    // One place stays free: a full ring would look like an empty one.
    while (put < terminal.waiting.size() && read < OUT_SIZE && (out + 1) % OUT_SIZE != read) {
        SIM_SetValue(station, OUT_RING + out, 1, static_cast<uint8_t>(terminal.waiting[put++]));
        out = (out + 1) % OUT_SIZE;
    }
    terminal.waiting.erase(0, put);
    SIM_SetValue(station, OUT_WRITE, 2, out);
}

// --- display and keys -----------------------------------------------------------------------

void Press(SIM_Station *station, int key)
{
    const auto gain = static_cast<int>(SIM_GetWord(*station, GAIN));
    if (key == KEY_UP || key == KEY_DOWN)
        SIM_SetValue(
            station, GAIN, 2,
            static_cast<uint64_t>(std::clamp(gain + (key == KEY_UP ? 1 : -1), 0, GAIN_MAX)));
    if (key == KEY_F1)
        SIM_SetValue(station, MODE, 1, SIM_GetValue(*station, MODE, 1) ^ 1);
    if (key == KEY_F2)
        SIM_SetValue(station, FLAGS, 1, SIM_GetValue(*station, FLAGS, 1) ^ 8);
}

// The picture changes between two counts, twice a second and with every key.
void UpdateDisplay(SIM_Station *station, int number, double seconds)
{
    SIM_Terminal &terminal = station->terminal;
    uint32_t in = SIM_GetWord(*station, KEY_READ);
    const uint32_t inEnd = GetIndex(*station, DISPLAY, KEY_WRITE);
    const auto tick = static_cast<int64_t>(seconds * 2);
    if (in >= KEY_SIZE || inEnd >= KEY_SIZE || (in == inEnd && tick == terminal.tick))
        return;
    terminal.tick = tick;
    for (; in != inEnd; in = (in + 1) % KEY_SIZE) {
        terminal.key = static_cast<uint8_t>(SIM_GetValue(*station, KEY_RING + in, 1));
        if ((terminal.key & RELEASED) == 0)
            Press(station, terminal.key);
    }
    SIM_SetValue(station, KEY_READ, 2, in);
    char text[ROWS][80];
    const bool isPressed = terminal.key != 0 && (terminal.key & RELEASED) == 0;
    std::snprintf(text[0], sizeof text[0], "VIREO2 DEMO %02d  %c   ", number,
                  SIM_GetValue(*station, MODE, 1) != 0 ? '\xFF' : '-');
    std::snprintf(text[1], sizeof text[1], "Temp %7.1f\001C %-5s",
                  static_cast<double>(SIM_GetFloat(*station, TEMPERATURE)), isPressed ? "key" : "");
    std::snprintf(text[2], sizeof text[2], "Gain %5u %% \x7E %3d s", SIM_GetWord(*station, GAIN),
                  static_cast<int>(seconds) % 1000);
    const int bar = (GetSine(*station) + 1000) * static_cast<int>(COLUMNS) * 5 / 2000;
    for (uint32_t i = 0; i < COLUMNS; i++) {
        const int dots = std::clamp(bar - static_cast<int>(i) * 5, 0, 5);
        text[3][i] = static_cast<char>(dots == 0 ? ' ' : 1 + dots);
    }
    text[3][COLUMNS] = 0;
    SIM_SetValue(station, CHANGES, 2, SIM_GetWord(*station, CHANGES) + 1);
    for (uint32_t i = 0; i < ROWS; i++) {
        std::string row = text[i];
        row.resize(COLUMNS, ' ');
        SIM_WriteMemory(station, SCREEN + i * COLUMNS, row.data(), COLUMNS);
    }
    SIM_SetValue(station, CHANGES, 2, SIM_GetWord(*station, CHANGES) + 1);
}

void InitDisplay(SIM_Station *station, uint16_t session)
{
    constexpr uint32_t KEYS = 0x3FFFFF; // F1 and F2, not F3 and F4
    constexpr uint8_t DEGREE[] = {0x0C, 0x12, 0x12, 0x0C};
    constexpr uint32_t CURSOR = 2 | 9 << 8;        // row, column: the last digit of the gain
    constexpr uint32_t FLAGS_AT_FIRST = 1 | 2 | 8; // on, with cursor and light; its own characters
    const uint32_t head[] = {DISPLAY_MARK,   VERSION,  session, 0, ROWS | COLUMNS << 8, CURSOR,
                             FLAGS_AT_FIRST, KEY_SIZE, 0,       0, KEYS & 0xFFFF,       KEYS >> 16};
    for (uint32_t i = 0; i < sizeof head / sizeof *head; i++)
        SIM_SetValue(station, DISPLAY + 2 * i, 2, head[i]);
    SIM_WriteMemory(station, GLYPHS + 8, DEGREE, sizeof DEGREE);
    for (uint32_t dots = 1; dots <= 5; dots++) // the end of a bar
        for (uint32_t line = 0; line < 7; line++)
            SIM_SetValue(station, GLYPHS + 8 * (1 + dots) + line, 1, 0x1FU & (0x1FU << (5 - dots)));
}

} // namespace

void SIM_InitTerminals(SIM_Station *station, int number)
{
    station->terminal = SIM_Terminal();
    // Another session: indices that the program wrote before this start count no more.
    const auto session = static_cast<uint16_t>(SIM_GetWord(*station, BLOCK + SESSION) + 1);
    const uint16_t head[] = {SERVICE_MARK, VERSION, session, 0, OUT_SIZE, 0, IN_SIZE, 0};
    for (uint32_t i = 0; i < sizeof head / sizeof *head; i++)
        SIM_SetValue(station, BLOCK + 2 * i, 2, head[i]);
    InitDisplay(station, session);
    PrintMenu(station, number);
}

void SIM_UpdateTerminals(SIM_Station *station, int number, double seconds, uint32_t address,
                         size_t count)
{
    if (!SIM_Touches(address, count, BLOCK, DISPLAY_END))
        return;
    SIM_UpdateDemo(station, number, seconds, LIVE_VARIABLES, LIVE_BYTES); // what the menus show
    if (SIM_Touches(address, count, BLOCK, BLOCK_END))
        UpdateService(station, number, seconds);
    if (SIM_Touches(address, count, DISPLAY, DISPLAY_END))
        UpdateDisplay(station, number, seconds);
}
