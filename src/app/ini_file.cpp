// The settings file: one line a setting, key and value parted by a comma. Read once at
// start, rewritten whole at shutdown. What the file names but cannot be had now (a drive that
// is not plugged in) keeps its place in it.
#include "app/ini_file.h"

#include <cstdio>
#include <filesystem>

#include "app/ini_keys.h"
#include "app/window_places.h"
#include "comm/ucm.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/settings_place.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "scope/window.h"
#include "sets/window.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/item_names.h"
#include "watch/list/list_file.h"
#include "watch/main_window.h"

namespace {

constexpr size_t LINE_MAX_CHARS = 511;
constexpr int FIELDS_MAX = 3;
constexpr int64_t FILE_SIZE_MAX = 1 << 20; // bytes; what is larger is no file of ours
constexpr int PORT_MAX = 256;
constexpr int BAUD_MIN = 110, BAUD_MAX = 4000000;

PLT_SettingsPlace place; // of the file: read at start, written at shutdown
bool isUnreadable;       // there is a file, and it is not ours to write over
bool isMissing;          // at start

bool IsFile(const std::string &path)
{
    return !path.empty() && PLT_FileExists(path);
}

std::string LineText(int line)
{
    const size_t cut = place.read.find_last_of("/\\");
    return place.read.substr(cut == std::string::npos ? 0 : cut + 1) + ", line " +
           std::to_string(line) + ": ";
}

// A path may hold what otherwise ends it. The longest reading that names a file wins; a
// file that is not there now, on a drive that is not plugged in, may have a comma as well.
std::string ReadPath(const std::string &line)
{
    const size_t comma = line.find(',');
    if (comma == std::string::npos)
        return "";
    const std::string rest = line.substr(comma + 1);
    const std::string whole = TXT_Trim(rest);
    const std::string noComment = TXT_Trim(rest.substr(0, rest.find(';')));
    const std::string field = TXT_Trim(rest.substr(0, rest.find_first_of(",;")));
    const std::string path = IsFile(whole)                         ? whole
                             : !IsFile(noComment) && IsFile(field) ? field
                                                                   : noComment;
    if (path.size() < PATH_MAX_CHARS)
        return path;
    APP_settingReading.problems.push_back(LineText(APP_settingReading.lineNumber) +
                                          "the path has more than " +
                                          std::to_string(PATH_MAX_CHARS - 1) + " characters.");
    return "";
}

void ApplyLine(const std::string &line)
{
    const size_t comma = line.find(',');
    APP_settingReading.lineValue =
        comma == std::string::npos ? "" : TXT_Trim(line.substr(comma + 1));
    const std::string text = line.substr(0, line.find(';'));
    std::string fields[FIELDS_MAX];
    int count = 0;
    const bool isSplit = parseLine(text.c_str(), FIELDS_MAX, &count, fields) == 1;
    const APP_SettingKey *key = APP_FindKey(TXT_Trim(text.substr(0, text.find(','))));
    if (!key)
        return;
    if (key->isPath)
        key->read(TXT_Trim(text.substr(0, text.find(','))), ReadPath(line));
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

// "LINE: what value is outside a to b." when a number of the file is still in force and
// cannot be meant.
std::string RangeText(const APP_NumberLine &number, int32_t now, const char *what, int least,
                      int most)
{
    if (number.line == 0 || number.value != now || (now >= least && now <= most))
        return "";
    return LineText(number.line) + what + " " + std::to_string(now) + " is outside " +
           std::to_string(least) + " to " + std::to_string(most) + ".";
}

void ReadLines(std::FILE *file)
{
    std::string line;
    // Editors put a mark in front of UTF-8, which would hide the first key.
    for (APP_settingReading.lineNumber = 1; ReadLine(file, &line);
         ++APP_settingReading.lineNumber) {
        const bool isMarked =
            APP_settingReading.lineNumber == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0;
        ApplyLine(isMarked ? line.substr(3) : line);
    }
}

// Behind what the loaded files had to say themselves.
void ShowProblems()
{
    const std::string range = APP_GetRangeProblem();
    if (!range.empty())
        APP_settingReading.problems.push_back(range);
    std::string text;
    for (const std::string &problem : APP_settingReading.problems)
        text += (text.empty() ? "" : " ") + problem;
    if (text.empty())
        return;
    std::string before;
    if (GetCtrlVal(mainPanel, MAIN_MESSAGE, &before) == 0 && !before.empty())
        text = before + " " + text;
    VR_ShowMessage(text);
}

const char END_OF_LINE[] = "\r\n";

void AddLine(std::string *text, const std::string &key, const std::string &value)
{
    *text += key + ", " + value + END_OF_LINE;
}

// A path that would break its line is left out; so is none, or only its key is written.
void AddPath(std::string *text, const char *key, const std::string &path, const char *bareKey)
{
    // In the user's folder the file serves starts from anywhere.
    const bool isMovedAway = place.isUsersFolder && !path.empty() &&
                             std::filesystem::u8path(path).is_relative() &&
                             !PLT_CurrentDir().empty();
    if (!path.empty() && path.find_first_of("\r\n") == std::string::npos)
        AddLine(text, key, isMovedAway ? PLT_CurrentDir() + PLT_PathSeparator() + path : path);
    else if (bareKey != nullptr)
        *text += std::string(bareKey) + END_OF_LINE;
}

// What could not be had in this run (`kept`) is written as it was read, unless something else has
// taken its place.
std::string SettingsText()
{
    std::string text;
    // The processor first: it decides with which reader a map is read.
    if (const char *word = APP_ProcessorWord(Procesor))
        AddLine(&text, "r", word);
    if (const char *word = APP_ProtocolWord(VR_nProtocol))
        AddLine(&text, "t", word);
    text += std::string(Option_AutoOff != 0 ? "o+" : "o-") + END_OF_LINE;
    const std::string map = openStruct == OPEN_MAP_FILE ? szMapFileName
                            : openStruct == OPEN_NONE   ? APP_settingReading.kept.map
                                                        : ""; // from the target's memory
    AddPath(&text, "m", map, "m");
    AddPath(&text, "d0",
            szDebugFileName.empty() ? APP_settingReading.kept.debugFile : szDebugFileName, "d");
    for (int i = 0; i < nDebugFileNames; i++)
        AddPath(&text, ("d" + std::to_string(i + 1)).c_str(),
                szaDebugFileNames[static_cast<size_t>(i)], nullptr);
    AddLine(&text, "b", std::to_string(bRate));
    AddLine(&text, "p", std::to_string(ncom));
    AddLine(&text, "s", std::to_string(STATION));
    AddLine(&text, "COM", Option_ComWin32 != 0 ? "WIN32" : "NI");
    // What an option of the command line has switched on is for one run and not written.
    if (VR_isFullCommandSet && !VR_isFullOnce)
        text += std::string("full") + END_OF_LINE;
    if (VR_isWatchView)
        AddLine(&text, "view", "watch");
    AddPath(&text, "m2", openTMSStruct != OPEN_NONE ? TMS_mapFile : APP_settingReading.kept.tmsMap,
            nullptr);
    AddPath(&text, "tm", TMF_cnDefVars > 0 ? TMF_szFileName : APP_settingReading.kept.types,
            nullptr);
    AddPath(&text, "set", CFW_GetHeader(), nullptr);
    if (Option_nSweepRate != 1)
        AddLine(&text, "rate",
                Option_nSweepRate == 0 ? APP_RATE_FAST : std::to_string(Option_nSweepRate));
    if (Option_Echo != 0 && !VR_isEchoOnce)
        text += std::string("echo") + END_OF_LINE;
    return text + APP_PlaceLines({"window", "columns", "layout"}, END_OF_LINE);
}

} // namespace

int OpenIniFile(int)
{
    DTSC_LoadSettings();
    const char *name = VR_enAppMode == MODE_CONFIGURATION ? "Vireo2Config.ini" : "Vireo2.ini";
    place = PLT_FindSettingsPlace(name);
    APP_settingReading = APP_SettingReading();
    APP_ForgetPlaces();
    std::FILE *file = nullptr;
    const int result = PLT_OpenForReading(place.read, FILE_SIZE_MAX, &file);
    isUnreadable = result != PLT_FILE_OK && PLT_FileExists(place.read);
    isMissing = result != PLT_FILE_OK && !isUnreadable;
    if (file != nullptr) {
        ReadLines(file);
        std::fclose(file);
    } else if (isUnreadable) {
        APP_settingReading.problems.push_back("Settings file '" + place.read + "' " +
                                              PLT_FileErrorText(result) +
                                              ": the settings will not be saved.");
    }
    if (place.isUsersFolder)
        APP_settingReading.problems.push_back("Settings are kept in '" + place.write +
                                              "': this folder cannot be written.");
    if (Option_ComWin32 != 0)
        UCM_UseWin32(1);
    // The list may stand in the file in front of the maps that its names come from.
    initRgMap(Procesor);
    VR_ResolveWatchList();
    ShowProblems();
    return result == PLT_FILE_OK ? 0 : -2;
}

bool APP_IsSettingsMissing()
{
    return isMissing;
}

std::string APP_GetRangeProblem()
{
    const bool isModbus = VR_nProtocol == PROTOCOL_MODBUS;
    const int least = isModbus ? MODBUS_STATION_MIN : 0;
    const int most = isModbus ? MODBUS_STATION_MAX : STATION_MAX;
    std::string text;
    for (const std::string &problem :
         {RangeText(APP_settingReading.baud, bRate, "baud rate", BAUD_MIN, BAUD_MAX),
          RangeText(APP_settingReading.port, ncom, "port", 1, PORT_MAX),
          RangeText(APP_settingReading.station, STATION, "station", least, most)})
        text += (text.empty() || problem.empty() ? "" : " ") + problem;
    return text;
}

int SaveIniFile()
{
    const std::string text = SettingsText();
    // Where the file already says the same there is nothing to save, and a write-protected file is
    // no failure.
    std::string content;
    if (!isUnreadable && PLT_ReadFile(place.write, FILE_SIZE_MAX, &content) == PLT_FILE_OK &&
        content == text)
        return 0;
    SafeFile safe;
    if (!isUnreadable && PLT_BeginSave(&safe, place.write, "wb") == 0) {
        const bool isWritten = std::fwrite(text.data(), 1, text.size(), safe.file) == text.size();
        if (!isWritten)
            PLT_CancelSave(&safe);
        else if (PLT_CommitSave(&safe) == 0)
            return 0;
    }
    VR_ShowMessage("Error open Ini file");
    return -1;
}
