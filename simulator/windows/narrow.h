// Windows of the host's making on a screen that is narrower than they are: as on a device they give
// way instead of standing out of it.
#pragma once

#include <vector>

namespace sim::windows {

// The windows are HWNDs.

// What becomes of a dialog's controls when it loses width.
struct NarrowLayout {
    std::vector<int> moving;     // ids of those that stay at the right edge
    std::vector<int> shrinking;  // of those that end there
};
// Takes as much from the dialog's width as it is wider than the device's screen.
void NarrowDialog(void* dialog, const NarrowLayout& layout);

// The same for a message box: its text gets more lines, its buttons stand in the middle below.
void NarrowBox(void* box);

}  // namespace sim::windows
