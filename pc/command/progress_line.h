// How far a long command is: a line on the terminal of who watches, with rate and time left.
#pragma once

#include <chrono>
#include <cstdint>

#include "pc/command/console.h"

namespace tolvenar::pc {

class ProgressLine {
public:
    using Clock = std::chrono::steady_clock;

    // `what` is done to `total_bytes` bytes. Nothing is shown where nobody watches.
    ProgressLine(Console& console, const char* what, std::uint64_t total_bytes,
                 Clock::time_point now = Clock::now());
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Add(std::uint64_t bytes, Clock::time_point now = Clock::now());

private:
    Console& console_;
    const char* const what_;
    const std::uint64_t total_;
    const Clock::time_point begin_;
    Clock::time_point shown_;
    std::uint64_t done_ = 0;
    bool is_shown_ = false;
};

}  // namespace tolvenar::pc
