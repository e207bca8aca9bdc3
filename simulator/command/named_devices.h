// Devices by name: which of what documents leave open, or tell otherwise for other versions, they
// do.
#pragma once

#include <string>

#include "simulator/store/device.h"

namespace sim {

// Makes the settings of a named device; the others stay. "random-" and a number names one that does
// of each choice what one of the named ones does, the same for a number each time. Throws
// CommandError when there is none of that name.
void ApplyNamedDevice(Device& device, const std::string& name);

}  // namespace sim
