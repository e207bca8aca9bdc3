// A scheduled or external backup that meets a copy whose user has a question on the screen.
#include <functional>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

class TakeOverTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        BackUpThenChange();
    }
    Program StartBackup() { return Launch("AutoBackup: External"); }
    // The second copy does its backup once the first has gone, without what it was asked.
    void ExpectTakenOver(Program& first) {
        Program second = StartBackup();
        EXPECT_EQ(0, second.ExitCode());
        EXPECT_EQ(0, first.ExitCode());
        EXPECT_EQ((Numbers{1, 2}), States());
        EXPECT_EQ("changed", device().FileBytes(kNote));
    }
    // The first copy is at work: it comes forward and goes on. `meanwhile` is done once the second
    // has been started.
    void ExpectHandedOver(Program& first, const std::function<void()>& meanwhile = nullptr) {
        const long forward = Counted("SetForegroundWindow");
        Program second = StartBackup();
        if (meanwhile) {
            meanwhile();
        }
        EXPECT_EQ(1, second.ExitCode());
        EXPECT_LT(forward, Counted("SetForegroundWindow"));
        EXPECT_TRUE(first.Runs());
    }
    void ExpectStillUsable(Program& first) {
        EXPECT_TRUE(BecomesIdle());
        ::PostMessageW(MainDialog(), WM_CLOSE, 0, 0);
        EXPECT_EQ(0, first.ExitCode());
    }
};

// Its loop ends with the first copy's main window, just as after OK.
TEST_F(TakeOverTest, UnderTheReminderBeforeABackupItRunsOneBackup) {
    Program first = OpenProgram();
    PressForReminder(IDC_BACKUP);
    ExpectTakenOver(first);
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedBackup));
}

TEST_F(TakeOverTest, UnderTheReminderBeforeARestoreNothingIsRestored) {
    Program first = OpenProgram();
    ShowTab("Restore");
    PressForReminder(IDC_RESTORE);
    ExpectTakenOver(first);
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedRestore));
    EXPECT_FALSE(Dword("Reminders").has_value());
}

TEST_F(TakeOverTest, UnderAMessageOfThePageTheProgramEnds) {
    RemoveInstallation();
    Program first = OpenProgram();
    PressForBox(IDC_BACKUP);
    ExpectTakenOver(first);
}

TEST_F(TakeOverTest, UnderTheBoxOfAResultTheFirstCopyComesForward) {
    SetDword("Reminders", 2);
    BackUp();
    Program first = OpenProgram();
    PressForBox(IDC_BACKUP);
    ExpectHandedOver(first);
    ExpectBox(kNothingToBackUp);
    ExpectStillUsable(first);
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(TakeOverTest, UnderTheQuestionForTheOldStorageItIsKept) {
    SetDword("Reminders", 2);
    SetDword("MayDeleteOldStorage", 1);
    HaveAStorageOfWhatIsGone();
    Program first = OpenProgram();
    device().Set("card.free", "20000");
    const std::string storage = device().FileBytes(kStorageFile);
    PressForBox(IDC_BACKUP);
    ExpectHandedOver(first);
    ExpectBox(kMayOldStorageGo, IDNO);
    EXPECT_EQ(unsigned(kErrorBox), Answer().style);
    ExpectStillUsable(first);
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
}

TEST_F(TakeOverTest, UnderThePopupTheFirstCopyComesForwardAndEndsItsBackup) {
    SetDword("Reminders", 2);
    Program first = OpenProgram();
    HoldCall("GlobalMemoryStatus");
    PostBackup();
    ASSERT_TRUE(RulesAreUsedUp());
    const long sent = Counted("SendMessageW");
    ExpectHandedOver(first, [&] {
        EXPECT_SOON(Counted("SendMessageW") > sent);
        Pause(200);  // the question is counted a moment before it is sent
        LetGo();
    });
    EXPECT_SOON_EQ((Numbers{1, 2}), States());
    ExpectStillUsable(first);
    EXPECT_EQ((Numbers{1, 2}), States());
}

// The user comes back to what was being written.
TEST_F(TakeOverTest, ATypedDescriptionStandsInTheFieldAtTheNextStart) {
    Program first = OpenProgram();
    Type(IDC_NEW_DESCRIPTION, "before the journey");
    ExpectTakenOver(first);
    Program next = OpenProgram();
    EXPECT_EQ("before the journey", Text(IDC_NEW_DESCRIPTION));
    EXPECT_EQ("no value", SettingText("OwnDescription"));
    Keys("alt+x");
    EXPECT_EQ(0, next.ExitCode());
}

TEST_F(TakeOverTest, OfAFieldThatTheUserClosedNothingIsKept) {
    Program first = OpenProgram();
    Type(IDC_NEW_DESCRIPTION, "before the journey");
    Keys("alt+x");
    EXPECT_EQ(0, first.ExitCode());
    EXPECT_EQ("no value", SettingText("OwnDescription"));
}

}  // namespace
}  // namespace tests
