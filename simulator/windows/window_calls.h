// The host's window calls as a program on a device gets them: on the device's own desktop, with
// Windows CE's dialog class. Handles travel as void*; each call sets the host's last error.
#pragma once

#include <cstdint>

namespace sim::windows {

// Before a thread's first window: puts it on the desktop of the process's device and makes the
// process answer to the outside (control.h).
void EnterDeviceDesktop();

struct NewWindow {
    std::uint32_t ex_style;
    const wchar_t* class_name;
    const wchar_t* title;
    std::uint32_t style;
    int x, y, width, height;
    void* parent;
    void* menu;
    void* instance;
    void* param;
};
void* CreateWindowOnDevice(const NewWindow& window);
bool DestroyWindowOnDevice(void* window);

// `procedure` is a DLGPROC.
void* CreateDialogOnDevice(void* instance, const void* dialog_template, void* owner,
                           const void* procedure, long param);
int RunDialogOnDevice(void* instance, const void* dialog_template, void* owner,
                      const void* procedure, long param);

int ShowMessageBox(void* owner, const wchar_t* text, const wchar_t* caption, unsigned type);

// "DesktopExplorerWindow", the shell's desktop, is the device's whole screen.
void* FindWindowOnDevice(const wchar_t* class_name, const wchar_t* title);

void* ForegroundWindow();
bool BringToForeground(void* window);

// Calls `callback` (a WNDENUMPROC) for the device's top-level windows, without those that the host
// keeps for its own use.
bool EnumerateWindows(const void* callback, long param);

// GetSystemMetrics with the device's screen size.
int SystemMetric(int index);
// SystemParametersInfoW with the device's work area, which is its whole screen.
bool SystemParameter(unsigned action, unsigned number, void* value, unsigned how);

}  // namespace sim::windows
