// The child's input is one end of a socket pair, its output and errors a pipe. What this program
// keeps of the two is closed in the child, or its input would never end.
#include "platform/child_process.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

struct PLT_Process {
    pid_t id = -1;
    int input = -1; // a socket: writing to a program that has ended raises no signal
    int output = -1;
};

const char PLT_PROGRAM_ENDING[] = "";

namespace {

constexpr int FIRST_OTHER = 3; // behind the standard streams

void CloseEnd(int *end)
{
    if (*end >= 0)
        close(*end);
    *end = -1;
}

// In a group of its own: a Ctrl-C at the terminal is meant for this program.
int SpawnWith(const std::vector<std::string> &words, int input, int output, pid_t *id)
{
    std::vector<char *> argv;
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    sigset_t none, changed;
    sigemptyset(&none);
    sigemptyset(&changed);
    // What this program ignores or handles would stay ignored in the child.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        sigaddset(&changed, signal);
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, FIRST_OTHER);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &changed);
    const int error = posix_spawn(id, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return error;
}

} // namespace

PLT_Process *PLT_SpawnProcess(const std::vector<std::string> &words)
{
    int input[2] = {-1, -1}, output[2] = {-1, -1}; // ours first, as sockets have no direction
    pid_t id = -1;
    const bool isStarted = socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, input) == 0 &&
                           pipe2(output, O_CLOEXEC) == 0 &&
                           SpawnWith(words, input[1], output[1], &id) == 0;
    CloseEnd(&input[1]);
    CloseEnd(&output[1]);
    if (!isStarted) {
        CloseEnd(&input[0]);
        CloseEnd(&output[0]);
        return nullptr;
    }
    auto *process = new PLT_Process;
    process->id = id;
    process->input = input[0];
    process->output = output[0];
    return process;
}

size_t PLT_ReadProcess(PLT_Process *process, char *bytes, size_t capacity)
{
    ssize_t count = 0;
    do
        count = read(process->output, bytes, capacity);
    while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

int PLT_WriteProcess(PLT_Process *process, const char *bytes, size_t count)
{
    // A child that does not read its input has no claim on our time: half a line is a failure.
    const ssize_t done = send(process->input, bytes, count, MSG_NOSIGNAL | MSG_DONTWAIT);
    return done == static_cast<ssize_t>(count) ? 0 : -1;
}

void PLT_CloseProcessInput(PLT_Process *process)
{
    CloseEnd(&process->input);
}

// It stays a zombie, and its number its own, until PLT_FreeProcess.
void PLT_WaitForProcess(PLT_Process *process)
{
    siginfo_t info;
    while (waitid(P_PID, static_cast<id_t>(process->id), &info, WEXITED | WNOWAIT) < 0 &&
           errno == EINTR) {
    }
}

void PLT_KillProcess(PLT_Process *process)
{
    // Its number cannot have gone to another process: it stays its own until PLT_FreeProcess.
    kill(process->id, SIGKILL);
}

void PLT_FreeProcess(PLT_Process *process)
{
    while (waitpid(process->id, nullptr, 0) < 0 && errno == EINTR) {
    }
    CloseEnd(&process->input);
    CloseEnd(&process->output);
    delete process;
}
