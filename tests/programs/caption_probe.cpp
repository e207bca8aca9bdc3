// Shows a window and then another one, of this thread or of one of its own (argument "thread"). The
// exit code tells how the last WM_NCACTIVATE had the second one's caption drawn, and the first
// one's: 10 for an active and an inactive caption.
#include "platform/win32.h"

namespace {

constexpr wchar_t kClass[] = L"CaptionProbe";
constexpr UINT kDrawCaption = 0x86;  // WM_NCACTIVATE, which the platform's headers leave out

struct {
    HWND first;
    HWND second;
    int first_drawn;
    int second_drawn;
} shown;

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == kDrawCaption) {
        int& drawn = shown.first == nullptr || window == shown.first ? shown.first_drawn
                                                                     : shown.second_drawn;
        drawn = static_cast<int>(wparam);
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

void DispatchWaiting() {
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        ::DispatchMessageW(&message);
    }
}

HWND Make() {
    return ::CreateWindowExW(0, kClass, kClass, WS_CAPTION, 0, 0, 200, 100, nullptr, nullptr,
                             nullptr, nullptr);
}

// As a dialog does whose procedure sets the focus.
DWORD WINAPI ShowSecond(void*) {
    shown.second = Make();
    ::SetFocus(shown.second);
    ::ShowWindow(shown.second, SW_SHOW);
    DispatchWaiting();
    return 0;
}

void WaitAnswering(HANDLE thread) {
    while (::MsgWaitForMultipleObjectsEx(1, &thread, INFINITE, QS_ALLINPUT, 0) != WAIT_OBJECT_0) {
        DispatchWaiting();
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPWSTR arguments, int) {
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = Procedure;
    window_class.lpszClassName = kClass;
    ::RegisterClassW(&window_class);
    shown.first = Make();
    ::ShowWindow(shown.first, SW_SHOW);
    if (::wcscmp(arguments, L"thread") == 0) {
        HANDLE thread = ::CreateThread(nullptr, 0, ShowSecond, nullptr, 0, nullptr);
        WaitAnswering(thread);
        ::CloseHandle(thread);
    } else {
        ShowSecond(nullptr);
    }
    DispatchWaiting();
    return shown.second_drawn * 10 + shown.first_drawn;
}
