// Restores from a damaged storage in the dialog: what the user is asked and told.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr wchar_t kOldJournal[] = L"\\Storage Card\\Tolvenar\\Backup.jrn_old";
const Box kMayWriteBackMissing = {
    "The storage is damaged. Faults in its list of states: 1, in items to be restored: 0.\n"
    "Nothing will be deleted or overwritten. What is whole in the storage and missing on the "
    "device can be written back.\nContinue?",
    kWarnedQuestionBox};
const Box kMayTakeOlderList = {
    "The list of states is damaged. An older list with 1 states, which was kept, is whole.\n"
    "Use it instead? You can restore one of its states then.",
    kWarnedQuestionBox};
constexpr wchar_t kNew[] = L"\\My Documents\\new.txt";

class DamagedStorageTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
        device().Remove(kNote);
        device().PutFile(kNew, "new");
        journal_ = device().FileBytes(kJournalFile);
    }
    void CutJournal() { device().PutFile(kJournalFile, journal_.substr(0, journal_.size() - 1)); }
    bool HasNote() { return device().Exists(kNote); }

    std::string journal_;
};

TEST_F(DamagedStorageTest, YesWritesBackWhatIsMissingAndTellsOfTheDamage) {
    CutJournal();
    OpenOn("Restore");
    PressAndExpect(IDC_RESTORE, kMayWriteBackMissing, IDYES);
    ExpectBox(kStorageIsDamaged);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_TRUE(device().Exists(kNew));
}

TEST_F(DamagedStorageTest, NoChangesNothing) {
    CutJournal();
    OpenOn("Restore");
    PressAndExpect(IDC_RESTORE, kMayWriteBackMissing, IDNO);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_FALSE(HasNote());
    EXPECT_TRUE(device().Exists(kNew));
}

// The operation is not over: whoever wants the program closed asks again.
TEST_F(DamagedStorageTest, AClosingIsNoAnswer) {
    CutJournal();
    OpenOn("Restore");
    PressForBox(IDC_RESTORE);
    ::SendMessageW(MainWindow(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(ProgramRuns());
    ExpectBox(kMayWriteBackMissing, IDNO);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_FALSE(HasNote());
    EXPECT_TRUE(device().Exists(kNew));
}

TEST_F(DamagedStorageTest, AnOlderListIsTakenAndItsStateRestored) {
    device().PutFile(kOldJournal, journal_);
    CutJournal();
    OpenOn("Restore");
    PressAndExpect(IDC_RESTORE, kMayTakeOlderList, IDYES);
    ExpectBox(kOlderListInUse);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_FALSE(HasNote());
    Press(IDC_RESTORE);
    ExpectReminder(kRestoredReminder);
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_FALSE(device().Exists(kNew));
}

TEST_F(DamagedStorageTest, AnUnattendedRestoreWritesBackWhatIsMissingAndTellsOfTheDamage) {
    CutJournal();
    StartProgram("AutoRestore: Last State");
    ExpectBox(kStorageIsDamaged);
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_TRUE(device().Exists(kNew));
}

}  // namespace
}  // namespace tests
