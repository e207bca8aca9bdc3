// The screen of a device: a desktop of its own in the host's window system, named as the
// device (DeviceName), so that devices beside one another never see each other's windows.
#pragma once

#include <string>

#include "simulator/store/device.h"

namespace sim::windows {

struct ScreenSize {
    int width;  // pixels
    int height;
};

// The setting "screen.size" ("640x240"); 640 x 480 when it is absent or makes no sense.
ScreenSize ScreenSizeOf(const Device& device);

// Makes the device's desktop when it is not there; it lasts at least as long as this process.
// Returns its name, for the start of a program.
std::wstring PrepareDesktop(const Device& device);

// Moves the calling thread to the desktop of `device`; called before its first window. Gives false
// when the thread has windows on another desktop and so has to stay there.
bool EnterDesktop(const Device& device);

}  // namespace sim::windows
