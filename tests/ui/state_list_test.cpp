// The list of states on the Restore and Advanced Restore tabs, and the details of the selected one.
#include "tests/ui/stored_states.h"
#include "tests/ui/ui_test.h"

namespace {

using Texts = std::vector<std::string>;

// Of a record of the journal.
constexpr std::size_t kRecordBytes = 32;
constexpr std::size_t kTolvOIDOffset = 4;
constexpr std::size_t kNumberOffset = 20;
constexpr std::size_t kTypeOffset = 24;
constexpr char kStateType = 32;

class StateListTest : public tests::UiTest {
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
            device().PutFile(L"\\My Documents\\a.txt",
                             std::string(static_cast<std::size_t>(i), 'a'));
            states_.BackUp("Number " + number);
        }
    }
    void OpenRestore() {
        Open();
        ShowTab("Restore");
        EXPECT_TRUE(Eventually([&] { return Sees(1014); }));
    }
    bool DetailsBecome(const std::string& day, const std::string& description) {
        return Eventually(
            [&] { return Text(1015).find(day + ", 7:30:") == 0 && Text(1016) == description; });
    }

    tests::StoredStates states_{device()};
};

// By their numbers, not by their texts.
TEST_F(StateListTest, TheNewestStateStandsFirstAndIsSelected) {
    MakeStates(11);
    OpenRestore();
    EXPECT_EQ((Texts{"State 11", "State 10", "State 9", "State 8", "State 7", "State 6", "State 5",
                     "State 4", "State 3", "State 2", "State 1"}),
              Items(1014));
    EXPECT_EQ(0, Selected(1014));
    EXPECT_TRUE(DetailsBecome("3/11/03", "Number 11"));
}

TEST_F(StateListTest, TheDetailsAreThoseOfTheSelectedState) {
    MakeStates(3);
    OpenRestore();
    Select(1014, "State 1");
    EXPECT_TRUE(DetailsBecome("3/1/03", "Number 1"));
    Select(1014, "State 2");
    EXPECT_TRUE(DetailsBecome("3/2/03", "Number 2"));
    ShowTab("Advanced Restore");
    EXPECT_EQ(1, Selected(1014));  // one list for both tabs
    EXPECT_TRUE(DetailsBecome("3/2/03", "Number 2"));
}

TEST_F(StateListTest, AnEmptyListHasNoDetails) {
    OpenRestore();
    EXPECT_TRUE(Items(1014).empty());
    EXPECT_EQ("", Text(1015));
    EXPECT_EQ("", Text(1016));
}

// The journal's list meets the record that was loaded last first.
TEST_F(StateListTest, EqualNumbersStandInTheOrderOfTheJournal) {
    MakeStates(2);
    std::string journal = device().FileBytes(tests::kJournalFile);
    std::string repeated;
    for (std::size_t at = 0; at < journal.size(); at += kRecordBytes) {
        if (journal[at + kTypeOffset] == kStateType && journal[at + kNumberOffset] == 1) {
            repeated = journal.substr(at, kRecordBytes);
        }
    }
    ASSERT_EQ(kRecordBytes, repeated.size());
    repeated[kNumberOffset] = 2;
    repeated[kTolvOIDOffset] = 1;  // or it would replace the other
    device().PutFile(tests::kJournalFile, journal + repeated);
    OpenRestore();
    EXPECT_EQ((Texts{"State 2", "State 2", "State 1"}), Items(1014));
    EXPECT_EQ("Number 1", Text(1016));
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("down");
    EXPECT_TRUE(Eventually([&] { return Text(1016) == "Number 2"; }));
}

// The journal is freed and loaded again meanwhile.
TEST_F(StateListTest, AListThatIsMadeDuringAnOperationIsFilledAfterIt) {
    constexpr UINT kPageSelect = WM_APP + 103;
    MakeStates(2);
    device().PutFile(L"\\My Documents\\a.txt", "changed");
    Open();
    Ask("counters clear");
    HoldCall("GlobalMemoryStatus");
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Counted("GlobalMemoryStatus") == 1; }));
    ::SendMessageW(MainDialog(), kPageSelect, 1, 0);
    EXPECT_TRUE(Sees(1014));
    EXPECT_TRUE(Items(1014).empty());
    EXPECT_EQ((std::vector<int>{1, 2}), States());  // it still works
    LetGo();
    EXPECT_TRUE(Eventually([&] {
        return Items(1014) == Texts({"State 3", "State 2", "State 1"});
    }));
}

TEST_F(StateListTest, ABackupSelectsItsState) {
    MakeStates(2);
    OpenRestore();
    Select(1014, "State 1");
    device().PutFile(L"\\My Documents\\a.txt", "changed");
    ShowTab("Backup");
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore" && Sees(1014); }));
    EXPECT_EQ((Texts{"State 3", "State 2", "State 1"}), Items(1014));
    EXPECT_EQ(0, Selected(1014));
}

// An earlier one would be restored instead of the one that was asked for.
TEST_F(StateListTest, ARequestKeepsTheSelectedState) {
    MakeStates(3);
    OpenRestore();
    Select(1014, "State 1");
    Press(1002);
    ExpectEnd();
    EXPECT_EQ("a", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(StateListTest, AStateWhoseBlockIsDamagedHasNoDetails) {
    MakeStates(2);
    std::string storage = device().FileBytes(tests::kStorageFile);
    storage.resize(236);
    device().PutFile(tests::kStorageFile, storage);
    OpenRestore();
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(1014));
    EXPECT_EQ("", Text(1015));
    EXPECT_EQ("", Text(1016));
}

}  // namespace
