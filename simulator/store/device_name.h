// What a device is called in the host, which has one set of names for all devices.
#pragma once

#include <string>

#include "simulator/store/device.h"

namespace sim {

// The same for all processes, different for each device folder. The device's desktop has it.
std::wstring DeviceName(const Device& device);

// `name` made this device's own: two devices' objects of one name never meet.
std::wstring ObjectName(const Device& device, const wchar_t* name);

}  // namespace sim
