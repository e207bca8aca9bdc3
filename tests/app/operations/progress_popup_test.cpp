// The popup of a running operation, shown by a thread that has windows, as the main thread does.
#include "app/operations/progress_popup.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "app/operations/window_progress.h"
#include "platform/waiting.h"
#include "res/resource.h"
#include "simulator/gate/counters.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

constexpr int kSteps = 11;

// Questions of another thread to a window of this one, more of them than a waiting has polls.
class Questions {
public:
    explicit Questions(HWND window) : thread_([this, window] { Send(window); }) {}
    ~Questions() {
        while (!is_done_) {
            AnswerSentMessages();
        }
        thread_.join();
    }

private:
    void Send(HWND window) {
        for (int i = 0; i < 300; ++i) {
            ::SendMessageW(window, WM_NULL, 0, 0);
        }
        is_done_ = true;
    }
    std::atomic<bool> is_done_{false};
    std::thread thread_;
};

class ProgressPopupTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        sim::ClearCounters(device().sim());
        owner_ = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 300, 200,
                                   nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, owner_);
    }
    void TearDown() override {
        popup_.CloseAndWait();
        ::DestroyWindow(owner_);
        DeviceTest::TearDown();
    }
    // The popup publishes its window before it is seen; an answer comes once it is.
    void Show(int steps = kSteps) {
        popup_.Show(owner_, L"Backing up in progress", steps);
        ::SendMessageW(popup_.window(), WM_NULL, 0, 0);
    }
    static std::wstring TextOf(HWND window) {
        wchar_t text[100] = L"";
        ::GetWindowTextW(window, text, 100);
        return text;
    }
    bool IsSeen(int id) { return ::IsWindowVisible(::GetDlgItem(popup_.window(), id)) != FALSE; }
    // The popup's thread has taken whatever was posted to it.
    bool Stays() {
        ::Sleep(30);
        return popup_.window() != nullptr && ::SendMessageW(popup_.window(), WM_NULL, 0, 0) == 0 &&
               ::IsWindowVisible(popup_.window());
    }
    sim::ProcessCounters Counters() {
        for (const sim::ProcessCounters& process : sim::CountersByProcess(device().sim())) {
            if (process.id == ::GetCurrentProcessId()) {
                return process;
            }
        }
        return {};
    }
    long Gauge(sim::Gauge gauge) { return Counters().gauge(gauge); }

    HWND owner_ = nullptr;
    ProgressWindows windows_{};
    ProgressPopup popup_{::GetModuleHandleW(nullptr), windows_};
};

TEST_F(ProgressPopupTest, ItIsUpAtOnceWithItsCaptionAndEmptyBars) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    Show();
    // After five seconds the program does without it.
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(2500));
    ASSERT_NE(nullptr, popup_.window());
    EXPECT_TRUE(::IsWindowVisible(popup_.window()));
    EXPECT_EQ(L"Backing up in progress", TextOf(popup_.window()));
    EXPECT_FALSE(::IsWindowEnabled(owner_));
    EXPECT_EQ(::GetDlgItem(popup_.window(), IDC_STEP_TEXT), windows_.step_text);
    EXPECT_EQ(::GetDlgItem(popup_.window(), IDC_STEP_BAR), windows_.step_bar);
    EXPECT_EQ(::GetDlgItem(popup_.window(), IDC_TOTAL_BAR), windows_.total_bar);
    EXPECT_EQ(0, ::SendMessageW(windows_.total_bar, PBM_GETRANGE, TRUE, 0));
    EXPECT_EQ(kSteps + 1, ::SendMessageW(windows_.total_bar, PBM_GETRANGE, FALSE, 0));
    EXPECT_EQ(0, ::SendMessageW(windows_.total_bar, PBM_GETPOS, 0, 0));
    for (const int id : {IDC_STEP_TEXT, IDC_STEP_BAR, IDC_TOTAL_BAR, IDC_TOTAL_LABEL}) {
        EXPECT_TRUE(IsSeen(id)) << id;
    }
    EXPECT_EQ(L"Total progress", TextOf(::GetDlgItem(popup_.window(), IDC_TOTAL_LABEL)));
}

TEST_F(ProgressPopupTest, EachStepMovesTheTotalBarByOne) {
    Show();
    WindowProgress progress(windows_);
    for (int step = 1; step <= kSteps; ++step) {
        progress.ProgressStep(u"Next step...");
        EXPECT_EQ(step, ::SendMessageW(windows_.total_bar, PBM_GETPOS, 0, 0));
    }
    EXPECT_EQ(L"Next step...", TextOf(windows_.step_text));
}

TEST_F(ProgressPopupTest, WithoutStepsItHasNoTotalBar) {
    Show(0);
    EXPECT_FALSE(IsSeen(IDC_TOTAL_BAR));
    EXPECT_FALSE(IsSeen(IDC_TOTAL_LABEL));
    EXPECT_TRUE(IsSeen(IDC_STEP_TEXT));
    EXPECT_TRUE(IsSeen(IDC_STEP_BAR));
}

TEST_F(ProgressPopupTest, ClosingForgetsItsControlsAndGivesTheOwnerBack) {
    Show();
    const HWND window = popup_.window();
    popup_.CloseAndWait();
    EXPECT_EQ(nullptr, windows_.step_text);
    EXPECT_EQ(nullptr, windows_.step_bar);
    EXPECT_EQ(nullptr, windows_.total_bar);
    EXPECT_EQ(nullptr, popup_.window());
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_TRUE(::IsWindowEnabled(owner_));
}

TEST_F(ProgressPopupTest, NothingButItsOwnerClosesIt) {
    Show();
    const struct {
        const char* name;
        UINT message;
        WPARAM wparam;
    } kWays[] = {{"WM_CLOSE", WM_CLOSE, 0},        {"close box", WM_SYSCOMMAND, SC_CLOSE},
                 {"Cancel", WM_COMMAND, IDCANCEL}, {"OK", WM_COMMAND, IDOK},
                 {"Esc", WM_KEYDOWN, VK_ESCAPE},   {"Enter", WM_KEYDOWN, VK_RETURN},
                 {"Alt+F4", WM_SYSKEYDOWN, VK_F4}};
    for (const auto& way : kWays) {
        SCOPED_TRACE(way.name);
        const LPARAM lparam = way.message == WM_SYSKEYDOWN ? 1 << 29 : 0;
        for (int twice = 0; twice < 2; ++twice) {
            ::PostMessageW(popup_.window(), way.message, way.wparam, lparam);
        }
        ASSERT_TRUE(Stays());
        EXPECT_FALSE(::IsWindowEnabled(owner_));
    }
}

TEST_F(ProgressPopupTest, WhileItIsShownItIsUsedAgain) {
    Show();
    const HWND window = popup_.window();
    ::SendMessageW(windows_.total_bar, PBM_STEPIT, 0, 0);
    popup_.Show(owner_, L"Backing up in progress", 5);
    EXPECT_EQ(window, popup_.window());
    EXPECT_EQ(6, ::SendMessageW(windows_.total_bar, PBM_GETRANGE, FALSE, 0));
    EXPECT_EQ(0, ::SendMessageW(windows_.total_bar, PBM_GETPOS, 0, 0));
    EXPECT_EQ(1, Counters().calls["CreateThread"]);
}

TEST_F(ProgressPopupTest, ANewOneWaitsUntilTheClosingOneIsGone) {
    Show();
    const HWND first = popup_.window();
    popup_.Close();
    popup_.Show(owner_, L"Restoring in progress", kSteps);
    ASSERT_NE(nullptr, popup_.window());
    EXPECT_FALSE(::IsWindow(first));
    EXPECT_EQ(L"Restoring in progress", TextOf(popup_.window()));
    EXPECT_EQ(2, Counters().calls["CreateThread"]);
    EXPECT_TRUE(Stays());
}

TEST_F(ProgressPopupTest, WithoutAThreadTheWorkGoesOnUnseen) {
    device().Fault("CreateThread", 1, 1, 8);
    Show();
    EXPECT_EQ(nullptr, popup_.window());
    EXPECT_EQ(nullptr, windows_.step_text);
    EXPECT_TRUE(::IsWindowEnabled(owner_));
    popup_.CloseAndWait();
}

// Five seconds are five seconds: other programs may ask the waiting thread's windows meanwhile.
TEST_F(ProgressPopupTest, SentMessagesDoNotShortenTheWaitingForIt) {
    device().Command("delay DialogBoxIndirectParamW 1 700");
    const Questions questions(owner_);
    Show();
    EXPECT_NE(nullptr, popup_.window());
    EXPECT_NE(nullptr, windows_.step_text);
}

TEST_F(ProgressPopupTest, SentMessagesDoNotShortenTheWaitingForItsEnd) {
    Show();
    device().Command("delay EndDialog 1 700");
    const Questions questions(owner_);
    popup_.CloseAndWait();
    EXPECT_EQ(nullptr, popup_.window());
}

TEST_F(ProgressPopupTest, AfterManyOfThemNothingIsLeft) {
    Show();
    popup_.CloseAndWait();
    const sim::ProcessCounters before = Counters();
    for (int i = 0; i < 25; ++i) {
        Show(i % 2 == 0 ? kSteps : 0);
        ASSERT_NE(nullptr, popup_.window()) << i;
        popup_.CloseAndWait();
    }
    for (const sim::Gauge gauge : {sim::Gauge::kHandles, sim::Gauge::kWindows, sim::Gauge::kThreads,
                                   sim::Gauge::kGdiObjects}) {
        EXPECT_EQ(before.gauge(gauge), Gauge(gauge)) << static_cast<int>(gauge);
    }
}

}  // namespace
}  // namespace tolvenar
