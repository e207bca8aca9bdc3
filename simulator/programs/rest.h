// When all that a start has brought about is done.
#pragma once

#include <cstdint>
#include <vector>

#include "simulator/processes/processes.h"

namespace sim::processes {

// Made before a start: what runs by then is no consequence of it.
class Watch {
public:
    explicit Watch(Device& device);

    // Waits until every program that came since has ended. The started one itself may also stay, in
    // the background: it waits for messages and shows no window. False when that takes longer.
    bool WaitForRest(const Started& started, std::uint32_t timeout_ms);

private:
    bool OthersRun(std::uint32_t started) const;

    Device& device_;
    std::vector<std::uint32_t> before_;
};

}  // namespace sim::processes
