// The settings file: one line a setting, key and value parted by a comma. Read once
// at start, rewritten whole at shutdown. Each key is one row of a table.
#include "app/ini_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "comm/ucm.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/mapfile.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/name_changes.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

namespace {

constexpr size_t LINE_MAX_CHARS = 511;
constexpr int FIELDS_MAX = 3;
constexpr int RECENT_READ_MAX = 8; // one more only ever takes the ninth place, uncounted

const char RATE_FAST[] = "fast";     // sweeps a second: as the line allows

std::string iniPath; // read at start, written at shutdown

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

int32_t ToNumber(const std::string &text)
{
    const long value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int32_t>(std::clamp<long>(value, INT32_MIN, INT32_MAX));
}

bool IsFile(const std::string &path)
{
    PLT_FileStamp stamp;
    return !path.empty() && PLT_GetFileStamp(path, &stamp) == 0;
}

bool IsLoaded(const char *what, const std::string &path, int result)
{
    if (result < 0)
        VR_ShowMessage(std::string(what) + " '" + path + "' could not be opened.");
    return result >= 0;
}

// --- keys ---------------------------------------------------------------------------

void ReadProcessor(const std::string &, const std::string &value)
{
    if (const Word *word = FindWord(PROCESSORS, value))
        Procesor = word->value;
    initRgMap(Procesor);
}

void ReadProtocol(const std::string &, const std::string &value)
{
    if (const Word *word = FindWord(PROTOCOLS, value))
        VR_nProtocol = static_cast<int16_t>(word->value);
}

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
    if (!IsLoaded("Map file", path, result))
        return;
    szMapFileName = path;
    GetFileStamp(&szMapFileStamp, path.c_str());
}

// The stamp is that of the map named before: a reload then sees the new one as changed.
void ReadTmsMapFile(const std::string &, const std::string &path)
{
    if (path.empty() || !IsLoaded("Map file", path, TMSmap2node(path.c_str())))
        return;
    GetFileStamp(&szMapFileStamp, szMapFileName.c_str());
    szMapFileName = path;
}

void ReadDebugFile(const std::string &, const std::string &path)
{
    if (path.empty() || !IsLoaded("Debug file", path, dat2litems(path.c_str())))
        return;
    szDebugFileName = path;
    SetMainPanelTitle();
    VR_FillDebugItems();
}

void ReadRecent(const std::string &, const std::string &path)
{
    if (path.empty()) // a bare key, or a path that is no path
        return;
    if (nDebugFileNames < RECENT_READ_MAX)
        szaDebugFileNames[static_cast<size_t>(nDebugFileNames++)] = path;
    else
        szaDebugFileNames[RECENT_READ_MAX] = path;
}

void ReadBaud(const std::string &, const std::string &value)
{
    bRate = ToNumber(value);
}

void ReadPort(const std::string &, const std::string &value)
{
    ncom = ToNumber(value);
}

void ReadStation(const std::string &, const std::string &value)
{
    STATION = ToNumber(value);
}

void ReadDriver(const std::string &, const std::string &value)
{
    Option_ComWin32 = value == "WIN32";
}

void ReadFullCommands(const std::string &, const std::string &)
{
    VR_isFullCommandSet = true;
    VR_isFullOnce = false; // kept, whatever this run's options say
}

void ReadSweepRate(const std::string &, const std::string &value)
{
    const int32_t rate = ToNumber(value);
    if (value == RATE_FAST)
        Option_nSweepRate = 0;
    else if (rate > 0 && RFR_IsRate(rate))
        Option_nSweepRate = rate;
}

// Shown once the window is there.
void ReadView(const std::string &, const std::string &value)
{
    VR_isWatchView = value == "watch";
}

struct Key {
    const char *key; // '#' stands for a digit from 1
    bool isPath;
    void (*read)(const std::string &key, const std::string &value);
};
constexpr Key KEYS[] = {
    {"r", false, ReadProcessor}, {"t", false, ReadProtocol},
    {"o+", false, ReadAutoOff},  {"o-", false, ReadAutoOff},
    {"m", true, ReadMapFile},    {"mt", true, ReadTmsMapFile},
    {"d", true, ReadDebugFile},  {"d0", true, ReadDebugFile},
    {"d#", true, ReadRecent},    {"b", false, ReadBaud},
    {"p", false, ReadPort},      {"s", false, ReadStation},
    {"COM", false, ReadDriver},  {"full", false, ReadFullCommands},
    {"view", false, ReadView},   {"rate", false, ReadSweepRate},
};

const Key *FindKey(const std::string &text)
{
    const bool isRecent = text.size() == 2 && text[0] == 'd' && text[1] >= '1' && text[1] <= '9';
    for (const Key &key : KEYS)
        if (text == key.key || (isRecent && std::string("d#") == key.key))
            return &key;
    return nullptr;
}

// A path may hold what otherwise ends it. The longest reading that names a file wins;
// without one the line means what every line means.
std::string ReadPath(const std::string &line)
{
    const size_t comma = line.find(',');
    if (comma == std::string::npos)
        return "";
    const std::string rest = line.substr(comma + 1);
    const std::string whole = WRD_Trim(rest);
    const std::string noComment = WRD_Trim(rest.substr(0, rest.find(';')));
    std::string path = WRD_Trim(rest.substr(0, rest.find_first_of(",;")));
    if (IsFile(whole))
        path = whole;
    else if (IsFile(noComment))
        path = noComment;
    return path.size() < PATH_MAX_CHARS ? path : "";
}

void ApplyLine(const std::string &line)
{
    const std::string text = line.substr(0, line.find(';'));
    std::string fields[FIELDS_MAX];
    int count = 0;
    const bool isSplit = parseLine(text.c_str(), FIELDS_MAX, &count, fields) == 1;
    const Key *key = FindKey(WRD_Trim(text.substr(0, text.find(','))));
    if (!key)
        return;
    if (key->isPath)
        key->read(WRD_Trim(text.substr(0, text.find(','))), ReadPath(line));
    else if (isSplit && count > 0)
        key->read(fields[0], count > 1 ? fields[1] : "");
}

// One line without its end; a line that is too long loses its tail, which must not be
// taken for a line of its own. False at the end of the file.
bool ReadLine(std::FILE *file, std::string *line)
{
    line->clear();
    int c = std::getc(file);
    if (c == EOF)
        return false;
    for (; c != EOF && c != '\n' && c != '\r'; c = std::getc(file))
        if (line->size() < LINE_MAX_CHARS)
            line->push_back(static_cast<char>(c));
    line->resize(line->find('\0') == std::string::npos ? line->size() : line->find('\0'));
    return true;
}

void WriteWord(std::FILE *file, const char *key, const char *word)
{
    if (word)
        std::fprintf(file, "%s, %s\n", key, word);
}

void WritePath(std::FILE *file, const char *key, const std::string &path, const char *bareKey)
{
    if (path.empty())
        std::fprintf(file, "%s\n", bareKey);
    else
        WriteWord(file, key, path.c_str());
}

void WriteSettings(std::FILE *file)
{
    WriteWord(file, "r", WordOf(PROCESSORS, Procesor));
    WriteWord(file, "t", WordOf(PROTOCOLS, VR_nProtocol));
    std::fprintf(file, "%s\n", Option_AutoOff != 0 ? "o+" : "o-");
    WritePath(file, "m", openStruct == OPEN_MAP_FILE ? szMapFileName : "", "m");
    WritePath(file, "d0", szDebugFileName, "d");
    for (int i = 0; i < nDebugFileNames; i++)
        std::fprintf(file, "d%i, %s\n", i + 1, szaDebugFileNames[static_cast<size_t>(i)].c_str());
    std::fprintf(file, "b, %i\np, %i\ns, %i\n", bRate, ncom, STATION);
    std::fprintf(file, "COM, %s\n", Option_ComWin32 != 0 ? "WIN32" : "NI");
    if (VR_isFullCommandSet && !VR_isFullOnce)
        std::fputs("full\n", file);
    if (VR_isWatchView)
        std::fputs("view, watch\n", file);
    if (Option_nSweepRate != 1)
        WriteWord(file, "rate",
                  Option_nSweepRate == 0 ? RATE_FAST : std::to_string(Option_nSweepRate).c_str());
}

} // namespace

int OpenIniFile(int)
{
    const char *name = VR_enAppMode == MODE_CONFIGURATION ? "Vireo2Config.ini" : "Vireo2.ini";
    const std::string folder = PLT_CurrentDir(); // "" when it was removed under the program
    iniPath = folder.empty() ? name : folder + PLT_PathSeparator() + name;
    std::FILE *file = std::fopen(iniPath.c_str(), "rt");
    if (!file)
        return -2;
    std::string line;
    bool isFirst = true;
    for (; ReadLine(file, &line); isFirst = false)
        ApplyLine(isFirst && line.compare(0, 3, "\xEF\xBB\xBF") == 0 ? line.substr(3) : line);
    if (Option_ComWin32 != 0)
        UCM_UseWin32(1);
    initRgMap(Procesor);
    VR_ResolveWatchList();
    std::fclose(file);
    return 0;
}

int SaveIniFile()
{
    SafeFile safe;
    if (SAF_Open(&safe, iniPath, "wt") == 0) {
        WriteSettings(safe.file);
        if (SAF_Commit(&safe) == 0)
            return 0;
    }
    VR_ShowMessage("Error open Ini file");
    return -1;
}
