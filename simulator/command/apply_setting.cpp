#include "simulator/command/apply_setting.h"

#include "simulator/files/files.h"
#include "simulator/gate/device_time.h"
#include "simulator/system/settings.h"

namespace sim {

void ApplySetting(Device& device, const std::string& name, const std::string& value) {
    if (value.empty() || !files::ApplyFileSetting(device, name, value)) {
        ApplySystemSetting(device, name, value);
    }
    TakeTimeSettings(device);
}

}  // namespace sim
