// The popup's text and bars as windows of a class that notes what it is sent.
#include <gtest/gtest.h>
#include <vector>

#include "app/operations/window_progress.h"
#include "simulator/gate/counters.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

struct Sent {
    HWND hwnd;
    UINT message;
    WPARAM wparam;
    LPARAM lparam;

    bool operator==(const Sent& other) const {
        return hwnd == other.hwnd && message == other.message && wparam == other.wparam &&
               lparam == other.lparam;
    }
};

std::vector<Sent> sent;
std::vector<std::wstring> texts;

LRESULT CALLBACK NoteMessage(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message >= WM_USER) {
        sent.push_back({hwnd, message, wparam, lparam});
    }
    if (message == WM_SETTEXT) {
        texts.emplace_back(reinterpret_cast<const wchar_t*>(lparam));
    }
    return ::DefWindowProcW(hwnd, message, wparam, lparam);
}

class ProgressTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        WNDCLASSW window_class{};
        window_class.lpfnWndProc = NoteMessage;
        window_class.lpszClassName = L"ProgressTestWindow";
        ::RegisterClassW(&window_class);
        for (HWND* hwnd : {&windows_.step_text, &windows_.step_bar, &windows_.total_bar}) {
            *hwnd = ::CreateWindowExW(0, L"ProgressTestWindow", L"", WS_POPUP, 0, 0, 10, 10,
                                      nullptr, nullptr, nullptr, nullptr);
            ASSERT_NE(nullptr, *hwnd) << ::GetLastError();
        }
        sent.clear();
        texts.clear();
    }

    void TearDown() override {
        for (const HWND hwnd : {windows_.step_text, windows_.step_bar, windows_.total_bar}) {
            ::DestroyWindow(hwnd);
        }
        DeviceTest::TearDown();
    }

    // How often the item bar moves over `count` items.
    std::size_t MovesFor(std::size_t count) {
        progress_.ProgressBegin(count);
        sent.clear();
        for (std::size_t i = 0; i < count; ++i) {
            progress_.ProgressStep();
        }
        for (const Sent& message : sent) {
            EXPECT_EQ((Sent{windows_.step_bar, PBM_STEPIT, 0, 0}), message);
        }
        return sent.size();
    }

    // A press and a release are two calls.
    long KeyCalls() { return sim::TotalCalls(device().sim())["keybd_event"]; }

    ProgressWindows windows_{};
    WindowProgress progress_{windows_};
};

TEST_F(ProgressTest, ATaskSetsRangePositionAndStepOfTheItemBar) {
    progress_.ProgressBegin(31);
    EXPECT_EQ((std::vector<Sent>{{windows_.step_bar, PBM_SETRANGE32, 0, 32},
                                 {windows_.step_bar, PBM_SETPOS, 0, 0},
                                 {windows_.step_bar, PBM_SETSTEP, 1, 0}}),
              sent);
}

TEST_F(ProgressTest, TheStepDoublesUntilThirtyTwoMovesAreLeft) {
    const struct {
        std::size_t count;
        WPARAM step;
    } rows[] = {{0, 1}, {31, 1}, {32, 2}, {64, 2}, {65, 4}, {100000, 4096}};
    for (const auto& row : rows) {
        progress_.ProgressBegin(row.count);
        EXPECT_EQ((Sent{windows_.step_bar, PBM_SETSTEP, row.step, 0}), sent.back()) << row.count;
    }
}

TEST_F(ProgressTest, TheItemBarMovesWhenTheCounterIsAMultipleOfTheStep) {
    progress_.ProgressBegin(66);  // step 4, counter 1
    sent.clear();
    for (int i = 0; i < 3; ++i) {
        progress_.ProgressStep();
    }
    EXPECT_TRUE(sent.empty());
    progress_.ProgressStep();
    EXPECT_EQ((std::vector<Sent>{{windows_.step_bar, PBM_STEPIT, 0, 0}}), sent);
}

TEST_F(ProgressTest, AnyTaskMovesTheItemBarAboutThirtyTwoTimes) {
    EXPECT_EQ(8u, MovesFor(8));
    EXPECT_EQ(31u, MovesFor(31));
    EXPECT_EQ(16u, MovesFor(32));
    EXPECT_EQ(24u, MovesFor(100000));
    EXPECT_EQ(31u, MovesFor(131071));
}

TEST_F(ProgressTest, ATextIsShownAndMovesThePhaseBarOnce) {
    progress_.ProgressBegin(31);
    sent.clear();
    progress_.ProgressStep(u"Scanning files...");
    EXPECT_EQ(std::vector<std::wstring>{L"Scanning files..."}, texts);
    EXPECT_EQ((std::vector<Sent>{{windows_.total_bar, PBM_STEPIT, 0, 0},
                                 {windows_.step_bar, PBM_STEPIT, 0, 0}}),
              sent);
}

TEST_F(ProgressTest, AStepWithoutATextLeavesTextAndPhaseBar) {
    progress_.ProgressBegin(31);
    sent.clear();
    progress_.ProgressStep();
    EXPECT_TRUE(texts.empty());
    EXPECT_EQ((std::vector<Sent>{{windows_.step_bar, PBM_STEPIT, 0, 0}}), sent);
}

TEST_F(ProgressTest, TasksAndTextsPressTheSilentShiftKey) {
    progress_.ProgressBegin(8);
    EXPECT_EQ(2, KeyCalls());
    progress_.ProgressStep(u"Scanning files...");
    EXPECT_EQ(4, KeyCalls());
}

// Eight are quicker than the time that a device bears.
TEST_F(ProgressTest, PlainStepsPressTheKeyTenSecondsAfterTheLastPress) {
    progress_.ProgressBegin(100);
    const auto eight_steps = [this] {
        for (int i = 0; i < 8; ++i) {
            progress_.ProgressStep();
        }
        return KeyCalls();
    };
    EXPECT_EQ(2, eight_steps());
    device().Command("pass 5000");
    EXPECT_EQ(2, eight_steps());
    device().Command("pass 5000");
    EXPECT_EQ(4, eight_steps());
    EXPECT_EQ(4, eight_steps());
}

TEST_F(ProgressTest, WithoutAPopupNothingIsSent) {
    const ProgressWindows none{};
    WindowProgress progress(none);
    progress.ProgressBegin(100);
    for (int i = 0; i < 100; ++i) {
        progress.ProgressStep(i == 0 ? u"Scanning files..." : nullptr);
    }
    EXPECT_TRUE(sent.empty());
    EXPECT_TRUE(texts.empty());
}

}  // namespace
}  // namespace tolvenar
