// What a call of the simulated device leaves in the thread's last error: an error when it failed,
// the value from before when it did not, whatever the host's own calls in between did to it.
#pragma once

#include <cstdint>

namespace sim {

class LastError {
public:
    LastError();
    ~LastError();
    LastError(const LastError&) = delete;
    LastError& operator=(const LastError&) = delete;

    // Sets what the caller will find. Answers whether `error` is 0, which leaves the old value
    // alone.
    bool Answer(std::uint32_t error);
    void Set(std::uint32_t error) { value_ = error; }

private:
    std::uint32_t value_;
};

}  // namespace sim
