// The data logger's commands: download into files, the old layout, and a look at the log
// that downloads nothing.
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "console/commands/commands.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "logger/dlld.h"
#include "logger/dlld_record.h"
#include "settings/settings.h"
#include "text/words.h"

namespace {

int Fail(const char *command, const std::string &text)
{
    // Whatever failed then failed because the user wanted it.
    if (DLLD_IsCancelled())
        return SCR_Fail(TXT_Format("%s: cancelled by the user.", command));
    return SCR_Fail(std::string(command) + ": " + text);
}

// What the target was read for; the cause follows when it was the line.
int FailRead(const char *command, const std::string &text)
{
    const std::string &cause = DLLD_GetLinkCause();
    return Fail(command, cause.empty() ? text : text + " (" + cause + ")");
}

int FailGetLog(const std::string &text)
{
    return Fail("getlog", text);
}

// The raw file first: it is what a listing can be made from again.
int SaveLogFiles(const DLLD_Log &log, const std::string &name, const std::string &base)
{
    CON_Print("Writing log data to HDD ('%s' + .bin, .slog)", base.c_str());
    const int result = DLLD_SaveBinLogFe(base + ".bin", log);
    if (result == DLLD_ERR_HEADER)
        return FailGetLog(DLLD_BadHeaderText(name));
    if (result == DLLD_ERR_OPEN)
        return FailGetLog("Couldn't open output file '" + base + ".bin'.");
    if (result < 0 || DLLD_SaveStdLogFe(base + ".slog", log) < 0)
        return FailGetLog("Couldn't save output file.");
    return 0;
}

std::string FormatStamp(uint32_t stamp)
{
    if (stamp == 0) // a log without a message
        return "none";
    DateTime time;
    std::string text;
    CvtAMCBIOS_time(stamp, &time);
    DLLD_AppendTime(time, &text);
    return text;
}

// The reads of a survey share one proof: nothing is shown that may be another's answer.
int ShowSurvey(const std::string &name)
{
    DLLD_Survey survey;
    if (UCM_MakeProven([&] { return DLLD_SurveyLog(name, &survey); }) < 0)
        return FailRead("dlldtst", "Could not read the log (" + name + ").");
    std::string header;
    for (const uint16_t word : survey.header)
        header += TXT_Format(" %04X", word);
    CON_Print("Log:      %s, %d words at %06Xh", name.c_str(), survey.words, survey.address);
    CON_Print("Header:  %s (%s)", header.c_str(), survey.isGood ? "good" : "bad");
    if (!survey.isGood)
        return Fail("dlldtst", DLLD_BadHeaderText(name));
    CON_Print("Filled:   %d words, %d %%", survey.filledWords,
              static_cast<int>(int64_t(100) * survey.filledWords / survey.words));
    CON_Print("First:    %s", FormatStamp(survey.firstStamp).c_str());
    CON_Print("Last:     %s", FormatStamp(survey.lastStamp).c_str());
    return 0;
}

int ShowRecIds()
{
    if (!DLLD_GetHost().hasRecIds) {
        CON_Print("Records:  this processor keeps no table");
        return 0;
    }
    if (DLLD_ReadARecId() < 0)
        return FailRead("dlldtst", "Could not read log type list (DL_arecId).");
    CON_Print("Records:  %d", DLLD_nDimARecId);
    for (const DLLD_RecId &entry : DLLD_paRecId) {
        const std::string id = TXT_Format("  %02Xh  ", static_cast<unsigned>(entry.id));
        if (entry.text.empty())
            CON_Print("%sno description", id.c_str());
        else if (entry.errorAt > 0)
            CON_Print("%s%s (wrong at character %d)", id.c_str(), entry.text.c_str(),
                      entry.errorAt);
        else
            CON_Print("%s%s", id.c_str(), entry.text.c_str());
    }
    return 0;
}

} // namespace

int ScrFnGetLog(ScrPar *par)
{
    const std::string name = par[0].text, base = par[1].text;
    if (name.empty() || base.empty())
        return SCR_Fail("getlog: Invalid parameters.");
    LOGV_UseTarget(); // the settings may have changed since the last download
    // Descriptions first: without them a download of minutes could not be listed.
    if (DLLD_ReadARecId() < 0)
        return FailRead("getlog", "Could not read log type list (DL_arecId).");
    CON_Print("Reading log %s! This can take up to few minutes, wait please ...", name.c_str());
    DLLD_Log log;
    if (DLLD_ReadLog(name, &log) < 0)
        return FailRead("getlog", "Could not read the log (" + name + ").");
    return SaveLogFiles(log, name, base);
}

int ScrFnSaveLog(ScrPar *par)
{
    const std::string path = par[1].text, name = par[0].text;
    const bool isName = (par[0].flags & PAR_LONG) == 0;
    // A number stands for the log's address, anything else for its name.
    uint32_t address = par[0].value;
    LOGV_UseTarget();
    if (path.empty() || (isName ? DLLD_GetWrkAddr(&address, name) < 0 : address >= ADDR_LIMIT))
        return SCR_Fail("SaveLog: Neplatne parametry skriptu.");
    DLLD_Log log;
    // A log that only an address tells has no declaration; its header must say all.
    const int read = isName ? DLLD_ReadLog(name, &log) : DLLD_ReadLogAt(address, &log);
    if (read < 0)
        return FailRead("SaveLog", "Chyba pri cteni logu.");
    const int result = DLLD_SaveOldLogFe(path, log);
    if (result == DLLD_ERR_OPEN)
        return Fail("SaveLog", "Nelze otevrit soubor '" + path + "'.");
    return result < 0 ? Fail("SaveLog", "Chyba pri zapisu do souboru '" + path + "'.") : 0;
}

int SCR_DlldTst(ScrPar *par)
{
    LOGV_UseTarget();
    const std::vector<std::string> names = LOGV_FindTargetLogs();
    // Numbers are those of the list that 0 shows; another map has others.
    const auto number = static_cast<int32_t>(par[0].value);
    if (names.empty())
        return SCR_Fail("dlldtst: no variable of the map and type map describes a log.");
    if (number < 0 || number > static_cast<int32_t>(names.size()))
        return SCR_Fail(TXT_Format("dlldtst: logs are numbered 1 to %d; 0 lists them.",
                                   static_cast<int>(names.size())));
    if (number == 0) {
        for (size_t i = 0; i < names.size(); i++)
            CON_Print("%3d  %s", static_cast<int>(i) + 1, names[i].c_str());
        return 0;
    }
    if (ShowSurvey(names[static_cast<size_t>(number) - 1]) < 0)
        return -1;
    return ShowRecIds();
}
