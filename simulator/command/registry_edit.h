// Single keys and values of the device's registry by their paths ("HKLM\Software\…").
#pragma once

#include <cstdint>
#include <string>

#include "simulator/store/device.h"

namespace sim {

// Makes the key when it is not there. Throws CommandError when `path` is no key's.
void SetRegistryValue(Device& device, const std::string& path, const std::string& name,
                      std::uint32_t type, const std::string& bytes);
void SetRegistryText(Device& device, const std::string& path, const std::string& name,
                     const std::string& text);
void SetRegistryNumber(Device& device, const std::string& path, const std::string& name,
                       std::uint32_t number);

}  // namespace sim
