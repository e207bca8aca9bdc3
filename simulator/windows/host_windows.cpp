#include "simulator/windows/host_windows.h"

#include <cwchar>

namespace sim::windows {

bool IsHostsOwn(HWND window) {
    constexpr const wchar_t* kHostClasses[] = {
        L"IME",        L"WineDdeServerName",     L"WineDdeEventClass", L"Shell_TrayWnd",
        L"DDEMLEvent", L"OleMainThreadWndClass", L"class_rundll32",    L"__wine_tray_icon",
    };
    wchar_t name[64] = L"";
    ::GetClassNameW(window, name, 64);
    for (const wchar_t* own : kHostClasses) {
        if (std::wcscmp(name, own) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace sim::windows
