// Starting other programs on POSIX: without a shell, detached, and without leaving a
// zombie behind when they end.
#include "platform/system.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// Editors that cannot work without a terminal.
constexpr std::string_view TERMINAL_EDITORS[] = {
    "vi",  "vim",    "nvim",           "nano", "pico",  "ed", "joe",
    "jed", "mcedit", "micro",          "ne",   "helix", "hx", "jmacs",
    "mg",  "editor", "sensible-editor"};

// Words parted by blanks; quotes keep blanks in a word and may make an empty one. A backslash is
// an ordinary character: file names of other systems pass unharmed. No closing quote is no error.
std::vector<std::string> SplitCommand(const std::string &line)
{
    std::vector<std::string> words;
    std::string word;
    char quote = '\0';
    bool isInWord = false;
    for (const char c : line) {
        const bool isBlank = quote == '\0' && (c == ' ' || c == '\t');
        if (isBlank && isInWord) {
            words.push_back(word);
            word.clear();
        }
        isInWord = !isBlank;
        if (isBlank)
            continue;
        if (quote != '\0' && c == quote)
            quote = '\0';
        else if (quote == '\0' && (c == '"' || c == '\''))
            quote = c;
        else
            word += c;
    }
    if (isInWord)
        words.push_back(word);
    return words;
}

// In the grandchild: only calls that are safe between fork and exec.
[[noreturn]] void BecomeProgram(char *const *argv, int report)
{
    const int null = open("/dev/null", O_RDWR);
    if (null >= 0) {
        dup2(null, STDIN_FILENO);
        dup2(null, STDOUT_FILENO);
    }
    // The serial port among others: it would stay open for as long as that program runs.
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
        // A session of its own: neither Ctrl-C nor the terminal's end is meant for it.
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

// The editor that the variable names, with the file behind the variable's own arguments. -1 also
// when there is no such variable.
int StartEditor(const char *variable, const std::string &path)
{
    const char *command = std::getenv(variable);
    std::vector<std::string> words = SplitCommand(command != nullptr ? command : "");
    if (words.empty())
        return -1;
    const std::string name = words[0].substr(words[0].rfind('/') + 1);
    if (std::find(std::begin(TERMINAL_EDITORS), std::end(TERMINAL_EDITORS), name) !=
        std::end(TERMINAL_EDITORS))
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
