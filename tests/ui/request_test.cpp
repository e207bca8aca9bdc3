// What a request carries from its page to the operation: what the page showed when it was asked.
#include "simulator/host/window_thread.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr unsigned kLimitMs = 10000;

class RequestTest : public UiTest {
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
        ExpectStates({1, 2});
        EXPECT_SOON_EQ(text, Text(IDC_STATE_DESCRIPTION));
    }
};

TEST_F(RequestTest, ABackupHasTheDescriptionThatStoodThereWhenItWasAskedFor) {
    Open();
    Type(IDC_NEW_DESCRIPTION, "Before the holidays");
    const HWND edit = Handle(IDC_NEW_DESCRIPTION);
    {
        const sim::host::HeldThread held(OperationWindow());
        PressOf(::GetParent(edit), IDC_BACKUP);
        Write(edit, L"too late");
    }
    ExpectNewestDescription("Before the holidays");
}

TEST_F(RequestTest, ARestoreBringsBackTheStateThatWasSelectedWhenItWasAskedFor) {
    BackUp();
    Open();
    ShowTab("Restore");
    Select(IDC_STATES, "State 1");
    const HWND list = Handle(IDC_STATES);
    {
        const sim::host::HeldThread held(OperationWindow());
        PressOf(::GetParent(list), IDC_RESTORE);
        ::SendMessageW(list, LB_SETCURSEL, 0, 0);
    }
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(RequestTest, OfARefusedRequestNothingIsLeft) {
    SetDword("Reminders", 14);
    Open();
    Type(IDC_NEW_DESCRIPTION, "refused");
    Press(IDC_BACKUP);
    RefuseReminder(kBackupReminder);
    Write(Handle(IDC_NEW_DESCRIPTION), L"as it stands");
    PostBackup();
    ExpectNewestDescription("as it stands");
}

TEST_F(RequestTest, OfARequestThatCouldNotBePostedNothingIsLeft) {
    Open();
    Type(IDC_NEW_DESCRIPTION, "lost");
    device().Fault("PostMessageW", 1, 1, 8, kTracedBackup);
    Press(IDC_BACKUP);
    ExpectBox(kNotStarted);
    Write(Handle(IDC_NEW_DESCRIPTION), L"as it stands");
    PostBackup();
    ExpectNewestDescription("as it stands");
}

// The page's own words, not those of a window that anybody may write to.
TEST_F(RequestTest, TheTreeKeepsItsCaptionWhateverTheWindowSays) {
    BackUp();
    Open();
    ShowDifferences();
    const std::string caption = "Differences from State 1 to State 2";
    ASSERT_EQ(caption, Text(IDC_DIFFERENCES_CAPTION));
    Write(Handle(IDC_DIFFERENCES_CAPTION), L"Something else");
    ShowTab("Options");
    Press(IDC_ADVANCED_TREE);
    EXPECT_SOON(Dword("AdvancedTreeView") == 1u);
    ShowTab("Advanced Restore");
    const Json tree =
        Await([&] { return Ask("window tree"); }, [](const Json& shown) { return !shown.empty(); });
    ASSERT_FALSE(tree.empty());
    EXPECT_EQ(caption, tree[0]["text"]);
}

}  // namespace
}  // namespace tests
