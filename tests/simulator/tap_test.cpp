// The stylus on a program's screen.
#include "platform/win32.h"

#include <optional>

#include "simulator/windows/control.h"
#include "tests/simulator/probe_fixture.h"

namespace tests {
namespace {

namespace windows = sim::windows;

// Control ids of the probe's dialog.
enum : int { kCheck = 101, kEdit, kList, kTabs, kTree, kPicker, kBar };

class TapTest : public ProbeTest {
protected:
    void SetUp() override {
        program_.emplace(sim(), kProbe, L"dialog");
        ASSERT_SOON(Control(kBar).visible && Control(kBar).position == 42);
    }
    windows::Window Control(int id) { return windows::Find(sim(), id).value_or(windows::Window{}); }
    bool Tap(int id, const std::string& item = "") { return windows::Tap(sim(), id, item); }
    bool TreeIsOpen() { return windows::Tree(sim()).at(0).expanded; }

    std::optional<Program> program_;
};

TEST_F(TapTest, AButtonIsPressed) {
    EXPECT_TRUE(Tap(kCheck));
    EXPECT_SOON_EQ(1, Control(kCheck).check);
    EXPECT_TRUE(Tap(IDOK));
    EXPECT_EQ(IDOK, program_->ExitCode());
}

TEST_F(TapTest, ItemsAreSelectedWithTheirNotification) {
    EXPECT_TRUE(Tap(kList, "State 2"));
    EXPECT_SOON_EQ(1, Control(kList).selected);
    EXPECT_SOON_EQ("chosen", Control(kEdit).text);
    EXPECT_TRUE(Tap(kTabs, "Backup"));
    EXPECT_SOON_EQ(1, Control(kTabs).selected);
    EXPECT_FALSE(Tap(kList, "State 3"));
}

TEST_F(TapTest, TwoTapsAtOnceAreADoubleTap) {
    EXPECT_FALSE(Tap(kTree, "Files|a.txt")) << "in a closed branch";
    EXPECT_TRUE(windows::Tap(sim(), kTree, "Files", 2));
    EXPECT_SOON(TreeIsOpen());
    EXPECT_TRUE(Tap(kTree, "Files|a.txt"));
    EXPECT_SOON(windows::Tree(sim()).at(0).children.at(0).selected);
}

TEST_F(TapTest, AControlThatTakesNoInputTakesNoTap) {
    HWND check = ::GetDlgItem(::FindWindowW(L"Dialog", L"Probe"), kCheck);
    ::EnableWindow(check, FALSE);
    EXPECT_TRUE(Tap(kCheck));
    // What comes behind it has been taken, so the tap has, too.
    EXPECT_TRUE(Tap(kTabs, "Backup"));
    EXPECT_SOON_EQ(1, Control(kTabs).selected);
    EXPECT_EQ(0, Control(kCheck).check);
    ::ShowWindow(check, SW_HIDE);
    EXPECT_SOON(!Control(kCheck).visible);
    EXPECT_FALSE(Tap(kCheck));
}

TEST_F(TapTest, APixelIsTappedWhateverStandsThere) {
    const windows::Window check = Control(kCheck);
    const std::string x = std::to_string(check.left + 5);
    const std::string y = std::to_string(check.top + check.height / 2);
    device().Command("window tap " + x + "," + y);
    EXPECT_SOON_EQ(1, Control(kCheck).check);
    device().Command("window tap 0,0");  // nothing stands there
    device().Command("window double-tap " + std::to_string(kTree) + " Files");
    EXPECT_SOON(TreeIsOpen());
}

}  // namespace
}  // namespace tests
