// The target against a data file for other programs: what differs on standard output, the
// answer in the exit code. Nothing is written.
#include <cstdio>

#include "app/console_program/sessions.h"
#include "comm/communication.h"
#include "runtime/userint.h"
#include "sets/restore.h"
#include "settings/settings.h"
#include "text/words.h"

namespace {

constexpr int EXIT_DIFFERENT = 1;
constexpr int EXIT_NOT_COMPARED = 2;

int Compare(PST_Restore *job)
{
    const int result = PST_PrepareRestore(
        CPG_options.compareHeader, CPG_options.compareFile, false, job,
        {nullptr, [](void *, size_t, size_t, const char *) { return IsBreakWished(); }});
    if (result != PST_OK) {
        std::fprintf(stderr, "%s%s", PST_FormatProblems(job->problems).c_str(),
                     TXT_Visible(job->why).c_str());
        std::fputs(job->why.empty() ? "" : "\n", stderr);
        return EXIT_NOT_COMPARED;
    }
    // Another map than the one the file was made with does not make it unequal.
    for (const std::string &line : PST_MapRemarks(*job))
        std::fprintf(stderr, "%s\n", TXT_Visible(line).c_str());
    const std::vector<std::string> differences = PST_Differences(*job);
    for (const std::string &line : differences)
        std::printf("%s\n", TXT_Visible(line).c_str());
    return differences.empty() ? 0 : EXIT_DIFFERENT;
}

} // namespace

int CPG_RunCompare()
{
    VIR2_StartPeriodicASC();
    if (isTimer == 0)
        return EXIT_NOT_COMPARED;
    SuspendTimerCallbacks(); // nobody watches a list here
    PST_Restore job;
    const int code = Compare(&job);
    VIR2_StopPeriodicASC();
    return code;
}
