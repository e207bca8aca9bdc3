// The registry part of a device's dump.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "simulator/store/device.h"

namespace sim::registry {

// [{"key": "HKLM\\…", "values": [{"name", "type", "data"}]}], sorted by key and name: every key but
// the empty roots. Data is lower-case hex; REG_SZ and REG_EXPAND_SZ are told without their
// terminator.
nlohmann::json DumpJson(Device& device);

}  // namespace sim::registry
