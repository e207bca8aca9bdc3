// The device's screen as a picture.
#pragma once

#include "simulator/store/device.h"
#include "simulator/windows/png.h"

namespace sim::windows {

// What the screen shows now; black where the host has no display. Another window of the host's
// display on top of the device's screen hides what is below it.
Picture TakeScreenshot(const Device& device);

}  // namespace sim::windows
