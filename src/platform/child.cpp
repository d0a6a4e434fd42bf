// One thread reads what the child prints and keeps its lines; the program takes them when it has
// time. The lock is held for moves of lines only, never while anybody waits for the child.
#include "platform/child.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/child_process.h"
#include "platform/system.h"

struct PLT_Child {
    PLT_Process *process = nullptr;
    void (*notify)() = nullptr;
    std::thread reader;
    std::mutex mutex; // guards what follows
    std::condition_variable ended;
    std::deque<std::string> lines;
    size_t lost = 0;
    bool hasEnded = false;
};

namespace {

// True when lines wait where there were none: only then has anybody to be told.
bool KeepLine(PLT_Child *child, const std::string &line)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    child->lines.push_back(line);
    // A child that prints without end must not fill the memory.
    if (child->lines.size() > PLT_CHILD_LINES_MAX) {
        child->lines.pop_front();
        child->lost++;
    }
    return child->lines.size() == 1;
}

// The child's own thread: a child whose output nobody reads would stand still.
void ReadLines(PLT_Child *child)
{
    char bytes[4096];
    std::string line;
    while (const size_t count = PLT_ReadProcess(child->process, bytes, sizeof bytes)) {
        for (size_t i = 0; i < count; i++) {
            const char c = bytes[i];
            if (c != '\n' && c != '\r' && line.size() < PLT_CHILD_LINE_LENGTH_MAX)
                line += c;
            if (c != '\n')
                continue;
            // Outside of the lock: whoever is told may come for the lines at once.
            if (KeepLine(child, line) && child->notify != nullptr)
                child->notify();
            line.clear();
        }
    }
    // The last words of a child that died have no line end. The end itself is told below.
    if (!line.empty())
        KeepLine(child, line);
    // It may have closed its output and work on: it has ended when the system says so.
    PLT_WaitForProcess(child->process);
    {
        const std::lock_guard<std::mutex> lock(child->mutex);
        child->hasEnded = true;
    }
    child->ended.notify_all();
    if (child->notify != nullptr)
        child->notify();
}

} // namespace

std::string PLT_FindOwnProgram(const std::string &name)
{
    return PLT_ProgramDir() + PLT_PathSeparator() + name + PLT_PROGRAM_ENDING;
}

PLT_Child *PLT_StartChild(const std::vector<std::string> &words, void (*notify)())
{
    PLT_Process *process = words.empty() ? nullptr : PLT_SpawnProcess(words);
    if (process == nullptr)
        return nullptr;
    auto *child = new PLT_Child;
    child->process = process;
    child->notify = notify;
    child->reader = std::thread(ReadLines, child);
    return child;
}

size_t PLT_FetchChildLines(PLT_Child *child, std::deque<std::string> *lines)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    lines->insert(lines->end(), child->lines.begin(), child->lines.end());
    child->lines.clear();
    // Told once: the next call counts anew.
    const size_t lost = child->lost;
    child->lost = 0;
    return lost;
}

bool PLT_IsChildRunning(PLT_Child *child)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    return !child->hasEnded;
}

int PLT_SendLineToChild(PLT_Child *child, const std::string &line)
{
    const std::string text = line + "\n";
    return PLT_WriteProcess(child->process, text.data(), text.size());
}

void PLT_StopChild(PLT_Child *child)
{
    // The end of its input asks it to end; one that does not listen is made to.
    PLT_CloseProcessInput(child->process);
    bool hasEnded = false;
    {
        std::unique_lock<std::mutex> lock(child->mutex);
        hasEnded = child->ended.wait_for(lock, std::chrono::milliseconds(PLT_CHILD_END_WAIT_MS),
                                         [child] { return child->hasEnded; });
    }
    if (!hasEnded)
        PLT_KillProcess(child->process);
    // Only then is the process freed: the reader names it to the last.
    child->reader.join();
    PLT_FreeProcess(child->process);
    delete child;
}
