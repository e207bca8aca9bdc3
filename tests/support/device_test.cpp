#include "tests/support/device_test.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "simulator/command/apply_setting.h"
#include "simulator/command/command.h"
#include "simulator/gate/counters.h"
#include "simulator/gate/rules.h"
#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"
#include "simulator/processes/processes.h"
#include "simulator/store/utf8.h"
#include "simulator/system/settings.h"
#include "storage/log/operation_log.h"

namespace tests {
namespace {

std::wstring NewDeviceFolder() {
    std::wstring folder = sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES") +
                          L"\\device-" + sim::host::UniqueName();
    sim::host::MakeFolder(folder);
    return folder;
}

sim::Device& AttachTo(const std::wstring& folder) {
    sim::host::AttachProcess(folder);
    sim::Device& device = sim::Device::Current();
    sim::files::MountCard(device);
    return device;
}

}  // namespace

FileLock::FileLock(sim::Device& device, std::wstring path, const std::string& mode)
    : device_(device), path_(std::move(path)) {
    sim::files::Lock(device_, path_, mode);
}

FileLock::~FileLock() {
    if (!path_.empty() && sim::files::Exists(device_, path_)) {
        sim::files::Unlock(device_, path_);
    }
}

FileLock::FileLock(FileLock&& other) noexcept
    : device_(other.device_), path_(std::exchange(other.path_, {})) {}

void TestDevice::PutFile(const std::wstring& path, const std::string& bytes) {
    sim::files::Put(device_, path, bytes);
}

std::string TestDevice::FileBytes(const std::wstring& path) {
    return sim::files::Get(device_, path);
}

bool TestDevice::Exists(const std::wstring& path) { return sim::files::Exists(device_, path); }

void TestDevice::MakeFolder(const std::wstring& path) { sim::files::MakeFolder(device_, path); }

void TestDevice::Remove(const std::wstring& path) { sim::files::Erase(device_, path); }

void TestDevice::SetAttributes(const std::wstring& path, std::uint32_t attributes) {
    sim::files::ReplaceAttributes(device_, path, attributes);
}

void TestDevice::Touch(const std::wstring& path, std::uint64_t filetime) {
    sim::files::Touch(device_, path, filetime);
}

sim::files::Entry TestDevice::Info(const std::wstring& path) {
    return sim::files::Info(device_, path);
}

FileLock TestDevice::Lock(const std::wstring& path, const std::string& mode) {
    return FileLock(device_, path, mode);
}

void TestDevice::Set(const std::string& setting, const std::string& value) {
    sim::ApplySetting(device_, setting, value);
}

void TestDevice::Fault(const std::string& function, int n, int count, std::uint32_t error,
                       const std::string& match) {
    std::string line = "fault " + function + " " + std::to_string(n) + " " + std::to_string(count) +
                       " " + std::to_string(error);
    if (!match.empty()) {
        line += " \"" + match + "\"";
    }
    Command(line);
}

void TestDevice::Short(const std::string& function, int n, int count) {
    Command("fault " + function + " " + std::to_string(n) + " " + std::to_string(count) + " short");
}

std::uint32_t TestDevice::LosePower(std::uint32_t seed, std::uint32_t moment) {
    return sim::files::LosePower(device_, seed, moment);
}

std::string TestDevice::Faults() { return Command("faults"); }

void TestDevice::EndFaults() {
    EXPECT_EQ("[]", Faults()) << "a rule never fired";
    DropFaults();
}

void TestDevice::DropFaults() { sim::ClearRules(device_); }

long TestDevice::Calls(const std::string& function) {
    const auto calls = sim::TotalCalls(device_);
    const auto found = calls.find(function);
    return found == calls.end() ? 0 : found->second;
}

std::string TestDevice::Traced(const std::string& function, const std::function<void()>& body) {
    Command("trace on");
    body();
    const std::string calls = Command("trace show " + function);
    Command("trace off");
    return calls;
}

void TestDevice::Create(const std::wstring& profile) {
    Command("create \"" + sim::Utf8(profile) + "\"");
    BeAsChosen();
}

void TestDevice::HasNotifications() {
    if (sim::SettingText(device_, "os.version") == "2.11") {
        Set("os.version", "2.12");
    }
}

void TestDevice::BeAsChosen() {
    if (const char* name = std::getenv("TOLVENAR_TEST_LIKE")) {
        Command(std::string("like ") + name);
    }
}

std::string TestDevice::Command(const std::string& line) {
    const sim::CommandResult result = sim::RunCommand(device_, sim::SplitWords(line));
    if (!result.ok) {
        throw std::runtime_error(result.text);
    }
    return result.text;
}

DeviceTest::DeviceTest() : folder_(NewDeviceFolder()), device_(AttachTo(folder_)) {
    tolvenar::InstallOperationLog();
    device_.BeAsChosen();
}

DeviceTest::~DeviceTest() {
    sim::processes::KillAll(device_.sim());
    sim::host::AttachProcess(L"");
    sim::host::RemoveTree(folder_);
}

void DeviceTest::TearDown() {
    device().EndFaults();
    EXPECT_EQ(0, sim::host::OpenHandlesOfCoredll()) << "handles were left open";
}

}  // namespace tests
