// Which windows on a desktop belong to the host's window system and not to programs. For sources
// that include the host's <windows.h>.
#pragma once

#include <windows.h>

namespace sim::windows {

// True for the windows that Wine itself keeps on every desktop.
bool IsHostsOwn(HWND window);

}  // namespace sim::windows
