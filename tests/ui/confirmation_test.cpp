// The step between a wish and its operation.
#include <algorithm>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

class ConfirmationTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        BackUpThenChange();
    }
    // The answers that reached the operation window: message, wParam, lParam.
    Texts Answers() {
        Texts answers;
        for (const Call& call : Traced("PostMessageW")) {
            for (const std::string& message : {kTracedRestored, kTracedBackup, kTracedRestore}) {
                if (call.Has(message)) {
                    answers.push_back(message.substr(2) + call.Behind(message));
                }
            }
        }
        return answers;
    }
    void ExpectAnswers(const Texts& expected) { EXPECT_SOON_EQ(expected, Answers()); }
    // The place in the trace of the first such call; behind all when there is none.
    std::size_t PlaceOf(const std::string& function, const std::string& in_arguments) {
        const std::vector<Call> calls = Traced();
        const auto found = std::find_if(calls.begin(), calls.end(), [&](const Call& call) {
            return call.function == function && call.Has(in_arguments);
        });
        return static_cast<std::size_t>(found - calls.begin());
    }
    // How often the list of states was emptied to be filled before the answer `answer` was posted:
    // once when the page was made, once more for a request that goes on.
    int FillsBefore(const std::string& answer) {
        int fills = 0;
        for (const Call& call : Traced()) {
            if (call.function == "PostMessageW" && call.Has(answer)) {
                return fills;
            }
            fills += call.Has(", 388, 0, 0") ? 1 : 0;  // LB_RESETCONTENT
        }
        return -1;
    }
    void ExpectAllReminders() {
        Open();
        BackUpInDialog();
        ExpectStates({1, 2});
        EXPECT_EQ(14u, Dword("Reminders"));
    }
};

TEST_F(ConfirmationTest, ABackupAsksFirst) {
    Open();
    PressForReminder(IDC_BACKUP);
    EXPECT_SOON_EQ(kBackupReminder, Text(IDC_REMINDER_TEXT));
    EXPECT_TRUE(Sees(IDC_REMINDER_OFF));
    EXPECT_EQ("&Do not show this reminder again", Text(IDC_REMINDER_OFF));
    EXPECT_TRUE(FocusComesTo(IDOK));
    EXPECT_SOON(IsDisabled(kMainTitle));
    Press(IDOK);
    ExpectStates({1, 2});
    ExpectAnswers({"32892, 1, 0"});
    EXPECT_LT(PlaceOf("RegSetValueExW", "Reminders"),
              PlaceOf("PostMessageW", kTracedBackup + "1, "));
}

TEST_F(ConfirmationTest, ARefusedBackupRunsNothing) {
    Open();
    Press(IDC_BACKUP);
    RefuseReminder(kBackupReminder);
    ExpectAnswers({"32892, 0, 0"});
    Pause(300);
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_SOON(IsEnabled(kMainTitle));
}

TEST_F(ConfirmationTest, ARestoreAsksFirstAndItsCancelHasTheFocus) {
    OpenOn("Restore");
    PressForReminder(IDC_RESTORE);
    EXPECT_SOON_EQ(kRestoreReminder, Text(IDC_REMINDER_TEXT));
    EXPECT_TRUE(FocusComesTo(IDCANCEL));
    Keys("enter");
    EXPECT_SOON(!Shows("Reminder"));
    ExpectAnswers({"32896, 0, " + std::to_string(IDC_RESTORE)});
    EXPECT_EQ(1, FillsBefore(kTracedRestore + "0, "));
    EXPECT_EQ("changed", device().FileBytes(kNote));
}

TEST_F(ConfirmationTest, AConfirmedRestoreHandsItsButtonOn) {
    OpenOn("Restore");
    RestoreInDialog();
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(kNote));
    ExpectAnswers({"32896, 1, " + std::to_string(IDC_RESTORE), "32890, 0, 0"});
}

TEST_F(ConfirmationTest, AfterARestoreTheBoxIsHiddenAndOkEndsTheProgram) {
    SetDword("Reminders", 14);
    OpenOn("Restore");
    RestoreInDialog();
    ASSERT_SOON(Shows("Reminder") && Text(IDC_REMINDER_TEXT) == kRestoredReminder);
    EXPECT_FALSE(Sees(IDC_REMINDER_OFF));
    Press(IDOK);
    ExpectEnd();
    EXPECT_EQ(14u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, RefusingToEndKeepsTheProgram) {
    OpenOn("Restore");
    RestoreInDialog();
    RefuseReminder(kRestoredReminder);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
    EXPECT_EQ("Restore", SelectedTab());
}

TEST_F(ConfirmationTest, WithItsBitClearAGoodRestoreJustEndsTheProgram) {
    SetDword("Reminders", 12);  // part of the state that is restored
    BackUpThenChange();
    OpenOn("Restore");
    RestoreInDialog();
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_EQ(12u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, TheCheckBoxSwitchesTheReminderOff) {
    Open();
    PressForReminder(IDC_BACKUP);
    Press(IDC_REMINDER_OFF);
    EXPECT_SOON(IsChecked(IDC_REMINDER_OFF));
    Press(IDOK);
    ExpectStates({1, 2});
    EXPECT_EQ(10u, Dword("Reminders"));

    device().PutFile(L"\\My Documents\\b.txt", "more");
    ShowTab("Backup");
    Press(IDC_BACKUP);
    ExpectStates({1, 2, 3});
    EXPECT_FALSE(Shows("Reminder"));
}

TEST_F(ConfirmationTest, CancelLeavesTheSettingAlone) {
    SetDword("Reminders", 6);
    Open();
    PressForReminder(IDC_BACKUP);
    Press(IDC_REMINDER_OFF);
    Press(IDCANCEL);
    EXPECT_SOON(!Shows("Reminder"));
    EXPECT_EQ(6u, Dword("Reminders"));
}

TEST_F(ConfirmationTest, AnAbsentSettingShowsAllReminders) {
    ASSERT_FALSE(Dword("Reminders").has_value());
    ExpectAllReminders();
}

TEST_F(ConfirmationTest, AnOddSettingShowsAllReminders) {
    SetDword("Reminders", 0x80000000u);
    ExpectAllReminders();
}

// The list is filled again before the answer is posted, and must still say what the user chose;
// after the restore it begins anew.
TEST_F(ConfirmationTest, TheChosenStateIsRestoredNotTheNewest) {
    BackUp();
    device().PutFile(kNote, "third");
    BackUp();
    for (const unsigned reminders : {14u, 6u}) {
        SetDword("Reminders", reminders);
        OpenOn("Restore");
        Select(IDC_STATES, "State 1");
        Press(IDC_RESTORE);
        if (reminders == 14u) {
            ExpectReminder(kRestoreReminder);
        }
        EXPECT_SOON(Shows("Reminder") && Text(IDC_REMINDER_TEXT) == kRestoredReminder);
        EXPECT_EQ(0, Selected(IDC_STATES));
        ExpectReminder(kRestoredReminder);
        ExpectEnd();
        EXPECT_EQ(2, FillsBefore(kTracedRestore + "1, "));
        EXPECT_EQ("hello", device().FileBytes(kNote));
        device().PutFile(kNote, "third");
    }
}

TEST_F(ConfirmationTest, ARefusalThatReachesTheOperationWindowIsIgnored) {
    Open();
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 0, 0);
    ::PostMessageW(OperationWindow(), kConfirmedRestore, 0, IDC_RESTORE);
    Pause(500);
    EXPECT_FALSE(IsBusy());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ("changed", device().FileBytes(kNote));
}

}  // namespace
}  // namespace tests
