#include "simulator/windows/center.h"

#include <cwchar>
#include <windows.h>

#include "simulator/windows/desktop.h"
#include "simulator/windows/dialog_template.h"

namespace sim::windows {
namespace {

constexpr int kClassUnits = 16;

thread_local bool is_awaited = false;

bool IsBox(HWND window) {
    wchar_t name[kClassUnits] = L"";
    ::GetClassNameW(window, name, kClassUnits);
    return std::wcscmp(name, kHostDialogClass) == 0;
}

// A box is activated when it has its size and place, before it is seen.
LRESULT CALLBACK OnActivation(int code, WPARAM wparam, LPARAM lparam) {
    const auto window = reinterpret_cast<HWND>(wparam);
    if (code == HCBT_ACTIVATE && is_awaited && IsBox(window)) {
        is_awaited = false;
        CenterOnScreen(window);
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
                   (screen.width - (place.right - place.left)) / 2,
                   (screen.height - (place.bottom - place.top)) / 2, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

CenteredBox::CenteredBox()
    : hook_(::SetWindowsHookExW(WH_CBT, OnActivation, nullptr, ::GetCurrentThreadId())),
      outer_is_awaited_(is_awaited) {
    is_awaited = true;
}

CenteredBox::~CenteredBox() {
    is_awaited = outer_is_awaited_;
    ::UnhookWindowsHookEx(static_cast<HHOOK>(hook_));
}

}  // namespace sim::windows
