// A program's screen, seen and worked from outside its process.
#include "platform/win32.h"

#include <algorithm>
#include <functional>

#include "simulator/windows/control.h"
#include "simulator/windows/keys.h"
#include "simulator/windows/png.h"
#include "simulator/windows/screenshot.h"
#include "simulator/windows/stub.h"
#include "tests/simulator/probe_fixture.h"

namespace tests {
namespace {

namespace windows = sim::windows;

// Control ids of the probe's dialog.
enum : int { kCheck = 101, kEdit, kList, kTabs, kTree, kPicker, kBar };

class WindowsTest : public ProbeTest {
protected:
    // The dialog's last control is there.
    bool DialogIsUp() {
        return Eventually([&] { return windows::Find(sim(), kBar).has_value(); });
    }
    windows::Window Control(int id) { return windows::Find(sim(), id).value_or(windows::Window{}); }
    std::vector<windows::Window> Tops() {
        std::vector<windows::Window> tops = windows::ListTops(sim());
        tops.erase(std::remove_if(tops.begin(), tops.end(),
                                  [](const windows::Window& w) { return !w.visible; }),
                   tops.end());
        return tops;
    }
    static std::vector<std::string> Classes(const std::vector<windows::Window>& list) {
        std::vector<std::string> classes;
        for (const windows::Window& window : list) {
            if (window.visible) {
                classes.push_back(window.class_name);
            }
        }
        return classes;
    }
};

TEST_F(WindowsTest, TheListTellsWhatStandsOnTheScreen) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    const auto tops = Tops();
    ASSERT_EQ(1u, tops.size());
    EXPECT_EQ("Dialog", tops[0].class_name);
    EXPECT_EQ("Probe", tops[0].text);
    EXPECT_EQ(program.pid(), tops[0].pid);
    EXPECT_TRUE(tops[0].active);
    EXPECT_EQ("Check", Control(kCheck).text);
    EXPECT_EQ(0, Control(kCheck).check);
    EXPECT_EQ("first", Control(kEdit).text);
    EXPECT_EQ(-1, Control(kEdit).check);
    EXPECT_EQ((std::vector<std::string>{"State 1", "State 2"}), Control(kList).items);
    EXPECT_EQ(-1, Control(kList).selected);
    EXPECT_EQ((std::vector<std::string>{"Restore", "Backup"}), Control(kTabs).items);
    EXPECT_EQ(0, Control(kTabs).selected);
    EXPECT_EQ(42, Control(kBar).position);
    EXPECT_EQ(200, Control(kEdit).width);
    EXPECT_EQ(22, Control(kEdit).height);
    EXPECT_FALSE(windows::Find(sim(), 999).has_value());
}

TEST_F(WindowsTest, ControlsAreListedWithWhatTheyStandIn) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    const auto list = windows::ListControls(sim(), kList);
    EXPECT_EQ((std::vector<std::string>{"Dialog", "ListBox"}), Classes(list));
    EXPECT_EQ(list.front().handle, list.back().parent);
    EXPECT_EQ((std::vector<std::string>{"State 1", "State 2"}), list.back().items);
    EXPECT_EQ((std::vector<std::string>{}), Classes(windows::ListControls(sim(), 999)));
    for (const windows::Window& top : windows::ListTops(sim())) {
        EXPECT_EQ(0u, top.parent);
    }
    EXPECT_LT(windows::ListTops(sim()).size(), windows::List(sim()).size());
}

TEST_F(WindowsTest, WhatIsVisibleIsListedAlone) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    const std::uint32_t list = Control(kList).handle;
    const auto is_listed = [&] {
        const auto windows = windows::ListVisible(sim());
        return std::any_of(windows.begin(), windows.end(),
                           [list](const windows::Window& window) { return window.handle == list; });
    };
    EXPECT_TRUE(is_listed());
    ::ShowWindow(static_cast<HWND>(ULongToHandle(list)), SW_HIDE);
    EXPECT_FALSE(is_listed());
    EXPECT_TRUE(windows::Find(sim(), kList).has_value());
}

TEST_F(WindowsTest, APressIsAClick) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    EXPECT_TRUE(windows::Press(sim(), kCheck));
    EXPECT_TRUE(Eventually([&] { return Control(kCheck).check == 1; }));
    EXPECT_FALSE(windows::Press(sim(), 999));
    EXPECT_TRUE(windows::Press(sim(), IDOK));
    EXPECT_EQ(IDOK, program.ExitCode());
}

// The time picker's arrows have the id of an OK button.
TEST_F(WindowsTest, PartsOfAControlAreNotFoundByTheirIds) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    ::ShowWindow(::GetDlgItem(::FindWindowW(L"Dialog", L"Probe"), IDOK), SW_HIDE);
    EXPECT_TRUE(Eventually([&] { return !Control(IDOK).visible; }));
    EXPECT_EQ("Button", Control(IDOK).class_name);
}

TEST_F(WindowsTest, AListItemIsSelectedWithItsNotification) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    EXPECT_TRUE(windows::Select(sim(), kList, "State 2"));
    EXPECT_EQ(1, Control(kList).selected);
    EXPECT_TRUE(Eventually([&] { return windows::Text(sim(), kEdit) == "chosen"; }));
    EXPECT_FALSE(windows::Select(sim(), kList, "State 3"));
}

TEST_F(WindowsTest, TabsAndTreeItemsAreSelectedByText) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    EXPECT_TRUE(windows::Select(sim(), kTabs, "Backup"));
    EXPECT_EQ(1, Control(kTabs).selected);
    EXPECT_TRUE(windows::Select(sim(), kTree, "Files|a.txt"));
    EXPECT_TRUE(windows::Tree(sim()).at(0).children.at(0).selected);
    EXPECT_FALSE(windows::Select(sim(), kTree, "Files|b.txt"));
    EXPECT_FALSE(windows::Select(sim(), kTree, "a.txt"));
}

TEST_F(WindowsTest, TheTreeShowsItemsWithTheColorsOfTheirCustomDraw) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    const auto tree = windows::Tree(sim());
    ASSERT_EQ(1u, tree.size());
    EXPECT_EQ("Files", tree[0].text);
    EXPECT_EQ(0x0000FFu, tree[0].text_color);
    EXPECT_EQ(0xFFFFFFu, tree[0].back_color);
    EXPECT_FALSE(tree[0].expanded);
    ASSERT_EQ(1u, tree[0].children.size());
    EXPECT_EQ("a.txt", tree[0].children[0].text);
}

TEST_F(WindowsTest, TextAndTimeCanBeEntered) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    EXPECT_TRUE(windows::SetText(sim(), kEdit, "second"));
    EXPECT_EQ("second", windows::Text(sim(), kEdit));
    EXPECT_TRUE(windows::SetText(sim(), kPicker, "21:30"));
    EXPECT_NE(std::string::npos, Control(kPicker).text.find("T21:30:"));
    EXPECT_FALSE(windows::SetText(sim(), kPicker, "soon"));
}

TEST_F(WindowsTest, KeysGoToTheFocus) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    ASSERT_TRUE(Eventually([&] { return Control(IDOK).focused; }));
    EXPECT_TRUE(windows::PressKeys(sim(), "tab"));
    EXPECT_TRUE(Eventually([&] { return Control(kCheck).focused; }));
    EXPECT_TRUE(windows::PressKeys(sim(), "shift+tab tab space"));
    EXPECT_TRUE(Eventually([&] { return Control(kCheck).check == 1; }));
    EXPECT_FALSE(windows::PressKeys(sim(), "esc nokey"));
    EXPECT_TRUE(windows::PressKeys(sim(), "esc"));
    EXPECT_EQ(IDCANCEL, program.ExitCode());
}

TEST_F(WindowsTest, TheActiveWindowIsClosedAsByItsCloseBox) {
    Program program(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    EXPECT_TRUE(windows::Close(sim()));
    EXPECT_EQ(IDCANCEL, program.ExitCode());
}

TEST_F(WindowsTest, AMessageBoxIsNoDialogToASearchButCanBeAnswered) {
    Program program(sim(), kProbe, L"box");
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDYES).has_value(); }));
    EXPECT_EQ("Probe box", Tops().at(0).text);
    EXPECT_EQ(nullptr, ::FindWindowW(L"Dialog", nullptr));
    EXPECT_NE(nullptr, ::FindWindowW(nullptr, L"Probe box"));
    EXPECT_TRUE(windows::Press(sim(), IDNO));
    EXPECT_EQ(IDNO, program.ExitCode());
}

// Of which class a system's boxes are is open.
TEST_F(WindowsTest, BySettingAMessageBoxIsADialogToASearch) {
    device().Set("box.class", "dialog");
    Program program(sim(), kProbe, L"box");
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDYES).has_value(); }));
    HWND box = ::FindWindowW(nullptr, L"Probe box");
    ASSERT_NE(nullptr, box);
    EXPECT_EQ(box, ::FindWindowW(L"Dialog", nullptr));
    EXPECT_EQ(box, ::FindWindowW(L"Dialog", L"Probe box"));
    EXPECT_EQ(nullptr, ::FindWindowW(L"Dialog", L"Other"));
}

TEST_F(WindowsTest, AStubIgnoresACloseAndAnswersWithItsNumber) {
    ASSERT_NE(0u, windows::StartStub(sim(), L"TolvenarOperationClass", L"Operations", 5));
    HWND stub = ::FindWindowW(L"TolvenarOperationClass", nullptr);
    ASSERT_NE(nullptr, stub);
    EXPECT_EQ(5, ::SendMessageW(stub, WM_APP + 220, 0, 0));
    ::SendMessageW(stub, WM_CLOSE, 0, 0);
    EXPECT_TRUE(::IsWindow(stub));
    sim::processes::KillAll(sim());
    EXPECT_TRUE(Eventually([&] { return !::IsWindow(stub); }));
}

BOOL CALLBACK CollectTitle(HWND window, LPARAM param) {
    wchar_t title[64] = L"";
    ::GetWindowTextW(window, title, 64);
    reinterpret_cast<std::vector<std::wstring>*>(param)->push_back(title);
    return TRUE;
}

TEST_F(WindowsTest, AnEnumerationGivesTheDevicesWindowsAndNoneOfTheHosts) {
    ASSERT_NE(0u, windows::StartStub(sim(), L"OnlyClass", L"Only", 0));
    std::vector<std::wstring> titles;
    EXPECT_TRUE(::EnumWindows(CollectTitle, reinterpret_cast<LPARAM>(&titles)));
    EXPECT_EQ(std::vector<std::wstring>{L"Only"}, titles);
}

TEST_F(WindowsTest, AWindowOfAnotherProgramComesToTheForeground) {
    Program first(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    Program second(sim(), kProbe, L"box");
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDYES).has_value(); }));
    HWND dialog = ::FindWindowW(L"Dialog", L"Probe");
    ASSERT_NE(nullptr, dialog);
    ::SetForegroundWindow(dialog);
    EXPECT_TRUE(Eventually([&] { return ::GetForegroundWindow() == dialog; }));
}

// With the lowest bit of its handle set a window comes forward with what it owns; a system may ask
// for that before another program's window comes.
TEST_F(WindowsTest, TheLowestBitOfAHandleBringsTheWindowForward) {
    device().Set("foreground.plain", "ignored");
    Program first(sim(), kProbe, L"dialog");
    ASSERT_TRUE(DialogIsUp());
    Program second(sim(), kProbe, L"box");
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDYES).has_value(); }));
    HWND box = ::FindWindowW(nullptr, L"Probe box");
    HWND dialog = ::FindWindowW(L"Dialog", L"Probe");
    ASSERT_TRUE(Eventually([&] { return ::GetForegroundWindow() == box; }));
    EXPECT_TRUE(::SetForegroundWindow(dialog));
    EXPECT_EQ(box, ::GetForegroundWindow());
    const auto low_bit = reinterpret_cast<ULONG_PTR>(dialog) | 1;
    EXPECT_TRUE(::SetForegroundWindow(reinterpret_cast<HWND>(low_bit)));
    EXPECT_TRUE(Eventually([&] { return ::GetForegroundWindow() == dialog; }));
}

TEST(KeysTest, WordsNameKeysAndModifiers) {
    const auto presses = windows::ParseKeys("ctrl+shift+tab a f5 .");
    ASSERT_TRUE(presses.has_value());
    ASSERT_EQ(4u, presses->size());
    EXPECT_EQ((windows::KeyPress{VK_CONTROL, VK_SHIFT, VK_TAB}), (*presses)[0]);
    EXPECT_EQ(windows::KeyPress{'A'}, (*presses)[1]);
    EXPECT_EQ(windows::KeyPress{VK_F1 + 4}, (*presses)[2]);
    EXPECT_FALSE(windows::ParseKeys("ctrl+nothing").has_value());
    EXPECT_FALSE(windows::ParseKeys("f0").has_value());
}

TEST_F(WindowsTest, AScreenshotHasTheScreensSize) {
    sim().SetSetting("screen.size", "640x240");
    const windows::Picture picture = windows::TakeScreenshot(sim());
    EXPECT_EQ(640u, picture.width);
    EXPECT_EQ(240u, picture.height);
    EXPECT_EQ(640u * 240 * 3, picture.rgb.size());
}

// Two red pixels, one below the other. Second row: the filter leaves 2, 0, 0, 0.
TEST(PngTest, BytesAreThoseOfTheFormat) {
    const windows::Picture picture = {1, 2, {255, 0, 0, 255, 0, 0}};
    const std::string png = windows::EncodePng(picture);
    EXPECT_EQ(std::string("\x89PNG\r\n\x1A\n", 8), png.substr(0, 8));
    EXPECT_EQ(std::string("\0\0\0\x0DIHDR\0\0\0\x01\0\0\0\x02\x08\x02\0\0\0", 21),
              png.substr(8, 21));
    EXPECT_EQ(std::string("\0\0\0\0IEND\xAE\x42\x60\x82", 12), png.substr(png.size() - 12));
}

}  // namespace
}  // namespace tests
