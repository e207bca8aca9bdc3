// What is refused while an operation runs, and what goes on.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

class BusyTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUp();
        device().PutFile(L"\\My Documents\\a.txt", "hello");
    }
};

TEST_F(BusyTest, NothingClosesTheProgramDuringABackup) {
    Open();
    Ask("delay GlobalMemoryStatus 1 2500");
    Press(1001);
    ASSERT_TRUE(BecomesBusy());
    EXPECT_TRUE(Eventually([&] { return Shows("Backing up in progress"); }));
    const HWND dialog = ::FindWindowW(L"Dialog", L"Tolvenar");
    ::PostMessageW(dialog, WM_COMMAND, 40004, 0);
    ::PostMessageW(dialog, WM_COMMAND, 40014, 0);
    ::PostMessageW(dialog, WM_CLOSE, 0, 0);
    ::PostMessageW(::FindWindowW(L"TolvenarClass", nullptr), WM_CLOSE, 0, 0);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(ProgramRuns());
    EXPECT_TRUE(Shows("Tolvenar"));
}

TEST_F(BusyTest, APopupThatComesTooLateIsDoneWithout) {
    Open();
    Ask("delay DialogBoxIndirectParamW 1 7000");
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return States() == std::vector<int>({1, 2}); }));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_FALSE(Shows("Backing up in progress"));
    EXPECT_TRUE(Top("Tolvenar")->at("enabled"));
}

}  // namespace
