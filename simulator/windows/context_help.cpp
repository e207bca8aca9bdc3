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

void Draw(HWND window) {
    RECT button = ButtonOf(window);
    RECT place{};
    ::GetWindowRect(window, &place);
    ::OffsetRect(&button, -place.left, -place.top);
    if (HDC dc = ::GetWindowDC(window)) {
        // The host's own picture of the button comes from a font that it lacks.
        ::DrawFrameControl(dc, &button, DFC_BUTTON, DFCS_BUTTONPUSH);
        ::SetBkMode(dc, TRANSPARENT);
        ::SelectObject(dc, ::GetStockObject(DEFAULT_GUI_FONT));
        ::DrawTextW(dc, L"?", 1, &button, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        ::ReleaseDC(window, dc);
    }
}

// Behind whatever draws the caption.
LRESULT CALLBACK OnAnswered(int code, WPARAM wparam, LPARAM lparam) {
    const auto& answered = *reinterpret_cast<const CWPRETSTRUCT*>(lparam);
    const bool draws_caption = answered.message == WM_NCPAINT ||
                               answered.message == WM_NCACTIVATE || answered.message == WM_SETTEXT;
    if (code == HC_ACTION && draws_caption && HasButton(answered.hwnd)) {
        Draw(answered.hwnd);
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

// In a WM_NULL: a posted message that draws the caption was answered, which no hook sees.
constexpr WPARAM kDrawAgain = 0x3F3F;

bool IsTap(const MSG& message) {
    const POINT tapped = {static_cast<short>(LOWORD(message.lParam)),
                          static_cast<short>(HIWORD(message.lParam))};
    const RECT button = ButtonOf(message.hwnd);
    return message.message == WM_NCLBUTTONDOWN && ::PtInRect(&button, tapped);
}

LRESULT CALLBACK OnPosted(int code, WPARAM wparam, LPARAM lparam) {
    auto& message = *reinterpret_cast<MSG*>(lparam);
    if (code == HC_ACTION && wparam == PM_REMOVE && HasButton(message.hwnd)) {
        if (message.message == WM_NCACTIVATE) {
            ::PostMessageW(message.hwnd, WM_NULL, kDrawAgain, 0);
        } else if (message.message == WM_NULL && message.wParam == kDrawAgain) {
            Draw(message.hwnd);
        } else if (IsTap(message)) {
            message.message = WM_HELP;
            message.wParam = 0;
            message.lParam = 0;
        }
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

struct Hooks {
    HHOOK answered =
        ::SetWindowsHookExW(WH_CALLWNDPROCRET, OnAnswered, nullptr, ::GetCurrentThreadId());
    HHOOK posted = ::SetWindowsHookExW(WH_GETMESSAGE, OnPosted, nullptr, ::GetCurrentThreadId());
};

}  // namespace

void AnswerContextHelp() {
    static const bool is_program = ::GetEnvironmentVariableW(L"CEPROGRAM", nullptr, 0) != 0;
    if (is_program) {
        thread_local const Hooks hooks;
        static_cast<void>(hooks);
    }
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
