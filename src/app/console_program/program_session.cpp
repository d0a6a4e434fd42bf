// A HEX file into the target's flash from a command line: what is in it, how far it is and
// how it ended, all on standard error; the exit code says whether the flash holds the file.
#include <cstdio>

#include "app/console_program/lineedit.h"
#include "app/console_program/sessions.h"
#include "loader/program.h"
#include "runtime/userint.h"
#include "settings/settings.h"

namespace {

constexpr int IDLE_RESUMES_MAX = 3;       // attempts that bring nothing new
constexpr uint32_t LOG_STEP_PERCENT = 10; // where nobody watches a line that moves

struct Screen {
    const LDR_Job *job = nullptr;
    bool isTerminal = false;
    uint32_t shown = 0; // percent, in steps
    bool isLineOpen = false;
};

void EndLine(Screen *screen)
{
    if (screen->isLineOpen)
        std::fputc('\n', stderr);
    screen->isLineOpen = false;
}

// A line that moves at a terminal, a line every ten percent in a log. True ends the job.
bool ShowStep(void *context, uint32_t done, uint32_t total, const char *text)
{
    Screen *screen = static_cast<Screen *>(context);
    const auto percent = static_cast<uint32_t>(total > 0 ? uint64_t{100} * done / total : 0);
    const uint32_t step = screen->isTerminal ? 1 : LOG_STEP_PERCENT;
    if (percent / step == screen->shown && total > 0)
        return IsBreakWished();
    screen->shown = percent / step;
    const LDR_Job &job = *screen->job;
    if (screen->isTerminal)
        std::fputc('\r', stderr);
    std::fputs(text, stderr);
    if (total > 0)
        std::fprintf(stderr, ": %u %%", percent);
    if (total > 0 && job.bytesPerSecond > 0)
        std::fprintf(stderr, ", %u bytes/s, %u s left", job.bytesPerSecond, job.secondsLeft);
    // The blanks cover what a longer line has left.
    std::fputs(screen->isTerminal ? "        " : "\n", stderr);
    std::fflush(stderr);
    screen->isLineOpen = screen->isTerminal;
    return IsBreakWished();
}

void ShowLog(void *context, const char *line)
{
    EndLine(static_cast<Screen *>(context));
    std::fprintf(stderr, "%s\n", line);
}

// What is in the file, and what is wrong with it.
void ShowFile(const HEX_File &file)
{
    for (const HEX_Range &range : file.ranges)
        std::fprintf(stderr, "%s: %s\n", file.path.c_str(), HEX_FormatRange(range).c_str());
    for (const HEX_Problem &problem : file.problems)
        std::fprintf(stderr, "%s: %s\n", file.path.c_str(), HEX_FormatProblem(problem).c_str());
    const size_t all = file.fatal + file.remarks;
    if (all > file.problems.size())
        std::fprintf(stderr, "%s: %zu more\n", file.path.c_str(), all - file.problems.size());
}

} // namespace

int CPG_RunProgram()
{
    LDR_Job job;
    job.isErase = !CPG_options.isNoErase;
    job.isVerify = !CPG_options.isNoVerify;
    // A file with a fault is told whole and never sent: not even the link is opened.
    const int prepared = LDR_Prepare(&job, CPG_options.programFile);
    ShowFile(job.file);
    if (prepared < 0) {
        std::fprintf(stderr, "%s\n", LDR_GetResultText(job).c_str());
        return 1;
    }
    Screen screen;
    screen.job = &job;
    screen.isTerminal = CPG_IsErrorTerminal();
    const LDR_Progress progress = {&screen, ShowStep, ShowLog};
    int idle = 0;
    for (bool isResume = false;; isResume = true) {
        const size_t before = isResume ? job.verified + job.written : 0;
        const int ended = LDR_Run(&job, isResume, ncom, bRate, progress);
        // A port that fails says nothing of the flash; what that holds is told in any case.
        EndLine(&screen);
        if (ended == LDR_ERR_PORT)
            std::fprintf(stderr, "%s\n", LDR_GetResultText(job).c_str());
        std::fprintf(stderr, "%s\n", LDR_GetFlashText(job).c_str());
        if (ended == 0)
            return 0;
        // Asked only as long as it gets on: a target that is off must not keep a script busy.
        idle = job.verified + job.written > before ? 0 : idle + 1;
        if (IsBreakWished() || !LDR_CanResume(job) || idle > IDLE_RESUMES_MAX ||
            ConfirmPopup("Program", "Go on behind the last verified block?") != 1)
            return 1;
    }
}
