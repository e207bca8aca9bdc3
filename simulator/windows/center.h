// The middle of a device's screen. The host centres windows on what it takes for the screen, and
// that is another device's when the desktops of both are made at the same time.
#pragma once

namespace sim::windows {

// Moves a window (an HWND) to the middle of the current device's screen. Of one that is too large
// the upper left corner is seen.
void CenterOnScreen(void* window);

// The host's next message box of this thread appears in the middle, narrow enough for
// the screen, as long as this lives.
class CenteredBox {
public:
    CenteredBox();
    ~CenteredBox();
    CenteredBox(const CenteredBox&) = delete;
    CenteredBox& operator=(const CenteredBox&) = delete;

private:
    void* hook_;
    bool outer_is_awaited_;
};

}  // namespace sim::windows
