// The settings of a device that have a default: one table for what the platform answers, for `show`
// and for the manual. Any other name may be set too; it is shown once it is.
#pragma once

#include <map>
#include <string>

#include "simulator/store/device.h"
#include "simulator/system/zone.h"

namespace sim {

// A setting's text, or its default of the table, or nothing.
std::string SettingText(const Device& device, const std::string& name);
std::int64_t SettingNumber(const Device& device, const std::string& name);

// Every setting with a value, by name: the device's own and the table's defaults.
std::map<std::string, std::string> AllSettings(Device& device);
// Only those that were set, for writing a device out as a profile.
std::map<std::string, std::string> OwnSettings(Device& device);

// Sets a setting that no other area has to act on; an empty value takes any setting away. "clock"
// takes a time at which the clock stands, "real", or "+" and a time from which it runs on;
// "clock.step" takes milliseconds. Throws std::runtime_error for a value that cannot be.
void ApplySystemSetting(Device& device, const std::string& name, const std::string& value);

Zone DeviceZone(const Device& device);

}  // namespace sim
