// Two pseudo terminals joined like the two ends of a cable: a foreign program opens one by
// its path, Vireo2 the other. A thread carries the bytes between them.
#ifndef TESTS_PEERS_PTY_PAIR_H
#define TESTS_PEERS_PTY_PAIR_H

#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>

class PtyPair {
public:
    PtyPair()
    {
        for (End &end : ends) {
            end.master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
            if (end.master < 0 || grantpt(end.master) != 0 || unlockpt(end.master) != 0)
                std::abort();
            end.path = ptsname(end.master);
            end.kept = open(end.path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
            termios settings;
            tcgetattr(end.kept, &settings);
            cfmakeraw(&settings);
            tcsetattr(end.kept, TCSANOW, &settings);
        }
        carrier = std::thread([this] { Carry(); });
    }
    ~PtyPair()
    {
        isEnding = true;
        carrier.join();
        for (End &end : ends) {
            close(end.kept);
            close(end.master);
        }
    }
    const std::string &Path(int end) const
    {
        return ends[end].path;
    }

private:
    struct End {
        int master = -1, kept = -1; // kept open, so that closing the port hangs nothing up
        std::string path;
    };
    void Carry()
    {
        constexpr int LOOK_MS = 100; // how often the thread looks whether it is to end
        while (!isEnding) {
            pollfd fds[2] = {{ends[0].master, POLLIN, 0}, {ends[1].master, POLLIN, 0}};
            if (poll(fds, 2, LOOK_MS) <= 0)
                continue;
            for (int i = 0; i < 2; i++) {
                char bytes[512];
                const ssize_t got = fds[i].revents ? read(ends[i].master, bytes, sizeof bytes) : 0;
                if (got > 0 && write(ends[1 - i].master, bytes, static_cast<size_t>(got)) != got)
                    std::abort();
            }
        }
    }
    End ends[2];
    std::thread carrier;
    std::atomic<bool> isEnding{false};
};

#endif
