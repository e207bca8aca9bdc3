// What a start asks the platform for, by its values: heap, hidden windows, keys, thread, mutex.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class StartupCallsTest : public UiTest {
protected:
    Texts Arguments(const std::string& function) {
        Texts all;
        for (const Call& call : Traced(function)) {
            all.push_back(call.arguments);
        }
        return all;
    }
    static void ExpectHidden(HWND window, const wchar_t* title) {
        wchar_t text[40] = L"";
        ::GetWindowTextW(window, text, 40);
        EXPECT_STREQ(title, text);
        EXPECT_FALSE(::IsWindowVisible(window));
        EXPECT_NE(0u, static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE)) & WS_BORDER);
        EXPECT_EQ(nullptr, ::GetParent(window));
    }
};

TEST_F(StartupCallsTest, TheHeapBeginsWith5000000BytesAndMayGrow) {
    Open();
    EXPECT_EQ(Texts{"0, 5000000, 0"}, Arguments("HeapCreate"));
}

TEST_F(StartupCallsTest, BothHiddenWindowsHaveIconBrushAndTitle) {
    Open();
    EXPECT_EQ((Texts{"TolvenarClass, Tolvenar", "TolvenarOperationClass, Operations"}),
              Arguments("CreateWindowExW"));
    EXPECT_EQ((Texts{"0x400000, 0x65", "0x400000, 0x65"}), Arguments("LoadIconW"));
    EXPECT_EQ((Texts{"0", "0"}), Arguments("GetStockObject"));  // WHITE_BRUSH
    EXPECT_EQ(2u, Calls("RegisterClassW"));
    EXPECT_EQ(0u, Calls("LoadCursorW"));
    ExpectHidden(MainWindow(), L"Tolvenar");
    ExpectHidden(OperationWindow(), L"Operations");
}

TEST_F(StartupCallsTest, TheKeysAreThoseOfTable113) {
    Open();
    EXPECT_EQ(Texts{"0x400000, 0x71"}, Arguments("LoadAcceleratorsW"));
}

TEST_F(StartupCallsTest, AnInteractiveStartTakesNoMutexAndLooksForOtherCopiesOnce) {
    Open();
    EXPECT_EQ(0u, Calls("CreateMutexW", "TolvenarMutexObject"));
    EXPECT_EQ(1u, Calls("FindWindowW", "TolvenarClass, 0x0"));
}

TEST_F(StartupCallsTest, AScheduledBackupTakesTheMutexAndLoadsUnderTheHourglass) {
    constexpr unsigned kHalfPastNine = 30 << 16 | 9;
    SetDword("onTime", 1);
    SetDword("WakeUpTime", kHalfPastNine);
    device().Set("sleep.scale", "100");
    StartProgram("TolvenarRunAtTime");
    EXPECT_SOON(!States().empty() && !ProgramRuns());
    EXPECT_EQ(1u, Calls("CreateMutexW", "TolvenarMutexObject"));
    EXPECT_EQ(Texts{"0x0, 0x7f02"}, Arguments("LoadCursorW"));
    EXPECT_EQ(2u, Calls("SetCursor"));  // and the previous one
    EXPECT_EQ(0u, Calls("SetWindowTextW", "Loading List"));
    EXPECT_EQ(1u, Calls("SetWindowTextW", "Backing up in progress"));
}

TEST_F(StartupCallsTest, AnUnattendedRestoreLoadsUnderTheHourglassToo) {
    TakeFirstState();
    device().PutFile(L"\\My Documents\\new.txt", "new");
    Ask("trace on");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_FALSE(device().Exists(L"\\My Documents\\new.txt"));
    EXPECT_EQ(Texts{"0x0, 0x7f02"}, Arguments("LoadCursorW"));
    EXPECT_EQ(0u, Calls("SetWindowTextW", "Loading List"));
    EXPECT_EQ(1u, Calls("SetWindowTextW", "Restoring in progress"));
    EXPECT_EQ(1u, Calls("SendMessageW", ", 1025, 0, 786432"));  // 12 steps in all
}

}  // namespace
}  // namespace tests
