// The program without windows: takes its own options, picks what the event loop
// does, and turns the outcome into an exit code.
#include <algorithm>
#include <cstdio>

#include "app/console_program/console_options.h"
#include "app/console_program/lineedit.h"
#include "app/console_program/sessions.h"
#include "app/startup.h"
#include "app/version.h"
#include "calendar/archive.h"
#include "comm/modbus.h"
#include "comm/trace.h"
#include "console/monitor/monitor.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/view.h"
#include "settings/settings.h"
#include "symbols/flash_info.h"
#include "terminal/service.h"

namespace {

constexpr int EXIT_WRONG_OPTION = 2;

// What a job does, and where the console's text goes: standard output carries results only.
struct Job {
    CPG_Job job;
    int (*run)();
    std::FILE *console; // null = nowhere: --serve puts it into its answers
};
const Job *FindJob(CPG_Job wanted)
{
    static const Job JOBS[] = {
        {CPG_LINES, [] { return VR_isScriptRun ? CPG_RunScript() : CPG_RunSession(); }, stdout},
        {CPG_PROGRAM, CPG_RunProgram, stdout},
        {CPG_WATCH, CPG_RunWatch, stderr},
        {CPG_RECORD, CPG_RunRecord, stderr},
        {CPG_SCOPE, CPG_RunScope, stderr},
        {CPG_COMPARE, CPG_RunCompare, stderr},
        {CPG_SERVE, CPG_RunServe, nullptr},
    };
    for (const Job &row : JOBS)
        if (row.job == wanted)
            return &row;
    return &JOBS[0];
}

const Job *job = nullptr;

// Nothing is done with types that are not the ones asked for.
int DriveJob()
{
    CPG_RepeatMessage(); // what the settings could not have
    return VR_isTypesFailed ? 1 : job->run();
}

// A person's answer to a question, from the terminal.
bool ReadAnswer(std::string *line)
{
    line->clear();
    int c = std::getchar();
    if (c == EOF)
        return false;
    for (; c != EOF && c != '\n'; c = std::getchar())
        line->push_back(static_cast<char>(c));
    return true;
}

// Written through at once: what was on the wire before a crash is what one looks for.
void WriteTrace(const std::string &text, void *context)
{
    std::FILE *file = static_cast<std::FILE *>(context);
    PLT_SaveText(file, text);
    std::fflush(file);
}

int Run(const CPG_Options &options, int argc, char **argv)
{
    // A progress line or a question only where a person reads the terminal.
    HL_SetDefaultAnswer(options.answer);
    HL_ShowProgress(CPG_IsErrorTerminal());
    HL_SetAsker(CPG_IsTerminal() && CPG_IsErrorTerminal() ? ReadAnswer : nullptr);
    VR_isFullCommandSet = VR_isFullOnce = options.isFull;
    TRM_isWithoutWindow = true;
    Option_Echo = options.isEcho ? 1 : 0;
    VR_isEchoOnce = options.isEcho;
    CPG_options = options;
    VR_szTypesOption = options.typesFile;
    job = FindJob(CPG_JobOf(options));
    HL_SetDriver(DriveJob);
    HL_SetStreams(job->console, stderr);
    int code = VIEW_Main(argc, argv, VR_Main);
    if (VR_isScriptRun)
        code = CPG_RunScript(); // "exit" in a script ends the loop before its driver
    // A person has seen what failed; a program behind a pipe sees the exit code only. The
    // session ends like a window, whose code knows nothing of lines.
    else if (code == 0 && !CPG_IsTerminal() && CON_nFailed > 0)
        code = 1;
    CPG_RepeatMessage();
    return code < 0 ? 1 : code;
}

int RunTraced(const CPG_Options &options, int argc, char **argv)
{
    if (options.traceFile.empty())
        return Run(options, argc, argv);
    std::FILE *file = PLT_OpenFile(options.traceFile, "wb");
    if (!file)
        return CPG_FailOpen(options.traceFile);
    TRC_SetSink(WriteTrace, file);
    int code = Run(options, argc, argv);
    TRC_SetSink(nullptr, nullptr);
    // An exchange that is missing in a trace is worse than none: the code says that one is.
    const bool isBad = std::ferror(file) != 0;
    return std::fclose(file) != 0 || isBad ? CPG_FailWrite(options.traceFile) : code;
}

int MakeArchive(const CPG_Options &options)
{
    const std::vector<std::string> &members = options.archiveFiles;
    std::string problem;
    if (QAR_CheckMembers(members, &problem) == 0 && QAR_Make(options.archive.c_str(), members) != 0)
        problem = "it cannot be written";
    if (!problem.empty()) {
        std::fprintf(stderr, "Cannot make archive '%s': %s.\n", options.archive.c_str(),
                     problem.c_str());
        return 1;
    }
    for (const char *name : {MFS_VAR_MAP, MFS_TYPE_MAP})
        if (std::find(members.begin(), members.end(), name) == members.end())
            std::fprintf(stderr, "Note: to open as a map, the archive needs a member '%s'.\n",
                         name);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    PLT_GuardStandardStreams();
    PLT_GetArguments(&argc, &argv);
    CPG_Options options;
    std::string message;
    if (CPG_ParseOptions(&argc, argv, &options, &message) < 0) {
        std::fprintf(stderr, "vireo2-console: %s\nTry --help.\n", message.c_str());
        return EXIT_WRONG_OPTION;
    }
    // Help, version and archive need neither settings nor a port.
    int code = 0;
    if (options.isHelp)
        std::fputs(CPG_szUsage, stdout);
    else if (options.isVersion)
        std::printf("vireo2-console %s\n", VR_GetBuildVersion());
    else if (!options.archive.empty())
        code = MakeArchive(options);
    else
        code = RunTraced(options, argc, argv);
    // Results that did not arrive are no success. An earlier failure has left the buffer
    // empty, so that the last flush alone would not notice it.
    const bool isBad = std::ferror(stdout) != 0;
    if (std::fflush(stdout) == 0 && !isBad)
        return code;
    std::fprintf(stderr, "Cannot write to standard output.\n");
    return 1;
}
