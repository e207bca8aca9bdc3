// Windows CE's view of windows: a device has a desktop of its own, dialogs are of the class
// "Dialog", and message boxes leave their text in the trace.
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/windows/window_calls.h"

namespace {

namespace host = sim::windows;

// A window class as the trace shows it: an atom has no text.
LPCWSTR Named(LPCWSTR name) { return IS_INTRESOURCE(name) ? nullptr : name; }

}  // namespace

HWND WINAPI CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x,
                            int y, int width, int height, HWND parent, HMENU menu,
                            HINSTANCE instance, LPVOID param) {
    return Gated(
        Call::CreateWindowExW, HWND{},
        [&] {
            return static_cast<HWND>(
                host::CreateWindowOnDevice({ex_style, class_name, title, style, x, y, width, height,
                                            parent, menu, instance, param}));
        },
        Named(class_name), title);
}

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog_template,
                                       HWND owner, DLGPROC procedure, LPARAM param) {
    return Gated(Call::CreateDialogIndirectParamW, HWND{}, [&] {
        return static_cast<HWND>(host::CreateDialogOnDevice(
            instance, dialog_template, owner, reinterpret_cast<const void*>(procedure), param));
    });
}

BOOL WINAPI DestroyWindow(HWND window) {
    return Gated(
        Call::DestroyWindow, FALSE, [&]() -> BOOL { return host::DestroyWindowOnDevice(window); },
        window);
}

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog_template,
                                       HWND owner, DLGPROC procedure, LPARAM param) {
    return Gated(Call::DialogBoxIndirectParamW, INT_PTR{-1}, [&]() -> INT_PTR {
        return host::RunDialogOnDevice(instance, dialog_template, owner,
                                       reinterpret_cast<const void*>(procedure), param);
    });
}

int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
    return Gated(
        Call::MessageBoxW, 0, [&] { return host::ShowMessageBox(owner, text, caption, type); },
        text, caption, type);
}

HWND WINAPI FindWindowW(LPCWSTR class_name, LPCWSTR title) {
    return Gated(
        Call::FindWindowW, HWND{},
        [&] { return static_cast<HWND>(host::FindWindowOnDevice(class_name, title)); },
        Named(class_name), title);
}

HWND WINAPI GetForegroundWindow() {
    return Gated(Call::GetForegroundWindow, HWND{},
                 [] { return static_cast<HWND>(host::ForegroundWindow()); });
}

BOOL WINAPI SetForegroundWindow(HWND window) {
    return Gated(
        Call::SetForegroundWindow, FALSE, [&]() -> BOOL { return host::BringToForeground(window); },
        window);
}

BOOL WINAPI EnumWindows(WNDENUMPROC callback, LPARAM param) {
    return Gated(Call::EnumWindows, FALSE, [&]() -> BOOL {
        return host::EnumerateWindows(reinterpret_cast<const void*>(callback), param);
    });
}

BOOL WINAPI SystemParametersInfoW(UINT action, UINT number, PVOID value, UINT how) {
    return Gated(
        Call::SystemParametersInfoW, FALSE,
        [&]() -> BOOL { return host::SystemParameter(action, number, value, how); }, action);
}

int WINAPI GetSystemMetrics(int index) {
    return Gated(
        Call::GetSystemMetrics, 0, [&] { return host::SystemMetric(index); }, index);
}
