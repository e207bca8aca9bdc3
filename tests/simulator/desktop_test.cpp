#include "simulator/windows/desktop.h"

#include "platform/win32.h"

#include <optional>
#include <thread>

#include "simulator/store/device_name.h"
#include "simulator/windows/control.h"
#include "tests/simulator/probe_fixture.h"

namespace tests {
namespace {

class DesktopTest : public ProbeTest {
protected:
    static std::optional<sim::windows::Window> DialogOf(const Program& program,
                                                        const sim::Device& device) {
        for (const sim::windows::Window& window : sim::windows::List(device)) {
            if (window.pid == program.pid() && window.parent == 0 && window.visible) {
                return window;
            }
        }
        return std::nullopt;
    }
    static bool IsCentred(const Program& program, const sim::Device& device, int width,
                          int height) {
        return Eventually([&] {
            const auto dialog = DialogOf(program, device);
            return dialog && dialog->left == (width - dialog->width) / 2 &&
                   dialog->top == (height - dialog->height) / 2;
        });
    }
};

TEST_F(DesktopTest, TheScreenIs640By480UnlessTheDeviceSaysOtherwise) {
    EXPECT_EQ(640480u, RunProbe(sim(), L"screen"));
    sim().SetSetting("screen.size", "640x240");
    EXPECT_EQ(640240u, RunProbe(sim(), L"screen"));
    EXPECT_EQ(640240u, RunProbe(sim(), L"work area"));
    sim().SetSetting("screen.size", "big");
    EXPECT_EQ(640480u, RunProbe(sim(), L"screen"));
}

TEST_F(DesktopTest, AWindowIsFoundOnItsOwnDeviceOnly) {
    SecondDevice second;
    InstallProgram(second.sim(), "probe.exe", kProbe);
    Program shown(sim(), kProbe, L"dialog");
    EXPECT_TRUE(Eventually([&] { return RunProbe(sim(), L"find Dialog") == 1; }));
    EXPECT_EQ(0u, RunProbe(second.sim(), L"find Dialog"));
}

// The host takes one desktop's size for another's when both are made at the same time.
TEST_F(DesktopTest, DialogsAndBoxesAreCentredOnTheirOwnDevicesScreen) {
    SecondDevice second;
    InstallProgram(second.sim(), "probe.exe", kProbe);
    second.sim().SetSetting("screen.size", "800x600");
    for (const wchar_t* shown : {L"dialog", L"box"}) {
        for (int i = 0; i < 5; ++i) {
            Program first(sim(), kProbe, shown);
            Program other(second.sim(), kProbe, shown);
            ASSERT_TRUE(IsCentred(first, sim(), 640, 480));
            ASSERT_TRUE(IsCentred(other, second.sim(), 800, 600));
        }
    }
}

TEST_F(DesktopTest, DevicesHaveNamesOfTheirOwn) {
    SecondDevice second;
    EXPECT_NE(sim::DeviceName(sim()), sim::DeviceName(second.sim()));
    EXPECT_EQ(sim::DeviceName(sim()) + L"-TolvenarMutexObject",
              sim::ObjectName(sim(), L"TolvenarMutexObject"));
}

TEST_F(DesktopTest, OneFolderIsOneDeviceHoweverItIsWritten) {
    std::wstring shouting = folder() + L"\\";
    for (wchar_t& unit : shouting) {
        unit = unit == L'd' ? L'D' : unit;
    }
    sim::Device same(shouting);
    EXPECT_EQ(sim::DeviceName(sim()), sim::DeviceName(same));
}

// The host closes a thread's desktop handle with the thread.
TEST_F(DesktopTest, AThreadThatEndsLeavesTheDesktopToTheNext) {
    for (int i = 0; i < 3; ++i) {
        bool entered = false;
        std::thread([&] { entered = sim::windows::EnterDesktop(sim()); }).join();
        EXPECT_TRUE(entered);
    }
}

// Without a virtual desktop each of them waits two seconds for a window manager that is not there.
TEST_F(DesktopTest, HiddenWindowsDoNotWait) {
    const DWORD start = ::GetTickCount();
    for (int i = 0; i < 20; ++i) {
        HWND window = ::CreateWindowExW(0, L"STATIC", L"", WS_BORDER, 0, 0, 50, 50, nullptr,
                                        nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, window);
        ::ShowWindow(window, SW_HIDE);
        ::UpdateWindow(window);
        ::DestroyWindow(window);
    }
    EXPECT_LT(::GetTickCount() - start, 20000u);
}

TEST_F(DesktopTest, TheShellsDesktopWindowIsTheScreen) {
    HWND desktop = ::FindWindowW(L"DesktopExplorerWindow", nullptr);
    RECT client{};
    ASSERT_TRUE(::GetClientRect(desktop, &client));
    EXPECT_GE(client.right, 640);
    EXPECT_GE(client.bottom, 480);
}

}  // namespace
}  // namespace tests
