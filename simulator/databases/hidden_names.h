// Which of the database functions a device of an older system does not have.
#pragma once

#include <string_view>

#include "simulator/store/device.h"

namespace sim::databases {

// Whether looking `name` up in coredll.dll finds nothing: what came with version 4 of the system is
// not there when the setting "os.version" is lower.
bool IsHidden(const Device& device, std::wstring_view name);

}  // namespace sim::databases
