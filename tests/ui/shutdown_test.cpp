// Every way in which the program ends.
#include <functional>

#include "tests/support/programs.h"
#include "tests/ui/ui_test.h"

namespace {

using tests::Program;

const std::wstring kPath = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
const std::string kNotStarted = "Can't start action. Try again.";
constexpr UINT kConfirmedRestored = WM_APP + 122;

class ShutdownTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUp();
        device().PutFile(L"\\My Documents\\a.txt", "hello");
    }
    Program OpenProgram(const std::wstring& arguments = L"") {
        Ask("trace on");
        return Program(device().sim(), kPath, arguments);
    }
    // The calls of a function, as the trace numbers its lines.
    std::vector<std::size_t> PlacesOf(const std::string& function, const std::string& arguments) {
        std::vector<std::size_t> places;
        std::size_t place = 0;
        for (const Json& line : Ask("trace show")) {
            if (line["function"] == function &&
                line["arguments"].get<std::string>().find(arguments) != std::string::npos) {
                places.push_back(place);
            }
            ++place;
        }
        return places;
    }
    // It was shut down once, and the heap was its last deed.
    void ExpectGoodEnd(Program& program) {
        EXPECT_EQ(0, program.ExitCode());
        EXPECT_EQ(nullptr, MainDialog());
        EXPECT_EQ(1u, PlacesOf("CreateProcessW", "kestrin_tolvenar_agent.exe").size());
        const auto heap = PlacesOf("HeapDestroy", "");
        ASSERT_EQ(1u, heap.size());
        for (const char* function : {"DestroyWindow", "PostQuitMessage", "GetMessageW"}) {
            const auto places = PlacesOf(function, "");
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
             Post(dialog, WM_COMMAND, 40004);
             Post(dialog, WM_COMMAND, 40014);
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
             Eventually([&] { return OperationWindow() == nullptr; });
             Post(MainDialog(), WM_CLOSE);
         }},
        {"the answer after a restore", [&] { Post(OperationWindow(), kConfirmedRestored, 1); }},
    };
    for (const auto& way : kWays) {
        SCOPED_TRACE(way.name);
        Program program = OpenProgram();
        WaitForDialog();
        way.close();
        ExpectGoodEnd(program);
    }
}

// What a page still holds is applied and the schedule renewed before the agent looks at them; the
// storage is closed after both.
TEST_F(ShutdownTest, ItsStepsHaveTheirOrder) {
    SetDword("onTime", 1);
    Program program = OpenProgram();
    WaitForDialog();
    Ask("trace on");
    Keys("ctrl+q");
    EXPECT_EQ(0, program.ExitCode());
    const auto schedule = PlacesOf("CeSetUserNotificationEx", "");
    const auto apply = PlacesOf("SendMessageW", ", 32898, ");  // WM_APP + 130
    // The dialog's to the main window, that one's to the operation window, and one more to whoever
    // still stands at the end.
    const auto closes = PlacesOf("PostMessageW", ", 16, 0, 0");
    const auto settings = PlacesOf("RegQueryValueExW", "MayDeleteOldStorage");
    const auto agent = PlacesOf("CreateProcessW", "kestrin_tolvenar_agent.exe");
    const auto heap = PlacesOf("HeapDestroy", "");
    ASSERT_FALSE(schedule.empty() || settings.empty() || agent.empty());
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
    WaitForDialog();
    const struct {
        const char* name;
        std::function<void()> close;
    } kWays[] = {
        {"Escape", [&] { Keys("esc"); }},
        {"Alt+F4", [&] { Keys("alt+f4"); }},
        {"close box", [&] { PressCloseBox(); }},
        {"WM_CLOSE", [&] { Post(::FindWindowW(L"Dialog", L"Reminder"), WM_CLOSE); }},
    };
    for (const auto& way : kWays) {
        SCOPED_TRACE(way.name);
        Press(1001);
        ASSERT_TRUE(Eventually([&] { return Shows("Reminder") && Top("Reminder")->at("active"); }));
        way.close();
        EXPECT_TRUE(Eventually([&] { return !Shows("Reminder"); }));
        EXPECT_TRUE(Eventually([&] { return Top("Tolvenar")->at("enabled") == true; }));
    }
    EXPECT_TRUE(DialogIsDone());
    EXPECT_EQ(std::size(kWays), Calls("PostMessageW", ", 32892, 0, 0"));
    EXPECT_EQ(std::vector<int>{1}, States());
    Keys("ctrl+q");
    ExpectGoodEnd(program);
}

TEST_F(ShutdownTest, WithoutItsOperationThreadARequestIsNotStarted) {
    Program program = OpenProgram();
    WaitForDialog();
    Post(OperationWindow(), WM_CLOSE);
    ASSERT_TRUE(Eventually([&] { return OperationWindow() == nullptr; }));
    for (int twice = 0; twice < 2; ++twice) {
        Press(1001);
        ExpectBox(tests::kWarningBox, kNotStarted);
    }
    Keys("ctrl+q");
    ExpectGoodEnd(program);
}

TEST_F(ShutdownTest, BesideACopyThatStaysTheDialogStartsNothing) {
    LeaveOldCopy();
    Program program = OpenProgram(L"AutoBackup: External");
    WaitForDialog();
    EXPECT_EQ(std::vector<int>{1}, States());
    EXPECT_EQ(10u, PlacesOf("Sleep", "200").size());
    Press(1001);
    ExpectBox(tests::kWarningBox, kNotStarted);
    ShowTab("Restore");
    Press(1002);
    ExpectBox(tests::kWarningBox, kNotStarted);
    Keys("ctrl+q");
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ(std::vector<int>{1}, States());
}

}  // namespace
