// Variable sets: parameters out of the target into a data file and back again. The room
// `sets` does the work and decides what is right; here it is shown and asked about.
#include <string>
#include <vector>

#include "console/commands/commands.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "runtime/userint.h"
#include "sets/backup.h"
#include "sets/restore.h"
#include "settings/settings.h"
#include "text/words.h"

namespace {

constexpr size_t CHANGES_SHOWN_MAX = 1000; // on the console, whose text has a bound

// A progress box that the sets' files can drive. It appears with the first step.
struct Meter {
    const char *text = "";
    int dialog = 0;
};

bool StepMeter(void *context, size_t done, size_t total, const char *what)
{
    Meter *meter = static_cast<Meter *>(context);
    if (meter->dialog == 0)
        meter->dialog = CreateProgressDialog("Vireo2", meter->text);
    const int percent = total > 0 ? static_cast<int>(100 * done / total) : 0;
    return UpdateProgressDialog(meter->dialog, percent, std::string(meter->text) + what) == 1 ||
           IsBreakWished();
}

void EndMeter(Meter *meter)
{
    if (meter->dialog != 0)
        DiscardProgressDialog(meter->dialog);
    meter->dialog = 0;
}

void PrintLines(const std::vector<std::string> &lines, size_t max = SIZE_MAX)
{
    for (size_t i = 0; i < lines.size() && i < max; ++i)
        PrintMonStr(WRD_Visible(lines[i]));
    if (lines.size() > max)
        PrintMonStr("... and " + std::to_string(lines.size() - max) + " more");
}

// "-h" in place of a file: how the command is used.
bool IsUsageWished(const ScrPar *par, const char *usage)
{
    if (std::string(par[0].text) != "-h")
        return false;
    PrintMonStr(usage);
    return true;
}

int FailWith(const std::string &command, const std::string &why)
{
    return SCR_Fail(command + ": " + WRD_Visible(why));
}

bool IsWriteWished(const PST_Restore &job)
{
    const std::string count = std::to_string(job.writes.size());
    return ConfirmPopup("Download", "Write " + count +
                                        (job.writes.size() == 1 ? " value" : " values") +
                                        " to station " + std::to_string(STATION) +
                                        "? They are listed in the console.") == 1;
}

int Download(const std::string &header, const std::string &data, bool isAll, PST_Restore *job,
             Meter *meter)
{
    const PST_Progress progress = {meter, StepMeter};
    const int prepared = PST_PrepareRestore(header, data, isAll, job, progress);
    EndMeter(meter);
    if (prepared == PST_ERR_FILE) {
        std::string problems = PST_FormatProblems(job->problems);
        problems.pop_back(); // the last line's end
        PrintMonStr(problems);
        return FailWith("download", "Nothing was written.");
    }
    if (prepared != PST_OK)
        return FailWith("download", job->why + " Nothing was written.");
    PrintLines(PST_RestoreWarnings(*job));
    PrintLines(PST_RestoreChanges(*job), CHANGES_SHOWN_MAX);
    if (!job->writes.empty() && !IsWriteWished(*job))
        return FailWith("download", "Nothing was written.");
    const int result = PST_RunRestore(job, progress);
    EndMeter(meter);
    PrintLines(PST_RestoreResult(*job, result));
    return result == PST_OK ? 0 : FailWith("download", "the target does not hold the file.");
}

} // namespace

int SCR_Upload(ScrPar *par)
{
    if (IsUsageWished(par, "use: upload header.ulh, data.ldx"))
        return 0;
    Meter meter;
    meter.text = "Upload: ";
    std::vector<std::string> lines;
    const int result = PST_Backup(par[0].text, par[1].text, {&meter, StepMeter}, &lines);
    EndMeter(&meter);
    PrintLines(lines);
    return result == PST_OK ? 0 : FailWith("upload", "no file was written.");
}

int SCR_Download(ScrPar *par)
{
    if (IsUsageWished(par, "use: download header.ulh, data.ldx, 0"))
        return 0;
    if (par[2].value > 1)
        return FailWith("download", "the last parameter is 0 (differences) or 1 (all values).");
    PST_Restore job;
    Meter meter;
    meter.text = "Download: ";
    return Download(par[0].text, par[1].text, par[2].value == 1, &job, &meter);
}
