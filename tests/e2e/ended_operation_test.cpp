// A process that ends in the middle of an operation: the reset button, an empty battery. The daily
// backup must not stay off for it.
#include <algorithm>

#include "tests/e2e/launch_fixture.h"
#include "tests/support/log_lines.h"

namespace tests {
namespace {

constexpr unsigned kHalfPastNine = 30 << 16 | 21;
const std::string kBack =
    "I RunProgram: The schedule that an ended operation had taken away is back";

class EndedOperationTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetDword("onTime", 1);
        SetDword("onBattery", 0);
        SetDword("WakeUpTime", kHalfPastNine);
        device().PutFile(kNote, "hello");
        ASSERT_EQ(0, BackUp());
        device().PutFile(kNote, "changed");
    }
    // A backup that is ended once the schedule is off.
    void EndABackup() {
        HoldCall("CeFindFirstDatabaseEx");
        Program backup = Launch("AutoBackup: External");
        ASSERT_TRUE(RulesAreUsedUp());
        EXPECT_EQ(0u, Dword("onTime"));
        device().Command("kill all");
        LetGo();
    }
    void ExpectScheduleIsBack() {
        EXPECT_EQ(1u, Dword("onTime"));
        EXPECT_EQ(0u, Dword("onBattery"));
        EXPECT_EQ(kHalfPastNine, Dword("WakeUpTime"));
        EXPECT_EQ(2u, Notifications().size());
        EXPECT_FALSE(Dword("OwnSuspendedOnTime").has_value());
    }
    long TimesPutBack() {
        const auto lines =
            LogLinesIn(device().FileBytes(L"\\Storage Card\\Tolvenar\\tolvenar_log.txt"));
        return std::count(lines.begin(), lines.end(), kBack);
    }
};

TEST_F(EndedOperationTest, TheNextStartByHandPutsTheScheduleBackAndTheLogSaysSo) {
    EndABackup();
    EXPECT_EQ(Texts(), Notifications());
    Open();
    ExpectScheduleIsBack();
    EXPECT_EQ(1, TimesPutBack());
    ShowTab("Options");
    EXPECT_TRUE(IsChecked(IDC_ON_TIME));
}

// The launch is judged by the schedule that it belongs to: with the zeros it would be a battery
// check.
TEST_F(EndedOperationTest, ANotificationIsJudgedByTheScheduleThatIsBack) {
    EndABackup();
    device().Set("clock", "2003-02-28T21:30:10");
    Program backup = Launch("TolvenarRunAtTime");
    EXPECT_SOON_EQ("Reason: Schedule", Text(IDC_PROMPT_REASON));
    Press(IDOK);
    EXPECT_EQ(0, backup.ExitCode());
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(EndedOperationTest, TheNextBackupIsNoOtherForIt) {
    EndABackup();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States());
    ExpectScheduleIsBack();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(EndedOperationTest, BesideARunningOperationNothingIsPutBack) {
    HoldCall("CeFindFirstDatabaseEx");
    Program backup = Launch("AutoBackup: External");
    ASSERT_TRUE(RulesAreUsedUp());
    EXPECT_EQ(0, Run("TolvenarRunAfterWakeup"));
    EXPECT_EQ(0u, Dword("onTime"));
    LetGo();
    EXPECT_EQ(0, backup.ExitCode());
    ExpectScheduleIsBack();
    EXPECT_EQ(0, TimesPutBack());
}

}  // namespace
}  // namespace tests
