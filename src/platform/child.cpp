#include "platform/child.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/child_process.h"
#include "platform/system.h"

struct CHD_Child {
    CHP_Process *process = nullptr;
    void (*notify)() = nullptr;
    std::thread reader;
    std::mutex mutex; // guards what follows
    std::condition_variable ended;
    std::deque<std::string> lines;
    size_t lost = 0;
    bool hasEnded = false;
};

namespace {

// True when lines wait where there were none.
bool KeepLine(CHD_Child *child, const std::string &line)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    child->lines.push_back(line);
    if (child->lines.size() > CHD_LINES_MAX) {
        child->lines.pop_front();
        child->lost++;
    }
    return child->lines.size() == 1;
}

void KeepChar(CHD_Child *child, char c, std::string *line)
{
    if (c != '\n' && c != '\r' && line->size() < CHD_LINE_LENGTH_MAX)
        *line += c;
    if (c != '\n')
        return;
    if (KeepLine(child, *line) && child->notify != nullptr)
        child->notify();
    line->clear();
}

// The child's own thread: a child whose output nobody reads would stand still.
void ReadLines(CHD_Child *child)
{
    char bytes[4096];
    std::string line;
    while (const size_t count = CHP_Read(child->process, bytes, sizeof bytes))
        for (size_t i = 0; i < count; i++)
            KeepChar(child, bytes[i], &line);
    if (!line.empty())
        KeepLine(child, line);
    CHP_WaitForEnd(child->process);
    {
        const std::lock_guard<std::mutex> lock(child->mutex);
        child->hasEnded = true;
    }
    child->ended.notify_all();
    if (child->notify != nullptr)
        child->notify();
}

} // namespace

std::string CHD_ProgramPath(const std::string &name)
{
    return PLT_ProgramDir() + PLT_PathSeparator() + name + CHP_PROGRAM_ENDING;
}

CHD_Child *CHD_Start(const std::vector<std::string> &words, void (*notify)())
{
    CHP_Process *process = words.empty() ? nullptr : CHP_Spawn(words);
    if (process == nullptr)
        return nullptr;
    auto *child = new CHD_Child;
    child->process = process;
    child->notify = notify;
    child->reader = std::thread(ReadLines, child);
    return child;
}

size_t CHD_TakeLines(CHD_Child *child, std::deque<std::string> *lines)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    lines->insert(lines->end(), child->lines.begin(), child->lines.end());
    child->lines.clear();
    const size_t lost = child->lost;
    child->lost = 0;
    return lost;
}

bool CHD_IsRunning(CHD_Child *child)
{
    const std::lock_guard<std::mutex> lock(child->mutex);
    return !child->hasEnded;
}

int CHD_SendLine(CHD_Child *child, const std::string &line)
{
    const std::string text = line + "\n";
    return CHP_Write(child->process, text.data(), text.size());
}

void CHD_Stop(CHD_Child *child)
{
    CHP_CloseInput(child->process);
    bool hasEnded = false;
    {
        std::unique_lock<std::mutex> lock(child->mutex);
        hasEnded = child->ended.wait_for(lock, std::chrono::milliseconds(CHD_END_WAIT_MS),
                                         [child] { return child->hasEnded; });
    }
    if (!hasEnded)
        CHP_Kill(child->process);
    child->reader.join();
    CHP_Free(child->process);
    delete child;
}
