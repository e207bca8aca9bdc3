// A storage that is not there when the program wants it, and comes back.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class StorageSearchTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
        SetDword("Reminders", 0);
        pair_ = {device().FileBytes(kStorageFile), device().FileBytes(kJournalFile)};
    }
    void TakeCardOut() {
        device().Remove(kStorageFile);
        device().Remove(kJournalFile);
    }
    void PutCardIn() {
        device().PutFile(kStorageFile, pair_.first);
        device().PutFile(kJournalFile, pair_.second);
    }
    // The user comes back from another program, whose window the dialog is not told of.
    static void Activate(HWND from = nullptr) {
        ::PostMessageW(MainDialog(), WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(from));
    }
    void ExpectFound() { EXPECT_SOON_EQ("Backup", Text(IDC_STORAGE_NAME)); }
    // The dialog is through with what it was sent, and shows none.
    void ExpectNone() {
        EXPECT_TRUE(DialogIsDone());
        EXPECT_EQ("", Text(IDC_STORAGE_NAME));
    }
    // How often the storage was loaded since the program was started.
    std::size_t Loads() { return Calls("CreateFileW", "Backup.jrn"); }

    std::pair<std::string, std::string> pair_;
};

TEST_F(StorageSearchTest, ACardThatIsPutInIsFoundWhenTheUserComesBack) {
    TakeCardOut();
    Open();
    ExpectTab("Storage file");
    ExpectNone();
    EXPECT_EQ(
        "\\Storage Card\\Tolvenar\\Backup.sav is not there. Put its card in, or browse for "
        "another.",
        Text(IDC_STORAGE_FOLDER));
    Activate();
    ExpectNone();
    PutCardIn();
    Activate();
    ExpectFound();
    ShowTab("Restore");
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
}

TEST_F(StorageSearchTest, AWindowOfTheProgramItselfIsNoOtherProgram) {
    TakeCardOut();
    Open();
    PutCardIn();
    Activate(MainDialog());
    ExpectNone();
    Activate();
    ExpectFound();
}

TEST_F(StorageSearchTest, AButtonThatNeedsTheStorageLooksForItAndShowsItFirst) {
    TakeCardOut();
    Open();
    PutCardIn();
    ShowTab("Backup");
    Press(IDC_BACKUP);
    EXPECT_SOON_EQ("State 1", Text(IDC_LAST_STATE).substr(0, 7));
    ExpectTab("Backup");
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_FALSE(IsBusy());
}

TEST_F(StorageSearchTest, WithoutTheCardAButtonLeadsToTheStoragePage) {
    TakeCardOut();
    Open();
    ShowTab("Backup");
    Press(IDC_BACKUP);
    ExpectTab("Storage file");
}

// Its storage would be read while it is being written.
TEST_F(StorageSearchTest, WhileAnotherCopyBacksUpNothingIsLookedFor) {
    device().PutFile(kNote, "changed");
    HoldFirstBlock();
    Program backup = Launch("AutoBackup: External");
    ASSERT_TRUE(RulesAreUsedUp());
    Open();
    ExpectTab("Storage file");
    Activate();
    ExpectNone();
    LetGo();
    EXPECT_EQ(0, backup.ExitCode());
    Activate();
    ExpectFound();
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
}

// A storage of another device stays one until its files are others.
TEST_F(StorageSearchTest, AFailedLoadIsToldOnceAndTriedAgainOnlyWhenTheFilesChange) {
    device().Set("processor", "4000");
    StartProgram();
    ExpectBox({"Storage file is not compatible with your device.", kPlainBox});
    ExpectTab("Storage file");
    device().Set("processor", "2577");
    Activate();
    ExpectNone();
    device().PutFile(kJournalFile, pair_.second);
    Activate();
    ExpectFound();
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(StorageSearchTest, AFailedLoadIsTriedAgainForAButton) {
    device().Set("processor", "4000");
    StartProgram();
    ExpectBox({"Storage file is not compatible with your device.", kPlainBox});
    ExpectTab("Storage file");
    ShowTab("Backup");
    Press(IDC_BACKUP);
    ExpectTab("Storage file");
    EXPECT_EQ(1u, BoxCount());  // told once
    device().Set("processor", "2577");
    ShowTab("Backup");
    Press(IDC_BACKUP);
    EXPECT_SOON_EQ("State 1", Text(IDC_LAST_STATE).substr(0, 7));
}

TEST_F(StorageSearchTest, AJournalThatCannotBeOpenedIsToldBeforeTheProgramLeaves) {
    const auto lock = device().Lock(kJournalFile);
    Ask("trace on");
    Program program = Launch();
    ExpectBox(UnreadableJournal("\\Storage Card\\Tolvenar\\Backup.jrn"));
    EXPECT_EQ(1, program.ExitCode());
}

// The card is away for the moment of "Back up" only.
TEST_F(StorageSearchTest, NoPageShowsAStateBesideNoStorage) {
    Open();
    TakeCardOut();
    Press(IDC_BACKUP);
    ExpectBox(kJournalUnread);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_SOON_EQ("-", Text(IDC_LAST_STATE));
    EXPECT_EQ("-", Text(IDC_BACKUP_STORAGE));
    ShowTab("Restore");
    EXPECT_EQ(Texts(), Items(IDC_STATES));
    PutCardIn();
    Activate();
    EXPECT_SOON_EQ(Texts{"State 1"}, Items(IDC_STATES));
}

}  // namespace
}  // namespace tests
