// The live watch list for other programs: reads every item, prints a table, again.
#include <cstdio>

#include "app/console_program/sessions.h"
#include "app/console_program/watch_format.h"
#include "comm/communication.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"

CPG_Options CPG_options;

namespace {

// False when it could not be written, which is reported at the end.
bool Print(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    return std::fflush(stdout) == 0;
}

// True when a line was read. A number of sweeps is wanted soon; one who follows wants the refresh
// period.
bool Tick()
{
    if (HL_IsEndWished())
        return false;
    const bool isSoon = CPG_options.sweeps > 0 && UCM_IsOpened() != 0; // else waiting for the port
    const int fired = isSoon ? HL_FireTimer(mainPanel, MAIN_TIMER)
                             : HL_WaitTimer(mainPanel, MAIN_TIMER, HL_IsEndWished);
    return fired == 1;
}

// The refresh reads what the list shows: scroll through it page by page. False when a
// tick did not come: interrupted, or communication is off.
bool ReadAll()
{
    for (int first = 0; first < nLItems; first += SWEEP_LINES) {
        SetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, first);
        // The next tick reads the first line of this page, not the one behind the last page.
        UpdItem = 0;
        for (int line = first; line < nLItems && line < first + SWEEP_LINES; line++)
            if (!Tick())
                return false;
    }
    return true;
}

int Follow()
{
    if (!Print(CPG_FormatHeader(CPG_options.format)))
        return 1;
    for (long sweep = 1; CPG_options.sweeps == 0 || sweep <= CPG_options.sweeps; sweep++) {
        if (ReadAll() && !HL_IsEndWished() && !Print(CPG_FormatSweep(CPG_options.format, sweep)))
            return 1;
        CPG_RepeatMessage();
        if (HL_IsEndWished()) {
            if (CPG_options.sweeps == 0)
                return 0;
            // Fewer sweeps than were asked for are no success.
            std::fprintf(stderr, "Interrupted.\n");
            QuitUserInterface(1); // the end that was asked for knows nothing of sweeps
            return 1;
        }
        if (isTimer == 0) {
            std::fprintf(stderr, "Communication was switched off after errors.\n");
            return 1;
        }
    }
    return 0;
}

} // namespace

bool CPG_LoadWatchList()
{
    if (dat2litems(CPG_options.watchFile.c_str()) < 0) {
        CPG_FailOpen(CPG_options.watchFile);
        return false;
    }
    if (nLItems == 0) {
        std::fprintf(stderr, "No items in '%s'.\n", CPG_options.watchFile.c_str());
        return false;
    }
    // As if it had been opened in the window: names, title and ticks go by it.
    szDebugFileName = CPG_options.watchFile;
    VR_FillDebugItems();
    SetMainPanelAttributes();
    return true;
}

int CPG_FailOpen(const std::string &path)
{
    std::fprintf(stderr, "Cannot open file '%s'.\n", path.c_str());
    return 1;
}

int CPG_FailWrite(const std::string &path)
{
    std::fprintf(stderr, "Error writing file '%s'.\n", path.c_str());
    return 1;
}

void CPG_RepeatMessage()
{
    static std::string shown;
    std::string message;
    if (GetCtrlVal(mainPanel, MAIN_MESSAGE, &message) < 0 || message == shown)
        return;
    shown = message;
    if (!message.empty())
        std::fprintf(stderr, "%s\n", message.c_str());
}

int CPG_RunWatch()
{
    if (!CPG_LoadWatchList())
        return 1;
    VIR2_StartPeriodicASC();
    if (isTimer == 0)
        return 1;
    const int result = Follow();
    VIR2_StopPeriodicASC();
    return result;
}
