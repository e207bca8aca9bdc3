#include "simulator/windows/window_calls.h"

#include <cwchar>
#include <windows.h>

#include "simulator/windows/caption.h"
#include "simulator/windows/center.h"
#include "simulator/windows/control.h"
#include "simulator/windows/desktop.h"
#include "simulator/windows/dialog_template.h"
#include "simulator/windows/host_windows.h"
#include "simulator/windows/window_count.h"

namespace sim::windows {
namespace {

constexpr wchar_t kShellDesktopClass[] = L"DesktopExplorerWindow";

LRESULT CALLBACK DialogClassProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_CREATE && (::GetWindowLongW(dialog, GWL_STYLE) & DS_CENTER) != 0) {
        CenterOnScreen(dialog);
    }
    return ::DefDlgProcW(dialog, message, wparam, lparam);
}

// The host's dialog class under Windows CE's name.
void RegisterDialogClass() {
    static const ATOM registered = [] {
        WNDCLASSW dialog{};
        ::GetClassInfoW(nullptr, kHostDialogClass, &dialog);
        dialog.lpszClassName = kDialogClass;
        dialog.lpfnWndProc = DialogClassProcedure;
        dialog.hInstance = ::GetModuleHandleW(nullptr);
        dialog.style |= CS_GLOBALCLASS;
        return ::RegisterClassW(&dialog);
    }();
    static_cast<void>(registered);
}

DLGPROC DialogProcedure(const void* procedure) {
    return reinterpret_cast<DLGPROC>(const_cast<void*>(procedure));
}

struct Enumeration {
    WNDENUMPROC callback;
    LPARAM param;
};

BOOL CALLBACK PassOn(HWND window, LPARAM param) {
    const auto& enumeration = *reinterpret_cast<const Enumeration*>(param);
    return IsHostsOwn(window) || enumeration.callback(window, enumeration.param);
}

// A search among the windows of the screen, front to back.
struct Search {
    const wchar_t* title;  // null: any
    HWND found;
};

bool IsDialogOrBox(HWND window) {
    wchar_t name[64] = L"";
    ::GetClassNameW(window, name, 64);
    return std::wcscmp(name, kDialogClass) == 0 || std::wcscmp(name, kHostDialogClass) == 0;
}

BOOL CALLBACK TakeDialog(HWND window, LPARAM param) {
    auto& search = *reinterpret_cast<Search*>(param);
    wchar_t title[MAX_PATH] = L"";
    ::InternalGetWindowText(window, title, MAX_PATH);
    if (IsDialogOrBox(window) &&
        (search.title == nullptr || std::wcscmp(title, search.title) == 0)) {
        search.found = window;
    }
    return search.found == nullptr;
}

bool BoxesAreDialogs() {
    return Device::HasCurrent() && Device::Current().Setting("box.class", "") == "dialog";
}

bool IsOfAnotherProgram(HWND window) {
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    return process != ::GetCurrentProcessId();
}

}  // namespace

void EnterDeviceDesktop() {
    if (!Device::HasCurrent()) {
        return;
    }
    EnterDesktop(Device::Current());
    AnswerOutside(Device::Current());
    AnswerForCaptions();
}

void* CreateWindowOnDevice(const NewWindow& window) {
    EnterDeviceDesktop();
    HWND made = ::CreateWindowExW(window.ex_style, window.class_name, window.title, window.style,
                                  window.x, window.y, window.width, window.height,
                                  static_cast<HWND>(window.parent), static_cast<HMENU>(window.menu),
                                  static_cast<HINSTANCE>(window.instance), window.param);
    CountWindow(made);
    return made;
}

bool DestroyWindowOnDevice(void* window) {
    const bool destroyed = ::DestroyWindow(static_cast<HWND>(window)) != 0;
    RecountWindows();
    return destroyed;
}

void* CreateDialogOnDevice(void* instance, const void* dialog_template, void* owner,
                           const void* procedure, long param) {
    EnterDeviceDesktop();
    RegisterDialogClass();
    const auto bytes = WithDialogClass(dialog_template);
    HWND made = ::CreateDialogIndirectParamW(
        static_cast<HINSTANCE>(instance), reinterpret_cast<LPCDLGTEMPLATEW>(bytes.data()),
        static_cast<HWND>(owner), DialogProcedure(procedure), param);
    CountWindow(made);
    return made;
}

int RunDialogOnDevice(void* instance, const void* dialog_template, void* owner,
                      const void* procedure, long param) {
    EnterDeviceDesktop();
    RegisterDialogClass();
    const auto bytes = WithDialogClass(dialog_template);
    const INT_PTR answer = ::DialogBoxIndirectParamW(
        static_cast<HINSTANCE>(instance), reinterpret_cast<LPCDLGTEMPLATEW>(bytes.data()),
        static_cast<HWND>(owner), DialogProcedure(procedure), param);
    RecountWindows();
    return static_cast<int>(answer);
}

int ShowMessageBox(void* owner, const wchar_t* text, const wchar_t* caption, unsigned type) {
    EnterDeviceDesktop();
    const CenteredBox centered;
    return ::MessageBoxW(static_cast<HWND>(owner), text, caption, type);
}

void* FindWindowOnDevice(const wchar_t* class_name, const wchar_t* title) {
    EnterDeviceDesktop();
    const bool by_name = class_name != nullptr && !IS_INTRESOURCE(class_name);
    if (by_name && std::wcscmp(class_name, kShellDesktopClass) == 0) {
        return ::GetDesktopWindow();
    }
    if (by_name && std::wcscmp(class_name, kDialogClass) == 0 && BoxesAreDialogs()) {
        Search search{title, nullptr};
        ::EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }
    return ::FindWindowW(class_name, title);
}

void* ForegroundWindow() {
    EnterDeviceDesktop();
    return ::GetForegroundWindow();
}

bool BringToForeground(void* window) {
    EnterDeviceDesktop();
    constexpr ULONG_PTR kWithOwned = 1;
    const auto handle = reinterpret_cast<ULONG_PTR>(window);
    if ((handle & kWithOwned) != 0) {
        const auto owner = reinterpret_cast<HWND>(handle & ~kWithOwned);
        return ::SetForegroundWindow(::GetLastActivePopup(owner)) != 0;
    }
    if (Device::HasCurrent() && Device::Current().Setting("foreground.plain", "") == "ignored" &&
        IsOfAnotherProgram(static_cast<HWND>(window))) {
        return true;
    }
    return ::SetForegroundWindow(static_cast<HWND>(window)) != 0;
}

bool EnumerateWindows(const void* callback, long param) {
    EnterDeviceDesktop();
    Enumeration enumeration{reinterpret_cast<WNDENUMPROC>(const_cast<void*>(callback)), param};
    return ::EnumWindows(PassOn, reinterpret_cast<LPARAM>(&enumeration)) != 0;
}

int SystemMetric(int index) {
    if (Device::HasCurrent()) {
        if (index == SM_CXSCREEN) {
            return ScreenSizeOf(Device::Current()).width;
        }
        if (index == SM_CYSCREEN) {
            return ScreenSizeOf(Device::Current()).height;
        }
    }
    return ::GetSystemMetrics(index);
}

bool SystemParameter(unsigned action, unsigned number, void* value, unsigned how) {
    if (action != SPI_GETWORKAREA || value == nullptr || !Device::HasCurrent()) {
        return ::SystemParametersInfoW(action, number, value, how) != FALSE;
    }
    const ScreenSize size = ScreenSizeOf(Device::Current());
    *static_cast<RECT*>(value) = {0, 0, size.width, size.height};
    return true;
}

}  // namespace sim::windows
