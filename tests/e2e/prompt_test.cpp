// The prompt that counts down before an automatic backup.
#include "test_folders.h"
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

class PromptTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetDword("onTime", 1);
        SetDailyTime(9, 30);
        device().Set("sleep.scale", "0");  // the countdown stands, however long a test looks at it
    }
    Program LaunchPrompt() {
        Program program = Launch("TolvenarRunAtTime");
        EXPECT_SOON_EQ("Continue in 20 seconds.", Text(IDC_PROMPT_COUNTDOWN));
        return program;
    }
    // The texts that the countdown has shown since the trace was started.
    Texts Countdown() {
        const std::string control = ", " + std::to_string(IDC_PROMPT_COUNTDOWN) + ", ";
        Texts texts;
        for (const Call& call : Traced("SetDlgItemTextW", control)) {
            texts.push_back(call.Behind(control));
        }
        return texts;
    }
};

TEST_F(PromptTest, TheTextsNameTheReasonAndTheSeconds) {
    const Program program = LaunchPrompt();
    EXPECT_EQ("Tolvenar agent is about to start automatic backup.", Text(IDC_PROMPT_MESSAGE));
    EXPECT_EQ("Reason: Schedule", Text(IDC_PROMPT_REASON));
    EXPECT_EQ("OK", Text(IDOK));
    EXPECT_EQ("Cancel", Text(IDCANCEL));
    Ask(std::string("screenshot ") + TOLVENAR_BIN_DIR + "/autobackup_prompt.png");
}

TEST_F(PromptTest, ItCountsFromTwentyToOneAndGoesOn) {
    device().Set("sleep.scale", "30");
    Ask("trace on");
    Program program = Launch("TolvenarRunAtTime");
    EXPECT_EQ(0, program.ExitCode());
    Ask("trace off");
    Texts expected;
    for (int left = 20; left > 0; --left) {
        const std::string digits = (left < 10 ? "0" : "") + std::to_string(left);
        expected.push_back("Continue in " + digits + " seconds.");
    }
    EXPECT_EQ(expected, Countdown());
    EXPECT_EQ(1u, Calls("SetTimer", ", 41016, 1000"));
    EXPECT_EQ(1u, Calls("KillTimer", ", 41016"));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, OkGoesOnAtOnce) {
    Program program = LaunchPrompt();
    Press(IDOK);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, CancelStopsTheBackup) {
    Program program = LaunchPrompt();
    Press(IDCANCEL);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers(), States());
}

// An unattended device still gets its backup.
TEST_F(PromptTest, ClosingIsNoRefusal) {
    Program program = LaunchPrompt();
    ::PostMessageW(Dialog(L"Autobackup"), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, OtherTimersOtherControlsAndOtherNotificationsAreIgnored) {
    const Program program = LaunchPrompt();
    const HWND prompt = Dialog(L"Autobackup");
    for (int i = 0; i < 20; ++i) {
        ::SendMessageW(prompt, WM_TIMER, 7, 0);
    }
    constexpr int kFocused = 6;
    for (const int id : {IDOK, IDCANCEL}) {
        ::SendMessageW(prompt, WM_COMMAND, MAKEWPARAM(id, kFocused), 0);
    }
    ::SendMessageW(prompt, WM_COMMAND, MAKEWPARAM(IDC_PROMPT_REASON, 0), 0);
    EXPECT_NE("Continue in 01 seconds.", Text(IDC_PROMPT_COUNTDOWN));
    EXPECT_EQ(prompt, Dialog(L"Autobackup"));
    EXPECT_TRUE(::IsWindow(prompt));
}

TEST_F(PromptTest, WithoutATimerTheBackupGoesOnAtOnce) {
    device().Fault("SetTimer", 1, 1, 8, "41016");
    Program program = Launch("TolvenarRunAtTime");
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, ItIsTopMostWhereItsTemplatePutsIt) {
    Ask("trace on");
    const Program program = Launch("TolvenarRunAtTime");
    // It is shown when its initialisation is over. Nothing else is asked meanwhile, since this
    // process's own allocations would fill the trace.
    ASSERT_SOON(::IsWindowVisible(Dialog(L"Autobackup")));
    Ask("trace off");
    EXPECT_LE(1u, Calls("SetWindowPos", ", 0xffffffff, 0, 0, 0, 0, 3"));
}

}  // namespace
}  // namespace tests
