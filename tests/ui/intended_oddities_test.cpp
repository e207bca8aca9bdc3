// What looks like an oversight and is none: operations that say nothing, check nothing or ask
// again.
#include "tests/support/programs.h"
#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kConfirmedBackup = WM_APP + 124;
constexpr UINT kConfirmedRestore = WM_APP + 128;
constexpr int kStates = 1014, kRestore = 1002;

class IntendedOdditiesTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 8);
        BackUpThenChange();
        BackUp();
    }
    void ShowDifferences() {
        ShowTab("Advanced Restore");
        const HWND list = Handle(kStates);
        ::SendMessageW(::GetParent(list), WM_COMMAND, MAKEWPARAM(kStates, LBN_DBLCLK), 0);
        ASSERT_EQ("Differences from State 1 to State 2", Text(1041));
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
    Press(1038);
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
    ShowDifferences();
    Press(1037);
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_EQ("changed", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_EQ(0u, Calls("CeClearUserNotification"));
    EXPECT_EQ(0u, Calls("RegSetValueExW", "onTime"));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(IntendedOdditiesTest, AStorageThatIsNoLongerChosenEndsABackupSilently) {
    Open();
    Ask("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar StorageFile");
    const long before = Counted("RegQueryValueExW");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    EXPECT_TRUE(Eventually([&] { return Counted("RegQueryValueExW") > before; }));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(0u, Calls("SetWindowTextW", "Backing up"));
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(IntendedOdditiesTest, ARestoreThatCannotCompareSaysNothing) {
    device().PutFile(L"\\My Documents\\a.txt", "third");
    Open();
    ShowTab("Restore");
    device().Fault("HeapAlloc", 1, 1000000, 8);
    ::PostMessageW(OperationWindow(), kConfirmedRestore, 1, kRestore);
    EXPECT_TRUE(Eventually([&] { return Calls("SetWindowTextW", "Restoring in") == 1; }));
    EXPECT_TRUE(BecomesIdle());
    Ask("faults clear");
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("third", device().FileBytes(L"\\My Documents\\a.txt"));
}

// The box that would switch it off is hidden, hence never ticked.
TEST_F(IntendedOdditiesTest, TheReminderAfterARestoreSwitchesItselfOn) {
    device().PutFile(L"\\My Documents\\a.txt", "third");
    Open();
    ShowTab("Restore");
    Press(1002);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    SetDword("Reminders", 4);
    Press(tests::kOk);
    ExpectEnd();
    EXPECT_EQ(6u, Dword("Reminders"));
}

// An unattended backup is silent; a restore is not, since the user waits for what it brings back.
class UnattendedRestoreTest : public IntendedOdditiesTest {
protected:
    void ExpectRestoreEnds(unsigned style, const std::string& text) {
        SCOPED_TRACE(text);
        Ask("trace on");
        tests::Program program(device().sim(), L"\\Program Files\\Tolvenar\\Tolvenar.exe",
                               L"AutoRestore: Last State");
        ExpectBox(style, text);
        EXPECT_EQ(0, program.ExitCode());  // whatever it told
        Ask("faults clear");
    }
};

TEST_F(UnattendedRestoreTest, ItTellsItsResult) {
    ExpectRestoreEnds(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    device().PutFile(L"\\My Documents\\a.txt", "third");
    {
        const auto lock = device().Lock(L"\\My Documents\\a.txt");
        ExpectRestoreEnds(tests::kWarningBox, "Restore Fail. Probably some files are locked.");
    }
    device().Fault("CreateFileForMappingW", 1, 1000, 50, ".sav");
    ExpectRestoreEnds(tests::kWarningBox,
                      "Restore Fail. Probably your Storage Card Driver is obsolete.");
    device().Fault("CeClearUserNotification", 1, 1, 5);
    ExpectRestoreEnds(tests::kWarningBox, "Can't start action. Try again.");
    TakeMemory();
    ExpectRestoreEnds(tests::kErrorBox,
                      "Not enough memory to start operation. You need to free at least the 8.0 Mb "
                      "of the device memory.");
    EXPECT_EQ("third", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(UnattendedRestoreTest, ItTellsThatTheJournalCannotBeReadAfterIt) {
    device().PutFile(L"\\My Documents\\a.txt", "third");
    // It is opened at the start, and again after the restore.
    device().Fault("CreateFileW", 2, 1000, 5, ".jrn, 3221225472");
    ExpectRestoreEnds(tests::kErrorBox, "Journal read Fail.");
}

}  // namespace
