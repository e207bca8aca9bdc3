#include "simulator/windows/desktop.h"

#include <cstdio>
#include <cwchar>
#include <map>
#include <mutex>
#include <windows.h>

#include "simulator/store/device_name.h"

namespace sim::windows {
namespace {

constexpr ScreenSize kDefaultScreen = {640, 480};

void SetText(const wchar_t* key_path, DWORD options, const wchar_t* name,
             const std::wstring& text) {
    HKEY key = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, key_path, 0, nullptr, options, KEY_SET_VALUE, nullptr,
                          &key, nullptr) != ERROR_SUCCESS) {
        return;
    }
    ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                     static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(key);
}

// Wine starts its own explorer for a desktop's first window; a name with a size here makes that a
// virtual desktop. The key is volatile: devices come and go and the names must not pile up. Where
// there is no X display the null driver still gives windows that work and are drawn nowhere.
void TellWine(const std::wstring& name, ScreenSize size) {
    SetText(L"Software\\Wine\\Drivers", REG_OPTION_NON_VOLATILE, L"Graphics", L"x11,null");
    SetText(L"Software\\Wine\\Explorer\\Desktops", REG_OPTION_VOLATILE, name.c_str(),
            std::to_wstring(size.width) + L"x" + std::to_wstring(size.height));
}

// Desktops stay open while the process lives: one without any handle or thread vanishes.
HDESK OpenKept(const Device& device, const std::wstring& name) {
    static std::mutex mutex;
    static std::map<std::wstring, HDESK> kept;
    std::lock_guard guard(mutex);
    HDESK& desktop = kept[name];
    if (desktop == nullptr) {
        TellWine(name, ScreenSizeOf(device));
        desktop = ::CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    }
    return desktop;
}

bool IsOn(const std::wstring& name) {
    wchar_t current[64] = L"";
    HDESK desktop = ::GetThreadDesktop(::GetCurrentThreadId());
    ::GetUserObjectInformationW(desktop, UOI_NAME, current, sizeof current, nullptr);
    return name == current;
}

// A thread that ends takes the handle of its desktop with it, so each has one of its own.
bool MoveThread(const Device& device, const std::wstring& name) {
    OpenKept(device, name);
    HDESK desktop = ::OpenDesktopW(name.c_str(), 0, FALSE, GENERIC_ALL);
    if (::SetThreadDesktop(desktop)) {
        return true;
    }
    ::CloseDesktop(desktop);
    return false;
}

}  // namespace

ScreenSize ScreenSizeOf(const Device& device) {
    ScreenSize size{};
    const std::string text = device.Setting("screen.size", "");
    if (std::sscanf(text.c_str(), "%dx%d", &size.width, &size.height) != 2 || size.width < 64 ||
        size.height < 64 || size.width > 4096 || size.height > 4096) {
        return kDefaultScreen;
    }
    return size;
}

std::wstring PrepareDesktop(const Device& device) {
    std::wstring name = DeviceName(device);
    OpenKept(device, name);
    return name;
}

bool EnterDesktop(const Device& device) {
    const DWORD error = ::GetLastError();
    const std::wstring name = DeviceName(device);
    const bool on_it = IsOn(name) || MoveThread(device, name);
    ::SetLastError(error);
    return on_it;
}

}  // namespace sim::windows
