// Two pipes of which the child inherits one end each. Its end is closed here at once, or the end
// of its output would never be seen.
#include "platform/child_process.h"

#include <windows.h>

#include <cstring>

#include "platform/utf8_win32.h"

struct PLT_Process {
    HANDLE process = nullptr;
    HANDLE input = nullptr, output = nullptr;
};

const char PLT_PROGRAM_ENDING[] = ".exe";

namespace {

constexpr DWORD PIPE_BYTES = 65536; // a write does not wait before so many are unread

void CloseEnd(HANDLE *end)
{
    if (*end != nullptr)
        CloseHandle(*end);
    *end = nullptr;
}

// A pipe of which the child inherits one end and no other.
bool OpenPipe(HANDLE *readEnd, HANDLE *writeEnd, HANDLE *const ours)
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreatePipe(readEnd, writeEnd, &inherited, PIPE_BYTES) &&
           SetHandleInformation(*ours, HANDLE_FLAG_INHERIT, 0);
}

} // namespace

PLT_Process *PLT_SpawnProcess(const std::vector<std::string> &words)
{
    HANDLE theirInput = nullptr, theirOutput = nullptr;
    auto *made = new PLT_Process;
    PROCESS_INFORMATION process;
    bool isStarted = OpenPipe(&theirInput, &made->input, &made->input) &&
                     OpenPipe(&made->output, &theirOutput, &made->output);
    if (isStarted) {
        STARTUPINFOW startup;
        std::memset(&startup, 0, sizeof startup);
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = theirInput;
        startup.hStdOutput = startup.hStdError = theirOutput;
        // Names of files hold no quotes here, so quotes keep each word together.
        std::string line;
        for (const std::string &word : words)
            line += (line.empty() ? "\"" : " \"") + word + "\"";
        std::wstring wide = PLT_Wide(line); // the call may write into it
        isStarted = CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW,
                                   nullptr, nullptr, &startup, &process);
    }
    CloseEnd(&theirInput);
    CloseEnd(&theirOutput);
    if (!isStarted) {
        PLT_FreeProcess(made);
        return nullptr;
    }
    CloseHandle(process.hThread);
    made->process = process.hProcess;
    return made;
}

size_t PLT_ReadProcess(PLT_Process *process, char *bytes, size_t capacity)
{
    DWORD count = 0;
    return ReadFile(process->output, bytes, static_cast<DWORD>(capacity), &count, nullptr) ? count
                                                                                           : 0;
}

// The pipe holds more than all lines that are ever sent between two looks of the child.
int PLT_WriteProcess(PLT_Process *process, const char *bytes, size_t count)
{
    DWORD done = 0;
    return process->input != nullptr &&
                   WriteFile(process->input, bytes, static_cast<DWORD>(count), &done, nullptr) &&
                   done == count
               ? 0
               : -1;
}

void PLT_CloseProcessInput(PLT_Process *process)
{
    CloseEnd(&process->input);
}

void PLT_WaitForProcess(PLT_Process *process)
{
    WaitForSingleObject(process->process, INFINITE);
}

void PLT_KillProcess(PLT_Process *process)
{
    TerminateProcess(process->process, 1);
}

void PLT_FreeProcess(PLT_Process *process)
{
    for (HANDLE *handle : {&process->process, &process->input, &process->output})
        CloseEnd(handle);
    delete process;
}
