// A launch beside a copy of the program that runs already.
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

const std::string kBackUp = "AutoBackup: External";

class RunningCopyTest : public LaunchFixture {
protected:
    // A window of a program that neither closes nor tells anything but `answer`.
    void Stub(const std::string& window_class, int answer) {
        Ask("window stub " + window_class + " Stub " + std::to_string(answer));
    }
    // Another program is in front.
    Program ShowAnother() {
        Program other(device().sim(), L"\\Windows\\peghelp.exe", L"tolvenar.htc");
        // One that ended a moment ago may still be on the screen.
        EXPECT_TRUE(Eventually([&] {
            const auto window = Top("Tolvenar Help");
            return window && window->pid == other.pid() && window->active;
        }));
        return other;
    }
    // The copy's main dialog is up and its operation window answers.
    bool IsUp(const Program& copy) {
        return MainDialogAppears(copy.pid()) && Eventually([&] {
                   return WindowCount("TolvenarOperationClass", "", copy.pid()) == 1;
               });
    }
};

TEST_F(RunningCopyTest, ASecondStartBringsTheFirstForward) {
    Program first = Launch("");
    ASSERT_TRUE(IsUp(first));
    Ask("window stub Dialog Other");
    for (const char* text : {"", "AutoRestore: Last State", "some text"}) {
        Program second = Launch(text);
        EXPECT_EQ(1, second.ExitCode()) << text;
        EXPECT_TRUE(first.Runs()) << text;
        EXPECT_EQ(1u, WindowCount("Dialog", kMainTitle)) << text;
        EXPECT_SOON(IsActive(kMainTitle)) << text;
    }
}

TEST_F(RunningCopyTest, ASecondStartComesForwardAtTheSecondAsking) {
    device().Set("foreground.plain", "ignored");
    const Program first = Launch("");
    ASSERT_TRUE(IsUp(first));
    const Program other = ShowAnother();
    EXPECT_EQ(1, Run(""));
    EXPECT_SOON(IsActive(kMainTitle));
}

TEST_F(RunningCopyTest, ABackupTakesOverAnIdleCopy) {
    Program first = Launch("");
    ASSERT_TRUE(IsUp(first));
    Program second = Launch(kBackUp);
    EXPECT_EQ(0, second.ExitCode());
    EXPECT_EQ(0, first.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(HasState(kBackUp));
}

TEST_F(RunningCopyTest, AScheduledBackupTakesOverAnIdleCopy) {
    SetDword("onTime", 1);
    SetDailyTime(9, 30);
    device().Set("sleep.scale", "50");
    Program first = Launch("");
    ASSERT_TRUE(IsUp(first));
    Program second = Launch("TolvenarRunAtTime");
    EXPECT_EQ(0, second.ExitCode());
    EXPECT_EQ(0, first.ExitCode());
    EXPECT_TRUE(HasState("AutoBackup: Time"));
}

TEST_F(RunningCopyTest, ABusyCopyStaysAndNoSecondOperationStarts) {
    Stub("TolvenarOperationClass", 1);
    Ask("counters clear");
    Program second = Launch(kBackUp);
    EXPECT_EQ(1, second.ExitCode());
    EXPECT_EQ(Numbers(), States());
    EXPECT_EQ(0, Counted("PostMessageW"));
    EXPECT_EQ(1, Counted("SetForegroundWindow"));
}

TEST_F(RunningCopyTest, ACopyThatDoesNotCloseInTwoSecondsLeavesADialogOnly) {
    Stub("TolvenarOperationClass", 0);
    Stub("TolvenarClass", 0);
    Ask("counters clear");
    Program second = Launch(kBackUp);
    ASSERT_TRUE(MainDialogAppears(second.pid()));
    EXPECT_EQ(1 + 1 + 10, Counted("FindWindowW"));
    EXPECT_EQ(10, Counted("Sleep"));
    EXPECT_EQ(0, Counted("RegisterClassW"));
    EXPECT_EQ(0u, WindowCount("TolvenarClass", "", second.pid()));
    EXPECT_EQ(0u, WindowCount("TolvenarOperationClass", "", second.pid()));
    EXPECT_EQ(Numbers(), States());
    CloseMainDialog();
    EXPECT_EQ(0, second.ExitCode());
}

// The first copy's main window is there before its operation window, by which it would be found.
TEST_F(RunningCopyTest, BesideACopyThatNeverComesUpTheSecondStays) {
    Stub("TolvenarClass", 0);
    Program second = Launch("");
    ASSERT_TRUE(MainDialogAppears(second.pid()));
    EXPECT_EQ(0u, WindowCount("TolvenarClass", "", second.pid()));
    CloseMainDialog();
    EXPECT_EQ(0, second.ExitCode());
}

// A double tap on a storage with many states: the first copy loads for longer than the second
// waits.
TEST_F(RunningCopyTest, TheSecondOfADoubleTapGivesWayToTheFirst) {
    device().PutFile(kNote, "hello");
    ASSERT_EQ(0, BackUp());
    HoldCall("CreateThread");
    Program first = Launch("");
    ASSERT_TRUE(RulesAreUsedUp());
    Program second = Launch("");
    ASSERT_TRUE(MainDialogAppears(second.pid()));
    const long forward = Counted("SetForegroundWindow");
    LetGo();
    EXPECT_EQ(1, second.ExitCode());
    ASSERT_TRUE(MainDialogAppears(first.pid()));
    EXPECT_LT(forward, Counted("SetForegroundWindow"));
    EXPECT_EQ(1u, WindowCount("Dialog", kMainTitle));
    CloseMainDialog();
    EXPECT_EQ(0, first.ExitCode());
}

TEST_F(RunningCopyTest, AnUnattendedCopyIsNotSeenAndItsStorageFoundHeld) {
    device().PutFile(kNote, "hello");
    ASSERT_EQ(0, BackUp());
    device().PutFile(L"\\My Documents\\b.txt", "more");
    HoldFirstBlock();
    Program first = Launch(kBackUp);
    ASSERT_TRUE(RulesAreUsedUp());
    EXPECT_EQ(1, BackUp());
    LetGo();
    EXPECT_EQ(0, first.ExitCode());
    EXPECT_EQ((Numbers{1, 2}), States());
}

}  // namespace
}  // namespace tests
