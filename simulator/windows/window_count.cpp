#include "simulator/windows/window_count.h"

#include <algorithm>
#include <mutex>
#include <vector>
#include <windows.h>

#include "simulator/gate/gate.h"

namespace sim::windows {
namespace {

std::mutex lock;
std::vector<HWND>& Made() {
    static std::vector<HWND> made;
    return made;
}

}  // namespace

void CountWindow(void* window) {
    RecountWindows();
    if (window == nullptr) {
        return;
    }
    {
        const std::lock_guard guard(lock);
        Made().push_back(static_cast<HWND>(window));
    }
    AddToGauge(Gauge::kWindows, 1);
}

void RecountWindows() {
    const DWORD error = ::GetLastError();
    long gone = 0;
    {
        const std::lock_guard guard(lock);
        std::vector<HWND>& made = Made();
        const auto end = std::remove_if(made.begin(), made.end(),
                                        [](HWND window) { return !::IsWindow(window); });
        gone = static_cast<long>(made.end() - end);
        made.erase(end, made.end());
    }
    if (gone != 0) {
        AddToGauge(Gauge::kWindows, -gone);
    }
    ::SetLastError(error);
}

}  // namespace sim::windows
