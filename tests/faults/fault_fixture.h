// Runs an operation of the engine again and again on the same small device, each time with another
// call failing.
#pragma once

#include "platform/win32.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/text.h"
#include "simulator/gate/rules.h"
#include "tests/faults/fault_rows.h"
#include "tests/support/contents.h"
#include "tests/support/device_folder.h"
#include "tests/support/engine_parts.h"

namespace tolvenar {

// One run with one call failing.
struct FaultRun {
    const tests::FaultRow& row;
    long number;        // the call that failed, counted from 1
    long count;         // of how many when none fails
    ResultCode code{};  // what the operation told
    bool has_fired = false;
};

using tests::Contents;
using tests::Differences;
using Lines = std::vector<std::string>;

// Silent, since its notes would be counted among the allocations.
class QuietParts : public EngineParts {
public:
    QuietParts() { progress_.quiet = true; }
};

class FaultTest : public ::testing::Test {
protected:
    using Operation = std::function<ResultCode(QuietParts&)>;
    using FaultRows = std::vector<tests::FaultRow>;

    // A fresh device with some of everything and an empty storage; `prepare` runs on it first.
    void MakeDevice(const std::function<void()>& prepare = [] {});
    // Changes of every kind; `round` makes them differ.
    void ChangeDevice(int round);
    // Backs up without faults; what the state then holds.
    tests::Contents BackUp();
    // Opens everything anew and restores a state without faults.
    ResultCode Restore(std::uint32_t state);
    // The number of the last state after a backup that must succeed or find nothing to do.
    std::uint32_t BackUpAgain();
    // The device as it is now is what every run begins with; this process leaves it.
    void KeepDevice();
    // Back on the device that was kept, as it was.
    void PutBack() { folder_.PutBack(copy_); }
    void Detach() { folder_.Detach(); }

    // The journal that `operation` leaves when nothing fails.
    std::string JournalAfter(const Operation& operation);
    // Runs `operation` with every chosen call failing and `check` after each; before both storage
    // and journal are open, unless `opens_itself`. Checks itself that the call failed, that nothing
    // was left open or allocated, and that no function is missing in the rows.
    void FailEachCall(const Operation& operation, const std::function<void(FaultRun&)>& check,
                      bool opens_itself = false);

    // The same with each read and write being short.
    void ShortenEachCall(const Operation& operation, const std::function<void(FaultRun&)>& check,
                         bool opens_itself = false);
    // How often `operation` makes the call of each row, on the device as it is.
    std::vector<long> CountCalls(const FaultRows& rows, const Operation& operation,
                                 bool opens_itself);
    // Runs `operation` with one call failing on the device as it is, and checks that nothing was
    // left open or allocated. `count` is only handed on.
    FaultRun RunWithFault(const Operation& operation, bool opens_itself, const tests::FaultRow& row,
                          long number, long count);

    // A write that fails while the journal is saved, behind all others, leaves the records before
    // it, on purpose. True when that happened; `whole` is the journal of JournalAfter.
    bool IsCutJournal(const FaultRun& run, const std::string& whole);

    tests::TestDevice& device() { return folder_.device(); }
    tests::Contents Now() { return tests::ContentsOf(device().sim()); }
    Bytes Content(const char16_t* path) { return device().FileBytes(Wide(path)); }

private:
    ResultCode RunOnce(const Operation& operation, bool opens_itself,
                       const std::vector<sim::Rule>& rules);
    void MeetEachCall(const FaultRows& rows, const Operation& operation,
                      const std::function<void(FaultRun&)>& check, bool opens_itself);

    tests::DeviceFolder folder_{L"faults"};
    tests::FolderCopy copy_;
    struct Met {
        long seen = 0;
        long fired = 0;
    };
    std::vector<Met> met_;  // by rule, of the last run
    bool left_something_ = false;
};

}  // namespace tolvenar
