// The target's side of the window: the link, all values read, some of them written. A box shows
// how far it is, and nothing is written without a question that shows it.
#include "sets/window.h"

#include "comm/communication.h"
#include "comm/ucm.h"
#include "runtime/userint.h"
#include "sets/restore.h"
#include "sets/window_parts.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

// A progress box that appears with the first step.
struct Meter {
    int dialog = 0;
};

bool StepMeter(void *context, size_t done, size_t total, const char *what)
{
    Meter *meter = static_cast<Meter *>(context);
    if (meter->dialog == 0)
        meter->dialog = CreateProgressDialog(CFW_TITLE, what);
    // A step may be announced before its number is known.
    const int percent = total > 0 ? static_cast<int>(100 * done / total) : 0;
    // Also Ctrl-C and switching off end it.
    return UpdateProgressDialog(meter->dialog, percent, what) == 1 || IsBreakWished();
}

void EndMeter(const Meter &meter)
{
    if (meter.dialog != 0)
        DiscardProgressDialog(meter.dialog);
}

// In configuration mode nobody else opens the port, and no timer reads a watch list.
bool EnsureLink()
{
    const bool isOn = VR_enAppMode != MODE_CONFIGURATION
                          ? VR_EnsureCom()
                          : UCM_IsOpened() != 0 || Check_ASC_Open(VR_OpenLink()) >= 0;
    CFW_ShowState();
    return isOn;
}

// The question shows what is written, and whether the machine has to stand.
bool IsWriteWished(const PST_Restore &job)
{
    bool needsStop = false;
    for (const uint32_t place : job.writes) {
        const PST_Entry &entry = job.set.entries[job.set.places[place].entry];
        needsStop = needsStop || PST_AttributesOf(job.set, entry).needsStop;
    }
    std::string question = "Write to station " + std::to_string(STATION) + "?\n\n" +
                           CFW_FirstLines(PST_RestoreChanges(job));
    if (needsStop)
        question += "\nThe machine must stand while this is written.";
    return ConfirmPopup(CFW_TITLE, question) == 1;
}

} // namespace

bool CFW_WriteEntries(const std::vector<uint32_t> &entries)
{
    if (!EnsureLink())
        return false;
    Meter meter;
    const PST_Progress progress = {&meter, StepMeter};
    PST_Restore job;
    // Read anew, so that the question shows what is there now and not what was a while ago.
    int result = PST_PrepareWrite(&CFW_form, entries, &job, progress);
    EndMeter(meter);
    // Nothing to write is a success: the target holds what was wished.
    if (result != PST_OK || job.writes.empty() || !IsWriteWished(job)) {
        CFW_ShowResult(result != PST_OK     ? job.why + " " + PST_NOTHING_WRITTEN
                       : job.writes.empty() ? "The target holds these values already."
                                            : PST_NOTHING_WRITTEN,
                       result != PST_OK);
        CFW_Refresh();
        return result == PST_OK && job.writes.empty();
    }
    // The first box went before the question: two would lie over each other.
    meter = Meter();
    SetBusyText("writing the parameters");
    result = PST_RunRestore(&job, progress);
    EndMeter(meter);
    PST_FinishWrite(&CFW_form, job);
    std::string text;
    for (const std::string &line : PST_RestoreResult(job, result))
        text += (text.empty() ? "" : " ") + line;
    CFW_ShowResult(text, result != PST_OK);
    CFW_Refresh();
    return result == PST_OK;
}

int CFW_ReadCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || !CFW_FollowChanges() || !EnsureLink())
        return 0;
    Meter meter;
    std::string why;
    SetBusyText("reading the parameters");
    const int result = PST_ReadDevice(CFW_form.set, &CFW_form.device, {&meter, StepMeter}, &why);
    EndMeter(meter);
    std::string text = why;
    if (result == PST_OK) {
        text = std::to_string(CFW_form.set.entries.size()) + " values read from station " +
               std::to_string(STATION) + ".";
        // Mirrors have no line in the table: what is wrong with them is said here.
        for (const std::string &line : PST_MirrorRemarks(CFW_form.set, CFW_form.device))
            text += " " + line;
    }
    CFW_ShowResult(text, result != PST_OK);
    CFW_Refresh();
    return 0;
}

int CFW_WriteCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    // First, because the form may be made anew by it: entries are numbers of the form there is.
    if (!CFW_FollowChanges())
        return 0;
    std::vector<uint32_t> entries;
    const int selected = CFW_GetSelected();
    if (control == CONFIG_WRITE_ONE && selected >= 0)
        entries.push_back(static_cast<uint32_t>(selected));
    for (uint32_t i = 0; control == CONFIG_WRITE_ALL && i < CFW_form.set.entries.size(); ++i)
        if (PST_IsChanged(CFW_form, i))
            entries.push_back(i);
    if (!entries.empty())
        CFW_WriteEntries(entries);
    return 0;
}

int CFW_TerminalCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    // Only in configuration mode, where the main window with its switch is not there.
    if (UCM_IsOpened() != 0)
        UCM_Close();
    else
        (void)Check_ASC_Open(UCM_Open(VR_nProtocol, ncom, bRate));
    CFW_ShowState();
    return 0;
}
