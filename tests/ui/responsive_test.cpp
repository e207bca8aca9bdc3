// The dialog, the popup and the answer to other copies while an operation works.
#include <algorithm>
#include <chrono>
#include <set>

#include "simulator/host/window_thread.h"
#include "simulator/windows/screenshot.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

using Clock = std::chrono::steady_clock;

// How long it takes is recorded; what counts is that the answers come while the backup works.
constexpr unsigned kTimeoutMs = 20000;

class ResponsiveTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUp();
    }
    void PutFiles(int count) {
        for (int i = 0; i < count; ++i) {
            device().PutFile(L"\\My Documents\\" + std::to_wstring(i), "some text");
        }
    }
    // What is seen and answered until the backup has emptied its description field.
    struct Seen {
        unsigned slowest_dialog_ms = 0;
        unsigned slowest_query_ms = 0;
        int busy_answers = 0;
        std::set<LRESULT> total_positions;
        std::set<LRESULT> item_positions;
    };
    Seen Watch() {
        Seen seen;
        Ask("trace off");
        Ask("counters clear");
        Press(IDC_BACKUP);
        const auto start = Clock::now();
        while (Counted("SetDlgItemTextW") == 0 && Since(start) < 120000) {
            AskAround(seen);
            Pause(5);
        }
        RecordProperty("milliseconds", static_cast<int>(Since(start)));
        RecordProperty("slowest_dialog", static_cast<int>(seen.slowest_dialog_ms));
        RecordProperty("slowest_query", static_cast<int>(seen.slowest_query_ms));
        return seen;
    }
    sim::windows::Picture Screen() { return sim::windows::TakeScreenshot(device().sim()); }
    // The same pixels within the rectangle of a control.
    static bool IsSameWithin(const Window& control, const sim::windows::Picture& a,
                             const sim::windows::Picture& b) {
        const auto left = static_cast<std::size_t>(control.left);
        const auto top = static_cast<std::size_t>(control.top);
        const auto width = static_cast<std::size_t>(control.width);
        for (std::size_t y = top; y < top + static_cast<std::size_t>(control.height); ++y) {
            const auto row = static_cast<std::ptrdiff_t>((y * a.width + left) * 3);
            const auto bytes = static_cast<std::ptrdiff_t>(width * 3);
            if (!std::equal(a.rgb.begin() + row, a.rgb.begin() + row + bytes,
                            b.rgb.begin() + row)) {
                return false;
            }
        }
        return true;
    }

private:
    static unsigned Since(Clock::time_point start) {
        return static_cast<unsigned>(
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
    }
    static void AskAround(Seen& seen) {
        const unsigned dialog =
            sim::host::AnswerTime(MainDialog(), kTimeoutMs).value_or(kTimeoutMs);
        seen.slowest_dialog_ms = std::max(seen.slowest_dialog_ms, dialog);
        const auto start = Clock::now();
        seen.busy_answers += ::SendMessageW(OperationWindow(), kQueryBusy, 0, 0) != 0 ? 1 : 0;
        seen.slowest_query_ms = std::max(seen.slowest_query_ms, Since(start));
        if (const HWND popup = Dialog(L"Backing up in progress")) {
            seen.total_positions.insert(
                ::SendMessageW(::GetDlgItem(popup, IDC_TOTAL_BAR), PBM_GETPOS, 0, 0));
            seen.item_positions.insert(
                ::SendMessageW(::GetDlgItem(popup, IDC_STEP_BAR), PBM_GETPOS, 0, 0));
        }
    }
};

TEST_F(ResponsiveTest, ALargeBackupLeavesTheProgramAnswering) {
    PutFiles(2000);
    Open();
    const Seen seen = Watch();
    EXPECT_EQ((Numbers{1, 2}), States());
    EXPECT_LT(seen.slowest_dialog_ms, kTimeoutMs);
    EXPECT_LT(seen.slowest_query_ms, kTimeoutMs);
    EXPECT_GT(seen.busy_answers, 4);
    EXPECT_GT(seen.total_positions.size(), 2u);
    EXPECT_GT(seen.item_positions.size(), 4u);
}

TEST_F(ResponsiveTest, WithoutAPopupItStillTellsOtherCopiesThatItIsBusy) {
    PutFiles(1000);
    Open();
    device().Fault("CreateThread", 1, 1, 8);
    const Seen seen = Watch();
    EXPECT_EQ((Numbers{1, 2}), States());
    EXPECT_TRUE(seen.total_positions.empty());
    EXPECT_LT(seen.slowest_dialog_ms, kTimeoutMs);
    EXPECT_LT(seen.slowest_query_ms, kTimeoutMs);
    EXPECT_GT(seen.busy_answers, 4);
}

TEST_F(ResponsiveTest, TheDialogIsDrawnAgainWhileABackupWorks) {
    device().PutFile(kNote, "hello");
    Open();
    const Window tabs = AnyControl(IDC_TABS);
    HoldCall("GlobalMemoryStatus");
    Ask("counters clear");
    Press(IDC_BACKUP);
    ASSERT_SOON(Counted("GlobalMemoryStatus") == 1);
    const sim::windows::Picture before = Screen();
    const HWND cover =
        ::CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, tabs.left, tabs.top,
                          tabs.width, tabs.height, nullptr, nullptr, nullptr, nullptr);
    ::UpdateWindow(cover);
    EXPECT_FALSE(IsSameWithin(tabs, before, Screen()));
    ::DestroyWindow(cover);
    EXPECT_SOON(IsSameWithin(tabs, before, Screen()));
    EXPECT_EQ(Numbers{1}, States());  // it still works
    LetGoAndRest();
}

}  // namespace
}  // namespace tests
