// A device that sleeps for a while and is woken by its user: nothing runs meanwhile, the card loses
// its power, the clock runs on.
//   setting "suspend.lasts"  seconds (3600)
#pragma once

#include "simulator/store/device.h"

namespace sim::files {

void Suspend(Device& device);

}  // namespace sim::files
