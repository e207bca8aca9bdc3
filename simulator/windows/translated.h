// Calls whose constants have other values on the platform than on the host: the platform's come in,
// the host's function gets its own.
#pragma once

#include <windows.h>

namespace sim::translated {

// An index that lacks the platform's mark is none there.
DWORD WINAPI GetSysColor(int index);
HBRUSH WINAPI GetSysColorBrush(int index);

LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

}  // namespace sim::translated
