// What the running program holds after many dialogs and operations is what it held before.
#include "simulator/host/window_thread.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr int kDialogs = 200;
constexpr int kRounds = 10;  // of five operations

class LeakTest : public UiTest {
protected:
    // Every page was shown before anything is counted.
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 14);
        BackUpThenChange();
        BackUp();
        Open();
        Ask("trace off");
        for (const char* tab : {"Storage file", "Options", "About", "Advanced Restore"}) {
            ShowTab(tab);
        }
        operations_ = OperationWindow();
        list_ = Handle(IDC_STATES);
        backup_page_ = PageOf(IDC_NEW_DESCRIPTION);
    }
    struct Held {
        long windows = 0;
        long threads = 0;
        long gdi_objects = 0;
        long handles = 0;
        long heap_blocks = 0;
        std::size_t listed_windows = 0;
        unsigned host_handles = 0;
    };
    Held Hold() {
        const std::vector<Window> windows =
            Await([&] { return Windows(); }, [](const auto& all) { return !all.empty(); });
        const Json process = ProgramCounters();
        const unsigned pid = process.value("id", 0u);
        return {process["windows"],         process["threads"],    process["gdiObjects"],
                process["handles"],         process["heapBlocks"], windows.size(),
                sim::host::HostHandles(pid)};
    }
    static void ExpectSame(const Held& before, const Held& after) {
        EXPECT_NE(0, before.windows);
        EXPECT_EQ(before.windows, after.windows);
        EXPECT_EQ(before.threads, after.threads);
        EXPECT_EQ(before.gdi_objects, after.gdi_objects);
        EXPECT_EQ(before.handles, after.handles);
        EXPECT_EQ(before.listed_windows, after.listed_windows);
        EXPECT_EQ(before.host_handles, after.host_handles);
    }
    void OpenAndCloseReminder() {
        ::PostMessageW(backup_page_, WM_COMMAND, IDC_BACKUP, 0);
        ASSERT_SOON(Reminder() != nullptr);
        ::PostMessageW(Reminder(), WM_COMMAND, IDCANCEL, 0);
        ASSERT_SOON(Reminder() == nullptr);
    }
    // One that is busy answers a question that was sent before it began.
    void Operate(UINT message, int button) {
        ::PostMessageW(operations_, message, 1, button);
        ASSERT_TRUE(BecomesBusy());
        ASSERT_TRUE(Eventually([&] {
            if (const HWND reminder = Reminder()) {
                ::PostMessageW(reminder, WM_COMMAND, IDCANCEL, 0);
            }
            if (const HWND box = ::FindWindowW(L"#32770", L"Tolvenar")) {
                ::PostMessageW(box, WM_COMMAND, IDOK, 0);
            }
            return !IsBusy();
        }));
    }
    void OperateRound(int round) {
        device().PutFile(kNote, std::to_string(round));
        Operate(kConfirmedBackup, 0);
        Operate(kConfirmedBackup, 0);  // without a difference
        SelectPage(kAdvancedTab);
        ::SendMessageW(::GetParent(list_), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
        Operate(kConfirmedRestore, IDC_TAKE_BACK_CHANGES);
        Operate(kConfirmedRestore, IDC_RESTORE);
    }

private:
    HWND operations_ = nullptr;
    HWND list_ = nullptr;
    HWND backup_page_ = nullptr;
};

TEST_F(LeakTest, DialogsLeaveNothingBehind) {
    OpenAndCloseReminder();
    const Held before = Hold();
    for (int i = 0; i < kDialogs; ++i) {
        ASSERT_NO_FATAL_FAILURE(OpenAndCloseReminder()) << i;
    }
    const Held after = Hold();
    ExpectSame(before, after);
    EXPECT_EQ(before.heap_blocks, after.heap_blocks);
}

TEST_F(LeakTest, OperationsLeaveNothingBehind) {
    OperateRound(-1);
    ASSERT_TRUE(BecomesIdle());
    const Held before = Hold();
    Ask("counters clear");
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(OperateRound(round)) << round;
    }
    ASSERT_TRUE(BecomesIdle());
    ExpectSame(before, Hold());
    EXPECT_EQ(kRounds, Counted("MessageBoxW"));
    EXPECT_EQ(7 * kRounds, Counted("DialogBoxIndirectParamW"));  // five popups, two reminders
    EXPECT_EQ(3u + kRounds, States().size());
}

}  // namespace
}  // namespace tests
