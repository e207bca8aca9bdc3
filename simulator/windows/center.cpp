#include "simulator/windows/center.h"

#include <algorithm>
#include <cwchar>
#include <windows.h>

#include "simulator/windows/desktop.h"
#include "simulator/windows/dialog_template.h"
#include "simulator/windows/narrow.h"

namespace sim::windows {
namespace {

constexpr int kClassUnits = 16;

thread_local bool is_awaited = false;

bool IsBox(HWND window) {
    wchar_t name[kClassUnits] = L"";
    ::GetClassNameW(window, name, kClassUnits);
    return std::wcscmp(name, kHostDialogClass) == 0;
}

// A box has its size and its buttons when its WM_INITDIALOG is answered, and is not seen before.
LRESULT CALLBACK OnAnswered(int code, WPARAM wparam, LPARAM lparam) {
    const auto& answered = *reinterpret_cast<const CWPRETSTRUCT*>(lparam);
    if (code == HC_ACTION && answered.message == WM_INITDIALOG && is_awaited &&
        IsBox(answered.hwnd)) {
        is_awaited = false;
        NarrowBox(answered.hwnd);
        CenterOnScreen(answered.hwnd);
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

}  // namespace

void CenterOnScreen(void* window) {
    if (!Device::HasCurrent()) {
        return;
    }
    const ScreenSize screen = ScreenSizeOf(Device::Current());
    RECT place{};
    ::GetWindowRect(static_cast<HWND>(window), &place);
    ::SetWindowPos(static_cast<HWND>(window), nullptr,
                   std::max(0L, (screen.width - (place.right - place.left)) / 2),
                   std::max(0L, (screen.height - (place.bottom - place.top)) / 2), 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

CenteredBox::CenteredBox()
    : hook_(::SetWindowsHookExW(WH_CALLWNDPROCRET, OnAnswered, nullptr, ::GetCurrentThreadId())),
      outer_is_awaited_(is_awaited) {
    is_awaited = true;
}

CenteredBox::~CenteredBox() {
    is_awaited = outer_is_awaited_;
    ::UnhookWindowsHookEx(static_cast<HHOOK>(hook_));
}

}  // namespace sim::windows
