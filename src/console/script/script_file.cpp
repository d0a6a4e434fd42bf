// Runs a script file line by line through the C166 line interpreter. Jumps only ever
// go forward. An error is reported as the number of the line it happened on.
#include <string>

#include "comm/communication.h"
#include "console/monitor/link.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/tokens.h"
#include "text/txfr.h"
#include "text/words.h"
#include "watch/main_window.h"

namespace {

constexpr int COUNTER_START = -2;
constexpr int BUFFER_CHARS =
    static_cast<int>(LINE_CHARS_MAX) + 2; // one more than allowed, and the end

struct Script {
    int file = -1;
    int counter = COUNTER_START; // -2 - k on line k
    std::string line;            // without blanks at its begin
    bool isTooLong = false;
};

int nDepth = 0;
int nInnerLines = 0;    // run by scripts that scripts started
std::string failedLine; // the line the last script failed on

// Reads one line whole, of which an over-long one keeps its beginning only. False at
// the end of the file.
bool ReadLine(Script *script)
{
    char buffer[BUFFER_CHARS];
    if (TXFR_RdLine(script->file, buffer, BUFFER_CHARS) < 0)
        return false;
    script->line = TXT_SkipBlanks(buffer);
    script->isTooLong = std::char_traits<char>::length(buffer) > LINE_CHARS_MAX;
    while (TXFR_IsBrokenLine(script->file) == 1) {
        if (TXFR_RdLine(script->file, buffer, BUFFER_CHARS) < 0)
            break;
    }
    return true;
}

// The label a line defines, or "".
std::string GetLabel(const std::string &line)
{
    const char *cursor = line.c_str();
    const size_t length = TXT_NameLength(cursor);
    if (length == 0 || *TXT_SkipBlanks(cursor + length) != ':')
        return "";
    return line.substr(0, length);
}

// The lines read on the way count only when the label is found.
bool SkipToLabel(Script *script, const std::string &label)
{
    int passed = 0;
    while (ReadLine(script)) {
        passed++;
        if (GetLabel(script->line) == label) {
            script->counter -= passed;
            return true;
        }
    }
    return false;
}

// False when the script ends here with an error.
bool ExecuteLine(Script *script, int panel)
{
    const std::string &text = script->line;
    if (text.empty() || text[0] == ';')
        return true;
    if (text.size() > 4 && text.compare(0, 4, "goto") == 0 && TXT_IsBlank(text[4])) {
        const char *cursor = TXT_SkipBlanks(text.c_str() + 4);
        const std::string label(cursor, TXT_NameLength(cursor));
        return !label.empty() && SkipToLabel(script, label);
    }
    if (!GetLabel(text).empty())
        return true;
    int result = -1;
    if (script->isTooLong)
        CON_RefuseLongLine();
    else
        result = RunMonitor(panel, text.c_str());
    // A line that was broken off has not failed: nothing of the script runs behind it.
    return result >= 0 || (!IsBreakWished() && SkipToLabel(script, "OnError"));
}

// Reading the last line may have closed the handle already. A line closes whatever it
// opens, so the read behind it finds the end and nobody else's file.
int RunScript(Script *script, int panel)
{
    std::string line; // the last one run: looking for a label reads on
    while (!SCR_isExit) {
        // A command that asks the user leaves its jump here.
        bool isFine = !SCR_bGotoCmd || SkipToLabel(script, SCR_szGotoLabel);
        SCR_bGotoCmd = false;
        if (isFine && !ReadLine(script))
            return 0;
        if (isFine) {
            script->counter--;
            line = script->line;
        }
        // Scripts that start scripts multiply their lines: eight deep they would run for days.
        // One alone ends, for jumps only go forward.
        const bool isTooMuch = isFine && nDepth > 1 && ++nInnerLines > SCRIPT_INNER_LINES_MAX;
        const bool isBrokenOff = IsBreakWished();
        if (isTooMuch || isBrokenOff)
            PrintMonStr(isBrokenOff ? "The script was cancelled."
                                    : "Too many lines in scripts that are started by scripts.");
        isFine = isFine && !isTooMuch && !isBrokenOff && ExecuteLine(script, panel);
        if (!isFine) {
            failedLine = line;
            return script->counter;
        }
    }
    SCR_isExit = false;
    return 0;
}

} // namespace

int ExecMonScript(const char *fileName, int panel)
{
    if (nDepth >= SCRIPT_DEPTH_MAX) {
        PrintMonStr("Too many scripts are started by scripts.");
        return SCRIPT_NOT_OPENED;
    }
    Script script;
    // The name as given first: a script may well have another extension.
    script.file = TXFR_Open(fileName);
    if (script.file < 0)
        script.file = TXFR_Open((std::string(fileName) + ".scr").c_str());
    if (script.file < 0)
        return SCRIPT_NOT_OPENED;
    SCR_bGotoCmd = false;
    SCR_isExit = false;
    if (nDepth == 0)
        nInnerLines = CON_nRefused = CON_nUnknown = 0;
    failedLine.clear();
    nDepth++;
    CON_BeginScript(); // the link stays open from line to line
    const int result = RunScript(&script, panel);
    CON_EndScript();
    nDepth--;
    TXFR_Close(script.file);
    return result;
}

int SCR_RunAndReport(const std::string &fileName, int panel)
{
    const int32_t station = STATION;
    const int result = ExecMonScript(fileName.c_str(), panel);
    if (STATION != station) {
        VIR2_SetStation(station);
        SetMainPanelAttributes();
    }
    SCR_ReportResult(fileName, result);
    return result;
}

void SCR_ReportResult(const std::string &fileName, int result)
{
    if (result < SCRIPT_NOT_OPENED)
        CON_Print("%s, line %d: %s", TXT_Visible(fileName).c_str(), COUNTER_START - result,
                  TXT_Visible(failedLine).c_str());
    if (result < 0)
        PrintMonStr(SCR_GetResultText(result));
    if (nDepth == 0 && CON_nRefused > CON_nUnknown)
        CON_Print("%d lines were refused: they need the full command set.",
                  CON_nRefused - CON_nUnknown);
    if (nDepth == 0 && CON_nUnknown > 0)
        CON_Print("%d lines were refused: there is no such command.", CON_nUnknown);
}

std::string SCR_GetResultText(int result)
{
    if (result == 0)
        return "";
    if (result == SCRIPT_NOT_OPENED)
        return "Could not open the script file.";
    // One more than the failing line's number: users and service notes know it so.
    return TXT_Format("Error in the script file on line %d.", -1 - result);
}
