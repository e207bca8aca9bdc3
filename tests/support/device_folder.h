// A device of a test that makes, leaves and puts it back many times: its folder, and this process
// on it or not.
#pragma once

#include <memory>
#include <string>

#include "tests/support/device_test.h"
#include "tests/support/folder_copy.h"

namespace tests {

class DeviceFolder {
public:
    // An empty folder; `purpose` is the beginning of its name.
    explicit DeviceFolder(const std::wstring& purpose);
    ~DeviceFolder();
    DeviceFolder(const DeviceFolder&) = delete;
    DeviceFolder& operator=(const DeviceFolder&) = delete;

    // This process runs on the device from now on. The one rule that stands is that of Sleep: a
    // restore need not wait for the store to settle.
    void Attach();
    // It leaves it; what is still open is closed.
    void Detach();
    // Leaves the device and keeps it as it is.
    FolderCopy Keep();
    // Back on the device as it was when it was kept.
    void PutBack(const FolderCopy& copy);

    TestDevice& device() { return *device_; }
    const std::wstring& folder() const { return folder_; }

private:
    std::wstring folder_;
    std::unique_ptr<TestDevice> device_;
};

// Makes the clock stand and move at every write.
void StepClock(TestDevice& device);
// The device as it comes from a reset: empty, with the card still in it. No rule stands.
void ResetDevice(TestDevice& device);

}  // namespace tests
