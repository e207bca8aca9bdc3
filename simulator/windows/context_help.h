// The "?" in the caption of a window with WS_EX_CONTEXTHELP. On a device a tap on it sends WM_HELP
// at once; on a PC it changes the pointer first, and Wine draws none.
#pragma once

namespace sim::windows {

// From now on this thread's windows have it. In a program that was started on a device only: see
// DrawActiveCaptions.
void AnswerContextHelp();

// Taps the "?" of a window; false when it has none.
bool TapContextHelp(void* window);

}  // namespace sim::windows
