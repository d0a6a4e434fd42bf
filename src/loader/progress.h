// How the flash loader tells its caller how far it is and asks whether to go on. The room
// declares it, a console command, the console program or a window fills it in; none of the
// loader's files knows who listens.
#ifndef LOADER_PROGRESS_H
#define LOADER_PROGRESS_H

#include <cstdint>

struct LDR_Progress {
    void *context = nullptr;
    // Between two blocks and once a second while the flash is erased. `total` is 0 while the
    // end cannot be told. True: the user wishes to stop, which is done before the next block.
    bool (*step)(void *context, uint32_t done, uint32_t total, const char *text) = nullptr;
    void (*log)(void *context, const char *line) = nullptr; // one line, without its end
};

inline bool LDR_Step(const LDR_Progress &progress, uint32_t done, uint32_t total, const char *text)
{
    return progress.step != nullptr && progress.step(progress.context, done, total, text);
}

#endif
