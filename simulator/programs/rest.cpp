#include "simulator/programs/rest.h"

#include <algorithm>
#include <windows.h>

#include "simulator/windows/host_windows.h"
#include "simulator/windows/on_desktop.h"

namespace sim::processes {
namespace {

constexpr DWORD kRoundMs = 10;

struct ProgramWindows {
    DWORD process;
    int all = 0;
    bool hidden_and_answering = true;
};

BOOL CALLBACK LookAtOne(HWND window, LPARAM param) {
    auto& seen = *reinterpret_cast<ProgramWindows*>(param);
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    if (process != seen.process || windows::IsHostsOwn(window)) {
        return TRUE;
    }
    ++seen.all;
    DWORD_PTR answer = 0;
    seen.hidden_and_answering =
        ::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kRoundMs, &answer) != 0 &&
        !::IsWindowVisible(window);
    return seen.hidden_and_answering;
}

// A program that is about to show a window has it already, but does not answer messages yet.
bool StaysInBackground(const Device& device, std::uint32_t pid) {
    ProgramWindows seen{pid};
    windows::OnDesktop(device, [&] { ::EnumWindows(LookAtOne, reinterpret_cast<LPARAM>(&seen)); });
    return seen.all > 0 && seen.hidden_and_answering;
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
    bool rested_before = false;
    do {
        // The started program first: at rest it starts nothing more. Twice in a row, because a
        // program may be started while the others are looked at, and a dialog looks for messages
        // once before it shows itself.
        const bool rests = (Wait(started.process, kRoundMs).has_value() ||
                            StaysInBackground(device_, started.pid)) &&
                           !OthersRun(started.pid);
        if (rests && rested_before) {
            return true;
        }
        rested_before = rests;
        ::Sleep(kRoundMs);
    } while (::GetTickCount() - begin < timeout_ms);
    return false;
}

}  // namespace sim::processes
