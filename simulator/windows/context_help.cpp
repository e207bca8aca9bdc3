#include "simulator/windows/context_help.h"

#include <windows.h>

namespace sim::windows {
namespace {

bool HasButton(HWND window) {
    return (::GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_CONTEXTHELP) != 0 &&
           (::GetWindowLongW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
}

// On the screen: left of the close box, of its size.
RECT ButtonOf(HWND window) {
    RECT place{};
    ::GetWindowRect(window, &place);
    const int frame_x = ::GetSystemMetrics(SM_CXFIXEDFRAME);
    const int frame_y = ::GetSystemMetrics(SM_CYFIXEDFRAME);
    const int height = ::GetSystemMetrics(SM_CYCAPTION) - 5;
    const int right = place.right - frame_x - ::GetSystemMetrics(SM_CXSIZE) - 2;
    const int top = place.top + frame_y + 2;
    return {right - height - 2, top, right, top + height};
}

}  // namespace

void DrawContextHelp(void* window) {
    const auto drawn = static_cast<HWND>(window);
    if (!HasButton(drawn)) {
        return;
    }
    RECT button = ButtonOf(drawn);
    RECT place{};
    ::GetWindowRect(drawn, &place);
    ::OffsetRect(&button, -place.left, -place.top);
    if (HDC dc = ::GetWindowDC(drawn)) {
        // The host's own picture of the button comes from a font that it lacks.
        ::DrawFrameControl(dc, &button, DFC_BUTTON, DFCS_BUTTONPUSH);
        ::SetBkMode(dc, TRANSPARENT);
        ::SelectObject(dc, ::GetStockObject(DEFAULT_GUI_FONT));
        ::DrawTextW(dc, L"?", 1, &button, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        ::ReleaseDC(drawn, dc);
    }
}

bool IsContextHelpTap(void* window, long place) {
    const auto tapped = static_cast<HWND>(window);
    const POINT point = {static_cast<short>(LOWORD(place)), static_cast<short>(HIWORD(place))};
    const RECT button = ButtonOf(tapped);
    return HasButton(tapped) && ::PtInRect(&button, point);
}

bool TapContextHelp(void* window) {
    const auto tapped = static_cast<HWND>(window);
    if (tapped == nullptr || !HasButton(tapped)) {
        return false;
    }
    const RECT button = ButtonOf(tapped);
    return ::PostMessageW(
               tapped, WM_NCLBUTTONDOWN, HTCAPTION,
               MAKELPARAM((button.left + button.right) / 2, (button.top + button.bottom) / 2)) != 0;
}

}  // namespace sim::windows
