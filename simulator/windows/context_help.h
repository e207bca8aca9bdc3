// The "?" in the caption of a window with WS_EX_CONTEXTHELP. On a device a tap on it sends WM_HELP
// at once; on a PC it changes the pointer first, and Wine draws none.
#pragma once

namespace sim::windows {

// Draws the "?" of a window that has one.
void DrawContextHelp(void* window);

// Whether a tap on the caption, at `place` as a message has it, meets the "?" of the window.
bool IsContextHelpTap(void* window, long place);

// Taps the "?" of a window; false when it has none.
bool TapContextHelp(void* window);

}  // namespace sim::windows
