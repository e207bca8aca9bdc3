#include "simulator/windows/caption.h"

#include <map>
#include <windows.h>

#include "simulator/windows/context_help.h"

namespace sim::windows {
namespace {

// In a WM_NULL, which programs ignore. Posted: it is to come after what the activation itself
// draws.
constexpr WPARAM kDrawCaption = 0x3F3F;

// This thread's windows that have been active, with their own procedures. A hook that sees each
// message would do without, at four calls of Wine's server for a message.
thread_local std::map<HWND, WNDPROC> own_procedures;

LRESULT AnswerForCaption(WNDPROC own, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NULL:
            if (wparam != kDrawCaption) {
                break;
            }
            // Another window may have become the active one meanwhile.
            wparam = window == ::GetActiveWindow() ? TRUE : FALSE;
            message = WM_NCACTIVATE;
            [[fallthrough]];
        case WM_NCPAINT:
        case WM_NCACTIVATE:
        case WM_SETTEXT: {
            const LRESULT answer = ::CallWindowProcW(own, window, message, wparam, lparam);
            DrawContextHelp(window);
            return answer;
        }
        case WM_NCLBUTTONDOWN:
            if (IsContextHelpTap(window, lparam)) {
                return ::CallWindowProcW(own, window, WM_HELP, 0, 0);
            }
            break;
        case WM_NCDESTROY: own_procedures.erase(window); break;
    }
    return ::CallWindowProcW(own, window, message, wparam, lparam);
}

LRESULT CALLBACK CaptionProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto row = own_procedures.find(window);
    return row == own_procedures.end()
               ? ::DefWindowProcW(window, message, wparam, lparam)
               : AnswerForCaption(row->second, window, message, wparam, lparam);
}

LRESULT CALLBACK OnActivation(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HCBT_ACTIVATE) {
        const auto window = reinterpret_cast<HWND>(wparam);
        if (own_procedures.find(window) == own_procedures.end()) {
            own_procedures[window] =
                reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(window, GWLP_WNDPROC));
            ::SetWindowLongPtrW(window, GWLP_WNDPROC,
                                reinterpret_cast<LONG_PTR>(&CaptionProcedure));
        }
        ::PostMessageW(window, WM_NULL, kDrawCaption, 0);
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

}  // namespace

void AnswerForCaptions() {
    static const bool is_program = ::GetEnvironmentVariableW(L"CEPROGRAM", nullptr, 0) != 0;
    if (is_program) {
        thread_local const HHOOK hook =
            ::SetWindowsHookExW(WH_CBT, OnActivation, nullptr, ::GetCurrentThreadId());
        static_cast<void>(hook);
    }
}

}  // namespace sim::windows
