// The drawing context of a window while it is looked at or drawn in.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

class WindowDc {
public:
    // Null: the screen's.
    explicit WindowDc(HWND window) : window_(window), dc_(::GetDC(window)) {}
    ~WindowDc() { ::ReleaseDC(window_, dc_); }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC get() const { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

}  // namespace tolvenar
