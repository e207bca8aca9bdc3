// What the Advanced Restore page says of the comparison that it shows, and of none.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::string kHint = "Double click an item in the list to view the difference tree.";
const Box kNotCompared = {
    "The states could not be compared. Check that the storage card is in place, then try again.",
    kWarningBox};

class ComparisonLineTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 10);
        BackUpThenChange();
        BackUp();
    }
    void OpenAdvanced() { OpenOn("Advanced Restore"); }
    void Compare(const std::string& state) {
        Select(IDC_STATES, state);
        ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    }
    std::string Line() { return Text(IDC_DIFFERENCES_HINT); }
    bool TreeIsEmpty() { return sim::windows::Tree(device().sim()).empty(); }
    // The reminder that a button brings up says what the button will do; it is refused.
    void ExpectEffect(int button, const std::string& effect) {
        PressForReminder(button);
        EXPECT_SOON_EQ(effect, Text(IDC_REMINDER_EFFECT));
        RefuseReminder(kRestoreReminder);
    }
};

TEST_F(ComparisonLineTest, BeforeAComparisonThereIsTheHintAndNoTree) {
    OpenAdvanced();
    EXPECT_EQ(kHint, Line());
    EXPECT_TRUE(TreeIsEmpty());
    ShowTab("Options");
    Press(IDC_ADVANCED_TREE);
    EXPECT_SOON_EQ(1u, Dword("AdvancedTreeView"));
    ShowTab("Advanced Restore");
    EXPECT_TRUE(TreeIsEmpty());
}

TEST_F(ComparisonLineTest, TheLineNamesTheStateThatTheButtonsActOn) {
    OpenAdvanced();
    Compare("State 2");
    EXPECT_EQ("+ applies the changes of State 2, -- takes them back.", Line());
}

TEST_F(ComparisonLineTest, AnotherSelectedStateIsNotTheOneThatIsShown) {
    OpenAdvanced();
    Compare("State 2");
    Select(IDC_STATES, "State 1");
    EXPECT_SOON_EQ("Shows State 2. Double click State 1 to compare it.", Line());
    EXPECT_EQ("Differences from State 1 to State 2", Text(IDC_DIFFERENCES_CAPTION));
    EXPECT_FALSE(TreeIsEmpty());
}

TEST_F(ComparisonLineTest, NothingIsBeforeTheOldestState) {
    OpenAdvanced();
    Compare("State 1");
    EXPECT_EQ("Nothing is before State 1.", Line());
    EXPECT_FALSE(TreeIsEmpty());
    ExpectEffect(IDC_APPLY_CHANGES, "");
}

TEST_F(ComparisonLineTest, TheReminderNamesStateAndEffect) {
    SetDword("Reminders", 14);
    OpenAdvanced();
    Compare("State 2");
    Select(IDC_STATES, "State 1");
    ExpectEffect(IDC_APPLY_CHANGES, "+ applies the changes of State 2 again.");
    ExpectEffect(IDC_TAKE_BACK_CHANGES, "-- takes the changes of State 2 back, to State 1.");
    ShowTab("Backup");
    PressForReminder(IDC_BACKUP);
    EXPECT_EQ("", Text(IDC_REMINDER_EFFECT));
    RefuseReminder(kBackupReminder);
}

TEST_F(ComparisonLineTest, OfWhatFailedTheReminderSaysThatItIsTriedAgain) {
    SetDword("Reminders", 2);
    OpenAdvanced();
    Compare("State 2");
    {
        const auto lock = device().Lock(kNote);
        Press(IDC_TAKE_BACK_CHANGES);
        EXPECT_SOON(Sees(IDC_FAILED_OK));
    }
    EXPECT_TRUE(BecomesIdle());
    SetDword("Reminders", 10);
    ExpectEffect(IDC_APPLY_CHANGES, "+ tries again what could not be restored.");
}

// The popup is gone before the message comes up.
TEST_F(ComparisonLineTest, AFailedComparisonIsToldAndShowsNoTree) {
    OpenAdvanced();
    Compare("State 2");
    device().Fault("CreateFileW", 1, 1000, 32, "Backup.sav, 3221225472");
    ::PostMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    EXPECT_SOON(BoxIsUp());
    EXPECT_FALSE(Shows(kTreePopupTitle));
    ExpectBox(kNotCompared);
    LetGo();
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    EXPECT_EQ(kHint, Line());
    EXPECT_TRUE(TreeIsEmpty());
}

// The comparison was made; the tree alone meets the storage that is gone.
TEST_F(ComparisonLineTest, ATreeThatCannotBeBuiltIsNoDifferenceEither) {
    OpenAdvanced();
    device().Fault("CreateFileForMappingW", 1, 1000, 2, ".sav");
    Select(IDC_STATES, "State 2");
    ::PostMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    ExpectBox(kNotCompared);
    LetGo();
    EXPECT_TRUE(TreeIsEmpty());
    SetDword("Reminders", 2);
    PressAndExpect(IDC_TAKE_BACK_CHANGES, kNothingToRestore);
}

}  // namespace
}  // namespace tests
