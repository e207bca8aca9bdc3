// Every way in which the program ends.
#include <functional>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

class ShutdownTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUp();
        device().PutFile(kNote, "hello");
    }
    // The calls of a function, as the trace numbers its lines.
    std::vector<std::size_t> PlacesOf(const std::string& function,
                                      const std::string& in_arguments = "") {
        std::vector<std::size_t> places;
        const std::vector<Call> calls = Traced();
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (calls[i].function == function && calls[i].Has(in_arguments)) {
                places.push_back(i);
            }
        }
        return places;
    }
    // It was shut down once, and the heap was its last deed.
    void ExpectGoodEnd(Program& program) {
        EXPECT_EQ(0, program.ExitCode());
        EXPECT_EQ(nullptr, MainDialog());
        EXPECT_EQ(1u, AgentStarts());
        const auto heap = PlacesOf("HeapDestroy");
        ASSERT_EQ(1u, heap.size());
        for (const char* function : {"DestroyWindow", "PostQuitMessage", "GetMessageW"}) {
            const auto places = PlacesOf(function);
            ASSERT_FALSE(places.empty()) << function;
            EXPECT_LT(places.back(), heap[0]) << function;
        }
    }
    static void Post(HWND window, UINT message, WPARAM wparam = 0) {
        ::PostMessageW(window, message, wparam, 0);
    }
    // Windows of another program that neither close nor have an operation running.
    void LeaveOldCopy() {
        Ask("window stub TolvenarOperationClass Stub 0");
        Ask("window stub TolvenarClass Stub 0");
    }
};

TEST_F(ShutdownTest, EveryWayOutIsTheSame) {
    const struct {
        const char* name;
        std::function<void()> close;
    } kWays[] = {
        {"close box", [&] { PressCloseBox(); }},
        {"Alt+F4", [&] { Keys("alt+f4"); }},
        {"Ctrl+W twice", [&] { Keys("ctrl+w ctrl+w"); }},
        {"Alt+X and Ctrl+Q", [&] { Keys("alt+x ctrl+q"); }},
        {"both commands at once",
         [&] {
             const HWND dialog = MainDialog();
             Post(dialog, WM_COMMAND, IDM_CLOSE);
             Post(dialog, WM_COMMAND, IDM_QUIT);
         }},
        {"the main window twice",
         [&] {
             const HWND window = MainWindow();
             Post(window, WM_CLOSE);
             Post(window, WM_CLOSE);
         }},
        {"the main window and the dialog",
         [&] {
             const HWND dialog = MainDialog();
             Post(MainWindow(), WM_CLOSE);
             Post(dialog, WM_CLOSE);
         }},
        {"the operation window first",
         [&] {
             Post(OperationWindow(), WM_CLOSE);
             EXPECT_SOON(OperationWindow() == nullptr);
             Post(MainDialog(), WM_CLOSE);
         }},
        {"the answer after a restore", [&] { Post(OperationWindow(), kConfirmedRestored, 1); }},
    };
    for (const auto& way : kWays) {
        SCOPED_TRACE(way.name);
        Program program = OpenProgram();
        way.close();
        ExpectGoodEnd(program);
    }
}

// What a page still holds is applied and the schedule renewed before the agent looks at them; the
// storage is closed after both.
TEST_F(ShutdownTest, ItsStepsHaveTheirOrder) {
    SetDword("onTime", 1);
    Program program = OpenProgram();
    Ask("trace on");
    Keys("ctrl+q");
    EXPECT_EQ(0, program.ExitCode());
    const auto schedule = PlacesOf("CeSetUserNotificationEx");
    const auto apply = PlacesOf("SendMessageW", ", 32898, ");  // WM_APP + 130
    // The dialog's to the main window, that one's to the operation window, and one more to whoever
    // still stands at the end.
    const auto closes = PlacesOf("PostMessageW", ", 16, 0, 0");
    const auto settings = PlacesOf("RegQueryValueExW", "MayDeleteOldStorage");
    const auto agent = PlacesOf("CreateProcessW", "kestrin_tolvenar_agent.exe");
    const auto heap = PlacesOf("HeapDestroy");
    ASSERT_FALSE(schedule.empty() || settings.empty() || agent.empty() || heap.empty());
    ASSERT_LE(2u, closes.size());
    EXPECT_LT(closes[0], schedule.front());
    EXPECT_LT(schedule.back(), closes[1]);
    EXPECT_LT(closes[1], settings.back());
    EXPECT_LT(settings.back(), agent.back());
    EXPECT_LT(agent.back(), heap.back());
    ASSERT_FALSE(apply.empty());
    EXPECT_LT(schedule.back(), apply.back());
    EXPECT_LT(apply.back(), closes[1]);
}

TEST_F(ShutdownTest, EachWayOutOfAReminderIsCancel) {
    SetDword("Reminders", 14);
    Program program = OpenProgram();
    const struct {
        const char* name;
        std::function<void()> close;
    } kWays[] = {
        {"Escape", [&] { Keys("esc"); }},
        {"Alt+F4", [&] { Keys("alt+f4"); }},
        {"close box", [&] { PressCloseBox(); }},
        {"WM_CLOSE", [&] { Post(Reminder(), WM_CLOSE); }},
    };
    for (const auto& way : kWays) {
        SCOPED_TRACE(way.name);
        Press(IDC_BACKUP);
        ASSERT_SOON(IsActive("Reminder"));
        way.close();
        EXPECT_SOON(!Shows("Reminder"));
        EXPECT_SOON(IsEnabled(kMainTitle));
    }
    EXPECT_TRUE(DialogIsDone());
    EXPECT_EQ(std::size(kWays), Calls("PostMessageW", kTracedBackup + "0, 0"));
    EXPECT_EQ(Numbers{1}, States());
    Keys("ctrl+q");
    ExpectGoodEnd(program);
}

TEST_F(ShutdownTest, WithoutItsOperationThreadARequestIsNotStarted) {
    Program program = OpenProgram();
    Post(OperationWindow(), WM_CLOSE);
    ASSERT_SOON(OperationWindow() == nullptr);
    for (int twice = 0; twice < 2; ++twice) {
        PressAndExpect(IDC_BACKUP, kNotStarted);
    }
    Keys("ctrl+q");
    ExpectGoodEnd(program);
}

TEST_F(ShutdownTest, BesideACopyThatStaysTheDialogStartsNothing) {
    LeaveOldCopy();
    Program program = OpenProgram("AutoBackup: External");
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(10u, PlacesOf("Sleep", "200").size());
    PressAndExpect(IDC_BACKUP, kNotStarted);
    ShowTab("Restore");
    PressAndExpect(IDC_RESTORE, kNotStarted);
    Keys("ctrl+q");
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(Numbers{1}, States());
}

}  // namespace
}  // namespace tests
