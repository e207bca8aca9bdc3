// What is refused from the posting of a request until its operation has ended.
#include "simulator/host/window_thread.h"
#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kConfirmedBackup = WM_APP + 124;
constexpr UINT kConfirmedRestore = WM_APP + 128;
constexpr int kStates = 1014, kRestore = 1002;
constexpr unsigned kLimitMs = 10000;

class BusyTest : public tests::UiTest {
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
        list_ = Handle(kStates);
        page_ = ::GetParent(list_);
        ::SendMessageW(page_, WM_COMMAND, MAKEWPARAM(kStates, LBN_DBLCLK), 0);
        ASSERT_EQ("Differences from State 1 to State 2", Text(1041));
        for (const int id : {1001, kRestore, 1037, 1038, 1043, 1012, 1060, 1063, 1064, 1065}) {
            buttons_.push_back({id, ButtonOf(id)});
            ASSERT_NE(nullptr, buttons_.back().window) << id;
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
        EXPECT_NE(0, ::SendMessageW(::GetDlgItem(page_, 1041), WM_GETTEXTLENGTH, 0, 0));
    }
    void ExpectEverythingRefused() {
        ExpectRefused("closing the dialog", dialog_, WM_CLOSE);
        ExpectRefused("its close box", dialog_, WM_SYSCOMMAND, SC_CLOSE);
        ExpectRefused("closing the main window", main_window_, WM_CLOSE);
        ExpectRefused("Ctrl+W and Alt+X", dialog_, WM_COMMAND, MAKEWPARAM(40004, 1));
        ExpectRefused("Ctrl+Q", dialog_, WM_COMMAND, MAKEWPARAM(40014, 1));
        ExpectRefused("double click", page_, WM_COMMAND, MAKEWPARAM(kStates, LBN_DBLCLK),
                      reinterpret_cast<LPARAM>(list_));
        ::SendMessageW(list_, LB_SETCURSEL, 1, 0);
        ExpectRefused("selection", page_, WM_COMMAND, MAKEWPARAM(kStates, LBN_SELCHANGE),
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
    // The tree's window has a button's number.
    HWND ButtonOf(int id) {
        for (const Json& window : Windows()) {
            if (window["id"] == id && window["class"] == "Button") {
                return reinterpret_cast<HWND>(window["handle"].get<std::uintptr_t>());
            }
        }
        return nullptr;
    }
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
        EXPECT_TRUE(sim::host::AnswerTime(page_, kLimitMs, WM_COMMAND, kRestore));
        ASSERT_EQ(posted + 1, Counted("PostMessageW"));
        ExpectEverythingRefused();
        Keys("ctrl+w");
        Keys("alt+x");
        Keys("ctrl+q");
        Pause(100);
        EXPECT_TRUE(::IsWindow(dialog_));
    }
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    EXPECT_TRUE(BecomesIdle());
    Keys("ctrl+q");
    ExpectEnd();
}

TEST_F(BusyTest, NothingElseIsTakenUnderTheBoxOfAnOperation) {
    OpenAll();
    EXPECT_FALSE(IsBusy());
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    EXPECT_TRUE(IsBusy());
    ExpectEverythingRefused();
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Backup.");
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ((std::vector<int>{1, 2}), States());
    ::PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    ExpectEnd();
}

TEST_F(BusyTest, NothingElseIsTakenUnderTheReminderAfterARestore) {
    device().PutFile(L"\\My Documents\\a.txt", "again");
    OpenAll();
    ShowTab("Restore");
    Press(kRestore);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    EXPECT_TRUE(IsBusy());
    const HWND reminder = ::FindWindowW(L"Dialog", L"Reminder");
    for (const UINT message : {UINT{WM_CLOSE}, kConfirmedBackup, kConfirmedRestore}) {
        const bool is_close = message == WM_CLOSE;
        EXPECT_TRUE(sim::host::AnswerTime(is_close ? MainWindow() : OperationWindow(), kLimitMs,
                                          message, 1, is_close ? 0 : kRestore));
    }
    EXPECT_TRUE(::IsWindow(reminder));
    EXPECT_FALSE(Shows("Backing up in progress"));
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ((std::vector<int>{1, 2}), States());
}

// A box has a loop of its own, in which a second operation would nest.
TEST_F(BusyTest, ARequestUnderABoxIsDropped) {
    Open();
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    device().PutFile(L"\\My Documents\\b.txt", "new");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ::PostMessageW(OperationWindow(), kConfirmedRestore, 1, kRestore);
    EXPECT_TRUE(IsBusy());
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Backup.");
    EXPECT_TRUE(BecomesIdle());
    Pause(200);
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(1u, BoxCount());
    EXPECT_EQ((std::vector<int>{1, 2}), States());
    EXPECT_TRUE(device().Exists(L"\\My Documents\\b.txt"));
}

// Two reminders, one over the other: the second answer finds the first one's operation at its box.
TEST_F(BusyTest, ADroppedRequestIsNoLongerPending) {
    SetDword("Reminders", 14);
    Open();
    const HWND page = ::GetParent(Handle(1018));
    ::PostMessageW(page, WM_COMMAND, 1001, 0);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    const HWND first = ::FindWindowW(L"Dialog", L"Reminder");
    ::PostMessageW(page, WM_COMMAND, 1001, 0);
    HWND second = nullptr;
    ASSERT_TRUE(Eventually([&] {
        second = ::FindWindowW(L"Dialog", L"Reminder");
        return second != nullptr && second != first;
    }));
    ::PostMessageW(second, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    ::PostMessageW(first, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(Eventually([&] { return !::IsWindow(first); }));
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Backup.");
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
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Counted("GlobalMemoryStatus") == 1; }));
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_COMMAND, 40004));
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_COMMAND, 40014));
    EXPECT_TRUE(sim::host::AnswerTime(dialog, kLimitMs, WM_CLOSE));
    EXPECT_TRUE(sim::host::AnswerTime(MainWindow(), kLimitMs, WM_CLOSE));
    LetGo();
    EXPECT_TRUE(sim::host::AnswerTime(OperationWindow(), kLimitMs, WM_NULL));
    EXPECT_TRUE(Eventually([&] { return States().size() == 3; }));
    EXPECT_TRUE(::IsWindow(dialog));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
}

}  // namespace
