// Variable sets: parameters out of the target into a data file and back again. The room
// `sets` does the work and decides what is right; here it is shown and asked about.
#include <string>
#include <vector>

#include "console/commands/commands.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "runtime/userint.h"
#include "sets/listing.h"
#include "sets/restore.h"
#include "settings/settings.h"
#include "text/words.h"

namespace {

constexpr size_t CHANGES_SHOWN_MAX = 1000; // on the console, whose text has a bound

std::vector<PST_File> compared; // by ldcmpldx, until mkcmpvldx has shown them

// A progress box that the sets' files can drive. It appears with the first step, so that a file
// with a fault, which reads nothing from the target, shows none.
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
        PrintMonStr(TXT_Visible(lines[i])); // names and texts in it come from files
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
    return SCR_Fail(command + ": " + TXT_Visible(why));
}

void PrintProblems(const PST_Problems &problems)
{
    // All of them at once, so that a file is mended in one go.
    std::string text = PST_FormatProblems(problems);
    if (!text.empty())
        text.pop_back(); // the last line's end
    PrintMonStr(text);
}

int WriteListing(const std::string &command, const std::vector<PST_File> &files,
                 const std::string &templatePath, const std::string &output)
{
    PST_Problems problems;
    if (PST_WriteListing(templatePath, files, Option_nLanguage, output, &problems) == 0)
        return 0;
    PrintProblems(problems);
    return FailWith(command, "no listing was written.");
}

int Download(const std::string &header, const std::string &data, bool isAll, PST_Restore *job,
             Meter *meter)
{
    const PST_Progress progress = {meter, StepMeter};
    const int prepared = PST_PrepareRestore(header, data, isAll, job, progress);
    EndMeter(meter); // no box may stand over the question below
    if (prepared == PST_ERR_FILE) {
        PrintProblems(job->problems);
        return FailWith("download", PST_NOTHING_WRITTEN);
    }
    if (prepared != PST_OK)
        return FailWith("download", job->why + " " + PST_NOTHING_WRITTEN);
    PrintLines(PST_RestoreWarnings(*job));
    PrintLines(PST_RestoreChanges(*job), CHANGES_SHOWN_MAX);
    // The list stands on the console before the question that is about it.
    if (!job->writes.empty()) {
        const std::string count = std::to_string(job->writes.size());
        const std::string question =
            "Write " + count + (job->writes.size() == 1 ? " value" : " values") + " to station " +
            std::to_string(STATION) + "? They are listed in the console.";
        if (ConfirmPopup("Download", question) != 1)
            return FailWith("download", PST_NOTHING_WRITTEN);
    }
    // Also without anything to write: the report says that the target holds the file.
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
    // Any other number would be a guess whether all values are to be written.
    if (par[2].value > 1)
        return FailWith("download", "the last parameter is 0 (differences) or 1 (all values).");
    PST_Restore job;
    Meter meter;
    meter.text = "Download: ";
    return Download(par[0].text, par[1].text, par[2].value == 1, &job, &meter);
}

int SCR_Ldx2Vldx(ScrPar *par)
{
    if (IsUsageWished(par, "use: ldx2vldx input.ldx, template.tldx, output.vldx"))
        return 0;
    std::vector<PST_File> files(1);
    PST_Problems problems;
    if (PST_ReadData(par[0].text, &files[0], &problems) != 0) {
        PrintProblems(problems);
        return FailWith("ldx2vldx", "no listing was written.");
    }
    return WriteListing("ldx2vldx", files, par[1].text, par[2].text);
}

int SCR_LdCmpLdx(ScrPar *par)
{
    if (IsUsageWished(par, "use: ldcmpldx file.ldx"))
        return 0;
    // Those that were named before stay.
    if (compared.size() >= PST_COMPARE_MAX)
        return SCR_Fail("Too many ldx files to load.");
    PST_File file;
    PST_Problems problems;
    if (PST_ReadData(par[0].text, &file, &problems) != 0) {
        PrintProblems(problems);
        return FailWith("ldcmpldx", "the file does not take part.");
    }
    compared.push_back(file);
    return 0;
}

// The files stay for another template when this one fails.
int SCR_MkCmpVldx(ScrPar *par)
{
    if (IsUsageWished(par, "use: mkcmpvldx file.tldx, outfile.html"))
        return 0;
    if (compared.size() < 2)
        return FailWith("mkcmpvldx", "ldcmpldx names the files to compare, two at least.");
    const int result = WriteListing("mkcmpvldx", compared, par[0].text, par[1].text);
    if (result == 0)
        compared.clear();
    return result;
}
