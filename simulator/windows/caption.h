// What the captions of a program's windows do other than Wine's: they tell which window is the
// active one, and a tap on their "?" asks for help.
#pragma once

namespace sim::windows {

// In a program that was started on a device: from now on the caption of each window of this thread
// is drawn active when the window becomes it, and has its "?". Wine draws it active only when the
// window is in the foreground by then, which one that a thread shows while another's is in the
// foreground is not yet. A thread with hooks stays on its desktop, so other processes, which may go
// from one device to the next, do without.
void AnswerForCaptions();

}  // namespace sim::windows
