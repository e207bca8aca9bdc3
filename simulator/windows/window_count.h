// The windows that this process has made and that are still there: many go with their parent or by
// a message, not by a call of their own.
#pragma once

namespace sim::windows {

// Takes a new window into the count; null is none.
void CountWindow(void* window);
// Takes out of the count what is gone. Called after every call that ends windows.
void RecountWindows();

}  // namespace sim::windows
