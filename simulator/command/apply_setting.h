// What `set NAME VALUE` does, for the commands and for a profile's device.ini.
#pragma once

#include <string>

#include "simulator/store/device.h"

namespace sim {

// Hands the setting to the area that acts on it. An empty value takes it away. Throws
// std::runtime_error for a value that cannot be.
void ApplySetting(Device& device, const std::string& name, const std::string& value);

}  // namespace sim
