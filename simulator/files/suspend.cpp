#include "simulator/files/suspend.h"

#include "simulator/files/card_absence.h"
#include "simulator/system/zone.h"

namespace sim::files {
namespace {

constexpr std::int64_t kSeconds = 3600;

}  // namespace

void Suspend(Device& device) {
    LogStore::Change change(device.store());
    const std::int64_t ticks = device.NumberSetting("suspend.lasts", kSeconds) *
                               static_cast<std::int64_t>(kTicksPerSecond);
    const char* clock =
        device.NumberSetting("clock.frozen", 0) != 0 ? "clock.frozen" : "clock.offset";
    device.SetSetting(clock, std::to_string(device.NumberSetting(clock, 0) + ticks));
    Resume(device);
}

}  // namespace sim::files
