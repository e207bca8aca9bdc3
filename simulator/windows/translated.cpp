#include "simulator/windows/translated.h"

#include <commctrl.h>
#include <cwchar>

namespace sim::translated {
namespace {

constexpr int kColorMark = 0x40000000;
constexpr UINT kPlatformSetFormat = 0x1050;  // DTM_SETFORMATW

bool IsDatePicker(HWND window) {
    wchar_t name[sizeof DATETIMEPICK_CLASSW / sizeof(wchar_t) + 1] = L"";
    ::GetClassNameW(window, name, sizeof name / sizeof *name);
    return ::_wcsicmp(name, DATETIMEPICK_CLASSW) == 0;
}

}  // namespace

DWORD WINAPI GetSysColor(int index) {
    return (index & kColorMark) != 0 ? ::GetSysColor(index & ~kColorMark) : 0;
}

HBRUSH WINAPI GetSysColorBrush(int index) {
    return (index & kColorMark) != 0 ? ::GetSysColorBrush(index & ~kColorMark) : nullptr;
}

LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const bool is_format = message == kPlatformSetFormat && IsDatePicker(window);
    return ::SendMessageW(window, is_format ? DTM_SETFORMATW : message, wparam, lparam);
}

}  // namespace sim::translated
