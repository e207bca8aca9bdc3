#include "simulator/processes/rest.h"

#include <algorithm>
#include <windows.h>

#include "simulator/windows/host_windows.h"
#include "simulator/windows/on_desktop.h"

namespace sim::processes {
namespace {

constexpr DWORD kRoundMs = 10;

struct WindowCount {
    DWORD process;
    int all = 0;
    int visible = 0;
};

BOOL CALLBACK CountOne(HWND window, LPARAM param) {
    auto& count = *reinterpret_cast<WindowCount*>(param);
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    if (process == count.process && !windows::IsHostsOwn(window)) {
        ++count.all;
        count.visible += ::IsWindowVisible(window) ? 1 : 0;
    }
    return TRUE;
}

bool StaysInBackground(const Device& device, std::uint32_t pid) {
    WindowCount count{pid};
    windows::OnDesktop(device, [&] { ::EnumWindows(CountOne, reinterpret_cast<LPARAM>(&count)); });
    return count.all > 0 && count.visible == 0;
}

}  // namespace

Watch::Watch(Device& device) : device_(device) {
    for (const Running& program : List(device)) {
        before_.push_back(program.pid);
    }
}

bool Watch::OthersRun(std::uint32_t started) const {
    const std::vector<Running> list = List(device_);
    return std::any_of(list.begin(), list.end(), [&](const Running& program) {
        return program.pid != started &&
               std::find(before_.begin(), before_.end(), program.pid) == before_.end();
    });
}

bool Watch::WaitForRest(const Started& started, std::uint32_t timeout_ms) {
    const DWORD begin = ::GetTickCount();
    do {
        // The started program first: at rest it starts nothing more. A program may be started while
        // the others are looked at, so they are looked at twice.
        const bool rests =
            Wait(started.process, kRoundMs).has_value() || StaysInBackground(device_, started.pid);
        if (rests && !OthersRun(started.pid) && !OthersRun(started.pid)) {
            return true;
        }
        ::Sleep(kRoundMs);
    } while (::GetTickCount() - begin < timeout_ms);
    return false;
}

}  // namespace sim::processes
