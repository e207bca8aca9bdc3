#include "tests/support/programs.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"
#include "simulator/processes/process_handles.h"
#include "simulator/processes/process_start.h"

namespace tests {
namespace {

constexpr std::uint32_t kLimitMs = 60000;
constexpr int kLongestPauseMs = 20;

}  // namespace

void InstallProgram(sim::Device& device, const std::string& name, const std::wstring& path) {
    const std::wstring file =
        sim::processes::SimulatorFolder() + L"\\" + std::wstring(name.begin(), name.end());
    sim::files::PutHostFile(device, file, path);
}

bool Eventually(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLimitMs);
    for (int pause = 1; std::chrono::steady_clock::now() < end; pause *= 2) {
        if (done()) {
            return true;
        }
        pause = std::min(pause, kLongestPauseMs);
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
    return done();
}

Program::Program(sim::Device& device, const std::wstring& path, const std::wstring& arguments)
    : device_(device), started_(sim::processes::Start(device, path, arguments)) {
    if (started_.error != 0) {
        throw std::runtime_error("cannot start: error " + std::to_string(started_.error));
    }
}

Program::~Program() {
    if (started_.process != nullptr) {
        sim::processes::Kill(device_, started_.pid);
        sim::processes::CloseStarted(started_);
    }
}

Program::Program(Program&& other) noexcept
    : device_(other.device_), started_(std::exchange(other.started_, {})) {}

int Program::ExitCode() {
    const auto code = sim::processes::Wait(started_.process, kLimitMs);
    return code ? static_cast<int>(*code) : -1;
}

bool Program::Runs() { return !sim::processes::Wait(started_.process, 0).has_value(); }

SecondDevice::SecondDevice()
    : folder_(sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES") + L"\\second-" +
              sim::host::UniqueName()) {
    sim::host::MakeFolder(folder_);
    device_ = std::make_unique<sim::Device>(folder_);
    sim::files::MountCard(*device_);
}

SecondDevice::~SecondDevice() {
    sim::processes::KillAll(*device_);
    device_.reset();
    sim::host::RemoveTree(folder_);
}

}  // namespace tests
