// What is hidden must not keep the keyboard: keys would go nowhere, and the search for an
// underlined letter, which starts at the focus and passes over what is hidden, would never end.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class HiddenFocusTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
    // The page changes under the reminder, which is then refused.
    void ChangePageUnderReminder(WPARAM page, const std::string& name) {
        Open();
        PressForReminder(IDC_BACKUP);
        ::PostMessageW(MainDialog(), kPageSelect, page, 0);
        EXPECT_SOON_EQ(name, SelectedTab());
        RefuseReminder(kBackupReminder);
    }
    void OpenOnTwoStates() {
        device().PutFile(kNote, "a text");
        BackUp();
        SetDword("Reminders", 2);
        OpenOn("Advanced Restore");
        EXPECT_TRUE(FocusComesTo(IDC_STATES));
    }
    // The file of the second state is locked when it is to be taken back.
    void FailToTakeBack() {
        OpenOnTwoStates();
        Keys("enter");
        EXPECT_SOON(!Ask("window tree").empty());
        const auto lock = device().Lock(kNote);
        Press(IDC_TAKE_BACK_CHANGES);
        EXPECT_SOON(Sees(IDC_FAILED_OK));
        EXPECT_TRUE(BecomesIdle());
    }
    static HWND TreePopup() { return Dialog(L"Creating tree..."); }
    Window Focused() {
        return AwaitWindow([](const Window& window) { return window.focused; });
    }
    // Goes round by the tabulator until the tree has the keyboard.
    bool TabToTree() {
        for (int i = 0; i < 10; ++i) {
            const Window before = Focused();
            if (before.class_name == "SysTreeView32") {
                return true;
            }
            Keys("tab");
            EXPECT_SOON(Focused().handle != before.handle);
        }
        return false;
    }
    void ExpectKeysStillWork() {
        EXPECT_TRUE(MainDialogBecomesActive());
        Keys("alt+q");  // nobody's letter
        Keys("ctrl+shift+tab ctrl+shift+tab ctrl+tab");
        EXPECT_SOON(SelectedTab() != "none");
        Keys("alt+x");
        ExpectEnd();
    }
};

TEST_F(HiddenFocusTest, TheShownPageGetsItInstead) {
    ChangePageUnderReminder(kRestoreTab, "Restore");
    ExpectFocus("alt+q", IDC_STATES);
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, OnThePageThatOnlyTellsItsHelpGetsIt) {
    ChangePageUnderReminder(kAboutTab, "About");
    ExpectFocus("alt+q", IDC_PAGE_HELP);
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, TheTreeThatGoesGivesItUp) {
    FailToTakeBack();
    Keys("ctrl+shift+tab");  // the restore page shows what failed too
    ExpectTab("Restore");
    ASSERT_TRUE(TabToTree());
    Keys("enter");  // gives up what failed
    EXPECT_SOON(!Sees(IDC_FAILED_OK));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, TheTabChangesUnderThePopup) {
    OpenOnTwoStates();
    HoldCall("ReadFile");
    Keys("enter");
    // Without the list of windows: a thread that is held up answers nobody.
    EXPECT_SOON(::IsWindowVisible(TreePopup()));
    ASSERT_TRUE(RulesAreUsedUp());
    ::PostMessageW(MainDialog(), kPageSelect, kAboutTab, 0);
    LetGo();
    EXPECT_SOON_EQ(nullptr, TreePopup());
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, ALetterThatNobodyHasDoesNothingOnAnyPage) {
    RemoveInstallation();  // the options are disabled
    Open();
    for (const char* name :
         {"Restore", "Advanced Restore", "Storage file", "Options", "About", "Backup"}) {
        Keys("ctrl+tab");
        ExpectTab(name);
        Keys("alt+q");
    }
    ExpectKeysStillWork();
}

}  // namespace
}  // namespace tests
