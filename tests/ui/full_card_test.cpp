// A backup for which the card has no room, and what the user says to it.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class FullCardTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange(std::string(5000, 'a'));
    }
    // How many bytes the message of the full card asks for.
    long AskedFor() {
        const std::string begin = "Not enough disk space to backup. You need to free ";
        const Box box = Answer();
        EXPECT_EQ(0u, box.text.find(begin));
        EXPECT_EQ(unsigned(kErrorBox), box.style);
        const std::string rest = box.text.substr(begin.size());
        EXPECT_EQ(" bytes on the storage card.", rest.substr(rest.find(' ')));
        return std::stol(rest);
    }
};

// Whether the old storage may go is what the Options page had when it was last read.
TEST_F(FullCardTest, ItTellsWhatIsMissingOnce) {
    HaveAStorageOfWhatIsGone();
    Open();
    SetDword("MayDeleteOldStorage", 1);
    device().Set("card.free", "20000");
    Press(IDC_BACKUP);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(1u, BoxCount());
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(FullCardTest, ThatTheOldStorageMayGoIsNotTakenBackBehindTheOptionsPage) {
    HaveAStorageOfWhatIsGone();
    SetDword("MayDeleteOldStorage", 1);
    Open();
    SetDword("MayDeleteOldStorage", 0);
    device().Set("card.free", "20000");
    PressAndExpect(IDC_BACKUP, kMayOldStorageGo, IDNO);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
}

TEST_F(FullCardTest, ItAsksForTheOldStorageAndKeepsItOnNo) {
    HaveAStorageOfWhatIsGone();
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "20000");
    const std::string before = device().FileBytes(kStorageFile);
    PressAndExpect(IDC_BACKUP, kMayOldStorageGo, IDNO);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
}

TEST_F(FullCardTest, ItGivesUpTheOldStorageOnYes) {
    HaveAStorageOfWhatIsGone();
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "20000");
    PressAndExpect(IDC_BACKUP, kMayOldStorageGo, IDYES);
    ExpectStates({1});
    ExpectTab("Restore");
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
    EXPECT_EQ(2u, Calls("SetWindowTextW", ", Backing up in progress"));
    EXPECT_EQ(4u, Calls("RegSetValueExW", "onTime"));
}

// A backup into a new storage would find no room either: every state would go for nothing.
TEST_F(FullCardTest, TheOldStorageStaysWhereItsDeletionWouldNotHelp) {
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.free", "100");
    const std::string before = device().FileBytes(kStorageFile);
    Press(IDC_BACKUP);
    const long asked_for = AskedFor();
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ("Backup", SelectedTab());
    device().Set("card.free", std::to_string(asked_for));
    Press(IDC_BACKUP);
    ExpectStates({1, 2});
    EXPECT_EQ(1u, BoxCount());
}

// 4 GB and a little are free; that little is all that is looked at.
TEST_F(FullCardTest, ACardWith4GigabytesFreeLosesNoState) {
    SetDword("MayDeleteOldStorage", 1);
    Open();
    device().Set("card.size", "8000000000");
    device().Set("card.free", std::to_string(4294967296 + 5 * 1024));
    const std::string before = device().FileBytes(kStorageFile);
    Press(IDC_BACKUP);
    EXPECT_LT(0, AskedFor());
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(Numbers{1}, States());
}

// The record of the last state has its number at byte 20.
TEST_F(FullCardTest, AStorageFileWithoutAFurtherNumberSaysSoAndStays) {
    SetDword("MayDeleteOldStorage", 1);
    std::string journal = device().FileBytes(kJournalFile);
    for (std::size_t record = 0; record < journal.size(); record += 32) {
        journal.replace(record + 20, 2, "\xFF\xFF");
    }
    device().PutFile(kJournalFile, journal);
    Open();
    Press(IDC_BACKUP);
    ExpectBox(kStorageIsFull);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

}  // namespace
}  // namespace tests
