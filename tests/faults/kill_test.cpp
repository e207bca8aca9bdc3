// The built program killed in the middle of a backup, as by a battery that comes loose: all earlier
// states restore afterwards, and the next backup succeeds.
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "simulator/gate/counters.h"
#include "test_folders.h"
#include "tests/faults/fault_fixture.h"

namespace tolvenar {
namespace {

using nlohmann::json;

constexpr int kKilled = 205;

class KillTest : public FaultTest {
protected:
    // A state is stored and the device changed since.
    void SetUp() override {
        MakeDevice(
            [this] { device().Command(std::string("install \"") + TOLVENAR_BIN_DIR + "\""); });
        first_ = BackUp();
        ChangeDevice(1);
        second_ = Now();
        KeepDevice();
    }

    int RunBackup() {
        const json ended = json::parse(device().Command(
            "run \"\\Program Files\\Tolvenar\\Tolvenar.exe\" \"AutoBackup: External\""));
        WaitForCompanions();
        return ended["exit"];
    }
    // The program does not wait for those that it has started, and their files cannot be written
    // while they run.
    void WaitForCompanions() {
        for (int i = 0; i < 500 && device().Command("ps") != "[]"; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        EXPECT_EQ("[]", device().Command("ps"));
    }
    // How often a backup that nothing disturbs calls the function.
    long CallsOf(const char* function) {
        PutBack();
        sim::ClearCounters(device().sim());
        EXPECT_EQ(0, RunBackup());
        const long calls = sim::TotalCalls(device().sim())[function];
        Detach();
        return calls;
    }
    static void ExpectSoundPair() {
        QuietParts parts;
        EXPECT_TRUE(parts.Open());
        EXPECT_EQ(0u, parts.FindingsInPair());
    }
    void KillAndCheck(const std::string& how, const char* function, long number) {
        SCOPED_TRACE(how + " " + function + " " + std::to_string(number));
        PutBack();
        device().Command(how + " " + function + " " + std::to_string(number));
        EXPECT_EQ(kKilled, RunBackup());
        EXPECT_EQ(Lines(), Differences(second_, Now()));
        ExpectSoundPair();
        const std::uint32_t state = BackUpAgain();
        ExpectSoundPair();
        EXPECT_EQ(ResultCode::kNoDifference, Restore(state));
        EXPECT_EQ(ResultCode::kSuccess, Restore(1));
        EXPECT_EQ(Lines(), Differences(first_, Now()));
        Detach();
    }

    Contents first_;
    Contents second_;
};

TEST_F(KillTest, AtEveryWrite) {
    const long writes = CallsOf("WriteFile");
    EXPECT_LT(20, writes);
    for (long number = 1; number <= writes && !HasFailure(); ++number) {
        KillAndCheck("crash", "WriteFile", number);
    }
}

// Of the journal's many records, all written alike, some.
TEST_F(KillTest, InTheMiddleOfAWrite) {
    const long writes = CallsOf("WriteFile");
    for (long number = 1; number <= writes && !HasFailure(); number += number < 24 ? 2 : 10) {
        KillAndCheck("crash-half", "WriteFile", number);
    }
}

TEST_F(KillTest, BeforeTheOldJournalIsDeletedAndBeforeTheNewOneTakesItsName) {
    EXPECT_EQ(1, CallsOf("DeleteFileW"));
    EXPECT_EQ(1, CallsOf("MoveFileW"));
    KillAndCheck("crash", "DeleteFileW", 1);
    KillAndCheck("crash", "MoveFileW", 1);
}

}  // namespace
}  // namespace tolvenar
