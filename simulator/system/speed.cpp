#include "simulator/system/speed.h"

#include <algorithm>

#include "simulator/system/settings.h"

namespace sim {
namespace {

constexpr std::uint32_t kShortestScaled = 500;
constexpr std::uint32_t kLeast = 20;
constexpr std::uint32_t kLongest = 0x7FFFFFFF;  // of the host's timers
constexpr std::uint32_t kForEver = 0xFFFFFFFF;

}  // namespace

std::uint32_t ScaledInterval(const Device& device, std::uint32_t milliseconds) {
    if (milliseconds < kShortestScaled || milliseconds == kForEver) {
        return milliseconds;
    }
    const std::int64_t scale = SettingNumber(device, "sleep.scale");
    if (scale == 0) {
        return kLongest;
    }
    if (scale <= 1) {
        return milliseconds;
    }
    return std::max(static_cast<std::uint32_t>(milliseconds / scale), kLeast);
}

}  // namespace sim
