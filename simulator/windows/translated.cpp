#include "simulator/windows/translated.h"

#include <commctrl.h>
#include <cwchar>
#include <string>

#include "simulator/store/device.h"

namespace sim::translated {
namespace {

constexpr int kColorMark = 0x40000000;
constexpr UINT kPlatformSetFormat = 0x1050;  // DTM_SETFORMATW

bool IsDatePicker(HWND window) {
    wchar_t name[sizeof DATETIMEPICK_CLASSW / sizeof(wchar_t) + 1] = L"";
    ::GetClassNameW(window, name, sizeof name / sizeof *name);
    return ::_wcsicmp(name, DATETIMEPICK_CLASSW) == 0;
}

bool IsHelpKey(const MSG& message) {
    return message.message == WM_SYSKEYDOWN && message.wParam == 'H';
}

void AskForHelp(HWND window) {
    const std::string how =
        Device::HasCurrent() ? Device::Current().Setting("help.key", "") : std::string();
    if (how == "sent") {
        ::SendMessageW(::GetAncestor(window, GA_ROOT), WM_HELP, 0, 0);
    } else if (how == "posted") {
        ::PostMessageW(::GetAncestor(window, GA_ROOT), WM_HELP, 0, 0);
    }
}

}  // namespace

BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT least, UINT most) {
    const BOOL answer = ::GetMessageW(message, window, least, most);
    if (answer > 0 && IsHelpKey(*message)) {
        AskForHelp(message->hwnd);
    }
    return answer;
}

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
