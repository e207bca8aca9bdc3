// A device without a key for its limit sleeps: the program keeps it awake while it works.
#include "test_folders.h"
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

// The program lets ten seconds pass; beside them stands what one step takes at most.
constexpr long kMostQuietMs = 25000;

class AwakeTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetDword("onTime", 1);
        SetDailyTime(9, 30);
        device().Set("suspend.after", "60000");
        device().Set("card.ready", "60000 55");
    }
    // Every file, value and record takes its time, and the operation takes minutes.
    void MakeSlow() { device().Set("time.call", "150"); }
    void PutMany(const std::string& bytes) {
        for (int i = 0; i < 60; ++i) {
            device().PutFile(L"\\My Documents\\Many\\" + std::to_wstring(i) + L".txt", bytes);
            Ask("reg-set HKCU\\Many\\" + std::to_string(i) + " Value REG_DWORD 5");
        }
    }
    long LongestQuiet() { return Ask("counters")["longestQuiet"]; }
    void ExpectAwake() {
        EXPECT_EQ(0, Ask("counters")["suspends"]);
        EXPECT_GT(kMostQuietMs, LongestQuiet());
    }
};

TEST_F(AwakeTest, BetweenTheObjectsOfABackup) {
    PutMany("text");
    MakeSlow();
    Ask("counters clear");
    EXPECT_EQ(0, BackUp());
    EXPECT_LT(20, Counted("keybd_event"));
    ExpectAwake();
}

TEST_F(AwakeTest, BetweenTheObjectsOfARestore) {
    EXPECT_EQ(0, BackUp());
    PutMany("text");
    EXPECT_EQ(0, BackUp());
    device().Remove(L"\\My Documents\\Many");
    Ask("reg-delete HKCU\\Many");
    MakeSlow();
    Ask("counters clear");
    EXPECT_EQ(0, RestoreLast());
    ExpectAwake();
    EXPECT_EQ("text", device().FileBytes(L"\\My Documents\\Many\\59.txt"));
}

// The file is written in as few pieces as memory allows, which take minutes on a slow card.
TEST_F(AwakeTest, BetweenTheChunksOfALargeFile) {
    const std::string large(6 << 20, 'x');
    device().PutFile(L"\\My Documents\\large", large);
    device().Set("time.bytes", "100000");
    Ask("counters clear");
    EXPECT_EQ(0, BackUp());
    ExpectAwake();
    device().Remove(L"\\My Documents\\large");
    Ask("counters clear");
    EXPECT_EQ(0, RestoreLast());
    ExpectAwake();
    EXPECT_TRUE(large == device().FileBytes(L"\\My Documents\\large"));
}

TEST_F(AwakeTest, AtTheTicksOfThePrompt) {
    device().Set("sleep.scale", "0");
    Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    for (int left = 19; left > 0; --left) {
        Ask("pass 1000");
        ::SendMessageW(Dialog(L"Autobackup"), WM_TIMER, 41016, 0);
    }
    EXPECT_GT(15000, LongestQuiet());
    Press(IDOK);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

// A device that a notification has woken sleeps again after seconds.
TEST_F(AwakeTest, FromAScheduledStartOn) {
    Ask("counters clear");
    device().Set("sleep.scale", "0");
    const Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    EXPECT_LE(2, Counted("keybd_event"));
}

TEST_F(AwakeTest, WhileABatteryTellsNothing) {
    SetBattery(12, 255);
    device().Set("sleep.scale", "100");
    Ask("counters clear");
    EXPECT_EQ(0, Run("TolvenarRunAfterWakeup"));
    EXPECT_EQ(5, Counted("Sleep"));
    EXPECT_EQ(10, Counted("keybd_event"));
}

TEST_F(AwakeTest, WhileTheCardIsWaitedFor) {
    device().Set("sleep.scale", "25");
    Ask("resume");
    Ask("counters clear");
    Program program = Launch("TolvenarRunAtTime");
    ASSERT_SOON(Counted("Sleep") > 2);
    const long before = Counted("keybd_event");
    Ask("pass 20000");
    EXPECT_EQ(1, program.ExitCode());
    EXPECT_EQ(before + 2, Counted("keybd_event"));
}

// No key can be pressed while one call takes longer than the device bears.
TEST_F(AwakeTest, ADeviceThatSleepsAllTheSameLosesNothing) {
    device().Set("card.ready", "700 55");
    EXPECT_EQ(0, BackUp());
    PutMany("text");
    HoldFirstBlock();
    Ask("counters clear");
    Program program = Launch("AutoBackup: External");
    ASSERT_TRUE(RulesAreUsedUp());
    Ask("pass 120000");
    LetGo();
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(1, Ask("counters")["suspends"]);
    EXPECT_EQ((Numbers{1, 2}), States());
    device().Remove(L"\\My Documents\\Many");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("text", device().FileBytes(L"\\My Documents\\Many\\59.txt"));
}

}  // namespace
}  // namespace tests
