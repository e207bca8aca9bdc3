// A page that is hidden while the keyboard is elsewhere must not get the focus back: keys would go
// nowhere, and the search for an underlined letter, which starts at the focus and passes over what
// is hidden, would never end.
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
    void ExpectKeysStillWork() {
        Keys("alt+q");  // nobody's letter
        Keys("ctrl+shift+tab ctrl+shift+tab ctrl+tab");
        EXPECT_TRUE(Eventually([&] { return SelectedTab() != "none"; }));
        Keys("alt+x");
        ExpectEnd();
    }
};

TEST_F(HiddenFocusTest, TheShownPageGetsItInstead) {
    ChangePageUnderReminder(kRestore, "Restore");
    EXPECT_TRUE(FocusComesTo(1014));
    ExpectKeysStillWork();
}

TEST_F(HiddenFocusTest, OnAPageWithoutControlsTheTabsGetIt) {
    ChangePageUnderReminder(kAbout, "About");
    EXPECT_TRUE(FocusComesTo(1000));
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
