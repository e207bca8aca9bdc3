#include "simulator/windows/stylus.h"

#include <windows.h>

namespace sim::windows {
namespace {

constexpr UINT kPatienceMs = 20000;

bool Contains(HWND window, POINT point) {
    RECT place{};
    return ::IsWindowVisible(window) && ::GetWindowRect(window, &place) &&
           ::PtInRect(&place, point);
}

LRESULT HitTest(HWND window, POINT point) {
    DWORD_PTR hit = HTNOWHERE;
    ::SendMessageTimeoutW(window, WM_NCHITTEST, 0, MAKELPARAM(point.x, point.y), SMTO_NORMAL,
                          kPatienceMs, &hit);
    return static_cast<LRESULT>(hit);
}

// The host asks no window of another thread whether it lets a point through, as group boxes do.
HWND WindowBelow(HWND parent, POINT point) {
    for (HWND child = ::GetWindow(parent, GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        if (Contains(child, point) && HitTest(child, point) != HTTRANSPARENT) {
            return ::IsWindowEnabled(child) ? WindowBelow(child, point) : nullptr;
        }
    }
    return parent;
}

HWND WindowAt(POINT point) {
    const HWND top = ::GetAncestor(::WindowFromPoint(point), GA_ROOT);
    return top != nullptr && ::IsWindowEnabled(top) ? WindowBelow(top, point) : nullptr;
}

void Post(HWND window, LRESULT hit, POINT point) {
    if (hit != HTCLIENT) {
        const LPARAM place = MAKELPARAM(point.x, point.y);
        ::PostMessageW(window, WM_NCLBUTTONDOWN, static_cast<WPARAM>(hit), place);
        ::PostMessageW(window, WM_NCLBUTTONUP, static_cast<WPARAM>(hit), place);
        return;
    }
    ::ScreenToClient(window, &point);
    const LPARAM place = MAKELPARAM(point.x, point.y);
    ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, place);
    ::PostMessageW(window, WM_LBUTTONUP, 0, place);
}

}  // namespace

// Posted: devices share the host's pointer, which none may have to itself.
void TapScreen(int x, int y) {
    const POINT point = {x, y};
    const HWND window = WindowAt(point);
    if (window != nullptr) {
        Post(window, HitTest(window, point), point);
    }
}

}  // namespace sim::windows
