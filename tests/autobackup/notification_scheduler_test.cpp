#include "autobackup/notification_scheduler.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "app/settings/settings.h"
#include "autobackup/notification_reader.h"
#include "autobackup/notification_table.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class NotificationSchedulerTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        device().Command("set clock 2026-11-16T09:00:00");
    }
    void SetOptions(std::uint32_t on_time, std::uint32_t on_battery) {
        WriteSetting(setting::kOnTime, on_time);
        WriteSetting(setting::kOnBattery, on_battery);
        WriteSetting(setting::kWakeUpTime, 30u << 16 | 21);
    }
    static HANDLE Add(DWORD type, DWORD event, const wchar_t* application, const wchar_t* arguments,
                      WORD hour = 8, CE_USER_NOTIFICATION* user = nullptr) {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = type;
        trigger.dwEvent = event;
        trigger.lpszApplication = const_cast<wchar_t*>(application);
        trigger.lpszArguments = const_cast<wchar_t*>(arguments);
        if (type == CNT_TIME) {
            trigger.stStartTime = {2027, 1, 0, 1, hour, 15, 0, 0};
        }
        const HANDLE handle = ::CeSetUserNotificationEx(nullptr, &trigger, user);
        EXPECT_NE(nullptr, handle);
        return handle;
    }
    // "arguments" or "arguments day hour:minute" of every notification, in handle order.
    static std::vector<std::wstring> All() {
        std::vector<std::wstring> all;
        const NotificationHandles handles;
        NotificationReader reader;
        for (DWORD i = 0; i < handles.count(); ++i) {
            const CE_NOTIFICATION_TRIGGER& trigger = *reader.Read(handles[i])->pcent;
            std::wstring text = trigger.lpszArguments != nullptr ? trigger.lpszArguments : L"-";
            if (trigger.dwType == CNT_TIME) {
                wchar_t time[32];
                ::wsprintfW(time, L" %02u-%02u %02u:%02u", trigger.stStartTime.wMonth,
                            trigger.stStartTime.wDay, trigger.stStartTime.wHour,
                            trigger.stStartTime.wMinute);
                text += time;
            }
            all.push_back(text);
        }
        return all;
    }
    using Texts = std::vector<std::wstring>;
    const Texts kTimeOnly = {kRunAfterTimeChange, L"TolvenarRunAtTime 11-16 21:30"};
    const Texts kWithBattery = {kRunAfterTimeChange, kRunAtAcPowerOff, kRunAfterWakeup,
                                L"TolvenarRunAtTime 11-16 21:30"};
};

TEST_F(NotificationSchedulerTest, EveryCombinationOfTheTwoSettingsRegistersItsRows) {
    constexpr std::uint32_t kAbsent = kSettingAbsent;
    for (const std::uint32_t on_time : {kAbsent, 0u, 1u, 2u}) {
        for (const std::uint32_t on_battery : {kAbsent, 0u, 1u, 2u}) {
            ASSERT_TRUE(ClearAutoBackupNotifications());
            ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Kestrin2");
            WriteSetting(setting::kWakeUpTime, 30u << 16 | 21);
            if (on_time != kAbsent) {
                WriteSetting(setting::kOnTime, on_time);
            }
            if (on_battery != kAbsent) {
                WriteSetting(setting::kOnBattery, on_battery);
            }
            EXPECT_TRUE(RegisterAutoBackupNotifications());
            // A setting of 2 is on and registers nothing: only bit 0 chooses rows.
            const Texts expected = on_battery == 1 ? kWithBattery
                                   : on_time == 1  ? kTimeOnly
                                                   : Texts();
            EXPECT_EQ(expected, All()) << on_time << " " << on_battery;
        }
    }
}

TEST_F(NotificationSchedulerTest, EachRowRunsTheAgentAtItsEventAndTellsTheUserNothing) {
    const struct {
        DWORD type;
        DWORD event;
        const char* arguments;
    } kRows[] = {{CNT_EVENT, 1, "TolvenarRunAfterTimeChange"},
                 {CNT_EVENT, 11, "TolvenarRunAfterWakeup"},
                 {CNT_EVENT, 4, "TolvenarRunAtAcPowerOff"},
                 {CNT_TIME, 0, "TolvenarRunAtTime"}};
    SetOptions(0, 1);
    RegisterAutoBackupNotifications();
    const auto all = nlohmann::json::parse(device().Command("notifications"));
    ASSERT_EQ(4u, all.size());
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(kRows[i].type, all[i]["type"]) << i;
        EXPECT_EQ(kRows[i].event, all[i]["event"]) << i;
        EXPECT_EQ(kRows[i].arguments, all[i]["arguments"]);
        EXPECT_EQ("kestrin_tolvenar_agent.exe", all[i]["application"]);
        EXPECT_TRUE(all[i]["end"].is_null()) << i;
        EXPECT_TRUE(all[i]["user"].is_null()) << i;
    }
}

TEST_F(NotificationSchedulerTest, RegisteringTwiceLeavesOneOfEach) {
    SetOptions(1, 1);
    EXPECT_TRUE(RegisterAutoBackupNotifications());
    const NotificationHandles before;
    const HANDLE first = before[0];
    EXPECT_TRUE(RegisterAutoBackupNotifications());
    EXPECT_EQ(kWithBattery, All());
    const NotificationHandles after;
    EXPECT_EQ(first, after[0]);
}

TEST_F(NotificationSchedulerTest, BothOffLeavesWhatIsRegistered) {
    SetOptions(1, 0);
    RegisterAutoBackupNotifications();
    SetOptions(0, 0);
    EXPECT_TRUE(RegisterAutoBackupNotifications());
    EXPECT_EQ(kTimeOnly, All());
}

TEST_F(NotificationSchedulerTest, AMissingTimeIsMidnight) {
    WriteSetting(setting::kOnBattery, 1);
    EXPECT_TRUE(RegisterAutoBackupNotifications());
    EXPECT_EQ(L"TolvenarRunAtTime 11-17 00:00", All().back());
}

TEST_F(NotificationSchedulerTest, ARowWhoseTimeCannotBeComputedIsSkipped) {
    SetOptions(1, 0);
    device().Command("set clock 2026-11-16T22:00:00");
    device().Fault("SystemTimeToFileTime", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(RegisterAutoBackupNotifications());
    EXPECT_EQ(Texts{kRunAfterTimeChange}, All());
}

TEST_F(NotificationSchedulerTest, ARefusedRegistrationIsToldAndTheOthersGoOn) {
    SetOptions(1, 1);
    device().Fault("CeSetUserNotificationEx", 1, 1, ERROR_OUTOFMEMORY);
    EXPECT_FALSE(RegisterAutoBackupNotifications());
    EXPECT_EQ(3u, All().size());
}

TEST_F(NotificationSchedulerTest, ClearingTakesEveryRowAndForeignApplicationsOfTheSameArguments) {
    SetOptions(1, 1);
    RegisterAutoBackupNotifications();
    Add(CNT_EVENT, NOTIFICATION_EVENT_TZ_CHANGE, kAgentProgram, kRunAfterTzChange);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", kRunAfterWakeup);
    EXPECT_TRUE(ClearAutoBackupNotifications());
    EXPECT_EQ(Texts(), All());
}

TEST_F(NotificationSchedulerTest, ClearingLeavesForeignNotifications) {
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"Other arguments");
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kAgentProgram, L"tolvenarrunafterwakeup");
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kAgentProgram, nullptr);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kAgentProgram, kRunAtTime);  // of another type
    EXPECT_TRUE(ClearAutoBackupNotifications());
    EXPECT_EQ(4u, All().size());
}

TEST_F(NotificationSchedulerTest, ClearingNothingSucceeds) {
    EXPECT_TRUE(ClearAutoBackupNotifications());
}

TEST_F(NotificationSchedulerTest, ARefusedRemovalIsToldAndTheOthersGo) {
    SetOptions(1, 1);
    RegisterAutoBackupNotifications();
    device().Fault("CeClearUserNotification", 2, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(ClearAutoBackupNotifications());
    EXPECT_EQ(Texts{kRunAtAcPowerOff}, All());
}

TEST_F(NotificationSchedulerTest, ClearingWithoutMemoryForARecordFails) {
    SetOptions(1, 0);
    RegisterAutoBackupNotifications();
    device().Fault("LocalAlloc", 2, 1, ERROR_OUTOFMEMORY);  // behind that of the handles
    EXPECT_FALSE(ClearAutoBackupNotifications());
    EXPECT_EQ(2u, All().size());
}

TEST_F(NotificationSchedulerTest, AnUnreadableRecordIsPassedOver) {
    // Each record's size is asked, then it is read.
    const struct {
        int call;
        const wchar_t* left;
    } kRows[] = {{1, kRunAfterTimeChange},
                 {2, kRunAfterTimeChange},
                 {3, L"TolvenarRunAtTime 11-16 21:30"},
                 {4, L"TolvenarRunAtTime 11-16 21:30"}};
    SetOptions(1, 0);
    for (const auto& row : kRows) {
        RegisterAutoBackupNotifications();
        device().Fault("CeGetUserNotification", row.call, 1, ERROR_INVALID_PARAMETER);
        EXPECT_TRUE(ClearAutoBackupNotifications()) << row.call;
        EXPECT_EQ(Texts{row.left}, All()) << row.call;
        EXPECT_TRUE(ClearAutoBackupNotifications());
    }
}

// The largest record comes first.
TEST_F(NotificationSchedulerTest, OneBufferServesAllRecordsThatItIsLargeEnoughFor) {
    SetOptions(1, 1);
    RegisterAutoBackupNotifications();
    device().Command("counters clear");
    EXPECT_TRUE(ClearAutoBackupNotifications());
    const auto calls = nlohmann::json::parse(device().Command("counters"))["calls"];
    EXPECT_EQ(2, calls["LocalAlloc"]);  // that of the handles and the buffer
    EXPECT_EQ(8, calls["CeGetUserNotification"]);
}

TEST_F(NotificationSchedulerTest, HandlesThatHaveBecomeMoreMeanwhileAreNone) {
    SetOptions(1, 0);
    RegisterAutoBackupNotifications();
    device().Command("delay CeGetUserNotificationHandles 2 60000");
    std::thread other([&] {
        while (device().Faults() != "[]") {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"x");
        device().Command("faults clear");
    });
    const NotificationHandles handles;
    other.join();
    EXPECT_EQ(0u, handles.count());
    EXPECT_EQ(3u, All().size());
}

TEST_F(NotificationSchedulerTest, HandlesThatCannotBeReadAreNone) {
    SetOptions(1, 0);
    RegisterAutoBackupNotifications();
    device().Fault("CeGetUserNotificationHandles", 2, 1, ERROR_INVALID_PARAMETER);
    const NotificationHandles handles;
    EXPECT_EQ(0u, handles.count());
}

TEST_F(NotificationSchedulerTest, FindingComparesApplicationAndArgumentsWithCase) {
    CE_NOTIFICATION_TRIGGER wanted{};
    wanted.dwType = CNT_EVENT;
    wanted.dwEvent = NOTIFICATION_EVENT_WAKEUP;
    wanted.lpszApplication = const_cast<wchar_t*>(kAgentProgram);
    wanted.lpszArguments = const_cast<wchar_t*>(kRunAfterWakeup);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"Kestrin_tolvenar_agent.exe", kRunAfterWakeup);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kAgentProgram, L"TolvenarRunafterWakeup");
    Add(CNT_EVENT, NOTIFICATION_EVENT_OFF_AC_POWER, kAgentProgram, kRunAfterWakeup);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, nullptr, kRunAfterWakeup);
    EXPECT_EQ(nullptr, FindNotification(wanted));
    const HANDLE right = Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, kAgentProgram, kRunAfterWakeup);
    EXPECT_EQ(right, FindNotification(wanted));
}

TEST_F(NotificationSchedulerTest, ReschedulingMovesTheStoredNotificationOnAtItsOwnTime) {
    SetOptions(1, 0);  // 21:30, which is not read
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime, 8);
    EXPECT_TRUE(RescheduleTimeNotification());
    EXPECT_EQ(Texts{L"TolvenarRunAtTime 11-17 08:15"}, All());
}

// The platform may take the handle away once its program has started.
TEST_F(NotificationSchedulerTest, ATimeIsNeverSetOverTheHandleThatFired) {
    SetOptions(1, 0);
    RegisterAutoBackupNotifications();
    for (const bool is_rescheduled : {true, false}) {
        const NotificationHandles before;
        ASSERT_EQ(2u, before.count());
        EXPECT_TRUE(is_rescheduled ? RescheduleTimeNotification()
                                   : RegisterAutoBackupNotifications());
        const NotificationHandles after;
        ASSERT_EQ(2u, after.count());
        EXPECT_NE(before[1], after[1]) << is_rescheduled;
        EXPECT_EQ(kTimeOnly, All());
    }
}

TEST_F(NotificationSchedulerTest, AnOccurrenceWithinThePassedSecondsIsPast) {
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime, 9);  // a quarter past
    device().Command("set clock 2026-11-16T09:14:10");
    EXPECT_TRUE(RescheduleTimeNotification(49));
    EXPECT_EQ(Texts{L"TolvenarRunAtTime 11-16 09:15"}, All());
    EXPECT_TRUE(RescheduleTimeNotification(50));
    EXPECT_EQ(Texts{L"TolvenarRunAtTime 11-17 09:15"}, All());
}

TEST_F(NotificationSchedulerTest, ReschedulingPassesOverARecordThatCannotBeRead) {
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"x");
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime, 8);
    device().Fault("CeGetUserNotification", 2, 1, ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(RescheduleTimeNotification());
    EXPECT_EQ((Texts{L"x", L"TolvenarRunAtTime 11-17 08:15"}), All());
}

TEST_F(NotificationSchedulerTest, ReschedulingKeepsTheUserNotificationOfTheStoredOne) {
    CE_USER_NOTIFICATION user{};
    user.ActionFlags = 1;
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime, 8, &user);
    EXPECT_TRUE(RescheduleTimeNotification());
    const NotificationHandles handles;
    NotificationReader reader;
    const CE_NOTIFICATION_INFO_HEADER* record = reader.Read(handles[0]);
    ASSERT_NE(nullptr, record->pceun);
    EXPECT_EQ(1u, record->pceun->ActionFlags);
}

TEST_F(NotificationSchedulerTest, ReschedulingWithoutAnyNotificationMakesNone) {
    SetOptions(1, 1);
    EXPECT_FALSE(RescheduleTimeNotification());
    EXPECT_EQ(Texts(), All());
}

TEST_F(NotificationSchedulerTest, ReschedulingBesideOthersMakesTheDailyOne) {
    SetOptions(0, 0);  // that onTime is there is enough
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"x");
    Add(CNT_TIME, 0, L"other.exe", kRunAtTime);  // another application's
    EXPECT_TRUE(RescheduleTimeNotification());
    EXPECT_EQ(L"TolvenarRunAtTime 11-16 21:30", All().back());
    EXPECT_EQ(3u, All().size());
}

TEST_F(NotificationSchedulerTest, ReschedulingNeedsBothSettingsToMakeTheDailyOne) {
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"x");
    WriteSetting(setting::kWakeUpTime, 21);
    EXPECT_FALSE(RescheduleTimeNotification());
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Kestrin2");
    WriteSetting(setting::kOnTime, 1);
    EXPECT_FALSE(RescheduleTimeNotification());
    EXPECT_EQ(1u, All().size());
}

TEST_F(NotificationSchedulerTest, ReschedulingTellsOfATimeThatCannotBeComputed) {
    WriteSetting(setting::kOnTime, 1);
    WriteSetting(setting::kWakeUpTime, 8);
    Add(CNT_EVENT, NOTIFICATION_EVENT_WAKEUP, L"other.exe", L"x");
    device().Fault("SystemTimeToFileTime", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(RescheduleTimeNotification());
    EXPECT_EQ(Texts{L"x"}, All());
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime, 8);
    device().Fault("FileTimeToSystemTime", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(RescheduleTimeNotification());
    EXPECT_EQ((Texts{L"x", L"TolvenarRunAtTime 01-01 08:15"}), All());
}

TEST_F(NotificationSchedulerTest, ReschedulingTellsWhatThePlatformRefuses) {
    SetOptions(1, 0);
    Add(CNT_TIME, 0, kAgentProgram, kRunAtTime);
    device().Fault("CeSetUserNotificationEx", 1, 1, ERROR_OUTOFMEMORY);
    EXPECT_FALSE(RescheduleTimeNotification());
    device().Fault("LocalAlloc", 2, 1, ERROR_OUTOFMEMORY);
    EXPECT_FALSE(RescheduleTimeNotification());
    // It is found with the first two calls and read again whole with the others.
    for (const int call : {3, 4}) {
        device().Fault("CeGetUserNotification", call, 1, ERROR_INVALID_PARAMETER);
        EXPECT_FALSE(RescheduleTimeNotification()) << call;
    }
    EXPECT_EQ(Texts{L"TolvenarRunAtTime 01-01 08:15"}, All());
}

}  // namespace
}  // namespace tolvenar
