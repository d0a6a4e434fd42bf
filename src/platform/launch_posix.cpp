// Starting other programs on POSIX: without a shell, detached, and without leaving a
// zombie behind when they end.
#include "platform/system.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// Editors that cannot work without a terminal.
constexpr const char *TERMINAL_EDITORS[] = {
    "vi",  "vim",    "nvim",           "nano", "pico",  "ed", "joe",
    "jed", "mcedit", "micro",          "ne",   "helix", "hx", "jmacs",
    "mg",  "editor", "sensible-editor"};

struct Splitter {
    std::vector<std::string> words;
    std::string word;
    char quote = '\0';
    bool isInWord = false;
};

void EndWord(Splitter *state)
{
    if (state->isInWord)
        state->words.push_back(state->word);
    state->word.clear();
    state->isInWord = false;
}

// A backslash is an ordinary character: file names of other systems pass unharmed.
void SplitChar(Splitter *state, char c)
{
    if (state->quote != '\0' && c == state->quote) {
        state->quote = '\0';
    } else if (state->quote == '\0' && (c == '"' || c == '\'')) {
        state->quote = c;
        state->isInWord = true;
    } else if (state->quote == '\0' && (c == ' ' || c == '\t')) {
        EndWord(state);
    } else {
        state->word += c;
        state->isInWord = true;
    }
}

std::vector<std::string> SplitCommand(const std::string &line)
{
    Splitter state;
    for (const char c : line)
        SplitChar(&state, c);
    EndWord(&state);
    return state.words;
}

// In the grandchild: only calls that are safe between fork and exec.
[[noreturn]] void BecomeProgram(char *const *argv, int report)
{
    const int null = open("/dev/null", O_RDWR);
    if (null >= 0) {
        dup2(null, STDIN_FILENO);
        dup2(null, STDOUT_FILENO);
    }
    (void)close_range(3, ~0u, CLOSE_RANGE_CLOEXEC);
    signal(SIGPIPE, SIG_DFL); // what this program ignores, others may count on
    execvp(argv[0], argv);
    const char failed = 1;
    (void)!write(report, &failed, 1);
    _exit(127);
}

// The child ends at once and the grandchild belongs to the system: nobody has to wait
// for it. The pipe closes by itself when the program starts and carries a byte when not.
int StartDetached(const std::vector<std::string> &words)
{
    std::vector<char *> argv;
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    int ends[2];
    if (words.empty() || pipe2(ends, O_CLOEXEC) != 0)
        return -1;
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const pid_t grandchild = fork();
        if (grandchild == 0)
            BecomeProgram(argv.data(), ends[1]);
        _exit(grandchild < 0 ? 1 : 0);
    }
    close(ends[1]);
    int status = 1;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    char failed = 0;
    ssize_t got = 0;
    do { // a signal says nothing about the start
        got = child > 0 ? read(ends[0], &failed, 1) : 0;
    } while (got < 0 && errno == EINTR);
    close(ends[0]);
    return child > 0 && status == 0 && got == 0 ? 0 : -1;
}

bool HasDesktop()
{
    const char *x11 = std::getenv("DISPLAY");
    const char *wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

bool NeedsTerminal(const std::string &program)
{
    const std::string name = program.substr(program.rfind('/') + 1);
    for (const char *editor : TERMINAL_EDITORS) {
        if (name == editor)
            return true;
    }
    return false;
}

int StartEditor(const char *variable, const std::string &path)
{
    const char *command = std::getenv(variable);
    std::vector<std::string> words = SplitCommand(command != nullptr ? command : "");
    if (words.empty())
        return -1;
    if (NeedsTerminal(words[0]))
        words.insert(words.begin(), {"x-terminal-emulator", "-e"});
    words.push_back(PLT_PathArgument(path));
    return StartDetached(words);
}

} // namespace

int PLT_Launch(const std::string &commandLine)
{
    return StartDetached(SplitCommand(commandLine));
}

int PLT_OpenInEditor(const std::string &path)
{
    if (!HasDesktop())
        return -1;
    if (StartEditor("VISUAL", path) == 0 || StartEditor("EDITOR", path) == 0)
        return 0;
    return StartDetached({"xdg-open", PLT_PathArgument(path)});
}

int PLT_OpenInViewer(const std::string &path)
{
    return HasDesktop() ? StartDetached({"xdg-open", PLT_PathArgument(path)}) : -1;
}
