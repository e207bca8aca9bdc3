// What looks like an oversight and is none: operations that say nothing, check nothing or ask
// again.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class IntendedOdditiesTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 8);
        BackUpThenChange();
        BackUp();
    }
    void TakeMemory() {
        device().Set("memory.free", "7340032");
        device().Set("store.free", "0");
    }
};

TEST_F(IntendedOdditiesTest, DifferencesNeedNeitherMemoryNorARestFromTheSchedule) {
    Open();
    ShowDifferences();
    device().Set("memory.free", "1048576");
    device().Set("store.free", "2097152");
    Ask("trace on");
    Press(IDC_TAKE_BACK_CHANGES);
    RefuseReminder(kRestoredReminder);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("hello", device().FileBytes(kNote));
    ShowDifferences();
    Press(IDC_APPLY_CHANGES);
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("changed", device().FileBytes(kNote));
    EXPECT_EQ(0u, Calls("CeClearUserNotification"));
    EXPECT_EQ(0u, Calls("RegSetValueExW", "onTime"));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(IntendedOdditiesTest, AStorageThatIsNoLongerChosenEndsABackupSilently) {
    Open();
    DeleteSetting("StorageFile");
    const long before = Counted("RegQueryValueExW");
    PostBackup();
    EXPECT_SOON(Counted("RegQueryValueExW") > before);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(0u, Calls("SetWindowTextW", "Backing up"));
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(IntendedOdditiesTest, ARestoreThatCannotCompareIsToldOnThePageAlone) {
    device().PutFile(kNote, "third");
    OpenOn("Restore");
    device().Fault("HeapAlloc", 1, 1000000, 8);
    PostRestore(IDC_RESTORE);
    EXPECT_SOON_EQ(1u, Calls("SetWindowTextW", "Restoring in"));
    EXPECT_TRUE(BecomesIdle());
    LetGo();
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("Nothing was restored: not compared. Close other programs, then try again.",
              Text(IDC_RESTORE_NOTICE));
    EXPECT_EQ("third", device().FileBytes(kNote));
}

// The box that would switch it off is hidden, hence never ticked.
TEST_F(IntendedOdditiesTest, TheReminderAfterARestoreSwitchesItselfOn) {
    device().PutFile(kNote, "third");
    OpenOn("Restore");
    PressForReminder(IDC_RESTORE);
    SetDword("Reminders", 4);
    Press(IDOK);
    ExpectEnd();
    EXPECT_EQ(6u, Dword("Reminders"));
}

// An unattended backup is silent; a restore is not, since the user waits for what it brings back.
class UnattendedRestoreTest : public IntendedOdditiesTest {
protected:
    void ExpectRestoreEnds(const Box& box) {
        SCOPED_TRACE(box.text);
        Ask("trace on");
        Program program = Launch("AutoRestore: Last State");
        ExpectBox(box);
        EXPECT_EQ(0, program.ExitCode());  // whatever it told
        LetGo();
    }
};

TEST_F(UnattendedRestoreTest, ItTellsItsResult) {
    ExpectRestoreEnds(kNothingToRestore);
    device().PutFile(kNote, "third");
    {
        const auto lock = device().Lock(kNote);
        ExpectRestoreEnds({"Restore Fail. Probably some files are locked.", kWarningBox});
    }
    device().Fault("CreateFileForMappingW", 1, 1000, 50, ".sav");
    ExpectRestoreEnds(kDriverIsObsolete);
    device().Fault("CeClearUserNotification", 1, 1, 5);
    ExpectRestoreEnds(kNotStarted);
    TakeMemory();
    ExpectRestoreEnds(TooLittleMemory("8.0"));
    EXPECT_EQ("third", device().FileBytes(kNote));
}

TEST_F(UnattendedRestoreTest, ItTellsThatTheJournalCannotBeReadAfterIt) {
    device().PutFile(kNote, "third");
    // It is opened at the start, and again after the restore.
    device().Fault("CreateFileW", 2, 1000, 5, ".jrn, 3221225472");
    ExpectRestoreEnds(kJournalUnread);
}

}  // namespace
}  // namespace tests
