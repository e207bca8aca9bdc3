// The stylus on a device's screen: where a control, or an item in it, is hit, and the hit itself.
#pragma once

#include <optional>
#include <string>
#include <windows.h>

namespace sim::windows {

// The middle of a control of this process, or of an item in a list box, tab control or
// tree view (there a path of texts joined by '|'). Nothing when the item is not there or scrolled
// away. In pixels of the screen.
std::optional<POINT> SpotOf(HWND control, const std::string& item);

// Taps whatever stands there on this thread's desktop, `times` times at once. The active window is
// raised before: on the platform it stands before its owner and all others, while the host now and
// then leaves it behind an owner that was raised while it came up.
void TapScreen(POINT spot, int times);

}  // namespace sim::windows
