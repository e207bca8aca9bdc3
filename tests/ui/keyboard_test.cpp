// The dialog by keyboard alone.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class KeyboardTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
    // The tree has no number of its own.
    bool FocusComesToTree() {
        return Eventually([&] {
            return Find([](const Window& window) {
                       return window.class_name == "SysTreeView32" && window.focused;
                   })
                .has_value();
        });
    }
    void AddState() {
        device().PutFile(kNote, "hello");
        BackUp();
    }
    static constexpr int kTree = -1;
    void ExpectTabOrder(const Numbers& order) {
        for (const int id : order) {
            EXPECT_TRUE(id == kTree ? FocusComesToTree() : FocusComesTo(id)) << id;
            Keys("tab");
        }
        EXPECT_TRUE(FocusComesTo(order.front()));
    }
};

// Escape would close a dialog of the usual kind.
TEST_F(KeyboardTest, ControlTabGoesRoundAndEscapeDoesNothingOnAnyPage) {
    Open();
    for (const char* name :
         {"Restore", "Advanced Restore", "Storage file", "Options", "About", "Backup"}) {
        Keys("esc ctrl+tab");
        ExpectTab(name);
    }
    EXPECT_TRUE(Sees(IDC_NEW_DESCRIPTION));
    for (const char* name : {"About", "Options", "Storage file"}) {
        Keys("ctrl+shift+tab");
        ExpectTab(name);
    }
}

TEST_F(KeyboardTest, ArrowsOnTheTabsShowThePageBeside) {
    Open();
    ExpectFocus("shift+tab", IDC_TABS);
    Keys("right");
    EXPECT_SOON(SelectedTab() == "Restore" && Sees(IDC_STATES));
    Keys("right");
    EXPECT_SOON(SelectedTab() == "Advanced Restore" && Sees(IDC_APPLY_CHANGES));
    Keys("left");
    EXPECT_SOON(SelectedTab() == "Restore" && !Sees(IDC_APPLY_CHANGES));
    EXPECT_TRUE(FocusComesTo(IDC_TABS));
}

TEST_F(KeyboardTest, TabGoesThroughEachPageAsItIsReadAndTheTabs) {
    const struct {
        const char* tab;
        Numbers order;
    } kPages[] = {
        {"Backup", {IDC_NEW_DESCRIPTION, IDC_BACKUP, IDC_PAGE_HELP, IDC_TABS}},
        {"Restore",
         {IDC_STATES, IDC_STATE_DESCRIPTION, IDC_PREVIEW, IDC_RESTORE, IDC_PAGE_HELP, IDC_TABS}},
        {"Advanced Restore",
         {IDC_STATES, IDC_STATE_DESCRIPTION, kTree, IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES,
          IDC_SHOW, IDC_FULL, IDC_PAGE_HELP, IDC_TABS}},
        {"Storage file",
         {IDC_STORAGE_NAME, IDC_BROWSE, IDC_PAGE_HELP, IDC_STORAGE_DESCRIPTION, IDC_TABS}},
        {"Options",
         {IDC_ON_TIME, IDC_TIME, IDC_ON_BATTERY, IDC_SHOW_REMINDERS, IDC_PAGE_HELP,
          IDC_ADVANCED_TREE, IDC_RESTORE_DATABASES, IDC_DELETE_OLD_STORAGE, IDC_TABS}},
        {"About", {IDC_PAGE_HELP, IDC_TABS}},
    };
    Open();
    for (const auto& page : kPages) {
        ExpectTab(page.tab);
        ExpectTabOrder(page.order);
        Keys("ctrl+tab");
    }
}

TEST_F(KeyboardTest, UnderlinedLettersLeadToTheirControls) {
    const KeyToControl kLetters[] = {
        {"Backup", "alt+d", IDC_NEW_DESCRIPTION},
        {"Restore", "alt+e", IDC_STATE_DESCRIPTION},
        {"Restore", "alt+s", IDC_STATES},
        {"Storage file", "alt+d", IDC_STORAGE_DESCRIPTION},
        {"Storage file", "alt+n", IDC_STORAGE_NAME},
        {"Options", "alt+t", IDC_TIME},
    };
    Open();
    Keys("tab");
    for (const auto& letter : kLetters) {
        ExpectFocusOn(letter);
    }
    ShowTab("Backup");
    Keys("alt+u");
    RefuseReminder(kBackupReminder);
    ShowTab("Restore");
    Keys("alt+r");
    RefuseReminder(kRestoreReminder);
}

TEST_F(KeyboardTest, AltWithPlusAndMinusPressesTheButtonsOfTheTree) {
    BackUpThenChange();
    OpenOn("Advanced Restore");
    ShowDifferences();
    Keys("alt+plus");
    RefuseReminder(kRestoreReminder);
    Keys("alt+minus");
    RefuseReminder(kRestoreReminder);
    ShowTab("Restore");
    Keys("alt+minus");
    EXPECT_TRUE(DialogIsDone());
    EXPECT_FALSE(BoxIsUp());
}

TEST_F(KeyboardTest, AltWithDLeadsToTheTree) {
    BackUpThenChange();
    OpenOn("Advanced Restore");
    ShowDifferences();
    ExpectFocus("alt+s", IDC_STATES);
    Keys("alt+d");
    EXPECT_TRUE(FocusComesToTree());
    ShowTab("Restore");
    ExpectFocus("alt+s", IDC_STATES);
    Keys("alt+d");
    EXPECT_TRUE(DialogIsDone());
    ExpectFocus("tab", IDC_STATE_DESCRIPTION);
}

// An edit control of several lines closes its dialog on Escape.
TEST_F(KeyboardTest, EscapeInADescriptionLeavesThePage) {
    OpenOn("Restore");
    ExpectFocus("alt+e", IDC_STATE_DESCRIPTION);
    Keys("esc");
    Keys("ctrl+shift+tab");
    ExpectTab("Backup");
    ShowTab("Restore");
    EXPECT_SOON(Sees(IDC_STATE_DESCRIPTION));
    EXPECT_EQ(4u, Calls("CreateDialogIndirectParamW"));  // no page or tree was made again
}

TEST_F(KeyboardTest, EnterPressesThePagesButtonAlsoOnTheTabs) {
    Open();
    Keys("enter");
    RefuseReminder(kBackupReminder);
    ExpectFocus("shift+tab", IDC_TABS);
    Keys("enter");
    RefuseReminder(kBackupReminder);
    ShowTab("Restore");
    Keys("enter");
    RefuseReminder(kRestoreReminder);
    ShowTab("Storage file");
    Keys("enter");
    ASSERT_SOON(Shows(kOpenTitle));
    Keys("esc");
    EXPECT_SOON(!Shows(kOpenTitle));
}

TEST_F(KeyboardTest, EnterClicksTheButtonThatHasTheFocus) {
    OpenOn("Advanced Restore");
    ExpectFocus("alt+s", IDC_STATES);
    Keys("shift+tab shift+tab shift+tab shift+tab");
    ExpectFocus("shift+tab", IDC_TAKE_BACK_CHANGES);
    Keys("enter");
    RefuseReminder(kRestoreReminder);
}

TEST_F(KeyboardTest, EnterInTheStatesOfTheAdvancedPageShowsTheDifferences) {
    AddState();
    OpenOn("Advanced Restore");
    ExpectFocus("alt+s", IDC_STATES);
    Keys("enter");
    EXPECT_SOON_EQ("Differences from State 1 to State 2", Text(IDC_DIFFERENCES_CAPTION));
    EXPECT_SOON(!Shows(kTreePopupTitle));
}

// An edit control of several lines looks for a button itself, and finds one that this form hides.
TEST_F(KeyboardTest, EnterInADescriptionPressesOnlyAButtonThatIsSeen) {
    AddState();
    OpenOn("Restore");
    ExpectFocus("alt+e", IDC_STATE_DESCRIPTION);
    Keys("enter");
    RefuseReminder(kRestoreReminder);
    ShowTab("Advanced Restore");
    ExpectFocus("alt+s", IDC_STATES);
    ExpectFocus("tab", IDC_STATE_DESCRIPTION);
    Keys("enter");
    Pause(300);
    EXPECT_FALSE(Shows("Reminder"));
    EXPECT_TRUE(FocusComesTo(IDC_STATE_DESCRIPTION));
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    ShowTab("Storage file");
    ExpectFocus("alt+d", IDC_STORAGE_DESCRIPTION);
    Keys("enter");
    EXPECT_SOON(Shows(kOpenTitle));
}

TEST_F(KeyboardTest, EnterWithoutAButtonDoesNothing) {
    AddState();
    OpenOn("Advanced Restore");
    ExpectFocus("alt+s", IDC_STATES);
    ExpectFocus("shift+tab", IDC_TABS);
    Keys("enter");
    ShowTab("Options");
    Keys("tab");
    Keys("enter");
    Keys("ctrl+tab");
    ExpectTab("About");
    Keys("enter");
    Keys("ctrl+tab");
    ExpectTab("Backup");
    EXPECT_EQ("", AnyControl(IDC_DIFFERENCES_CAPTION).text);
    EXPECT_EQ(0u, Dword("onTime").value_or(0));
    EXPECT_EQ(0u, BoxCount());
}

}  // namespace
}  // namespace tests
