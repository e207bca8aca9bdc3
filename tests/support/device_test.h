// A fresh simulated device for each case. The program's code under test and this process's
// coredll.dll run on it; the test fills and inspects it through `device()`, past attributes, locks
// and sharing.
#pragma once

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "simulator/files/files.h"
#include "simulator/files/power_loss.h"
#include "simulator/store/device.h"

namespace tests {

// A file held open from outside as long as this lives.
class FileLock {
public:
    FileLock(sim::Device& device, std::wstring path, const std::string& mode);
    ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&&) = delete;

private:
    sim::Device& device_;
    std::wstring path_;  // empty: moved away
};

class TestDevice {
public:
    explicit TestDevice(sim::Device& device) : device_(device) {}
    sim::Device& sim() { return device_; }

    // Folders above are made as needed. All of these throw when they cannot do it.
    void PutFile(const std::wstring& path, const std::string& bytes);
    std::string FileBytes(const std::wstring& path);
    bool Exists(const std::wstring& path);
    void MakeFolder(const std::wstring& path);
    // A folder goes with all that is in it.
    void Remove(const std::wstring& path);
    void SetAttributes(const std::wstring& path, std::uint32_t attributes);
    void Touch(const std::wstring& path, std::uint64_t filetime);
    sim::files::Entry Info(const std::wstring& path);
    // "none", "read" or "write": what the holder shares.
    [[nodiscard]] FileLock Lock(const std::wstring& path, const std::string& mode = "none");

    void Set(const std::string& setting, const std::string& value);
    // The calls of `function` from the `n`th on, `count` of them, fail with `error`; only those are
    // counted whose arguments hold `match`.
    void Fault(const std::string& function, int n, int count, std::uint32_t error,
               const std::string& match = "");
    // The same calls of ReadFile or WriteFile succeed with half of the bytes.
    void Short(const std::string& function, int n, int count = 1);
    // The card loses its power after the first `moment` changes: see `lose` in docs/simulator.md.
    // Returns how many changes there were.
    std::uint32_t LosePower(std::uint32_t seed,
                            std::uint32_t moment = sim::files::kAfterAllChanges);
    // The rules that never fired, as JSON: "[]" when there is none.
    std::string Faults();
    // Ends all rules. The test fails when one of them never fired.
    void EndFaults();
    // The same for rules that need not fire.
    void DropFaults();
    // How often the processes of the device have called `function`.
    long Calls(const std::string& function);
    // The calls of `function`, or all with "", that `body` makes: their trace as JSON.
    std::string Traced(const std::string& function, const std::function<void()>& body);
    // One command as `cedev` takes it; its JSON. Throws when it fails.
    std::string Command(const std::string& line);

    // The device of a profile; as "create", but that it stays what kind of device it is.
    void Create(const std::wstring& profile);
    // A system that lacks the notification calls becomes the first that has them.
    void HasNotifications();
    // TOLVENAR_TEST_LIKE names a device whose settings each device of a test begins with.
    void BeAsChosen();

private:
    sim::Device& device_;
};

class DeviceTest : public ::testing::Test {
protected:
    DeviceTest();
    ~DeviceTest() override;
    // Fails when a rule never fired or a handle of the device was left open.
    void TearDown() override;

    TestDevice& device() { return device_; }
    const std::wstring& folder() const { return folder_; }

private:
    std::wstring folder_;
    TestDevice device_;
};

}  // namespace tests
