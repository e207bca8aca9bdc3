// The dialog by keyboard alone.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

constexpr int kTabs = 1000;

class KeyboardTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
    bool TabBecomes(const std::string& name) {
        return Eventually([&] { return SelectedTab() == name; });
    }
    bool CaptionBecomes(const std::string& text) {
        return Eventually([&] { return Text(1041) == text; });
    }
    // The tree has no number of its own.
    bool FocusComesToTree() {
        return Eventually([&] {
            for (const Json& window : Windows()) {
                if (window["class"] == "SysTreeView32" && window["focused"] == true) {
                    return true;
                }
            }
            return false;
        });
    }
    void AddState() {
        device().PutFile(L"\\My Documents\\a.txt", "hello");
        BackUp();
    }
    static constexpr int kTree = -1;
    void ExpectTabOrder(const std::vector<int>& order) {
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
        EXPECT_TRUE(TabBecomes(name)) << name;
    }
    EXPECT_TRUE(Sees(1018));
    for (const char* name : {"About", "Options", "Storage file"}) {
        Keys("ctrl+shift+tab");
        EXPECT_TRUE(TabBecomes(name)) << name;
    }
}

TEST_F(KeyboardTest, ArrowsOnTheTabsShowThePageBeside) {
    Open();
    Keys("shift+tab");
    EXPECT_TRUE(FocusComesTo(kTabs));
    Keys("right");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore" && Sees(1014); }));
    Keys("right");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Advanced Restore" && Sees(1037); }));
    Keys("left");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore" && !Sees(1037); }));
    EXPECT_TRUE(Control(kTabs)->at("focused"));
}

TEST_F(KeyboardTest, TabGoesThroughEachPageAsItIsReadAndTheTabs) {
    const struct {
        const char* tab;
        std::vector<int> order;
    } kPages[] = {
        {"Backup", {1018, 1001, kTabs}},
        {"Restore", {1014, 1016, 1002, kTabs}},
        {"Advanced Restore", {1014, 1016, kTree, 1037, 1038, kTabs}},
        {"Storage file", {1019, 1012, 1026, kTabs}},
        {"Options", {1060, 1062, 1061, 1063, 1064, 1065, kTabs}},
    };
    Open();
    for (const auto& page : kPages) {
        EXPECT_TRUE(TabBecomes(page.tab));
        ExpectTabOrder(page.order);
        Keys("ctrl+tab");
    }
    EXPECT_TRUE(TabBecomes("About"));
    EXPECT_TRUE(FocusComesTo(kTabs));
}

TEST_F(KeyboardTest, UnderlinedLettersLeadToTheirControls) {
    const struct {
        const char* tab;
        const char* keys;
        int control;
    } kLetters[] = {
        {"Backup", "alt+d", 1018},       {"Restore", "alt+e", 1016},
        {"Restore", "alt+s", 1014},      {"Storage file", "alt+d", 1026},
        {"Storage file", "alt+n", 1019},
    };
    Open();
    Keys("tab");
    for (const auto& letter : kLetters) {
        if (SelectedTab() != letter.tab) {
            ShowTab(letter.tab);
        }
        Keys(letter.keys);
        EXPECT_TRUE(FocusComesTo(letter.control)) << letter.tab << " " << letter.keys;
    }
    ShowTab("Backup");
    Keys("alt+u");
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    ShowTab("Restore");
    Keys("alt+r");
    ExpectReminder(tests::kRestoreReminder, tests::kCancel);
}

// An edit control of several lines closes its dialog on Escape.
TEST_F(KeyboardTest, EscapeInADescriptionLeavesThePage) {
    Open();
    ShowTab("Restore");
    Keys("alt+e");
    EXPECT_TRUE(FocusComesTo(1016));
    Keys("esc");
    Keys("ctrl+shift+tab");
    EXPECT_TRUE(TabBecomes("Backup"));
    ShowTab("Restore");
    EXPECT_TRUE(Eventually([&] { return Sees(1016); }));
    EXPECT_EQ(4u, Calls("CreateDialogIndirectParamW"));  // no page or tree was made again
}

TEST_F(KeyboardTest, EnterPressesThePagesButtonAlsoOnTheTabs) {
    Open();
    Keys("enter");
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    Keys("shift+tab");
    EXPECT_TRUE(FocusComesTo(kTabs));
    Keys("enter");
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    ShowTab("Restore");
    Keys("enter");
    ExpectReminder(tests::kRestoreReminder, tests::kCancel);
    ShowTab("Storage file");
    Keys("enter");
    ASSERT_TRUE(Eventually([&] { return Shows("Choose backup file"); }));
    Keys("esc");
    EXPECT_TRUE(Eventually([&] { return !Shows("Choose backup file"); }));
}

TEST_F(KeyboardTest, EnterClicksTheButtonThatHasTheFocus) {
    Open();
    ShowTab("Advanced Restore");
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("shift+tab");
    Keys("shift+tab");
    EXPECT_TRUE(FocusComesTo(1038));
    Keys("enter");
    ExpectReminder(tests::kRestoreReminder, tests::kCancel);
}

TEST_F(KeyboardTest, EnterInTheStatesOfTheAdvancedPageShowsTheDifferences) {
    AddState();
    Open();
    ShowTab("Advanced Restore");
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("enter");
    EXPECT_TRUE(CaptionBecomes("Differences from State 1 to State 2"));
    EXPECT_TRUE(Eventually([&] { return !Shows("Creating tree..."); }));
}

// An edit control of several lines looks for a button itself, and finds one that this form hides.
TEST_F(KeyboardTest, EnterInADescriptionPressesOnlyAButtonThatIsSeen) {
    AddState();
    Open();
    ShowTab("Restore");
    Keys("alt+e");
    EXPECT_TRUE(FocusComesTo(1016));
    Keys("enter");
    ExpectReminder(tests::kRestoreReminder, tests::kCancel);
    ShowTab("Advanced Restore");
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("tab");
    EXPECT_TRUE(FocusComesTo(1016));
    Keys("enter");
    Pause(300);
    EXPECT_FALSE(Shows("Reminder"));
    EXPECT_TRUE(Control(1016)->at("focused"));
    EXPECT_EQ("", Text(1041));
    ShowTab("Storage file");
    Keys("alt+d");
    EXPECT_TRUE(FocusComesTo(1026));
    Keys("enter");
    EXPECT_TRUE(Eventually([&] { return Shows("Choose backup file"); }));
}

TEST_F(KeyboardTest, EnterWithoutAButtonDoesNothing) {
    AddState();
    Open();
    ShowTab("Advanced Restore");
    Keys("alt+s");
    EXPECT_TRUE(FocusComesTo(1014));
    Keys("shift+tab");
    EXPECT_TRUE(FocusComesTo(kTabs));
    Keys("enter");
    ShowTab("Options");
    Keys("tab");
    Keys("enter");
    Keys("ctrl+tab");
    EXPECT_TRUE(TabBecomes("About"));
    Keys("enter");
    Keys("ctrl+tab");
    EXPECT_TRUE(TabBecomes("Backup"));
    EXPECT_EQ("", AnyControl(1041)->at("text"));
    EXPECT_EQ(0u, Dword("onTime").value_or(0));
    EXPECT_EQ(0u, BoxCount());
}

}  // namespace
