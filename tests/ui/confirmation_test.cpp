// The step between a wish and its operation.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kConfirmedBackup = WM_APP + 124;
constexpr UINT kConfirmedRestore = WM_APP + 128;

class ConfirmationTest : public tests::UiTest {
protected:
    using Texts = std::vector<std::string>;
    void SetUp() override {
        UiTest::SetUp();
        BackUpThenChange();
    }
    bool StatesBecome(const std::vector<int>& states) {
        return Eventually([&] { return States() == states && !IsBusy(); });
    }
    // The answers that reached the operation window: message, wParam, lParam.
    Texts Answers() {
        Texts answers;
        for (const auto& line : Ask("trace show PostMessageW")) {
            const std::string arguments = line["arguments"];
            for (const char* message : {"32890", "32892", "32896"}) {  // WM_APP + 122, 124, 128
                const std::size_t at = arguments.find(std::string(", ") + message + ", ");
                if (at != std::string::npos) {
                    answers.push_back(arguments.substr(at + 2));
                }
            }
        }
        return answers;
    }
    void ExpectAnswers(const Texts& expected) {
        Eventually([&] { return Answers() == expected; });
        EXPECT_EQ(expected, Answers());
    }
    // The line of the trace with the first such call; behind all lines when there is none.
    std::size_t PlaceOf(const std::string& function, const std::string& in_arguments) {
        std::size_t place = 0;
        for (const auto& line : Ask("trace show")) {
            const std::string arguments = line["arguments"];
            if (line["function"] == function && arguments.find(in_arguments) != std::string::npos) {
                break;
            }
            ++place;
        }
        return place;
    }
    // How often the list of states was emptied to be filled before the answer `answer` was posted:
    // once when the page was made, once more for a request that goes on.
    int FillsBefore(const std::string& answer) {
        int fills = 0;
        for (const auto& line : Ask("trace show")) {
            const std::string arguments = line["arguments"];
            if (line["function"] == "PostMessageW" &&
                arguments.find(", " + answer) != std::string::npos) {
                return fills;
            }
            fills += arguments.find(", 388, 0, 0") != std::string::npos ? 1 : 0;  // LB_RESETCONTENT
        }
        return -1;
    }
};

TEST_F(ConfirmationTest, ABackupAsksFirst) {
    Open();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    EXPECT_EQ(tests::kBackupReminder, Text(1032));
    EXPECT_TRUE(Sees(1030));
    EXPECT_EQ("&Do not show this reminder again", Text(1030));
    EXPECT_TRUE(Control(1)->at("focused"));
    EXPECT_FALSE(Top("Tolvenar")->at("enabled"));
    Press(tests::kOk);
    EXPECT_TRUE(StatesBecome({1, 2}));
    ExpectAnswers(Texts{"32892, 1, 0"});
    EXPECT_LT(PlaceOf("RegSetValueExW", "Reminders"), PlaceOf("PostMessageW", ", 32892, 1, "));
}

TEST_F(ConfirmationTest, ARefusedBackupRunsNothing) {
    Open();
    Press(1001);
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    ExpectAnswers(Texts{"32892, 0, 0"});
    Pause(300);
    EXPECT_EQ(std::vector<int>{1}, States());
    EXPECT_TRUE(Top("Tolvenar")->at("enabled"));
}

TEST_F(ConfirmationTest, ARestoreAsksFirstAndItsCancelHasTheFocus) {
    Open();
    ShowTab("Restore");
    Press(1002);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    EXPECT_EQ(tests::kRestoreReminder, Text(1032));
    EXPECT_TRUE(Control(2)->at("focused"));
    Keys("enter");
    EXPECT_TRUE(Eventually([&] { return !Shows("Reminder"); }));
    ExpectAnswers(Texts{"32896, 0, 1002"});
    EXPECT_EQ(1, FillsBefore("32896, 0, "));
    EXPECT_EQ("changed", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(ConfirmationTest, AConfirmedRestoreHandsItsButtonOn) {
    Open();
    ShowTab("Restore");
    RestoreInDialog();
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
    ExpectAnswers(Texts{"32896, 1, 1002", "32890, 0, 0"});
}

TEST_F(ConfirmationTest, AfterARestoreTheBoxIsHiddenAndOkEndsTheProgram) {
    SetDword("Reminders", 14);
    Open();
    ShowTab("Restore");
    RestoreInDialog();
    ASSERT_TRUE(
        Eventually([&] { return Shows("Reminder") && Text(1032) == tests::kRestoredReminder; }));
    EXPECT_FALSE(Sees(1030));
    Press(tests::kOk);
    ExpectEnd();
    EXPECT_EQ(14u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, RefusingToEndKeepsTheProgram) {
    Open();
    ShowTab("Restore");
    RestoreInDialog();
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
    EXPECT_EQ("Restore", SelectedTab());
}

TEST_F(ConfirmationTest, WithItsBitClearAGoodRestoreJustEndsTheProgram) {
    SetDword("Reminders", 12);  // part of the state that is restored
    BackUpThenChange();
    Open();
    ShowTab("Restore");
    RestoreInDialog();
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_EQ(12u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, TheCheckBoxSwitchesTheReminderOff) {
    Open();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    Press(1030);
    EXPECT_TRUE(Eventually([&] { return Control(1030)->at("check") == 1; }));
    Press(tests::kOk);
    EXPECT_TRUE(StatesBecome({1, 2}));
    EXPECT_EQ(10u, Dword("Reminders"));

    device().PutFile(L"\\My Documents\\b.txt", "more");
    ShowTab("Backup");
    Press(1001);
    EXPECT_TRUE(StatesBecome({1, 2, 3}));
    EXPECT_FALSE(Shows("Reminder"));
}

TEST_F(ConfirmationTest, CancelLeavesTheSettingAlone) {
    SetDword("Reminders", 6);
    Open();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    Press(1030);
    Press(tests::kCancel);
    EXPECT_TRUE(Eventually([&] { return !Shows("Reminder"); }));
    EXPECT_EQ(6u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, AnAbsentSettingShowsAllReminders) {
    ASSERT_FALSE(Dword("Reminders").has_value());
    Open();
    Press(1001);
    ExpectReminder(tests::kBackupReminder, tests::kOk);
    EXPECT_TRUE(StatesBecome({1, 2}));
    EXPECT_EQ(14u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, AnOddSettingShowsAllReminders) {
    SetDword("Reminders", 0x80000000u);
    Open();
    Press(1001);
    ExpectReminder(tests::kBackupReminder, tests::kOk);
    EXPECT_TRUE(StatesBecome({1, 2}));
    EXPECT_EQ(14u, Dword("Reminders"));
}

// The list is filled again before the answer is posted, and must still say what the user chose;
// after the restore it begins anew.
TEST_F(ConfirmationTest, TheChosenStateIsRestoredNotTheNewest) {
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", "third");
    BackUp();
    for (const unsigned reminders : {14u, 6u}) {
        SetDword("Reminders", reminders);
        Open();
        ShowTab("Restore");
        Select(1014, "State 1");
        Press(1002);
        if (reminders == 14u) {
            ExpectReminder(tests::kRestoreReminder);
        }
        EXPECT_TRUE(Eventually(
            [&] { return Shows("Reminder") && Text(1032) == tests::kRestoredReminder; }));
        EXPECT_EQ(0, Selected(1014));
        ExpectReminder(tests::kRestoredReminder, tests::kOk);
        ExpectEnd();
        EXPECT_EQ(2, FillsBefore("32896, 1, "));
        EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
        device().PutFile(L"\\My Documents\\a.txt", "third");
    }
}

TEST_F(ConfirmationTest, ARefusalThatReachesTheOperationWindowIsIgnored) {
    Open();
    const HWND window = ::FindWindowW(L"TolvenarOperationClass", nullptr);
    ::PostMessageW(window, kConfirmedBackup, 0, 0);
    ::PostMessageW(window, kConfirmedRestore, 0, 1002);
    Pause(500);
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(std::vector<int>{1}, States());
    EXPECT_EQ("changed", device().FileBytes(L"\\My Documents\\a.txt"));
}

}  // namespace
