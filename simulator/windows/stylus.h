// The stylus on the touch screen.
#pragma once

namespace sim::windows {

// Taps the screen of the calling thread's desktop; whatever stands there gets it.
void TapScreen(int x, int y);

}  // namespace sim::windows
