// The C166 line interpreter: the word gate, then the command table in its two halves,
// then the letter commands. The link is held for every line past the first half.
#include <cstring>

#include "console/monitor/dump.h"
#include "console/monitor/link.h"
#include "console/monitor/memory_files.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/monitor/value_entry.h"
#include "console/script/script.h"
#include "console/script/script_command.h"
#include "settings/settings.h"
#include "text/tokens.h"
#include "text/words.h"

uint32_t dwAddr = 0;
int CON_nRefused = 0;
int CON_nUnknown = 0;
int CON_nFailed = 0;

namespace {

// The first words the gate lets through.
const char *const GATE_WORDS[] = {"compar",   "download", "exit",    "goto",   "h",     "help",
                                  "language", "ldx2vldx", "m",       "mf",     "msg",   "procesor",
                                  "qst",      "station",  "term166", "upload", "write", "writeNA",
                                  "hexload",  "l3test",   "l3erase", "l3write"};

int SayTryHelp()
{
    PrintMonStr("Try 'h' for help.");
    return -1;
}

// --- letter commands: `argument` is what follows the letter, blanks skipped ----------------

// "n" and "x" are no hexadecimal digits, so that they cannot be part of an address.
int DumpLetter(int panel, const char *argument)
{
    if (*argument == 'n')
        return dump_node(panel, TXT_Trim(argument + 1));
    const bool isRaw = *argument == 'x';
    const char *cursor = TXT_SkipBlanks(argument + (isRaw ? 1 : 0));
    if (!TXT_ParseAddress(&cursor, &dwAddr) || *TXT_SkipBlanks(cursor) != '\0')
        return SayTryHelp();
    return isRaw ? dump(panel, dwAddr) : dump_compl(panel, dwAddr);
}

int ScriptLetter(int panel, const char *argument)
{
    return SCR_RunAndReport(TXT_Trim(argument), panel);
}

int TmsLetter(int, const char *)
{
    command = CMD_TMS;
    CON_ShowModePrompt();
    return 0;
}

int WriteLetter(int panel, const char *argument)
{
    if (!CON_ParseStart(argument, &dwAddr))
        return SayTryHelp();
    return write_DPM(panel, dwAddr, *argument);
}

int HelpLetter(int panel, const char *)
{
    PrintCmdHelp(panel);
    return 0;
}

struct Letter {
    char letter;
    int (*run)(int panel, const char *argument);
    bool areBlanksKept; // the argument begins right behind the letter
    bool isOffline;     // needs no open port
};
const Letter LETTERS[] = {{'d', DumpLetter, false, false},  {'!', ScriptLetter, false, false},
                          {'s', store, false, false},       {'t', TmsLetter, false, true},
                          {'w', WriteLetter, false, false}, {'h', HelpLetter, false, true},
                          {'l', load, false, false},        {'m', RdMapFile, true, true}};

const Letter *FindLetter(char letter)
{
    for (const Letter &row : LETTERS)
        if (row.letter == letter)
            return &row;
    return nullptr;
}

int RunLetter(int panel, const char *line)
{
    const Letter *letter = FindLetter(*line);
    if (!letter) {
        PrintMonStr("Unknown command. Try 'h' for help.");
        return -1;
    }
    return letter->run(panel, letter->areBlanksKept ? line + 1 : TXT_SkipBlanks(line + 1));
}

// --- the gate ---------------------------------------------------------------------------------

bool IsCommandStart(char c)
{
    return TXT_IsLetter(c) || c == '!';
}

// Whether anything behind the gate knows the word.
bool IsKnown(const char *line)
{
    if (!IsCommandStart(*line) || FindLetter(*line))
        return true;
    return SCR_Find(std::string(line, TXT_NameLength(line)), SCR_aTable, SCR_cnTable) != nullptr;
}

// --- the steps of a line ------------------------------------------------------------------------

// `failure` is the wording of the table's half: service procedures compare these texts.
int ReportCommand(int result, const char *line, const char *failure)
{
    if (result >= 0) {
        CON_Print("%s -> OK!", line);
        return result;
    }
    if (!szScrFnErrMsg.empty())
        PrintMonStr(szScrFnErrMsg);
    CON_Print("%s %s", line, failure);
    return result;
}

// The table comes in two halves because commands that need no link must run even when no port
// can be opened.
int InterpretLine(int panel, const char *line)
{
    // With the full command set the gate only stops what nothing below would know. Without it
    // a refused line has not failed: it is counted, and a script goes on behind it.
    if (VR_isFullCommandSet && !IsKnown(line)) {
        PrintMonStr("Unknown command. Try 'h' for help.");
        return -1;
    }
    if (!VR_isFullCommandSet && !CON_IsGateWord(line)) {
        CON_nRefused++;
        CON_nUnknown += IsKnown(line) ? 0 : 1;
        CON_Print("Sorry, unknown or unsupported command ('%s').", line);
        return 0;
    }
    if (!IsCommandStart(*line)) {
        PrintCmdHelp(panel);
        return -1;
    }
    szScrFnErrMsg.clear();
    int result = ExecScrCmd(line, SCR_aTable + SCR_cnTarget, SCR_cnTable - SCR_cnTarget);
    if (result != SCR_UNKNOWN)
        return ReportCommand(result, line, "-> Error!");
    // A letter without the link, unless the word belongs to the table's other half. "mf" and
    // "mfo" read the map out of the target.
    const Letter *letter = FindLetter(*line);
    const std::string word(line, TXT_NameLength(line));
    if (letter && letter->isOffline && word.compare(0, 2, "mf") != 0 &&
        !SCR_Find(word, SCR_aTable, SCR_cnTarget))
        return RunLetter(panel, line);
    if (CON_HoldLink(LINK_ASK_FOR_PORT) < 0)
        return -1;
    szScrFnErrMsg.clear();
    result = ExecScrCmd(line, SCR_aTable, SCR_cnTarget);
    result =
        result == SCR_UNKNOWN ? RunLetter(panel, line) : ReportCommand(result, line, "->Error");
    CON_ReleaseLink();
    return result;
}

} // namespace

// The case of a word counts: "HELP" is refused although the table would know it.
bool CON_IsGateWord(const char *line)
{
    const size_t length = TXT_WordLength(line);
    for (const char *word : GATE_WORDS)
        if (std::strlen(word) == length && std::strncmp(word, line, length) == 0)
            return true;
    return false;
}

int RunMonitor(int panel, const char *line)
{
    line = TXT_SkipBlanks(line);
    if (*line == '\0')
        return 0;
    const int result = InterpretLine(panel, line);
    CON_ScrollToEnd();
    return result;
}
