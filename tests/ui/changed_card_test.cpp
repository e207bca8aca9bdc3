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

private:
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

TEST_F(ChangedCardTest, AfterwardsTheStorageIsChosenAgain) {
    Open();
    ChangeCard();
    Press(IDC_BACKUP);
    ExpectRefusal();
    Press(IDC_BACKUP);
    ExpectTab("Storage file");
}

}  // namespace
}  // namespace tests
