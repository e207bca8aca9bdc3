// Calls whose constants have other values on the platform than on the host: the platform's come in,
// the host's function gets its own. And one that may bring what the system itself sends there.
#pragma once

#include <windows.h>

namespace sim::translated {

// An index that lacks the platform's mark is none there.
DWORD WINAPI GetSysColor(int index);
HBRUSH WINAPI GetSysColorBrush(int index);

// Some systems ask the window for help when they see Alt+H, before the key arrives or behind it.
BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT least, UINT most);

LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

}  // namespace sim::translated
