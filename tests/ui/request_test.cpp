// What a request carries from its page to the operation: what the page showed when it was asked.
#include "simulator/host/window_thread.h"
#include "tests/ui/ui_test.h"

namespace {

constexpr UINT kConfirmedBackup = WM_APP + 124;
constexpr int kStates = 1014, kStateDescription = 1016, kNewDescription = 1018;
constexpr int kBackup = 1001, kRestore = 1002;
constexpr int kDifferencesCaption = 1041, kAdvancedTree = 1063;
constexpr unsigned kLimitMs = 10000;

class RequestTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
    // Presses a button of `page` while the operation thread cannot take the request yet.
    void PressOf(HWND page, int button) {
        ASSERT_TRUE(
            sim::host::AnswerTime(page, kLimitMs, WM_COMMAND, static_cast<std::uintptr_t>(button)));
    }
    void Write(HWND edit, const wchar_t* text) {
        ::SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    }
    void ExpectNewestDescription(const std::string& text) {
        EXPECT_TRUE(Eventually([&] { return States().size() == 2 && !IsBusy(); }));
        EXPECT_TRUE(Eventually([&] { return Sees(kStateDescription); }));
        EXPECT_EQ(text, Text(kStateDescription));
    }
};

TEST_F(RequestTest, ABackupHasTheDescriptionThatStoodThereWhenItWasAskedFor) {
    Open();
    Type(kNewDescription, "Before the holidays");
    const HWND edit = Handle(kNewDescription);
    {
        const sim::host::HeldThread held(OperationWindow());
        PressOf(::GetParent(edit), kBackup);
        Write(edit, L"too late");
    }
    ExpectNewestDescription("Before the holidays");
}

TEST_F(RequestTest, ARestoreBringsBackTheStateThatWasSelectedWhenItWasAskedFor) {
    BackUp();
    Open();
    ShowTab("Restore");
    Select(kStates, "State 1");
    const HWND list = Handle(kStates);
    {
        const sim::host::HeldThread held(OperationWindow());
        PressOf(::GetParent(list), kRestore);
        ::SendMessageW(list, LB_SETCURSEL, 0, 0);
    }
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(RequestTest, OfARefusedRequestNothingIsLeft) {
    SetDword("Reminders", 14);
    Open();
    Type(kNewDescription, "refused");
    Press(kBackup);
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    Write(Handle(kNewDescription), L"as it stands");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ExpectNewestDescription("as it stands");
}

TEST_F(RequestTest, OfARequestThatCouldNotBePostedNothingIsLeft) {
    Open();
    Type(kNewDescription, "lost");
    device().Fault("PostMessageW", 1, 1, 8, ", 32892, ");
    Press(kBackup);
    ExpectBox(tests::kWarningBox, "Can't start action. Try again.");
    Write(Handle(kNewDescription), L"as it stands");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ExpectNewestDescription("as it stands");
}

// The page's own words, not those of a window that anybody may write to.
TEST_F(RequestTest, TheTreeKeepsItsCaptionWhateverTheWindowSays) {
    BackUp();
    Open();
    ShowTab("Advanced Restore");
    ::SendMessageW(::GetParent(Handle(kStates)), WM_COMMAND, MAKEWPARAM(kStates, LBN_DBLCLK), 0);
    const std::string caption = "Differences from State 1 to State 2";
    ASSERT_EQ(caption, Text(kDifferencesCaption));
    Write(Handle(kDifferencesCaption), L"Something else");
    ShowTab("Options");
    Press(kAdvancedTree);
    EXPECT_TRUE(Eventually([&] { return Dword("AdvancedTreeView") == 1u; }));
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Eventually([&] { return Sees(kDifferencesCaption); }));
    const Json tree = Ask("window tree");
    ASSERT_FALSE(tree.empty());
    EXPECT_EQ(caption, tree[0]["text"]);
}

}  // namespace
