// A scheduled or external backup that meets a copy whose user has a question on the screen.
#include <functional>

#include "tests/support/programs.h"
#include "tests/ui/ui_test.h"

namespace {

using tests::Program;

const std::wstring kPath = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
const std::string kNothingToBackUp = "Difference not found. There is nothing to Backup.";
constexpr UINT kConfirmedBackup = WM_APP + 124;

class TakeOverTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        BackUpThenChange();
    }
    // The user's copy, with its dialog.
    Program OpenFirst() {
        Ask("trace on");
        return Program(device().sim(), kPath, L"");
    }
    Program StartBackup() { return Program(device().sim(), kPath, L"AutoBackup: External"); }
    // The second copy does its backup once the first has gone, without what it was asked.
    void ExpectTakenOver(Program& first) {
        Program second = StartBackup();
        EXPECT_EQ(0, second.ExitCode());
        EXPECT_EQ(0, first.ExitCode());
        EXPECT_EQ((std::vector<int>{1, 2}), States());
        EXPECT_EQ("changed", device().FileBytes(L"\\My Documents\\a.txt"));
    }
    // The first copy is at work: it comes forward and goes on. `meanwhile` is done once the second
    // has been started.
    void ExpectHandedOver(Program& first, const std::function<void()>& meanwhile = nullptr) {
        const long forward = Counted("SetForegroundWindow");
        Program second = StartBackup();
        if (meanwhile) {
            meanwhile();
        }
        EXPECT_EQ(1, second.ExitCode());
        EXPECT_EQ(forward + 1, Counted("SetForegroundWindow"));
        EXPECT_TRUE(first.Runs());
    }
    void ExpectStillUsable(Program& first) {
        EXPECT_TRUE(BecomesIdle());
        ::PostMessageW(MainDialog(), WM_CLOSE, 0, 0);
        EXPECT_EQ(0, first.ExitCode());
    }
};

// Its loop ends with the first copy's main window, just as after OK.
TEST_F(TakeOverTest, UnderTheReminderBeforeABackupItRunsOneBackup) {
    Program first = OpenFirst();
    WaitForDialog();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    ExpectTakenOver(first);
    EXPECT_EQ(0u, Calls("PostMessageW", ", 32892, "));
}

TEST_F(TakeOverTest, UnderTheReminderBeforeARestoreNothingIsRestored) {
    Program first = OpenFirst();
    WaitForDialog();
    ShowTab("Restore");
    Press(1002);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    ExpectTakenOver(first);
    EXPECT_EQ(0u, Calls("PostMessageW", ", 32896, "));
    EXPECT_FALSE(Dword("Reminders").has_value());
}

TEST_F(TakeOverTest, UnderAMessageOfThePageTheProgramEnds) {
    Ask("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar onTime");
    Program first = OpenFirst();
    WaitForDialog();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    ExpectTakenOver(first);
}

TEST_F(TakeOverTest, UnderTheBoxOfAResultTheFirstCopyComesForward) {
    SetDword("Reminders", 2);
    BackUp();
    Program first = OpenFirst();
    WaitForDialog();
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    ExpectHandedOver(first);
    ExpectBox(tests::kInformationBox, kNothingToBackUp);
    ExpectStillUsable(first);
    EXPECT_EQ((std::vector<int>{1, 2}), States());
}

TEST_F(TakeOverTest, UnderTheQuestionForTheOldStorageItIsKept) {
    SetDword("Reminders", 2);
    SetDword("MayDeleteOldStorage", 1);
    device().PutFile(L"\\My Documents\\b.txt", std::string(50000, 'b'));
    Program first = OpenFirst();
    WaitForDialog();
    device().Set("card.free", "12000");
    const std::string storage = device().FileBytes(tests::kStorageFile);
    Press(1001);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    ExpectHandedOver(first);
    ExpectBox(tests::kQuestionBox,
              "Not enough disk space to backup. Old Storage may be deleted to free disk "
              "space.\r\nContinue?",
              tests::kNo);
    EXPECT_EQ(unsigned(tests::kErrorBox), Answer().style);
    ExpectStillUsable(first);
    EXPECT_EQ(storage, device().FileBytes(tests::kStorageFile));
}

TEST_F(TakeOverTest, UnderThePopupTheFirstCopyComesForwardAndEndsItsBackup) {
    SetDword("Reminders", 2);
    Program first = OpenFirst();
    WaitForDialog();
    HoldCall("GlobalMemoryStatus");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ASSERT_TRUE(RulesAreUsedUp());
    const long sent = Counted("SendMessageW");
    ExpectHandedOver(first, [&] {
        EXPECT_TRUE(Eventually([&] { return Counted("SendMessageW") > sent; }));
        Pause(200);  // the question is counted a moment before it is sent
        LetGo();
    });
    EXPECT_TRUE(Eventually([&] { return States() == std::vector<int>({1, 2}); }));
    ExpectStillUsable(first);
    EXPECT_EQ((std::vector<int>{1, 2}), States());
}

}  // namespace
