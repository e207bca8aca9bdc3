#include "simulator/windows/on_desktop.h"

#include <thread>

#include "simulator/windows/desktop.h"

namespace sim::windows {

void OnDesktop(const Device& device, const std::function<void()>& body) {
    if (EnterDesktop(device)) {
        body();
        return;
    }
    std::thread([&] {
        EnterDesktop(device);
        body();
    }).join();
}

}  // namespace sim::windows
