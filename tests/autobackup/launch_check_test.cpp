#include "autobackup/launch_check.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "app/settings/own_values.h"
#include "autobackup/notification_reader.h"
#include "autobackup/notification_table.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class LaunchCheckTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        device().Command("set clock 2026-11-16T21:03:00");
        device().Command("set sleep.scale 1000");
        Battery(0, 0x02, 12);
    }
    void Battery(int ac, int flag, int percent) {
        device().Set("power.ac", std::to_string(ac));
        device().Set("power.flag", std::to_string(flag));
        device().Set("power.percent", std::to_string(percent));
    }
    // The daily notification as a firing leaves it: another one is there, its own is gone.
    void AddForeignNotification() {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = CNT_EVENT;
        trigger.dwEvent = NOTIFICATION_EVENT_WAKEUP;
        trigger.lpszApplication = const_cast<wchar_t*>(L"other.exe");
        trigger.lpszArguments = const_cast<wchar_t*>(L"x");
        ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    }
    static DWORD NotificationCount() { return NotificationHandles().count(); }
    LaunchCheckResult Check(const wchar_t* command_line) {
        return CheckLaunchArgument(command_line, power_);
    }
    void SetDaily(std::uint32_t on_time, std::uint32_t hour) {
        WriteSetting(setting::kOnTime, on_time);
        WriteSetting(setting::kWakeUpTime, hour);
    }

    PowerStatus power_;
};

TEST_F(LaunchCheckTest, NoCommandLineIsInteractive) {
    EXPECT_EQ(LaunchCheckResult::kInteractive, Check(nullptr));
    EXPECT_EQ(LaunchCheckResult::kInteractive, Check(L""));
}

TEST_F(LaunchCheckTest, AnyOtherTextIsAText) {
    for (const wchar_t* text : {L"AutoBackup: External", L"x", L"tolvenarrunattime",
                                L"TolvenarRunAtTime ", L"\"TolvenarRunAtTime\"", L" "}) {
        EXPECT_EQ(LaunchCheckResult::kText, Check(text)) << text;
    }
}

TEST_F(LaunchCheckTest, AChangedClockOnlyMovesTheDailyNotification) {
    SetDaily(1, 21);
    AddForeignNotification();
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAfterTimeChange));
    EXPECT_EQ(2u, NotificationCount());
}

TEST_F(LaunchCheckTest, AChangedZoneOnlyMovesTheDailyNotification) {
    SetDaily(1, 21);
    AddForeignNotification();
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAfterTzChange));
    EXPECT_EQ(2u, NotificationCount());
}

TEST_F(LaunchCheckTest, TheDailyTimeIsDueWithinItsHour) {
    SetDaily(1, 30u << 16 | 21);
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
    device().Command("set clock 2026-11-16T21:59:59");
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
}

TEST_F(LaunchCheckTest, ASecondStartOfTheSameMinuteDoesNothing) {
    SetDaily(1, 3u << 16 | 21);
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
    device().Command("set clock 2026-11-16T21:03:59");
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtTime));
    device().Command("set clock 2026-11-16T21:04:00");
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
    device().Command("set clock 2026-11-17T21:03:00");
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
}

TEST_F(LaunchCheckTest, AFiringUpToAMinuteEarlyIsThatOfItsTime) {
    SetDaily(1, 0u << 16 | 22);
    for (const char* early : {"21:59:00", "21:59:59"}) {
        DeleteOwnValue(own_value::kLastDailyStart);
        device().Command(std::string("set clock 2026-11-16T") + early);
        EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime)) << early;
        device().Command("set clock 2026-11-16T22:00:00");
        EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtTime)) << early;
    }
    device().Command("set clock 2026-11-17T21:58:59");
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtTime));
}

TEST_F(LaunchCheckTest, ALateFiringIsDroppedAndYetMovedOn) {
    SetDaily(1, 20);
    AddForeignNotification();
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtTime));
    EXPECT_EQ(2u, NotificationCount());
}

TEST_F(LaunchCheckTest, AMissingTimeIsNeverStale) {
    WriteSetting(setting::kOnTime, 1);
    EXPECT_EQ(LaunchCheckResult::kTimed, Check(kRunAtTime));
}

TEST_F(LaunchCheckTest, TheDailyTimeIsABatteryCheckWhenTheDailyBackupIsOff) {
    SetDaily(0, 21);
    EXPECT_EQ(LaunchCheckResult::kBattery, Check(kRunAtTime));
    Battery(1, 0x02, 12);
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtTime));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Kestrin2");  // absent is off as well
    Battery(0, 0x02, 12);
    EXPECT_EQ(LaunchCheckResult::kBattery, Check(kRunAtTime));
}

TEST_F(LaunchCheckTest, PowerLossAndWakingUpAreBatteryChecks) {
    EXPECT_EQ(LaunchCheckResult::kBattery, Check(kRunAtAcPowerOff));
    EXPECT_EQ(LaunchCheckResult::kBattery, Check(kRunAfterWakeup));
    Battery(1, 0x02, 12);
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAtAcPowerOff));
    EXPECT_EQ(LaunchCheckResult::kQuit, Check(kRunAfterWakeup));
}

class PowerStatusTest : public LaunchCheckTest {
protected:
    BatteryCheckResult Test() { return CheckBatteryForBackup(power_); }
    // How often the library was loaded and given back.
    using Loads = std::pair<int, int>;
    template <typename Body>
    Loads LoadsOf(Body&& body) {
        device().Command("counters clear");
        body();
        const auto calls = nlohmann::json::parse(device().Command("counters"))["calls"];
        return {calls.value("LoadLibraryW", 0), calls.value("FreeLibrary", 0)};
    }
    // Runs one test and tells how often the status was read.
    std::size_t Reads() {
        device().Command("trace on");
        Test();
        device().Command("trace off");
        return nlohmann::json::parse(device().Command("trace show GetSystemPowerStatusEx")).size();
    }
};

TEST_F(PowerStatusTest, OnMainsThereIsNoBackup) {
    Battery(1, 0x02, 12);
    EXPECT_EQ(BatteryCheckResult::kNoBackup, Test());
}

TEST_F(PowerStatusTest, AHighBatteryNeedsNone) {
    Battery(0, 0x01, 12);
    EXPECT_EQ(BatteryCheckResult::kNoBackup, Test());
}

TEST_F(PowerStatusTest, ABackupIsMadeFromSixToTwentyNinePerCent) {
    const struct {
        int percent;
        BatteryCheckResult result;
    } kRows[] = {{5, BatteryCheckResult::kNoBackup}, {6, BatteryCheckResult::kLow},
                 {29, BatteryCheckResult::kLow},     {30, BatteryCheckResult::kNoBackup},
                 {0, BatteryCheckResult::kNoBackup}, {255, BatteryCheckResult::kNoBackup}};
    for (const auto& row : kRows) {
        Battery(0, 0x02, row.percent);
        EXPECT_EQ(row.result, Test()) << row.percent;
    }
}

TEST_F(PowerStatusTest, AnUnknownMainsStatusCountsAsBattery) {
    Battery(255, 0x02, 12);
    EXPECT_EQ(BatteryCheckResult::kLow, Test());
}

TEST_F(PowerStatusTest, AnUnknownBatteryIsReadAgainFiveTimesAndCountsAsHigh) {
    Battery(0, 255, 12);
    EXPECT_EQ(BatteryCheckResult::kNoBackup, Test());
    EXPECT_EQ(6u, Reads());
    const auto pauses = nlohmann::json::parse(device().Command("trace show Sleep"));
    ASSERT_EQ(5u, pauses.size());
    for (const auto& pause : pauses) {
        EXPECT_EQ("3000", pause["arguments"]);
    }
}

TEST_F(PowerStatusTest, AReadAgainThatFailsLeavesTheBatteryUnknown) {
    Battery(0, 255, 12);
    device().Fault("GetSystemPowerStatusEx", 2, 1, ERROR_GEN_FAILURE);
    EXPECT_EQ(6u, Reads());
}

TEST_F(PowerStatusTest, AKnownBatteryIsReadOnce) { EXPECT_EQ(1u, Reads()); }

TEST_F(PowerStatusTest, OnMainsAnUnknownBatteryIsNotReadAgain) {
    Battery(1, 255, 12);
    EXPECT_EQ(1u, Reads());
}

TEST_F(PowerStatusTest, AReadThatFailsIsUnreadable) {
    device().Fault("GetSystemPowerStatusEx", 1, 1, ERROR_GEN_FAILURE);
    EXPECT_EQ(BatteryCheckResult::kUnreadable, Test());
    // The library was kept: the next test works through it.
    EXPECT_EQ(BatteryCheckResult::kLow, Test());
}

TEST_F(PowerStatusTest, ADeviceWithoutTheFunctionIsUnreadable) {
    device().Set("power.present", "0");
    EXPECT_EQ(BatteryCheckResult::kUnreadable, Test());
    EXPECT_FALSE(power_.IsAvailable());
}

TEST_F(PowerStatusTest, WithoutTheLibraryThereIsNoFunction) {
    device().Fault("LoadLibraryW", 1, 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(power_.IsAvailable());
    EXPECT_EQ(BatteryCheckResult::kUnreadable, Test());
}

// A first read that fails leaves the library to the next test, and the probe gives back even one
// that is kept; both on purpose.
TEST_F(PowerStatusTest, TheLibraryIsGivenBackAfterEachTestAndProbe) {
    EXPECT_EQ((Loads{1, 1}), LoadsOf([&] { Test(); }));
    Battery(1, 0x02, 12);
    EXPECT_EQ((Loads{1, 1}), LoadsOf([&] { Test(); }));
    device().Fault("GetSystemPowerStatusEx", 1, 1, ERROR_GEN_FAILURE);
    EXPECT_EQ((Loads{1, 0}), LoadsOf([&] { Test(); }));
    EXPECT_EQ((Loads{0, 1}), LoadsOf([&] { Test(); }));
    EXPECT_EQ((Loads{1, 1}), LoadsOf([&] { power_.IsAvailable(); }));
    EXPECT_EQ((Loads{0, 1}), LoadsOf([&] { power_.IsAvailable(); }));
}

TEST_F(PowerStatusTest, TheProbeLeavesTheKeptHandle) {
    EXPECT_TRUE(power_.IsAvailable());
    EXPECT_TRUE(power_.IsAvailable());
    EXPECT_EQ(BatteryCheckResult::kLow, Test());
}

}  // namespace
}  // namespace tolvenar
