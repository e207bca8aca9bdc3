// The stylus on the touch screen.
#pragma once

namespace sim::windows {

// Taps the screen of the calling thread's desktop. What stands there gets it, unless it is
// disabled.
void TapScreen(int x, int y);

}  // namespace sim::windows
