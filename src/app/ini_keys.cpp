// The functions below are rows of KEYS and run in the order of the file's lines, so one may count
// on what stands in front of it: a map is read for the processor that was named before.
#include "app/ini_keys.h"

#include <algorithm>
#include <cstdlib>

#include "app/window_places.h"
#include "platform/plain_file.h"
#include "sets/window.h"
#include "settings/settings.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

APP_SettingReading APP_settingReading;

namespace {

constexpr int RECENT_READ_MAX = 8; // one more only ever takes the ninth place, uncounted

struct Word {
    const char *text;
    int value;
};
constexpr Word PROCESSORS[] = {
    {"AC166", CPU_C166}, {"AC167", CPU_C167}, {"F283xx", CPU_F283XX}, {"F2803x", CPU_F2803X}};
constexpr Word PROTOCOLS[] = {{"COM166", PROTOCOL_MR166}, {"MODBUS", PROTOCOL_MODBUS}};

template <size_t N> const Word *FindWord(const Word (&words)[N], const std::string &text)
{
    for (const Word &word : words)
        if (text == word.text)
            return &word;
    return nullptr;
}

template <size_t N> const char *WordOf(const Word (&words)[N], int value)
{
    for (const Word &word : words)
        if (word.value == value)
            return word.text;
    return nullptr;
}

// As the C library has it: text that is no number counts as 0.
int32_t ToNumber(const std::string &text)
{
    const long value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int32_t>(std::clamp<long>(value, INT32_MIN, INT32_MAX));
}

// Whether a file was read. One that was not is named with the reason, and its line kept.
bool IsLoaded(const char *what, const std::string &path, int result, std::string *keptLine)
{
    if (result >= 0)
        return true;
    const char *reason =
        result == SYM_MAP_ERR_NO_SYMBOL ? SYM_MapErrorText(result) : PLT_WhyUnreadable(path);
    APP_settingReading.problems.push_back(std::string(what) + " '" + TXT_Visible(path) + "' " +
                                          reason + ".");
    *keptLine = APP_settingReading.lineValue;
    return false;
}

// A word that is none of the table's leaves the setting as it is.
void ReadProcessor(const std::string &, const std::string &value)
{
    if (const Word *word = FindWord(PROCESSORS, value))
        Procesor = word->value;
    initRgMap(Procesor);
}

void ReadProtocol(const std::string &, const std::string &value)
{
    // Another word leaves the protocol of the program's start.
    if (const Word *word = FindWord(PROTOCOLS, value))
        VR_nProtocol = static_cast<int16_t>(word->value);
}

// The sign is part of the key; there is no value behind it.
void ReadAutoOff(const std::string &key, const std::string &)
{
    Option_AutoOff = key == "o+";
}

void ReadMapFile(const std::string &, const std::string &path)
{
    if (path.empty())
        return;
    const bool isTms = IsWordAddressing(Procesor);
    const int result = isTms ? TMSmap2node(path.c_str()) : map2node(path.c_str());
    if (!IsLoaded("Map file", path, result, &APP_settingReading.kept.map))
        return;
    szMapFileName = path;
    GetFileStamp(&szMapFileStamp, path.c_str()); // a reload looks whether it has changed
}

// The stamp is that of the map named before: a reload then sees the new one as changed.
void ReadTmsMapFile(const std::string &, const std::string &path)
{
    if (path.empty() ||
        !IsLoaded("Map file", path, TMSmap2node(path.c_str()), &APP_settingReading.kept.map))
        return;
    GetFileStamp(&szMapFileStamp, szMapFileName.c_str());
    szMapFileName = path;
}

// Shown at once, with addresses only for names whose map stood in front of it.
void ReadDebugFile(const std::string &, const std::string &path)
{
    if (path.empty() ||
        !IsLoaded("Watch list", path, dat2litems(path.c_str()), &APP_settingReading.kept.debugFile))
        return;
    szDebugFileName = path;
    SetMainPanelTitle();
    VR_FillDebugItems();
}

// The map of a TMS320 behind the station. With a TMS320 selected it has no use now: its line
// waits for the C166.
void ReadSecondMap(const std::string &, const std::string &path)
{
    if (IsWordAddressing(Procesor))
        APP_settingReading.kept.tmsMap = APP_settingReading.lineValue;
    else if (!path.empty())
        (void)IsLoaded("Map file", path, TMSmap2node(path.c_str()),
                       &APP_settingReading.kept.tmsMap);
}

void ReadTypes(const std::string &, const std::string &path)
{
    if (!path.empty())
        (void)IsLoaded("Type map file", path, TMF_OpenMap(path.c_str()),
                       &APP_settingReading.kept.types);
}

void ReadRecent(const std::string &, const std::string &path)
{
    if (path.empty()) // a bare key, or a path that is no path
        return;
    // In the order of the file, whatever digits the keys have.
    if (nDebugFileNames < RECENT_READ_MAX)
        szaDebugFileNames[static_cast<size_t>(nDebugFileNames++)] = path;
    else
        szaDebugFileNames[RECENT_READ_MAX] = path;
}

// These three numbers are taken as they are. One out of its range is told with its line, at the
// start and whenever communication begins; until then the menus may have changed it.
void ReadBaud(const std::string &, const std::string &value)
{
    bRate = ToNumber(value);
    APP_settingReading.baud = {APP_settingReading.lineNumber, bRate};
}

void ReadPort(const std::string &, const std::string &value)
{
    ncom = ToNumber(value);
    APP_settingReading.port = {APP_settingReading.lineNumber, ncom};
}

void ReadStation(const std::string &, const std::string &value)
{
    STATION = ToNumber(value);
    APP_settingReading.station = {APP_settingReading.lineNumber, STATION};
}

// Exactly "WIN32": any other word chooses the run-time library's driver.
void ReadDriver(const std::string &, const std::string &value)
{
    Option_ComWin32 = value == "WIN32";
}

void ReadFullCommands(const std::string &, const std::string &)
{
    VR_isFullCommandSet = true;
    VR_isFullOnce = false; // kept, whatever this run's options say
}

// Only a rate that the menu offers, or it would have no check mark there.
void ReadSweepRate(const std::string &, const std::string &value)
{
    const int32_t rate = ToNumber(value);
    if (value == APP_RATE_FAST)
        Option_nSweepRate = 0;
    else if (rate > 0 && RFR_IsRate(rate))
        Option_nSweepRate = rate;
}

void ReadEcho(const std::string &, const std::string &)
{
    Option_Echo = 1;
    VR_isEchoOnce = false; // kept, whatever this run's options say
}

// Shown once the window is there.
void ReadView(const std::string &, const std::string &value)
{
    VR_isWatchView = value == "watch";
}

// Windows, columns and layouts: all that stands behind the key, whose numbers blanks part.
void ReadWindow(const std::string &, const std::string &)
{
    APP_ReadWindow(APP_settingReading.lineValue);
}

void ReadColumns(const std::string &, const std::string &)
{
    APP_ReadColumns(APP_settingReading.lineValue);
}

// Opened with the window that shows it: maps may follow in the file.
void ReadSetHeader(const std::string &, const std::string &path)
{
    CFW_SetHeader(path);
}

void ReadLayout(const std::string &, const std::string &)
{
    APP_ReadLayout(APP_settingReading.lineValue);
}

constexpr APP_SettingKey KEYS[] = {
    {"r", false, ReadProcessor},     {"t", false, ReadProtocol},
    {"o+", false, ReadAutoOff},      {"o-", false, ReadAutoOff},
    {"m", true, ReadMapFile},        {"mt", true, ReadTmsMapFile},
    {"d", true, ReadDebugFile},      {"d0", true, ReadDebugFile},
    {"d#", true, ReadRecent},        {"b", false, ReadBaud},
    {"p", false, ReadPort},          {"s", false, ReadStation},
    {"COM", false, ReadDriver},      {"full", false, ReadFullCommands},
    {"view", false, ReadView},       {"m2", true, ReadSecondMap},
    {"tm", true, ReadTypes},         {"window", false, ReadWindow},
    {"columns", false, ReadColumns}, {"echo", false, ReadEcho},
    {"rate", false, ReadSweepRate},  {"layout", false, ReadLayout},
    {"set", true, ReadSetHeader},
};

} // namespace

const APP_SettingKey *APP_FindKey(const std::string &text)
{
    const bool isRecent = text.size() == 2 && text[0] == 'd' && text[1] >= '1' && text[1] <= '9';
    for (const APP_SettingKey &key : KEYS)
        if (text == key.key || (isRecent && std::string("d#") == key.key))
            return &key;
    return nullptr;
}

const char *APP_ProcessorWord(int processor)
{
    return WordOf(PROCESSORS, processor);
}

const char *APP_ProtocolWord(int protocol)
{
    return WordOf(PROTOCOLS, protocol);
}
