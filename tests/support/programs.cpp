#include "tests/support/programs.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"
#include "simulator/processes/process_handles.h"
#include "simulator/processes/process_start.h"

namespace tests {
namespace {

constexpr std::uint32_t kLimitMs = 20000;
constexpr auto kPause = std::chrono::milliseconds(20);

}  // namespace

void InstallProgram(sim::Device& device, const std::string& name, const std::wstring& path) {
    const std::wstring file =
        sim::processes::SimulatorFolder() + L"\\" + std::wstring(name.begin(), name.end());
    sim::files::PutHostFile(device, file, path);
}

bool Eventually(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLimitMs);
    while (std::chrono::steady_clock::now() < end) {
        if (done()) {
            return true;
        }
        std::this_thread::sleep_for(kPause);
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
    sim::processes::Kill(device_, started_.pid);
    sim::processes::CloseStarted(started_);
}

int Program::ExitCode() {
    const auto code = sim::processes::Wait(started_.process, kLimitMs);
    return code ? static_cast<int>(*code) : -1;
}

bool Program::Runs() { return !sim::processes::Wait(started_.process, 0).has_value(); }

SecondDevice::SecondDevice()
    : folder_(sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES") + L"\\second-" +
              sim::host::UniqueName()) {
    sim::host::RemoveTree(folder_);
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
