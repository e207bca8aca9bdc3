#include "tests/support/device_folder.h"

#include <cstdlib>

#include "simulator/gate/rules.h"
#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"

namespace tests {
namespace {

// In memory where the machine has a folder there: every save of a journal waits for the disk.
std::wstring FolderOfDevices() {
    const std::wstring memory = L"Z:\\dev\\shm";
    const bool is_chosen = ::_wgetenv(L"TOLVENAR_TEST_DEVICES") != nullptr;
    return !is_chosen && sim::host::IsFolder(memory)
               ? memory
               : sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES");
}

}  // namespace

DeviceFolder::DeviceFolder(const std::wstring& purpose)
    : folder_(FolderOfDevices() + L"\\" + purpose + L"-" + sim::host::UniqueName()) {
    sim::host::MakeFolder(folder_);
}

DeviceFolder::~DeviceFolder() {
    Detach();
    sim::host::RemoveTree(folder_);
}

void DeviceFolder::Attach() {
    sim::host::AttachProcess(folder_);
    device_ = std::make_unique<TestDevice>(sim::Device::Current());
    sim::ClearRules(device().sim());
    sim::Rule rule;
    rule.function = "Sleep";
    rule.count = 1000000000;
    rule.value = 1;
    sim::AddRule(device().sim(), rule);
}

void DeviceFolder::Detach() {
    device_.reset();
    sim::host::AttachProcess(L"");
}

FolderCopy DeviceFolder::Keep() {
    Detach();
    return FolderCopy(folder_);
}

void DeviceFolder::PutBack(const FolderCopy& copy) {
    if (device_) {
        Detach();
    }
    copy.PutBack(folder_);
    Attach();
}

void StepClock(TestDevice& device) {
    device.Set("clock", "2002-05-06T07:08:09");
    device.Set("clock.step", "2000");
}

void ResetDevice(TestDevice& device) {
    const std::wstring empty = device.sim().folder() + L"\\empty";
    sim::host::MakeFolder(empty);
    device.Create(empty);
    device.DropFaults();
}

}  // namespace tests
