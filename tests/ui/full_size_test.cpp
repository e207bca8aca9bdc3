// The dialog that fills the screen and goes back, by stylus and by keyboard.
#include "tests/ui/page_fit.h"

namespace tests {
namespace {

constexpr int kTreeLine = 16;  // pixels

class FullSizeTest : public PageFitTest {
protected:
    void SetUp() override {
        PageFitTest::SetUp();
        BackUpThenChange();
        device().PutFile(L"\\My Documents\\fresh.doc", "new words");
        BackUp();
        Open();
        ShowTree();
    }
    bool FillsScreen() {
        const SIZE screen = ScreenSize();
        const Window dialog = MainWindowOnScreen();
        return dialog.left == 0 && dialog.top == 0 && dialog.width == screen.cx &&
               dialog.height == screen.cy;
    }
    bool IsAt(const Window& place) {
        const Window dialog = MainWindowOnScreen();
        return dialog.left == place.left && dialog.top == place.top &&
               dialog.width == place.width && dialog.height == place.height;
    }
    // The dialog has the whole screen from the beginning.
    bool HasTheScreen(const Window& place) const {
        const SIZE screen = ScreenSize();
        return place.width == screen.cx && place.height == screen.cy;
    }
    void FocusTree() {
        constexpr int kMostControls = 12;
        for (int i = 0; i < kMostControls && !TreeHasFocus(); ++i) {
            Keys("tab");
            EXPECT_TRUE(DialogIsDone());
        }
        EXPECT_TRUE(TreeHasFocus());
    }
    static bool EndsWith(const std::string& text, const std::string& end) {
        return text.size() >= end.size() &&
               text.compare(text.size() - end.size(), end.size(), end) == 0;
    }
    int TreeHeight() {
        return AwaitWindow([](const Window& window) {
                   return window.class_name == "SysTreeView32" && window.visible;
               })
            .height;
    }
};

TEST_P(FullSizeTest, TheButtonByTheTreeFillsTheScreenAndGoesBack) {
    const Window place = MainWindowOnScreen();
    const Window tree = AwaitWindow([](const Window& window) {
        return window.class_name == "SysTreeView32" && window.visible;
    });
    Tap(IDC_FULL);
    EXPECT_SOON(FillsScreen() && Sees(IDC_OLD_CONTENTS) && Sees(IDC_NEW_CONTENTS));
    EXPECT_EQ("&Back", Text(IDC_FULL));
    if (!HasTheScreen(place)) {
        EXPECT_GT(TreeHeight(), tree.height);
    }
    Tap(IDC_FULL);
    EXPECT_SOON(IsAt(place) && !Sees(IDC_OLD_CONTENTS) && !Sees(IDC_NEW_CONTENTS));
    EXPECT_EQ("&Full", Text(IDC_FULL));
    EXPECT_EQ(tree.height, TreeHeight());
}

TEST_P(FullSizeTest, AltEnterDoesTheSameOnEveryPage) {
    for (const char* tab : kTabNames) {
        SCOPED_TRACE(tab);
        ShowTab(tab);
        const Window place = MainWindowOnScreen();
        Keys("alt+enter");
        EXPECT_SOON(FillsScreen());
        ExpectPageFits();
        Keys("alt+enter");
        EXPECT_SOON(IsAt(place));
    }
}

// Before and after, read from the storage; the same of what is to be restored.
TEST_P(FullSizeTest, TheSelectedItemStandsBesideTheTreeAsItWasAndAsItIs) {
    Tap(IDC_FULL);
    EXPECT_SOON(Sees(IDC_OLD_CONTENTS));
    EXPECT_SOON_EQ("Select an item of the tree.", Text(IDC_OLD_CONTENTS));
    ASSERT_TRUE(MainDialogBecomesActive());
    FocusTree();
    Keys("t x t");
    EXPECT_SOON(EndsWith(Text(IDC_OLD_CONTENTS), "\r\n\r\nhello"));
    EXPECT_SOON(EndsWith(Text(IDC_NEW_CONTENTS), "\r\n\r\nchanged"));
    EXPECT_EQ(0u, Text(IDC_OLD_CONTENTS).find("5 bytes\r\n"));
    Tap(IDC_FULL);
    EXPECT_SOON(!Sees(IDC_OLD_CONTENTS));
    FocusTree();
    Keys("home");
    Tap(IDC_FULL);
    EXPECT_SOON_EQ("Select an item of the tree.", Text(IDC_NEW_CONTENTS));
}

TEST_P(FullSizeTest, OfWhatWasAddedThereIsNothingBefore) {
    Tap(IDC_FULL);
    EXPECT_SOON(Sees(IDC_OLD_CONTENTS));
    ASSERT_TRUE(MainDialogBecomesActive());
    FocusTree();
    Keys("f r e s h");
    EXPECT_SOON_EQ("It is not there.", Text(IDC_OLD_CONTENTS));
    EXPECT_SOON(EndsWith(Text(IDC_NEW_CONTENTS), "\r\n\r\nnew words"));
}

// What has the focus may be hidden at the other size.
TEST_P(FullSizeTest, TheKeyboardGoesOnWhereTheStatesAreHidden) {
    ASSERT_TRUE(MainDialogBecomesActive());
    ExpectFocus("alt+s", IDC_STATES);
    Keys("alt+enter");
    EXPECT_SOON(Sees(IDC_OLD_CONTENTS));
    ExpectFocus("alt+o", IDC_OLD_CONTENTS);
    Keys("alt+b");
    EXPECT_SOON(!Sees(IDC_OLD_CONTENTS));
}

INSTANTIATE_TEST_SUITE_P(Screens, FullSizeTest, ::testing::ValuesIn(kScreens));

class TabTapTest : public PageFitTest {};

TEST_P(TabTapTest, EveryTabIsReachedByTheStylus) {
    TakeFirstState();
    Open();
    for (const char* tab : {"About", "Options", "Storage file", "Advanced Restore", "Restore",
                            "Backup", "About", "Restore"}) {
        SCOPED_TRACE(tab);
        TapTab(tab);
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, TabTapTest, ::testing::ValuesIn(kScreens));

class FullTreeTest : public FullSizeTest {};

TEST_P(FullTreeTest, ShowsTwentyLines) {
    Tap(IDC_FULL);
    EXPECT_SOON(FillsScreen());
    EXPECT_GE(TreeHeight(), 20 * kTreeLine);
}

INSTANTIATE_TEST_SUITE_P(Screens, FullTreeTest, ::testing::Values("640x480"));

}  // namespace
}  // namespace tests
