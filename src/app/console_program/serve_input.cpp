// Standard input cannot be waited for together with a clock on every system, so a thread of its own
// reads it. It shares nothing with the program but this queue.
#include "app/console_program/serve_input.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

namespace {

struct Line {
    int kind;
    std::string text;
};

// Never freed: the thread may still wait in a read when the program ends.
struct Queue {
    std::mutex mutex;
    std::condition_variable hasLine, hasRoom;
    std::deque<Line> lines;
};
Queue *queue = nullptr;

void QueueLine(Line line)
{
    std::unique_lock<std::mutex> lock(queue->mutex);
    queue->hasRoom.wait(lock, [] { return queue->lines.size() < CPG_SERVE_QUEUE_MAX; });
    queue->lines.push_back(std::move(line));
    queue->hasLine.notify_one();
}

void ReadAll()
{
    std::string text;
    bool isTooLong = false;
    for (int c = std::getchar(); c != EOF; c = std::getchar()) {
        if (c != '\n') {
            isTooLong = isTooLong || text.size() == CPG_SERVE_LINE_MAX;
            if (!isTooLong)
                text.push_back(static_cast<char>(c));
            continue;
        }
        QueueLine({isTooLong ? CPG_SERVE_TOO_LONG : CPG_SERVE_LINE, isTooLong ? "" : text});
        text.clear();
        isTooLong = false;
    }
    // A request that was cut off by the end is no request.
    QueueLine({CPG_SERVE_END, ""});
}

} // namespace

void CPG_StartServeInput()
{
    queue = new Queue;
    std::thread(ReadAll).detach();
}

int CPG_GetServeLine(unsigned waitMs, std::string *line)
{
    std::unique_lock<std::mutex> lock(queue->mutex);
    const auto isReady = [] { return !queue->lines.empty(); };
    if (!queue->hasLine.wait_for(lock, std::chrono::milliseconds(waitMs), isReady))
        return CPG_SERVE_NONE;
    const int kind = queue->lines.front().kind;
    *line = std::move(queue->lines.front().text);
    if (kind != CPG_SERVE_END) // the end stays the end
        queue->lines.pop_front();
    queue->hasRoom.notify_one();
    return kind;
}
