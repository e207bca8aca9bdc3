// The device's speed factor for waiting.
#pragma once

#include <cstdint>

#include "simulator/store/device.h"

namespace sim {

// `milliseconds` divided by the setting "sleep.scale" when it is 500 or more; a waiting shorter
// than that is a poll, which would outrun the start of the program it waits for. Never under 20; by
// 0 it is longer than any test.
std::uint32_t ScaledInterval(const Device& device, std::uint32_t milliseconds);

}  // namespace sim
