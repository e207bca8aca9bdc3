#include "simulator/windows/caption.h"

#include <windows.h>

namespace sim::windows {
namespace {

LRESULT CALLBACK OnActivation(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HCBT_ACTIVATE) {
        // Posted: it is to come after what the activation itself draws.
        ::PostMessageW(reinterpret_cast<HWND>(wparam), WM_NCACTIVATE, TRUE, 0);
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

// Another window may have become the active one meanwhile.
LRESULT CALLBACK OnPosted(int code, WPARAM wparam, LPARAM lparam) {
    auto& message = *reinterpret_cast<MSG*>(lparam);
    if (message.message == WM_NCACTIVATE) {
        message.wParam = message.hwnd == ::GetActiveWindow() ? TRUE : FALSE;
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

struct Hooks {
    HHOOK activation = ::SetWindowsHookExW(WH_CBT, OnActivation, nullptr, ::GetCurrentThreadId());
    HHOOK posted = ::SetWindowsHookExW(WH_GETMESSAGE, OnPosted, nullptr, ::GetCurrentThreadId());
};

}  // namespace

void DrawActiveCaptions() {
    static const bool is_program = ::GetEnvironmentVariableW(L"CEPROGRAM", nullptr, 0) != 0;
    if (is_program) {
        thread_local const Hooks hooks;
        static_cast<void>(hooks);
    }
}

}  // namespace sim::windows
