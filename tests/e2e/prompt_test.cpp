// The prompt that counts down before an automatic backup.
#include "platform/win32.h"

#include "test_folders.h"
#include "tests/e2e/launch_fixture.h"

namespace {

using tests::Program;

class PromptTest : public tests::LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        SetOption("onTime", 1);
        SetDailyTime(9, 30);
        device().Set("sleep.scale", "0");  // the countdown stands, however long a test looks at it
    }
    // The texts that the countdown has shown since the trace was started.
    Texts Countdown() {
        Texts texts;
        for (const nlohmann::json& call : Ask("trace show SetDlgItemTextW")) {
            const std::string arguments = call["arguments"];
            const std::size_t at = arguments.find(", 1071, ");
            if (at != std::string::npos) {
                texts.push_back(arguments.substr(at + 8));
            }
        }
        return texts;
    }
    // Traced calls whose arguments hold the text.
    int CallsWith(const std::string& function, const std::string& text) {
        int calls = 0;
        for (const nlohmann::json& call : Ask("trace show " + function)) {
            const std::string arguments = call["arguments"];
            calls += arguments.find(text) != std::string::npos ? 1 : 0;
        }
        return calls;
    }
};

TEST_F(PromptTest, TheTextsNameTheReasonAndTheSeconds) {
    const Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    EXPECT_EQ("Tolvenar agent is about to start automatic backup.", ControlText(1069));
    EXPECT_EQ("Reason: Schedule", ControlText(tests::kPromptReason));
    EXPECT_EQ("Continue in 20 seconds.", ControlText(tests::kPromptCountdown));
    EXPECT_EQ("OK", ControlText(1));
    EXPECT_EQ("Cancel", ControlText(2));
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
    EXPECT_EQ(1, CallsWith("SetTimer", ", 41016, 1000"));
    EXPECT_EQ(1, CallsWith("KillTimer", ", 41016"));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, OkGoesOnAtOnce) {
    Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    Press(1);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, CancelStopsTheBackup) {
    Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    Press(2);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers(), States());
}

// An unattended device still gets its backup.
TEST_F(PromptTest, ClosingIsNoRefusal) {
    Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    ::PostMessageW(::FindWindowW(L"Dialog", L"Autobackup"), WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, OtherTimersOtherControlsAndOtherNotificationsAreIgnored) {
    const Program program = Launch("TolvenarRunAtTime");
    ASSERT_TRUE(PromptAppears());
    const HWND prompt = ::FindWindowW(L"Dialog", L"Autobackup");
    ASSERT_TRUE(Eventually([&] { return ControlText(tests::kPromptCountdown) != ""; }));
    for (int i = 0; i < 20; ++i) {
        ::SendMessageW(prompt, WM_TIMER, 7, 0);
    }
    constexpr int kFocused = 6;
    for (const int id : {IDOK, IDCANCEL}) {
        ::SendMessageW(prompt, WM_COMMAND, MAKEWPARAM(id, kFocused), 0);
    }
    ::SendMessageW(prompt, WM_COMMAND, MAKEWPARAM(tests::kPromptReason, 0), 0);
    EXPECT_NE("Continue in 01 seconds.", ControlText(tests::kPromptCountdown));
    EXPECT_EQ(prompt, ::FindWindowW(L"Dialog", L"Autobackup"));
    EXPECT_TRUE(::IsWindow(prompt));
}

TEST_F(PromptTest, WithoutATimerTheBackupGoesOnAtOnce) {
    device().Fault("SetTimer", 1, 1, 8, "41016");
    Program program = Launch("TolvenarRunAtTime");
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ("[]", device().Faults());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(PromptTest, ItIsTopMostWhereItsTemplatePutsIt) {
    Ask("trace on");
    const Program program = Launch("TolvenarRunAtTime");
    // It is shown when its initialisation is over. Nothing else is asked meanwhile, since this
    // process's own allocations would fill the trace.
    ASSERT_TRUE(
        Eventually([] { return ::IsWindowVisible(::FindWindowW(L"Dialog", L"Autobackup")); }));
    Ask("trace off");
    bool is_top_most = false;
    for (const nlohmann::json& call : Ask("trace show SetWindowPos")) {
        const std::string arguments = call["arguments"];
        is_top_most |= arguments.find(", 0xffffffff, 0, 0, 0, 0, 3") != std::string::npos;
    }
    EXPECT_TRUE(is_top_most);
}

}  // namespace
