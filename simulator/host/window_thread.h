// The threads of a running program's windows, from outside.
#pragma once

#include <optional>

namespace sim::host {

// Milliseconds that the window's thread takes to answer a message; nothing when it takes longer
// than `limit_ms`. `window` is an HWND.
std::optional<unsigned> AnswerTime(void* window, unsigned limit_ms);

// The thread of a window stands still as long as this lives. For a thread that waits for messages:
// one that works may hold what the others need.
class HeldThread {
public:
    explicit HeldThread(void* window);
    ~HeldThread();
    HeldThread(const HeldThread&) = delete;
    HeldThread& operator=(const HeldThread&) = delete;

private:
    void* thread_;
};

// What the host says that the program of a window holds, the simulator's part included.
struct HostUse {
    unsigned handles = 0;
    unsigned threads = 0;
};
HostUse UseOfProcess(unsigned pid);

}  // namespace sim::host
