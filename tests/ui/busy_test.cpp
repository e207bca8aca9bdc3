// What is refused from the posting of a request until its operation has ended.
#include "simulator/host/window_thread.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr unsigned kLimitMs = 10000;

class BusyTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
        BackUp();
    }
    // Every page made, and the newest state's differences shown.
    void OpenAll() {
        Open();
        for (const char* tab : {"Storage file", "Options", "Advanced Restore"}) {
            ShowTab(tab);
        }
        dialog_ = MainDialog();
        main_window_ = MainWindow();
        list_ = Handle(IDC_STATES);
        page_ = ::GetParent(list_);
        ShowDifferences();
        for (const int id : {IDC_BACKUP, IDC_RESTORE, IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES,
                             IDC_FAILED_OK, IDC_BROWSE, IDC_ON_TIME, IDC_SHOW_REMINDERS,
                             IDC_ADVANCED_TREE, IDC_RESTORE_DATABASES, IDC_DELETE_OLD_STORAGE}) {
            // The tree's window has a button's number.
            const Window button = AwaitWindow([id](const Window& window) {
                return window.id == id && window.class_name == "Button";
            });
            buttons_.push_back({id, HandleOf(button)});
        }
    }
    // Sent rather than posted: whoever goes on in a modal loop does not answer.
    void ExpectRefused(const std::string& what, HWND window, UINT message, WPARAM wparam = 0,
                       LPARAM lparam = 0) {
        SCOPED_TRACE(what);
        const auto before = Work();
        for (int twice = 0; twice < 2; ++twice) {
            EXPECT_TRUE(sim::host::AnswerTime(window, kLimitMs, message, wparam, lparam));
        }
        EXPECT_EQ(before, Work());
        EXPECT_TRUE(::IsWindow(dialog_));
        EXPECT_TRUE(::IsWindow(main_window_));
        EXPECT_EQ(0, ::SendMessageW(list_, LB_GETCURSEL, 0, 0));
        EXPECT_NE(0, ::SendMessageW(::GetDlgItem(page_, IDC_DIFFERENCES_CAPTION), WM_GETTEXTLENGTH,
                                    0, 0));
    }
    void ExpectEverythingRefused() {
        ExpectRefused("closing the dialog", dialog_, WM_CLOSE);
        ExpectRefused("its close box", dialog_, WM_SYSCOMMAND, SC_CLOSE);
        ExpectRefused("closing the main window", main_window_, WM_CLOSE);
        ExpectRefused("Ctrl+W and Alt+X", dialog_, WM_COMMAND, MAKEWPARAM(IDM_CLOSE, 1));
        ExpectRefused("Ctrl+Q", dialog_, WM_COMMAND, MAKEWPARAM(IDM_QUIT, 1));
        ExpectRefused("double click", page_, WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK),
                      reinterpret_cast<LPARAM>(list_));
        ::SendMessageW(list_, LB_SETCURSEL, 1, 0);
        ExpectRefused("selection", page_, WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_SELCHANGE),
                      reinterpret_cast<LPARAM>(list_));
        for (const Button& button : buttons_) {
            const LRESULT check = ::SendMessageW(button.window, BM_GETCHECK, 0, 0);
            ExpectRefused("button " + std::to_string(button.id), button.window, BM_CLICK);
            EXPECT_EQ(check, ::SendMessageW(button.window, BM_GETCHECK, 0, 0)) << button.id;
        }
    }

private:
    struct Button {
        int id;
        HWND window;
    };
    // Calls that something new would begin with.
    std::vector<long> Work() {
        const Json calls = Ask("counters")["calls"];
        std::vector<long> numbers;
        for (const char* function : {"CreateThread", "DialogBoxIndirectParamW", "MessageBoxW",
                                     "GetOpenFileNameW", "PostMessageW", "RegSetValueExW"}) {
            numbers.push_back(calls.value(function, 0L));
        }
        return numbers;
    }

protected:
    HWND dialog_ = nullptr;
    HWND main_window_ = nullptr;
    HWND list_ = nullptr;
    HWND page_ = nullptr;

private:
    std::vector<Button> buttons_;
};

TEST_F(BusyTest, NothingElseIsTakenWhileARequestIsOnItsWay) {
    OpenAll();
    {
        const sim::host::HeldThread held(OperationWindow());
        const long posted = Counted("PostMessageW");
        EXPECT_TRUE(sim::host::AnswerTime(page_, kLimitMs, WM_COMMAND, IDC_RESTORE));
        ASSERT_EQ(posted + 1, Counted("PostMessageW"));
        ExpectEverythingRefused();
        Keys("ctrl+w");
        Keys("alt+x");
        Keys("ctrl+q");
        Pause(100);
        EXPECT_TRUE(::IsWindow(dialog_));
    }
    ExpectBox(kNothingToRestore);
    EXPECT_TRUE(BecomesIdle());
    Keys("ctrl+q");
    ExpectEnd();
}

TEST_F(BusyTest, NothingElseIsTakenUnderTheBoxOfAnOperation) {
    OpenAll();
    EXPECT_FALSE(IsBusy());
    PostBackup();
    ASSERT_SOON(BoxIsUp());
    EXPECT_TRUE(IsBusy());
    ExpectEverythingRefused();
    ExpectBox(kNothingToBackUp);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ((Numbers{1, 2}), States());
    ::PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    ExpectEnd();
}

TEST_F(BusyTest, NothingElseIsTakenUnderTheReminderAfterARestore) {
    device().PutFile(kNote, "again");
    OpenAll();
    ShowTab("Restore");
    PressForReminder(IDC_RESTORE);
    EXPECT_TRUE(IsBusy());
    const HWND reminder = Reminder();
    for (const UINT message : {UINT{WM_CLOSE}, kConfirmedBackup, kConfirmedRestore}) {
        const bool is_close = message == WM_CLOSE;
        EXPECT_TRUE(sim::host::AnswerTime(is_close ? MainWindow() : OperationWindow(), kLimitMs,
                                          message, 1, is_close ? 0 : IDC_RESTORE));
    }
    EXPECT_TRUE(::IsWindow(reminder));
    EXPECT_FALSE(Shows("Backing up in progress"));
    RefuseReminder(kRestoredReminder);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ((Numbers{1, 2}), States());
}

// A box has a loop of its own, in which a second operation would nest.
TEST_F(BusyTest, ARequestUnderABoxIsDropped) {
    Open();
    PostBackup();
    PostBackup();
    ASSERT_SOON(BoxIsUp());
    device().PutFile(L"\\My Documents\\b.txt", "new");
    PostBackup();
    PostRestore(IDC_RESTORE);
    EXPECT_TRUE(IsBusy());
    ExpectBox(kNothingToBackUp);
    EXPECT_TRUE(BecomesIdle());
    Pause(200);
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(1u, BoxCount());
    EXPECT_EQ((Numbers{1, 2}), States());
    EXPECT_TRUE(device().Exists(L"\\My Documents\\b.txt"));
}

// Two reminders, one over the other: the second answer finds the first one's operation at its box.
TEST_F(BusyTest, ADroppedRequestIsNoLongerPending) {
    SetDword("Reminders", 14);
    Open();
    const HWND page = PageOf(IDC_NEW_DESCRIPTION);
    ::PostMessageW(page, WM_COMMAND, IDC_BACKUP, 0);
    ASSERT_SOON(Shows("Reminder"));
    const HWND first = Reminder();
    ::PostMessageW(page, WM_COMMAND, IDC_BACKUP, 0);
    const HWND second = Await([] { return Reminder(); },
                              [&](HWND window) { return window != nullptr && window != first; });
    ::PostMessageW(second, WM_COMMAND, IDOK, 0);
    ASSERT_SOON(BoxIsUp());
    ::PostMessageW(first, WM_COMMAND, IDOK, 0);
    ASSERT_SOON(!::IsWindow(first));
    ExpectBox(kNothingToBackUp);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(1u, BoxCount());
    ::PostMessageW(MainDialog(), WM_CLOSE, 0, 0);
    ExpectEnd();
}

TEST_F(BusyTest, NothingClosesTheProgramWhileABackupWorks) {
    device().PutFile(L"\\My Documents\\b.txt", "new");
    Open();
    const HWND dialog = MainDialog();
    Ask("counters clear");
    HoldCall("GlobalMemoryStatus");
    Press(IDC_BACKUP);
    ASSERT_SOON(Counted("GlobalMemoryStatus") == 1);
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_COMMAND, IDM_CLOSE));
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_COMMAND, IDM_QUIT));
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_CLOSE));
    EXPECT_TRUE(sim::host::AnswerTime(MainWindow(), kLimitMs, WM_CLOSE));
    LetGo();
    EXPECT_TRUE(sim::host::AnswerTime(OperationWindow(), kLimitMs, WM_NULL));
    EXPECT_SOON_EQ(3u, States().size());
    EXPECT_TRUE(::IsWindow(dialog));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
}

}  // namespace
}  // namespace tests
