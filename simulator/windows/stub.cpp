#include "simulator/windows/stub.h"

#include <windows.h>

#include "simulator/processes/process_start.h"
#include "simulator/store/device_name.h"
#include "simulator/windows/control.h"
#include "simulator/windows/desktop.h"
#include "simulator/windows/window_calls.h"

namespace sim::windows {
namespace {

constexpr DWORD kStartTimeoutMs = 15000;
constexpr wchar_t kStubPath[] = L"stub";

LRESULT CALLBACK StubProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_CLOSE) {
        return 0;
    }
    if (message >= WM_USER) {
        return ::GetWindowLongPtrW(window, GWLP_USERDATA);
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

std::wstring ReadyEventName(const Device& device, const std::wstring& class_name) {
    return ObjectName(device, (L"stub-" + class_name).c_str());
}

std::wstring HostRunner() {
    wchar_t folder[MAX_PATH] = L"";
    ::GetSystemDirectoryW(folder, MAX_PATH);
    return std::wstring(folder) + L"\\rundll32.exe";
}

}  // namespace

// The host's rundll32 carries the window, so that it needs no program of its own and runs wherever
// coredll.dll does.
std::uint32_t StartStub(Device& device, const std::wstring& class_name, const std::wstring& title,
                        std::int32_t answer) {
    HANDLE ready = ::CreateEventW(nullptr, TRUE, FALSE, ReadyEventName(device, class_name).c_str());
    const std::wstring library = processes::SimulatorFolder() + L"\\coredll.dll";
    const processes::Started started = processes::StartHostFile(
        {HostRunner(), kStubPath,
         library + L",SimWindowStub " + class_name + L"|" + title + L"|" + std::to_wstring(answer),
         device.folder(), PrepareDesktop(device)});
    if (started.error != 0) {
        ::CloseHandle(ready);
        return 0;
    }
    processes::Register(device, started.pid, kStubPath, class_name);
    ::ResumeThread(started.thread);
    const bool up = ::WaitForSingleObject(ready, kStartTimeoutMs) == WAIT_OBJECT_0;
    for (void* handle : {ready, started.thread, started.process}) {
        ::CloseHandle(handle);
    }
    return up ? started.pid : 0;
}

int RunStub(const std::wstring& class_name, const std::wstring& title, std::int32_t answer) {
    EnterDeviceDesktop();
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = StubProc;
    window_class.hInstance = ::GetModuleHandleW(nullptr);
    window_class.lpszClassName = class_name.c_str();
    ::RegisterClassW(&window_class);
    HWND window = ::CreateWindowExW(0, class_name.c_str(), title.c_str(), WS_POPUP, 0, 0, 0, 0,
                                    nullptr, nullptr, window_class.hInstance, nullptr);
    if (window == nullptr) {
        return 1;
    }
    ::SetWindowLongPtrW(window, GWLP_USERDATA, answer);
    HANDLE ready = ::OpenEventW(EVENT_MODIFY_STATE, FALSE,
                                ReadyEventName(Device::Current(), class_name).c_str());
    if (ready != nullptr) {
        ::SetEvent(ready);
        ::CloseHandle(ready);
    }
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::DispatchMessageW(&message);
    }
    return 0;
}

}  // namespace sim::windows
