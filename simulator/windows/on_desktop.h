// Work that has to happen on a device's desktop, from a thread that may be on another one.
#pragma once

#include <functional>

#include "simulator/store/device.h"

namespace sim::windows {

// Runs `body` here when this thread is on the desktop or can go there, else on a thread made for
// it.
void OnDesktop(const Device& device, const std::function<void()>& body);

}  // namespace sim::windows
