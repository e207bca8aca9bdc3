// set, like and show: the device's settings.
#include "simulator/command/apply_setting.h"
#include "simulator/command/command_row.h"
#include "simulator/command/named_devices.h"
#include "simulator/system/settings.h"

namespace sim {

Json RunSet(Device& device, const Words& words) {
    ApplySetting(device, words[0], words[1]);
    return Done();
}

Json RunLike(Device& device, const Words& words) {
    ApplyNamedDevice(device, words[0]);
    return Done();
}

Json RunShow(Device& device, const Words&) {
    Json json = AllSettings(device);
    json["clock"] = IsoTime(device.NowUtc());
    return json;
}

}  // namespace sim
