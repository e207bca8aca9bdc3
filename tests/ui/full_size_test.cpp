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
