// A card that is taken out while the program runs, and another one, with files of the same names,
// put in: nothing of one storage may reach the other.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

struct StoragePair {
    std::string storage;
    std::string journal;
};

class ChangedCardTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        device().PutFile(kNote, "on the other card");
        BackUp();
        other_ = Pair();
        device().Remove(kStorageFile);
        device().Remove(kJournalFile);
        device().PutFile(kNote, "first");
        BackUp();
        device().PutFile(kNote, "second");
        BackUp();
        device().PutFile(kNote, "now");
    }
    void ChangeCard() {
        device().PutFile(kStorageFile, other_.storage);
        device().PutFile(kJournalFile, other_.journal);
    }
    StoragePair Pair() {
        return {device().FileBytes(kStorageFile), device().FileBytes(kJournalFile)};
    }
    void ExpectRefusal() {
        ExpectBox(kJournalUnread);
        EXPECT_TRUE(BecomesIdle());
        EXPECT_EQ(other_.storage, Pair().storage);
        EXPECT_EQ(other_.journal, Pair().journal);
        EXPECT_EQ("now", device().FileBytes(kNote));
    }

    StoragePair other_;
};

TEST_F(ChangedCardTest, ABackupLeavesTheOtherStorageAlone) {
    Open();
    ChangeCard();
    Press(IDC_BACKUP);
    ExpectRefusal();
}

TEST_F(ChangedCardTest, ARestoreLeavesTheDeviceAlone) {
    OpenOn("Restore");
    ChangeCard();
    Press(IDC_RESTORE);
    ExpectRefusal();
}

TEST_F(ChangedCardTest, DifferencesOfTheOldCardAreNotRestored) {
    Open();
    ShowDifferences();
    ChangeCard();
    Press(IDC_TAKE_BACK_CHANGES);
    ExpectRefusal();
}

// The user sees what is there now before anything is done with it.
TEST_F(ChangedCardTest, AfterwardsTheOtherStorageIsShownFirst) {
    Open();
    EXPECT_EQ("State 2", Text(IDC_LAST_STATE).substr(0, 7));
    ChangeCard();
    Press(IDC_BACKUP);
    ExpectRefusal();
    Press(IDC_BACKUP);
    EXPECT_SOON_EQ("State 1", Text(IDC_LAST_STATE).substr(0, 7));
    EXPECT_EQ(other_.storage, Pair().storage);
    Press(IDC_BACKUP);
    ExpectTab("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
}

// The same card again: nothing stands against what the user wants.
TEST_F(ChangedCardTest, AStorageThatIsBackAsItWasIsBackedUpTo) {
    Open();
    const std::wstring away_storage = L"\\Storage Card\\away.sav";
    const std::wstring away_journal = L"\\Storage Card\\away.jrn";
    ::MoveFileW(kStorageFile.c_str(), away_storage.c_str());
    ::MoveFileW(kJournalFile.c_str(), away_journal.c_str());
    Press(IDC_BACKUP);
    ExpectBox(kJournalUnread);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(DialogIsDone());
    ::MoveFileW(away_storage.c_str(), kStorageFile.c_str());
    ::MoveFileW(away_journal.c_str(), kJournalFile.c_str());
    Press(IDC_BACKUP);
    ExpectTab("Restore");
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(IDC_STATES));
}

}  // namespace
}  // namespace tests
