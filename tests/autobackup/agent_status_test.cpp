#include "autobackup/agent_status.h"

#include <nlohmann/json.hpp>

#include "app/settings/settings.h"
#include "autobackup/notification_reader.h"
#include "tests/support/programs.h"

namespace tolvenar {
namespace {

constexpr UINT kGetStep = WM_USER + 13;  // the host's control tells its step

// A plain window with a bar and a label in the place of the options page.
class AgentStatusTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&controls);
        page_ = Make(L"STATIC", nullptr, WS_POPUP);
        bar_ = Make(PROGRESS_CLASSW, page_, WS_CHILD | WS_VISIBLE);
        label_ = Make(L"STATIC", page_, WS_CHILD | WS_VISIBLE);
        switch_ = Make(L"BUTTON", page_, WS_CHILD | WS_VISIBLE);  // below both
        ::SetWindowTextW(label_, L"update:");
        ::SendMessageW(bar_, PBM_SETPOS, 2, 0);
        WriteSetting(setting::kOnTime, 1);
        WriteSetting(setting::kWakeUpTime, 21);
        status_.AgentStatusInit(page_, bar_, label_, 0, 0);
        device().Command("counters clear");
    }
    void TearDown() override {
        ::DestroyWindow(page_);
        DeviceTest::TearDown();
    }
    static HWND Make(const wchar_t* name, HWND parent, DWORD style) {
        return ::CreateWindowExW(0, name, L"", style, 0, 0, 50, 20, parent, nullptr, nullptr,
                                 nullptr);
    }
    std::wstring Label() const {
        wchar_t text[32] = L"";
        ::GetWindowTextW(label_, text, 32);
        return text;
    }
    int Position() const { return static_cast<int>(::SendMessageW(bar_, PBM_GETPOS, 0, 0)); }
    void Tick(DWORD on_time, DWORD on_battery) {
        status_.AgentStatusTick(kAgentUpdateTimer, on_time, on_battery);
    }
    // Platform calls of the function since the page was set up.
    std::size_t Calls(const std::string& function) {
        const auto calls = nlohmann::json::parse(device().Command("counters"))["calls"];
        return calls.value(function, std::size_t{0});
    }
    // How often the settings were applied: the agent was started so often.
    std::size_t Applied() { return Calls("CreateProcessW"); }
    static DWORD NotificationCount() { return NotificationHandles().count(); }

    HWND page_ = nullptr;
    HWND bar_ = nullptr;
    HWND label_ = nullptr;
    HWND switch_ = nullptr;
    AgentStatus status_;
};

TEST_F(AgentStatusTest, TheControlsAreHiddenAndReady) {
    EXPECT_FALSE(::GetWindowLongW(bar_, GWL_STYLE) & WS_VISIBLE);
    EXPECT_FALSE(::GetWindowLongW(label_, GWL_STYLE) & WS_VISIBLE);
    EXPECT_EQ(switch_, ::GetWindow(page_, GW_CHILD));  // the others stand behind it now
    RECT place;
    ::GetWindowRect(bar_, &place);
    EXPECT_EQ(50, place.right - place.left);
    EXPECT_EQ(L"ready:", Label());
    EXPECT_EQ(0, Position());
    EXPECT_EQ(0, ::SendMessageW(bar_, PBM_GETRANGE, TRUE, 0));
    EXPECT_EQ(3, ::SendMessageW(bar_, PBM_GETRANGE, FALSE, 0));
    EXPECT_EQ(1, ::SendMessageW(bar_, kGetStep, 0, 0));
}

TEST_F(AgentStatusTest, AChangeIsAppliedAtTheThirdTick) {
    status_.AgentStatusChanged(1, 0);
    EXPECT_EQ(L"update:", Label());
    Tick(1, 0);
    EXPECT_EQ(1, Position());
    Tick(1, 0);
    EXPECT_EQ(2, Position());
    EXPECT_EQ(0u, Applied());
    Tick(1, 0);
    EXPECT_EQ(1u, Applied());
    EXPECT_EQ(2u, NotificationCount());
    EXPECT_EQ(L"ready:", Label());
    EXPECT_EQ(0, Position());
    Tick(1, 0);  // one that was still in the queue
    EXPECT_EQ(1u, Applied());
}

TEST_F(AgentStatusTest, AnotherChangeStartsTheCountdownOver) {
    status_.AgentStatusChanged(1, 0);
    Tick(1, 0);
    Tick(1, 0);
    status_.AgentStatusChanged(1, 1);
    EXPECT_EQ(0, Position());
    EXPECT_EQ(1u, Calls("SetTimer"));
    Tick(1, 1);
    Tick(1, 1);
    EXPECT_EQ(0u, Applied());
    Tick(1, 1);
    EXPECT_EQ(1u, Applied());
}

TEST_F(AgentStatusTest, AChangeThatIsUndoneAppliesNothing) {
    status_.AgentStatusChanged(1, 0);
    Tick(1, 0);
    status_.AgentStatusChanged(0, 0);
    EXPECT_EQ(L"ready:", Label());
    EXPECT_EQ(0, Position());
    EXPECT_EQ(1u, Calls("KillTimer"));
    for (int i = 0; i < 4; ++i) {
        Tick(0, 0);
    }
    EXPECT_EQ(0u, Applied());
}

TEST_F(AgentStatusTest, TheAppliedPairIsRememberedAfterARefresh) {
    status_.AgentStatusChanged(1, 0);
    for (int i = 0; i < 3; ++i) {
        Tick(1, 0);
    }
    status_.AgentStatusChanged(1, 0);
    EXPECT_EQ(1u, Calls("SetTimer"));
}

TEST_F(AgentStatusTest, OtherTimersAreIgnored) {
    status_.AgentStatusChanged(1, 0);
    for (int i = 0; i < 5; ++i) {
        status_.AgentStatusTick(7, 1, 0);
    }
    EXPECT_EQ(0, Position());
    EXPECT_EQ(0u, Applied());
}

TEST_F(AgentStatusTest, ApplyNowAppliesOnlyWhatIsPending) {
    status_.AgentStatusApplyNow(1, 0);
    EXPECT_EQ(0u, Applied());
    status_.AgentStatusChanged(1, 0);
    status_.AgentStatusApplyNow(1, 0);
    EXPECT_EQ(1u, Applied());
    EXPECT_EQ(2u, NotificationCount());
    EXPECT_EQ(L"ready:", Label());
    EXPECT_EQ(0, Position());
    status_.AgentStatusApplyNow(1, 0);
    EXPECT_EQ(1u, Applied());
}

TEST_F(AgentStatusTest, ApplyNowFillsTheBarBeforeItIsEmptied) {
    status_.AgentStatusChanged(1, 0);
    device().Command("trace on");
    status_.AgentStatusApplyNow(1, 0);
    device().Command("trace off");
    std::vector<std::string> positions;
    for (const auto& call : nlohmann::json::parse(device().Command("trace show SendMessageW"))) {
        const std::string arguments = call["arguments"];
        positions.push_back(arguments.substr(arguments.find(", ")));
    }
    // PBM_SETPOS
    EXPECT_EQ((std::vector<std::string>{", 1026, 3, 0", ", 1026, 0, 0"}), positions);
}

// What was changed is then applied when the main window closes.
TEST_F(AgentStatusTest, WithoutATimerNothingIsPending) {
    device().Fault("SetTimer", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
    status_.AgentStatusChanged(1, 0);
    status_.AgentStatusApplyNow(1, 0);
    EXPECT_EQ(0u, Applied());
    status_.AgentStatusChanged(1, 1);
    EXPECT_EQ(2u, Calls("SetTimer"));
    status_.AgentStatusApplyNow(1, 1);
    EXPECT_EQ(1u, Applied());
}

TEST_F(AgentStatusTest, TheTimerRunsOnThePage) {
    device().Command("set sleep.scale 20");
    device().Command("trace on");
    status_.AgentStatusChanged(1, 0);
    device().Command("trace off");
    const auto calls = nlohmann::json::parse(device().Command("trace show SetTimer"));
    const std::string arguments = calls.at(0)["arguments"];
    EXPECT_NE(std::string::npos, arguments.find(", 651211, 1000")) << arguments;
    MSG message;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(tests::Eventually(
            [&] { return ::PeekMessageW(&message, page_, WM_TIMER, WM_TIMER, PM_REMOVE) != 0; }));
        status_.AgentStatusTick(message.wParam, 1, 0);
    }
    EXPECT_EQ(1u, Applied());
}

}  // namespace
}  // namespace tolvenar
