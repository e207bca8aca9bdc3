// The list of states on the Restore and Advanced Restore tabs, and the details of the selected one.
#include "tests/support/ui_test.h"
#include "tests/ui/stored_states.h"

namespace tests {
namespace {

// Of a record of the journal.
constexpr std::size_t kRecordBytes = 32;
constexpr std::size_t kTolvOIDOffset = 4;
constexpr std::size_t kNumberOffset = 20;
constexpr std::size_t kTypeOffset = 24;
constexpr char kStateType = 32;

class StateListTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 0);
        device().Set("clock", "2003-02-28T07:30:00");
    }
    // States with descriptions of their own, one a day later than the one before.
    void MakeStates(int count) {
        for (int i = 1; i <= count; ++i) {
            const std::string number = std::to_string(i);
            device().Set("clock",
                         "2003-03-" + std::string(i < 10 ? "0" : "") + number + "T07:30:00");
            device().PutFile(kNote, std::string(static_cast<std::size_t>(i), 'a'));
            states_.BackUp("Number " + number);
        }
    }
    void OpenRestore() { OpenOn("Restore"); }
    bool DetailsBecome(const std::string& day, const std::string& description) {
        return Eventually([&] {
            return Text(IDC_STATE_TIME).find(day + ", 7:30:") == 0 &&
                   Text(IDC_STATE_DESCRIPTION) == description;
        });
    }

    StoredStates states_{device()};
};

// By their numbers, not by their texts.
TEST_F(StateListTest, TheNewestStateStandsFirstAndIsSelected) {
    MakeStates(11);
    OpenRestore();
    EXPECT_EQ((Texts{"State 11", "State 10", "State 9", "State 8", "State 7", "State 6", "State 5",
                     "State 4", "State 3", "State 2", "State 1"}),
              Items(IDC_STATES));
    EXPECT_EQ(0, Selected(IDC_STATES));
    EXPECT_TRUE(DetailsBecome("3/11/03", "Number 11"));
}

TEST_F(StateListTest, TheDetailsAreThoseOfTheSelectedState) {
    MakeStates(3);
    OpenRestore();
    Select(IDC_STATES, "State 1");
    EXPECT_TRUE(DetailsBecome("3/1/03", "Number 1"));
    Select(IDC_STATES, "State 2");
    EXPECT_TRUE(DetailsBecome("3/2/03", "Number 2"));
    ShowTab("Advanced Restore");
    EXPECT_EQ(1, Selected(IDC_STATES));  // one list for both tabs
    EXPECT_TRUE(DetailsBecome("3/2/03", "Number 2"));
}

TEST_F(StateListTest, AnEmptyListHasNoDetails) {
    OpenRestore();
    EXPECT_TRUE(Items(IDC_STATES).empty());
    EXPECT_EQ("", Text(IDC_STATE_TIME));
    EXPECT_EQ("", Text(IDC_STATE_DESCRIPTION));
}

// The journal's list meets the record that was loaded last first.
TEST_F(StateListTest, EqualNumbersStandInTheOrderOfTheJournal) {
    MakeStates(2);
    std::string journal = device().FileBytes(kJournalFile);
    std::string repeated;
    for (std::size_t at = 0; at < journal.size(); at += kRecordBytes) {
        if (journal[at + kTypeOffset] == kStateType && journal[at + kNumberOffset] == 1) {
            repeated = journal.substr(at, kRecordBytes);
        }
    }
    ASSERT_EQ(kRecordBytes, repeated.size());
    repeated[kNumberOffset] = 2;
    repeated[kTolvOIDOffset] = 1;  // or it would replace the other
    device().PutFile(kJournalFile, journal + repeated);
    OpenRestore();
    EXPECT_EQ((Texts{"State 2", "State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_EQ("Number 1", Text(IDC_STATE_DESCRIPTION));
    ExpectFocus("alt+s", IDC_STATES);
    Keys("down");
    EXPECT_SOON_EQ("Number 2", Text(IDC_STATE_DESCRIPTION));
}

// The journal is freed and loaded again meanwhile.
TEST_F(StateListTest, AListThatIsMadeDuringAnOperationIsFilledAfterIt) {
    MakeStates(2);
    device().PutFile(kNote, "changed");
    Open();
    Ask("counters clear");
    HoldCall("GlobalMemoryStatus");
    Press(IDC_BACKUP);
    ASSERT_SOON(Counted("GlobalMemoryStatus") == 1);
    SelectPage(kRestoreTab);
    EXPECT_TRUE(Sees(IDC_STATES));
    EXPECT_TRUE(Items(IDC_STATES).empty());
    EXPECT_EQ((Numbers{1, 2}), States());  // it still works
    LetGo();
    EXPECT_SOON_EQ((Texts{"State 3", "State 2", "State 1"}), Items(IDC_STATES));
}

TEST_F(StateListTest, ABackupSelectsItsState) {
    MakeStates(2);
    OpenRestore();
    Select(IDC_STATES, "State 1");
    device().PutFile(kNote, "changed");
    ShowTab("Backup");
    Press(IDC_BACKUP);
    ExpectStates({1, 2, 3});
    EXPECT_EQ("Restore", SelectedTab());
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_EQ(0, Selected(IDC_STATES));
}

// An earlier one would be restored instead of the one that was asked for.
TEST_F(StateListTest, ARequestKeepsTheSelectedState) {
    MakeStates(3);
    OpenRestore();
    Select(IDC_STATES, "State 1");
    Press(IDC_RESTORE);
    ExpectEnd();
    EXPECT_EQ("a", device().FileBytes(kNote));
}

TEST_F(StateListTest, AStateWhoseBlockIsDamagedHasNoDetails) {
    MakeStates(2);
    std::string storage = device().FileBytes(kStorageFile);
    storage.resize(236);
    device().PutFile(kStorageFile, storage);
    OpenRestore();
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_EQ("", Text(IDC_STATE_TIME));
    EXPECT_EQ("", Text(IDC_STATE_DESCRIPTION));
}

}  // namespace
}  // namespace tests
