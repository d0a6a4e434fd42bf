// The thread of a target that runs its boot-strap loader: feeds it from the line and gives
// erasing its time.
#include "target.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr int64_t NS_PER_MS = 1000000, NS_PER_S = 1000000000;
// A pause this long within a command ends it.
constexpr int64_t QUIET_NS = 300 * NS_PER_MS;
constexpr size_t READ_CHUNK = 512;

struct Served {
    std::vector<uint8_t> answer;
    bool erased = false;
    int64_t delayNs = 0;
};

// Time, command, length and address of the command that has just been obeyed.
void LogCommand(SIM_Target *target, bool answered)
{
    const std::vector<uint8_t> &c = target->loader.last;
    if (!target->log || c.size() < 4)
        return;
    if (c[0] == SIM_LOADER_ERASE)
        fprintf(target->log, "%12.6f loader erase", SIM_Elapsed(target));
    else
        fprintf(target->log, "%12.6f loader command %02X length %u address %02X%02X%02X",
                SIM_Elapsed(target), c[0], c[1], c[4], c[3], c[2]);
    fprintf(target->log, answered ? " answered\n" : " dropped\n");
    fflush(target->log);
}

Served ServeByte(SIM_Target *target, uint8_t byte, bool quiet)
{
    Served served;
    const std::lock_guard<std::mutex> guard(target->lock);
    const uint32_t erases = target->loader.erases, done = target->loader.done;
    if (quiet)
        SIM_LoaderQuiet(&target->loader);
    SIM_FeedLoader(&target->loader, byte, &served.answer);
    served.erased = target->loader.erases != erases;
    served.delayNs = target->options.delayMs * NS_PER_MS;
    if (target->loader.done == done)
        return served;
    target->counters.requests++;
    ++(served.answer.empty() ? target->counters.dropped : target->counters.answers);
    LogCommand(target, !served.answer.empty());
    return served;
}

// Without the lock: erasing lasts seconds, and others look into the target meanwhile.
bool SendAnswer(SIM_Target *target, const Served &served)
{
    SIM_Line *line = &target->line;
    int64_t start = line->charNs > 0 ? line->receiveNs : SIM_NowNs();
    start += served.delayNs;
    // Erasing: the bytes before the answer come while it lasts, the answer when it is over.
    const int64_t eraseNs = served.erased ? target->options.eraseSeconds * NS_PER_S : 0;
    const auto parts = static_cast<int64_t>(served.answer.size());
    for (int64_t i = 0; eraseNs > 0 && i < parts; i++)
        if (!SIM_SendLine(line, &served.answer[static_cast<size_t>(i)], 1,
                          start + eraseNs * (i + 1) / parts))
            return false;
    return eraseNs > 0 || served.answer.empty() ||
           SIM_SendLine(line, served.answer.data(), served.answer.size(), start);
}

} // namespace

void SIM_ServeLoader(SIM_Target *target)
{
    uint8_t bytes[READ_CHUNK];
    int64_t lastNs = SIM_NowNs();
    for (;;) {
        const int count = SIM_ReadLine(&target->line, bytes, sizeof bytes);
        if (count < 0)
            return;
        const bool quiet = SIM_NowNs() - lastNs > QUIET_NS;
        for (int i = 0; i < count; i++) {
            SIM_PassReceived(&target->line);
            if (!SendAnswer(target, ServeByte(target, bytes[i], quiet && i == 0)))
                return;
        }
        lastNs = SIM_NowNs();
    }
}

bool SIM_SaveFlash(SIM_Target *target, std::string *error)
{
    const std::string &path = target->options.flashImage;
    FILE *file = fopen(path.c_str(), "wb");
    const std::vector<uint8_t> &flash = target->loader.flash;
    bool good = file && fwrite(flash.data(), 1, flash.size(), file) == flash.size();
    if (file) // a disk may turn out to be full only now
        good = fclose(file) == 0 && good;
    if (!good)
        *error = "Cannot write " + path + ": " + strerror(errno);
    return good;
}
