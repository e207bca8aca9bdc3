// Backups and restores asked for in the dialog, and every message that they can end in.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kConfirmedRestore = WM_APP + 128;
const std::string kSettings = "HKCU\\Software\\Kestrin2\\Tolvenar";

class OperationsTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange(std::string(5000, 'a'));
    }
    void OpenRestore() {
        Open();
        ShowTab("Restore");
    }
    // Of the second state.
    void ShowDifferences() {
        ShowTab("Advanced Restore");
        ::SendMessageW(::GetParent(Handle(1014)), WM_COMMAND, MAKEWPARAM(1014, LBN_DBLCLK), 0);
        ASSERT_EQ("Differences from State 1 to State 2", Text(1041));
    }
    // A second state, after which the notifications of a schedule stand.
    void MakeSchedule() {
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 8);
        BackUp();
        device().PutFile(L"\\My Documents\\a.txt", "changed");
    }
    // The schedule is taken off and put back around each run, even of a backup that fails.
    std::size_t ScheduleWrites() { return Calls("RegSetValueExW", "onTime"); }
    std::size_t PopupsOf(const std::string& title) { return Calls("SetWindowTextW", ", " + title); }
    bool StatesBecome(const std::vector<int>& states) {
        return Eventually([&] { return States() == states && !IsBusy(); });
    }
};

TEST_F(OperationsTest, ABackupShowsItsStateOnTheRestorePage) {
    Open();
    Type(1018, "Before the holidays");
    Press(1001);
    EXPECT_TRUE(StatesBecome({1, 2}));
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore" && Sees(1014); }));
    EXPECT_EQ((std::vector<std::string>{"State 2", "State 1"}), Items(1014));
    EXPECT_EQ(0, Selected(1014));
    EXPECT_EQ("Before the holidays", Text(1016));
    EXPECT_NE("", Text(1015));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(OperationsTest, TheDescriptionIsEmptiedAfterABackup) {
    Open();
    Type(1018, "Before the holidays");
    Press(1001);
    EXPECT_TRUE(StatesBecome({1, 2}));
    ShowTab("Backup");
    EXPECT_TRUE(Eventually([&] { return Text(1018).empty(); }));
}

TEST_F(OperationsTest, TheDescriptionIsKeptWhenNothingWasWritten) {
    BackUp();
    Open();
    Type(1018, "Once more");
    Press(1001);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Backup.");
    EXPECT_EQ("Once more", Text(1018));
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(OperationsTest, TheBackupPageSaysWhatTheStorageHolds) {
    device().Set("card.free", "3145728");
    Open();
    EXPECT_EQ("Backup", Text(1103));
    EXPECT_EQ(0u, Text(1105).find("State 1, 11/16/26, "));
    EXPECT_EQ("3.0 Mb", Text(1107));
}

TEST_F(OperationsTest, ALongDescriptionIsCutAt199Characters) {
    Open();
    EXPECT_EQ(1u, Calls("SendMessageW", ", 197, 199, "));  // EM_LIMITTEXT
}

TEST_F(OperationsTest, ABlankDescriptionIsAnEmptyOne) {
    Open();
    Type(1018, "   ");
    Press(1001);
    EXPECT_TRUE(StatesBecome({1, 2}));
    EXPECT_TRUE(Eventually([&] { return Sees(1016); }));
    EXPECT_EQ("", Text(1016).substr(0, Text(1016).find_first_not_of(' ')));
}

TEST_F(OperationsTest, TooLittleMemoryForABackupNamesWhatIsMissing) {
    device().Set("memory.free", "7340032");
    device().Set("store.free", "0");
    Open();
    Press(1001);
    ExpectBox(tests::kErrorBox,
              "Not enough memory to start operation. You need to free at least the 1.0 Mb of the "
              "device memory.");
    EXPECT_EQ(std::vector<int>{1}, States());
    EXPECT_EQ(0u, ScheduleWrites());
}

TEST_F(OperationsTest, TooLittleMemoryForARestoreNamesAFixedFigure) {
    device().Set("memory.free", "7340032");
    device().Set("store.free", "0");
    OpenRestore();
    Press(1002);
    ExpectBox(tests::kErrorBox,
              "Not enough memory to start operation. You need to free at least the 8.0 Mb of the "
              "device memory.");
    EXPECT_EQ(0u, ScheduleWrites());
}

TEST_F(OperationsTest, AScheduleThatCannotBeTakenOffStartsNoBackup) {
    MakeSchedule();
    Open();
    device().Fault("CeClearUserNotification", 1, 1, 5);
    Press(1001);
    ExpectBox(tests::kWarningBox, "Can't start action. Try again.");
    EXPECT_EQ((std::vector<int>{1, 2}), States());
}

TEST_F(OperationsTest, ARestoreThatCannotBeStartedSaysNothing) {
    MakeSchedule();
    OpenRestore();
    device().Fault("CeClearUserNotification", 1, 1, 5);
    Press(1002);
    EXPECT_TRUE(RulesAreUsedUp());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("changed", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(OperationsTest, AJournalThatCannotBeWrittenFailsTheBackup) {
    Open();
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn_1");
    Press(1001);
    ExpectBox(tests::kErrorBox, "Backup Fail.");
    Ask("faults clear");
}

TEST_F(OperationsTest, AComparisonThatFailsIsToldForABackup) {
    Open();
    device().Fault("HeapAlloc", 1, 1000000, 8);
    Press(1001);
    const tests::Box box = Answer();
    EXPECT_EQ("Create Differences Fail.", box.text);
    EXPECT_EQ(unsigned(tests::kErrorBox), box.style);
    Ask("faults clear");
}

TEST_F(OperationsTest, ARestoreWithoutADifferenceSaysSo) {
    BackUp();
    OpenRestore();
    Press(1002);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
}

// Unlike those at the start and of the choice of a storage, which have no owner.
TEST_F(OperationsTest, TheBoxOfAResultBelongsToTheDialogAndFollowsThePopup) {
    Open();
    device().Set("memory.free", "0");
    device().Set("store.free", "0");
    const struct {
        const char* tab;
        int button;
        const char* popup;
    } kRequests[] = {{"Backup", 1001, "Backing up in progress"},
                     {"Restore", 1002, "Restoring in progress"}};
    for (const auto& request : kRequests) {
        SCOPED_TRACE(request.tab);
        ShowTab(request.tab);
        Press(request.button);
        ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
        EXPECT_EQ(1u, PopupsOf(request.popup));
        EXPECT_FALSE(Shows(request.popup));
        EXPECT_FALSE(::IsWindowEnabled(MainDialog()));
        Answer();
        EXPECT_TRUE(BecomesIdle());
        EXPECT_TRUE(::IsWindowEnabled(MainDialog()));
    }
}

TEST_F(OperationsTest, ARestoreWithoutASelectedStateSaysThatTheStorageIsEmpty) {
    OpenRestore();
    const HWND dialog = ::FindWindowW(L"Dialog", L"Tolvenar");
    const auto list = Control(1014);
    ::SendMessageW(reinterpret_cast<HWND>(list->at("handle").get<std::uintptr_t>()), LB_SETCURSEL,
                   static_cast<WPARAM>(-1), 0);
    EXPECT_NE(nullptr, dialog);
    Press(1002);
    ExpectBox(tests::kInformationBox, "Storage is empty. There is nothing to Restore.");
    EXPECT_EQ(5000u, device().FileBytes(L"\\My Documents\\a.txt").size());
}

TEST_F(OperationsTest, BeforeThePageOfStatesIsMadeNoneIsSelected) {
    Open();
    ::PostMessageW(OperationWindow(), kConfirmedRestore, 1, 1002);
    ExpectBox(tests::kInformationBox, "Storage is empty. There is nothing to Restore.");
    EXPECT_EQ(5000u, device().FileBytes(L"\\My Documents\\a.txt").size());
}

TEST_F(OperationsTest, ARestoreFromAnEmptyStorageSaysSo) {
    device().PutFile(tests::kJournalFile, "");
    OpenRestore();
    EXPECT_TRUE(Items(1014).empty());
    EXPECT_EQ("", Text(1015));
    EXPECT_EQ("", Text(1016));
    Press(1002);
    ExpectBox(tests::kInformationBox, "Storage is empty. There is nothing to Restore.");
}

TEST_F(OperationsTest, LockedFilesAreShownInTheTreeInsteadOfAMessage) {
    OpenRestore();
    const auto lock = device().Lock(L"\\My Documents\\a.txt");
    Press(1002);
    EXPECT_TRUE(Eventually([&] { return Sees(1043); }));
    EXPECT_EQ("These items could not be restored:", Text(1114));
    EXPECT_FALSE(Sees(1014));
    EXPECT_TRUE(Sees(1037));
    EXPECT_EQ(0u, BoxCount());
    EXPECT_TRUE(BecomesIdle());
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(1043));  // on either tab
    Press(1043);
    EXPECT_TRUE(Eventually([&] { return Sees(1014) && !Sees(1043); }));
    ShowTab("Restore");
    EXPECT_TRUE(Sees(1002));
}

TEST_F(OperationsTest, AnObsoleteCardDriverIsTold) {
    OpenRestore();
    device().Fault("CreateFileForMappingW", 1, 1000, 50, ".sav");
    Press(1002);
    ExpectBox(tests::kWarningBox, "Restore Fail. Probably your Storage Card Driver is obsolete.");
    Ask("faults clear");
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterABackupIsTold) {
    Open();
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472");
    Press(1001);
    const tests::Box box = Answer();
    EXPECT_EQ("Journal read Fail.", box.text);
    EXPECT_EQ(unsigned(tests::kErrorBox), box.style);
    Ask("faults clear");
    EXPECT_TRUE(BecomesIdle());
    ShowTab("Backup");
    Press(1001);  // no storage is open any more
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; }));
    EXPECT_EQ("", Text(1019));
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterARestoreIsTold) {
    OpenRestore();
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472");
    Press(1002);
    ExpectBox(tests::kErrorBox, "Journal read Fail.");
    Ask("faults clear");
    EXPECT_TRUE(BecomesIdle());
    ShowTab("Storage file");
    EXPECT_EQ("", Text(1019));
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterDifferencesWereRestoredIsTold) {
    BackUp();
    Open();
    ShowDifferences();
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472");
    Press(1038);
    ExpectBox(tests::kErrorBox, "Journal read Fail.");
    Ask("faults clear");
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("", Text(1041));
    ShowTab("Storage file");
    EXPECT_EQ("", Text(1019));
}

TEST_F(OperationsTest, WithoutDifferencesTheTwoButtonsSaySo) {
    Open();
    ShowTab("Advanced Restore");
    for (const int button : {1037, 1038}) {
        Press(button);
        ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
        EXPECT_TRUE(BecomesIdle());
    }
}

// The list of a backup is no list of the page, and the one that the page had is gone.
TEST_F(OperationsTest, TheTwoButtonsNeverWorkOnABackupsList) {
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", "again");
    Open();
    ShowDifferences();
    ShowTab("Backup");
    Press(1001);
    EXPECT_TRUE(StatesBecome({1, 2, 3}));
    ShowTab("Advanced Restore");
    EXPECT_EQ("", Text(1041));
    Press(1038);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    EXPECT_EQ("again", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(OperationsTest, WithoutAnInstallationBackupAndDifferencesAreRefused) {
    Ask("reg-delete " + kSettings + " onTime");
    Open();
    Press(1001);
    ExpectBox(tests::kWarningBox, tests::kInstallationText);
    ShowTab("Advanced Restore");
    for (const int button : {1037, 1038}) {
        Press(button);
        ExpectBox(tests::kWarningBox, tests::kInstallationText);
    }
    EXPECT_EQ(0u, Calls("PostMessageW", ", 32892, "));
    EXPECT_EQ(0u, Calls("PostMessageW", ", 32896, "));
}

TEST_F(OperationsTest, WithoutAnInstallationARestoreEndsTheProgramWhateverTheAnswer) {
    Ask("reg-delete " + kSettings + " onTime");
    OpenRestore();
    Press(1002);
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_EQ(0u, Calls("CreateProcessW", "CloseOther.exe"));
}

TEST_F(OperationsTest, WithoutAStorageEveryRequestSelectsTheStorageFileTab) {
    device().Remove(tests::kStorageFile);
    Open();
    const struct {
        const char* tab;
        int button;
    } kRequests[] = {{"Backup", 1001},
                     {"Restore", 1002},
                     {"Advanced Restore", 1037},
                     {"Advanced Restore", 1038}};
    for (const auto& request : kRequests) {
        ShowTab(request.tab);
        Press(request.button);
        EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; })) << request.button;
    }
    ShowTab("Advanced Restore");
    ::PostMessageW(::GetParent(Handle(1014)), WM_COMMAND, MAKEWPARAM(1014, LBN_DBLCLK), 0);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; }));
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(0u, Calls("PostMessageW", ", 32896, "));
}

TEST_F(OperationsTest, WithoutAStorageARequestThatArrivesAllTheSameTouchesNoFile) {
    device().Remove(tests::kStorageFile);
    Open();
    const struct {
        UINT message;
        LPARAM button;
    } kRequests[] = {{WM_APP + 124, 0}, {kConfirmedRestore, 1037}};
    for (const auto& request : kRequests) {
        ::PostMessageW(OperationWindow(), request.message, 1, request.button);
        ExpectBox(tests::kErrorBox, "Journal read Fail.");
        EXPECT_TRUE(BecomesIdle());
    }
    EXPECT_FALSE(device().Exists(tests::kStorageFile));
    EXPECT_EQ(std::vector<int>{1}, States());
}

TEST_F(OperationsTest, AnUnknownButtonRestoresNothing) {
    Open();
    ::PostMessageW(::FindWindowW(L"TolvenarOperationClass", nullptr), kConfirmedRestore, 1, 4711);
    Pause(500);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(5000u, device().FileBytes(L"\\My Documents\\a.txt").size());
}

}  // namespace
