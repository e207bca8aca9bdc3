// What the clock and events start on a device: notifications, fire, tick.
#include "platform/win32.h"

#include <nlohmann/json.hpp>
#include <notify.h>

#include "simulator/notifications/notifications.h"
#include "simulator/processes/process_handles.h"
#include "simulator/programs/rest.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

using Json = nlohmann::json;

class CommandNotificationsTest : public DeviceTest {
protected:
    CommandNotificationsTest() {
        InstallProgram(device().sim(), "probe.exe", L"\\Windows\\probe.exe");
        device().Set("clock", "2003-02-28T07:00:00");
    }
    Json Run(const std::string& line) { return Json::parse(device().Command(line)); }
    HANDLE Register(CE_NOTIFICATION_TRIGGER trigger, const wchar_t* arguments,
                    const wchar_t* application = L"\\Windows\\probe.exe") {
        trigger.dwSize = sizeof trigger;
        trigger.lpszApplication = const_cast<wchar_t*>(application);
        trigger.lpszArguments = const_cast<wchar_t*>(arguments);
        return ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    }
    HANDLE AtTime(WORD hour, WORD minute, const wchar_t* arguments) {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwType = CNT_TIME;
        trigger.stStartTime = {2003, 2, 5, 28, hour, minute, 0, 0};
        return Register(trigger, arguments);
    }
    HANDLE AtEvent(DWORD event, const wchar_t* arguments,
                   const wchar_t* application = L"\\Windows\\probe.exe") {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwType = CNT_EVENT;
        trigger.dwEvent = event;
        return Register(trigger, arguments, application);
    }
    std::vector<std::wstring> RunningArguments() {
        std::vector<std::wstring> arguments;
        for (const auto& program : sim::processes::List(device().sim())) {
            arguments.push_back(program.arguments);
        }
        return arguments;
    }
};

TEST_F(CommandNotificationsTest, TheListTellsWhatIsRegistered) {
    EXPECT_EQ(Json::array(), Run("notifications"));
    AtTime(7, 30, L"AutoBackup: now");
    const Json list = Run("notifications");
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(CNT_TIME, list[0]["type"]);
    EXPECT_EQ("\\Windows\\probe.exe", list[0]["application"]);
    EXPECT_EQ("AutoBackup: now", list[0]["arguments"]);
    EXPECT_EQ("2003-02-28T07:30:00", list[0]["start"]);
}

TEST_F(CommandNotificationsTest, AFiredEventStartsItsProgramWithItsArguments) {
    AtEvent(NOTIFICATION_EVENT_OFF_AC_POWER, L"wait for power");
    AtEvent(NOTIFICATION_EVENT_WAKEUP, L"other");
    for (int round = 0; round < 2; ++round) {
        const Json started = Run("fire \"wait for power\"");
        ASSERT_EQ(1u, started.size());
        EXPECT_EQ("\\Windows\\probe.exe", started[0]["application"]);
        EXPECT_EQ(std::vector<std::wstring>{L"wait for power"}, RunningArguments());
        sim::processes::KillAll(device().sim());
    }
    EXPECT_EQ(Json::array(), Run("fire nothing"));
    EXPECT_EQ(2u, Run("notifications").size());
}

TEST_F(CommandNotificationsTest, AProgramThatIsNotThereIsToldAndHoldsNothingUp) {
    AtEvent(NOTIFICATION_EVENT_WAKEUP, L"wait", L"\\gone.exe");
    AtEvent(NOTIFICATION_EVENT_WAKEUP, L"wait");
    const Json started = Run("fire wait");
    ASSERT_EQ(2u, started.size());
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, started[0]["error"]);
    EXPECT_NE(0, started[1]["pid"]);
}

TEST_F(CommandNotificationsTest, TheClockIsMovedAndWhatIsDueVanishes) {
    AtTime(7, 30, L"wait");
    AtTime(9, 0, L"later");
    EXPECT_EQ(Json::array(), Run("tick 2003-02-28T07:29:59"));
    const Json started = Run("tick 2003-02-28T07:30:00");
    ASSERT_EQ(1u, started.size());
    EXPECT_EQ("wait", started[0]["arguments"]);
    EXPECT_EQ(std::vector<std::wstring>{L"wait"}, RunningArguments());
    EXPECT_EQ("2003-02-28T07:30:00.000Z", Run("show")["clock"]);
    EXPECT_EQ(1u, Run("notifications").size());
    EXPECT_EQ(Json::array(), Run("tick 2003-02-28T07:31:00"));
}

// Documents say that a time's notification vanishes and not when; some systems keep it.
TEST_F(CommandNotificationsTest, ATimeVanishesBeforeItsProgramOrAfterOrNever) {
    const struct {
        const char* moment;
        std::size_t meanwhile;
        std::size_t left;
    } kRows[] = {{"before", 0, 0}, {"after", 1, 0}, {"never", 1, 1}};
    for (const auto& row : kRows) {
        device().Set("clock", "2003-02-28T07:00:00");
        device().Set("notification.vanishes", row.moment);
        const HANDLE handle = AtTime(7, 30, L"pause 100");
        const auto due = sim::notifications::TakeDue(device().sim(), {2003, 2, 5, 28, 7, 30});
        ASSERT_TRUE(due) << row.moment;
        EXPECT_EQ(row.meanwhile, Run("notifications").size()) << row.moment;
        sim::notifications::EndDue(device().sim(), *due);
        EXPECT_EQ(row.left, Run("notifications").size()) << row.moment;
        EXPECT_EQ(Json::array(), Run("tick 2003-02-28T09:00:00")) << row.moment;
        ::CeClearUserNotification(handle);
    }
}

// What is set anew over its handle goes with it.
TEST_F(CommandNotificationsTest, AHandleThatVanishesAfterItsProgramTakesWhatWasSetOverIt) {
    device().Set("notification.vanishes", "after");
    const HANDLE handle = AtTime(7, 30, L"exit 0");
    const auto due = sim::notifications::TakeDue(device().sim(), {2003, 2, 5, 28, 7, 30});
    ASSERT_TRUE(due);
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = CNT_TIME;
    trigger.lpszApplication = const_cast<wchar_t*>(L"\\Windows\\probe.exe");
    trigger.stStartTime = {2003, 3, 6, 1, 7, 30, 0, 0};
    EXPECT_EQ(handle, ::CeSetUserNotificationEx(handle, &trigger, nullptr));
    sim::notifications::EndDue(device().sim(), *due);
    EXPECT_EQ(Json::array(), Run("notifications"));
}

// A device need not be exact.
TEST_F(CommandNotificationsTest, ATimeMayComeEarly) {
    device().Set("notification.early", "30");
    AtTime(7, 30, L"exit 0");
    EXPECT_EQ(Json::array(), Run("tick 2003-02-28T07:29:29"));
    EXPECT_EQ(1u, Run("tick 2003-02-28T07:29:30").size());
    EXPECT_EQ("2003-02-28T07:29:30.000Z", Run("show")["clock"]);
}

TEST_F(CommandNotificationsTest, EachDueProgramHasEndedBeforeTheNextStarts) {
    AtTime(9, 0, L"exit 2");
    AtTime(8, 0, L"exit 1");
    AtTime(10, 0, L"exit 3");
    const Json started = Run("tick 2003-02-28T12:00:00");
    ASSERT_EQ(3u, started.size());
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ("exit " + std::to_string(i + 1), started[i]["arguments"]);
    }
    EXPECT_TRUE(RunningArguments().empty());
    EXPECT_EQ(Json::array(), Run("notifications"));
    EXPECT_EQ("2003-02-28T12:00:00.000Z", Run("show")["clock"]);
}

TEST_F(CommandNotificationsTest, WhatAProgramHandsOnToHasEndedBeforeTheNextStarts) {
    AtTime(8, 0, L"hand hand pause 200");
    EXPECT_EQ(1u, Run("tick 2003-02-28T12:00:00").size());
    EXPECT_TRUE(RunningArguments().empty());
}

TEST_F(CommandNotificationsTest, AProgramThatStaysOutOfSightHoldsNothingUp) {
    AtTime(8, 0, L"stay pause 200");
    AtTime(9, 0, L"hand pause 200");
    EXPECT_EQ(2u, Run("tick 2003-02-28T12:00:00").size());
    EXPECT_EQ(std::vector<std::wstring>{L"stay pause 200"}, RunningArguments());
}

TEST_F(CommandNotificationsTest, AProgramThatShowsAWindowIsNotAtRest) {
    sim::processes::Watch watch(device().sim());
    const auto dialog = sim::processes::Start(device().sim(), L"probe.exe", L"dialog");
    ASSERT_TRUE(Eventually([] { return ::FindWindowW(L"Dialog", L"Probe") != nullptr; }));
    EXPECT_FALSE(watch.WaitForRest(dialog, 100));
    sim::processes::Kill(device().sim(), dialog.pid);
    EXPECT_TRUE(watch.WaitForRest(dialog, 5000));
    sim::processes::CloseStarted(dialog);
}

// Its window is there for a while before it is shown.
TEST_F(CommandNotificationsTest, AProgramThatIsStillAboutToShowItsWindowIsNotAtRest) {
    sim::processes::Watch watch(device().sim());
    const auto dialog = sim::processes::Start(device().sim(), L"probe.exe", L"slow dialog");
    bool rested = false;
    EXPECT_TRUE(Eventually([&] {
        rested = rested || watch.WaitForRest(dialog, 100);
        return ::IsWindowVisible(::FindWindowW(L"Dialog", L"Probe")) != FALSE;
    }));
    EXPECT_FALSE(rested);
    sim::processes::Kill(device().sim(), dialog.pid);
    sim::processes::CloseStarted(dialog);
}

TEST_F(CommandNotificationsTest, TheTimeOfTheZoneCounts) {
    device().Set("zone", "EST5");
    AtTime(7, 30, L"exit 0");
    EXPECT_EQ(Json::array(), Run("tick 2003-02-28T12:29:00Z"));
    EXPECT_EQ(1u, Run("tick 2003-02-28T12:30:00Z").size());
}

}  // namespace
}  // namespace tests
