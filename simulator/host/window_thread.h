// The threads of a running program's windows, from outside.
#pragma once

#include <cstdint>
#include <optional>

namespace sim::host {

// Sends a message to a window (an HWND) and gives the milliseconds that its answer takes; nothing
// when it takes longer than `limit_ms`.
std::optional<unsigned> AnswerTime(void* window, unsigned limit_ms, unsigned message = 0,
                                   std::uintptr_t wparam = 0, std::intptr_t lparam = 0);

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

// Handles that the host counts for a process, the simulator's own included.
unsigned HostHandles(unsigned pid);

}  // namespace sim::host
