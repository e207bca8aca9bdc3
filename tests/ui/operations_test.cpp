// Backups and restores asked for in the dialog, and every message that they can end in.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class OperationsTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange(std::string(5000, 'a'));
    }
    void OpenRestore() { OpenOn("Restore"); }
    // A second state, after which the notifications of a schedule stand.
    void MakeSchedule() {
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 8);
        BackUp();
        device().PutFile(kNote, "changed");
    }
    // The schedule is taken off and put back around each run, even of a backup that fails.
    std::size_t ScheduleWrites() { return Calls("RegSetValueExW", "onTime"); }
    std::size_t PopupsOf(const std::string& title) { return Calls("SetWindowTextW", ", " + title); }
    void TakeMemory(const char* free) {
        device().Set("memory.free", free);
        device().Set("store.free", "0");
    }
    // From now on until LetGo.
    void MakeJournalUnreadable() { device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472"); }
    // The button's operation ends in a fault, and is over with this box.
    void ExpectFailure(int button, const Box& box) {
        PressAndExpect(button, box);
        LetGoAndRest();
    }
    void ExpectNoStorage() {
        ShowTab("Storage file");
        EXPECT_EQ("", Text(IDC_STORAGE_NAME));
    }
    // A backup with this description ends with the second state.
    void BackUpDescribed(const std::string& description) {
        Open();
        Type(IDC_NEW_DESCRIPTION, description);
        Press(IDC_BACKUP);
        ExpectStates({1, 2});
    }
};

TEST_F(OperationsTest, ABackupShowsItsStateOnTheRestorePage) {
    BackUpDescribed("Before the holidays");
    EXPECT_SOON(SelectedTab() == "Restore" && Sees(IDC_STATES));
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_EQ(0, Selected(IDC_STATES));
    EXPECT_EQ("Before the holidays", Text(IDC_STATE_DESCRIPTION));
    EXPECT_NE("", Text(IDC_STATE_TIME));
    EXPECT_EQ("State 2: 0 added, 1 changed, 0 deleted", Text(IDC_RESTORE_NOTICE));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(OperationsTest, WhatABackupSavedIsSaidUntilTheNextOperation) {
    OpenRestore();
    EXPECT_EQ("Restore makes the device what it was at State 1.", Text(IDC_RESTORE_NOTICE));
    device().PutFile(L"\\My Documents\\b.txt", "new");
    ShowTab("Backup");
    Press(IDC_BACKUP);
    EXPECT_SOON_EQ("State 2: 1 added, 1 changed, 0 deleted", Text(IDC_RESTORE_NOTICE));
    EXPECT_TRUE(BecomesIdle());
    ShowTab("Restore");
    PressAndExpect(IDC_RESTORE, kNothingToRestore);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_SOON_EQ("Restore makes the device what it was at State 2.", Text(IDC_RESTORE_NOTICE));
    Select(IDC_STATES, "State 1");
    EXPECT_SOON_EQ("Restore makes the device what it was at State 1.", Text(IDC_RESTORE_NOTICE));
}

TEST_F(OperationsTest, TheDescriptionIsEmptiedAfterABackup) {
    BackUpDescribed("Before the holidays");
    ShowTab("Backup");
    EXPECT_SOON(Text(IDC_NEW_DESCRIPTION).empty());
}

TEST_F(OperationsTest, TheDescriptionIsKeptWhenNothingWasWritten) {
    BackUp();
    Open();
    Type(IDC_NEW_DESCRIPTION, "Once more");
    PressAndExpect(IDC_BACKUP, kNothingToBackUp);
    EXPECT_EQ("Once more", Text(IDC_NEW_DESCRIPTION));
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(OperationsTest, TheBackupPageSaysWhatTheStorageHolds) {
    device().Set("card.free", "3200000");  // the start's line in the log takes some of it
    Open();
    EXPECT_EQ("\\Storage Card\\Tolvenar\\Backup.sav", Text(IDC_BACKUP_STORAGE));
    EXPECT_EQ(0u, Text(IDC_LAST_STATE).find("State 1, 11/16/26, "));
    EXPECT_EQ("3.0 Mb", Text(IDC_CARD_FREE));
}

TEST_F(OperationsTest, ALongDescriptionIsCutAt199Characters) {
    Open();
    EXPECT_EQ(1u, Calls("SendMessageW", ", 197, 199, "));  // EM_LIMITTEXT
}

TEST_F(OperationsTest, ABlankDescriptionIsAnEmptyOne) {
    BackUpDescribed("   ");
    EXPECT_SOON(Sees(IDC_STATE_DESCRIPTION));
    EXPECT_EQ("", Text(IDC_STATE_DESCRIPTION));
}

TEST_F(OperationsTest, TooLittleMemoryForABackupNamesWhatIsMissing) {
    TakeMemory("7340032");
    Open();
    PressAndExpect(IDC_BACKUP, TooLittleMemory("1.0"));
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(0u, ScheduleWrites());
}

TEST_F(OperationsTest, TooLittleMemoryForARestoreNamesAFixedFigure) {
    TakeMemory("7340032");
    OpenRestore();
    PressAndExpect(IDC_RESTORE, TooLittleMemory("8.0"));
    EXPECT_EQ(0u, ScheduleWrites());
}

TEST_F(OperationsTest, AScheduleThatCannotBeTakenOffStartsNoBackup) {
    MakeSchedule();
    Open();
    device().Fault("CeClearUserNotification", 1, 1, 5);
    PressAndExpect(IDC_BACKUP, kNotStarted);
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(OperationsTest, ARestoreThatCannotBeStartedIsToldOnThePageAlone) {
    MakeSchedule();
    OpenRestore();
    device().Fault("CeClearUserNotification", 1, 1, 5);
    Press(IDC_RESTORE);
    EXPECT_TRUE(RulesAreUsedUp());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("Nothing was restored: it could not start. Try again.", Text(IDC_RESTORE_NOTICE));
    EXPECT_EQ("changed", device().FileBytes(kNote));
}

TEST_F(OperationsTest, AJournalThatCannotBeWrittenFailsTheBackup) {
    Open();
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn_1");
    ExpectFailure(IDC_BACKUP, {"Backup Fail.", kErrorBox});
}

TEST_F(OperationsTest, AComparisonThatFailsIsToldForABackup) {
    Open();
    device().Fault("HeapAlloc", 1, 1000000, 8);
    ExpectFailure(IDC_BACKUP, {"Create Differences Fail.", kErrorBox});
}

TEST_F(OperationsTest, ARestoreWithoutADifferenceSaysSo) {
    BackUp();
    OpenRestore();
    PressAndExpect(IDC_RESTORE, kNothingToRestore);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
}

// Unlike those at the start and of the choice of a storage, which have no owner.
TEST_F(OperationsTest, TheBoxOfAResultBelongsToTheDialogAndFollowsThePopup) {
    Open();
    TakeMemory("0");
    const struct {
        const char* tab;
        int button;
        const char* popup;
    } kRequests[] = {{"Backup", IDC_BACKUP, "Backing up in progress"},
                     {"Restore", IDC_RESTORE, "Restoring in progress"}};
    for (const auto& request : kRequests) {
        SCOPED_TRACE(request.tab);
        ShowTab(request.tab);
        PressForBox(request.button);
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
    ::SendMessageW(Handle(IDC_STATES), LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    PressAndExpect(IDC_RESTORE, kStorageIsEmpty);
    EXPECT_EQ(5000u, device().FileBytes(kNote).size());
}

TEST_F(OperationsTest, BeforeThePageOfStatesIsMadeNoneIsSelected) {
    Open();
    PostRestore(IDC_RESTORE);
    ExpectBox(kStorageIsEmpty);
    EXPECT_EQ(5000u, device().FileBytes(kNote).size());
}

TEST_F(OperationsTest, ARestoreFromAnEmptyStorageSaysSo) {
    constexpr std::size_t kHeadAlone = 236;
    device().PutFile(kStorageFile, device().FileBytes(kStorageFile).substr(0, kHeadAlone));
    device().PutFile(kJournalFile, "");
    OpenRestore();
    EXPECT_TRUE(Items(IDC_STATES).empty());
    EXPECT_EQ("", Text(IDC_STATE_TIME));
    EXPECT_EQ("", Text(IDC_STATE_DESCRIPTION));
    PressAndExpect(IDC_RESTORE, kStorageIsEmpty);
}

TEST_F(OperationsTest, LockedFilesAreShownInTheTreeInsteadOfAMessage) {
    OpenRestore();
    const auto lock = device().Lock(kNote);
    Press(IDC_RESTORE);
    EXPECT_SOON(Sees(IDC_FAILED_OK));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("These items could not be restored:", Text(IDC_FAILED_LABEL));
    EXPECT_FALSE(Sees(IDC_STATES));
    EXPECT_TRUE(Sees(IDC_APPLY_CHANGES));
    EXPECT_EQ(0u, BoxCount());
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(IDC_FAILED_OK));  // on either tab
    Press(IDC_FAILED_OK);
    EXPECT_SOON(Sees(IDC_STATES) && !Sees(IDC_FAILED_OK));
    ShowTab("Restore");
    EXPECT_TRUE(Sees(IDC_RESTORE));
}

TEST_F(OperationsTest, AnObsoleteCardDriverIsTold) {
    OpenRestore();
    device().Fault("CreateFileForMappingW", 1, 1000, 50, ".sav");
    ExpectFailure(IDC_RESTORE, kDriverIsObsolete);
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterABackupIsTold) {
    Open();
    MakeJournalUnreadable();
    ExpectFailure(IDC_BACKUP, kJournalUnread);
    ExpectNoStorage();
    ShowTab("Backup");
    Press(IDC_BACKUP);  // it can be read again, and is shown before anything is done with it
    EXPECT_SOON_EQ("State 2", Text(IDC_LAST_STATE).substr(0, 7));
    EXPECT_EQ((Numbers{1, 2}), States());
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterARestoreIsTold) {
    OpenRestore();
    MakeJournalUnreadable();
    ExpectFailure(IDC_RESTORE, kJournalUnread);
    ExpectNoStorage();
}

TEST_F(OperationsTest, AJournalThatCannotBeReadAfterDifferencesWereRestoredIsTold) {
    BackUp();
    Open();
    ShowDifferences();
    MakeJournalUnreadable();
    ExpectFailure(IDC_TAKE_BACK_CHANGES, kJournalUnread);
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    ExpectNoStorage();
}

TEST_F(OperationsTest, WithoutDifferencesTheTwoButtonsSaySo) {
    OpenOn("Advanced Restore");
    for (const int button : {IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES}) {
        PressAndExpect(button, kNothingToRestore);
        EXPECT_TRUE(BecomesIdle());
    }
}

// The list of a backup is no list of the page, and the one that the page had is gone.
TEST_F(OperationsTest, TheTwoButtonsNeverWorkOnABackupsList) {
    BackUp();
    device().PutFile(kNote, "again");
    Open();
    ShowDifferences();
    ShowTab("Backup");
    Press(IDC_BACKUP);
    ExpectStates({1, 2, 3});
    ShowTab("Advanced Restore");
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    PressAndExpect(IDC_TAKE_BACK_CHANGES, kNothingToRestore);
    EXPECT_EQ("again", device().FileBytes(kNote));
}

TEST_F(OperationsTest, WithoutAnInstallationBackupAndDifferencesAreRefused) {
    RemoveInstallation();
    Open();
    PressAndExpect(IDC_BACKUP, kNotInstalled);
    ShowTab("Advanced Restore");
    for (const int button : {IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES}) {
        PressAndExpect(button, kNotInstalled);
    }
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedBackup));
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedRestore));
}

TEST_F(OperationsTest, WithoutAnInstallationARestoreEndsTheProgramWhateverTheAnswer) {
    RemoveInstallation();
    OpenRestore();
    Press(IDC_RESTORE);
    RefuseReminder(kRestoredReminder);
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_EQ(0u, Calls("CreateProcessW", "CloseOther.exe"));
}

TEST_F(OperationsTest, WithoutAStorageEveryRequestSelectsTheStorageFileTab) {
    device().Remove(kStorageFile);
    Open();
    const struct {
        const char* tab;
        int button;
    } kRequests[] = {{"Backup", IDC_BACKUP},
                     {"Restore", IDC_RESTORE},
                     {"Advanced Restore", IDC_APPLY_CHANGES},
                     {"Advanced Restore", IDC_TAKE_BACK_CHANGES}};
    for (const auto& request : kRequests) {
        ShowTab(request.tab);
        Press(request.button);
        ExpectTab("Storage file");
    }
    ShowTab("Advanced Restore");
    ::PostMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    ExpectTab("Storage file");
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedRestore));
}

TEST_F(OperationsTest, WithoutAStorageARequestThatArrivesAllTheSameTouchesNoFile) {
    device().Remove(kStorageFile);
    Open();
    const struct {
        UINT message;
        LPARAM button;
    } kRequests[] = {{kConfirmedBackup, 0}, {kConfirmedRestore, IDC_APPLY_CHANGES}};
    for (const auto& request : kRequests) {
        ::PostMessageW(OperationWindow(), request.message, 1, request.button);
        ExpectBox(kJournalUnread);
        EXPECT_TRUE(BecomesIdle());
    }
    EXPECT_FALSE(device().Exists(kStorageFile));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(OperationsTest, AnUnknownButtonRestoresNothing) {
    Open();
    PostRestore(4711);
    Pause(500);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ(5000u, device().FileBytes(kNote).size());
}

}  // namespace
}  // namespace tests
