// Captions that tell which window is the active one.
#pragma once

namespace sim::windows {

// In a program that was started on a device: from now on the caption of each window of this thread
// is drawn active when the window becomes it. Wine draws it so only when the window is in the
// foreground by then, which one that a thread shows while another's is in the foreground is not
// yet. A thread with hooks stays on its desktop, so other processes, which may go from one device
// to the next, do without.
void DrawActiveCaptions();

}  // namespace sim::windows
