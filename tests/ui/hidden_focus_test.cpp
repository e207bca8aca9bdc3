// What is hidden must not keep the keyboard: keys would go nowhere, and the search for an
// underlined letter, which starts at the focus and passes over what is hidden, would never end.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kPageSelect = WM_APP + 103;
enum : WPARAM { kRestore = 1, kAbout = 5 };

class HiddenFocusTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
    // The page changes under the reminder, which is then refused.
    void ChangePageUnderReminder(WPARAM page, const std::string& name) {
        Open();
        Press(1001);
        ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
        ::PostMessageW(MainDialog(), kPageSelect, page, 0);
        EXPECT_TRUE(Eventually([&] { return SelectedTab() == name; }));
        ExpectReminder(tests::kBackupReminder, tests::kCancel);
    }
    void OpenOnTwoStates() {
        device().PutFile(L"\\My Documents\\a.txt", "a text");
        BackUp();
        SetDword("Reminders", 2);
        Open();
        ShowTab("Advanced Restore");
        EXPECT_TRUE(FocusComesTo(1014));
    }
    // The file of the second state is locked when it is to be taken back.
    void FailToTakeBack() {
        OpenOnTwoStates();
        Keys("enter");
        EXPECT_TRUE(Eventually([&] { return !Ask("window tree").empty(); }));
        const auto lock = device().Lock(L"\\My Documents\\a.txt");
        Press(1038);
        EXPECT_TRUE(Eventually([&] { return Sees(1043); }));
        EXPECT_TRUE(BecomesIdle());
    }
    static HWND TreePopup() { return ::FindWindowW(L"Dialog", L"Creating tree..."); }
    Json Focused() {
        for (const Json& window : Windows()) {
            if (window["focused"]) {
                return window;
            }
        }
        return nullptr;
    }
    // Goes round by the tabulator until the tree has the keyboard.
    bool TabToTree() {
        for (int i = 0; i < 10; ++i) {
            const Json before = Focused();
            if (before.is_object() && before["class"] == "SysTreeView32") {
                return true;
            }
            Keys("tab");
            EXPECT_TRUE(Eventually([&] { return Focused()["handle"] != before["handle"]; }));
        }
        return false;
    }
    void ExpectKeysStillWork() {
        EXPECT_TRUE(MainDialogBecomesActive());
        Keys("alt+q");  // nobody's letter
        Keys("ctrl+shift+tab ctrl+shift+tab ctrl+tab");
        EXPECT_TRUE(Eventually([&] { return SelectedTab() != "none"; }));
        Keys("alt+x");
        ExpectEnd();
    }
};

TEST_F(HiddenFocusTest, TheShownPageGetsItInstead) {
    ChangePageUnderReminder(kRestore, "Restore");
    Keys("alt+q");
    EXPECT_TRUE(FocusComesTo(1014));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, OnAPageWithoutControlsTheTabsGetIt) {
    ChangePageUnderReminder(kAbout, "About");
    Keys("alt+q");
    EXPECT_TRUE(FocusComesTo(1000));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, TheTreeThatGoesGivesItUp) {
    FailToTakeBack();
    Keys("ctrl+shift+tab");  // the restore page shows what failed too
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore"; }));
    ASSERT_TRUE(TabToTree());
    Keys("enter");  // gives up what failed
    EXPECT_TRUE(Eventually([&] { return !Sees(1043); }));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, TheTabChangesUnderThePopup) {
    OpenOnTwoStates();
    HoldCall("ReadFile");
    Keys("enter");
    // Without the list of windows: a thread that is held up answers nobody.
    EXPECT_TRUE(Eventually([] { return ::IsWindowVisible(TreePopup()); }));
    ::PostMessageW(MainDialog(), kPageSelect, kAbout, 0);
    LetGo();
    EXPECT_TRUE(Eventually([] { return TreePopup() == nullptr; }));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, ALetterThatNobodyHasDoesNothingOnAnyPage) {
    Ask("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar onTime");  // the options are disabled
    Open();
    for (const char* name :
         {"Restore", "Advanced Restore", "Storage file", "Options", "About", "Backup"}) {
        Keys("ctrl+tab");
        EXPECT_TRUE(Eventually([&] { return SelectedTab() == name; })) << name;
        Keys("alt+q");
    }
    ExpectKeysStillWork();
}

}  // namespace
