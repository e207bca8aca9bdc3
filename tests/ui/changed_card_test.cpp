// A card that is taken out while the program runs, and another one, with files of the same names,
// put in: nothing of one storage may reach the other.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

const std::wstring kNote = L"\\My Documents\\note.txt";

struct StoragePair {
    std::string storage;
    std::string journal;
};

class ChangedCardTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        device().PutFile(kNote, "on the other card");
        BackUp();
        other_ = Pair();
        device().Remove(tests::kStorageFile);
        device().Remove(tests::kJournalFile);
        device().PutFile(kNote, "first");
        BackUp();
        device().PutFile(kNote, "second");
        BackUp();
        device().PutFile(kNote, "now");
    }
    void ChangeCard() {
        device().PutFile(tests::kStorageFile, other_.storage);
        device().PutFile(tests::kJournalFile, other_.journal);
    }
    StoragePair Pair() {
        return {device().FileBytes(tests::kStorageFile), device().FileBytes(tests::kJournalFile)};
    }
    void ExpectRefusal() {
        ExpectBox(tests::kErrorBox, "Journal read Fail.");
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
    Press(1001);
    ExpectRefusal();
}

TEST_F(ChangedCardTest, ARestoreLeavesTheDeviceAlone) {
    Open();
    ShowTab("Restore");
    ChangeCard();
    Press(1002);
    ExpectRefusal();
}

TEST_F(ChangedCardTest, DifferencesOfTheOldCardAreNotRestored) {
    Open();
    ShowTab("Advanced Restore");
    Keys("alt+s");
    Keys("enter");
    EXPECT_TRUE(Eventually([&] { return Text(1041) == "Differences from State 1 to State 2"; }));
    ChangeCard();
    Press(1038);
    ExpectRefusal();
}

TEST_F(ChangedCardTest, AfterwardsTheStorageIsChosenAgain) {
    Open();
    ChangeCard();
    Press(1001);
    ExpectRefusal();
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; }));
}

}  // namespace
