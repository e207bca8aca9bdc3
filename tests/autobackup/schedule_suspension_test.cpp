#include "autobackup/schedule_suspension.h"

#include <nlohmann/json.hpp>

#include "app/settings/own_values.h"
#include "autobackup/notification_reader.h"
#include "autobackup/notification_scheduler.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHalfPastNine = 30u << 16 | 21;

class ScheduleSuspensionTest : public tests::DeviceTest {
protected:
    static void Write(std::uint32_t on_time, std::uint32_t on_battery, std::uint32_t time) {
        WriteSetting(setting::kOnTime, on_time);
        WriteSetting(setting::kOnBattery, on_battery);
        WriteSetting(setting::kWakeUpTime, time);
    }
    // A process that ends behind its suspending: its mutex goes with it.
    static void SuspendAndEnd() {
        SavedSchedule saved;
        SuspendAutoBackup(saved);
    }
    static void ExpectSchedule(std::uint32_t on_time, std::uint32_t on_battery,
                               std::uint32_t time) {
        EXPECT_EQ(on_time, ReadSetting(setting::kOnTime));
        EXPECT_EQ(on_battery, ReadSetting(setting::kOnBattery));
        EXPECT_EQ(time, ReadSetting(setting::kWakeUpTime));
    }
    static bool HasCopies() {
        return ValueExists(own_value::kSuspendedOnTime) ||
               ValueExists(own_value::kSuspendedOnBattery) ||
               ValueExists(own_value::kSuspendedWakeUpTime);
    }
    static DWORD NotificationCount() { return NotificationHandles().count(); }
};

TEST_F(ScheduleSuspensionTest, SuspendingTakesTheScheduleOffAndResumingPutsItBack) {
    Write(1, 1, 30u << 16 | 21);
    RegisterAutoBackupNotifications();
    SavedSchedule saved;
    EXPECT_TRUE(SuspendAutoBackup(saved));
    EXPECT_EQ(0u, ReadSetting(setting::kOnTime));
    EXPECT_EQ(0u, ReadSetting(setting::kOnBattery));
    EXPECT_EQ(0u, ReadSetting(setting::kWakeUpTime));
    EXPECT_EQ(0u, NotificationCount());

    EXPECT_TRUE(ResumeAutoBackup(saved));
    EXPECT_EQ(1u, ReadSetting(setting::kOnTime));
    EXPECT_EQ(1u, ReadSetting(setting::kOnBattery));
    EXPECT_EQ(30u << 16 | 21, ReadSetting(setting::kWakeUpTime));
    EXPECT_EQ(4u, NotificationCount());
}

TEST_F(ScheduleSuspensionTest, AMissingValueIsThereWithZeroAfterwards) {
    WriteSetting(setting::kOnBattery, 1);
    SavedSchedule saved;
    SuspendAutoBackup(saved);
    EXPECT_EQ(kSettingAbsent, saved.on_time);
    ResumeAutoBackup(saved);
    EXPECT_EQ(0u, ReadSetting(setting::kOnTime));
    EXPECT_EQ(1u, ReadSetting(setting::kOnBattery));
    EXPECT_EQ(0u, ReadSetting(setting::kWakeUpTime));
}

TEST_F(ScheduleSuspensionTest, ResumingWithoutSuspendingWritesZeros) {
    Write(1, 1, 21);
    SavedSchedule nothing;
    EXPECT_TRUE(ResumeAutoBackup(nothing));
    EXPECT_EQ(0u, ReadSetting(setting::kOnTime));
    EXPECT_EQ(0u, ReadSetting(setting::kOnBattery));
    EXPECT_EQ(0u, ReadSetting(setting::kWakeUpTime));
}

TEST_F(ScheduleSuspensionTest, SuspendingTellsOfANotificationThatStays) {
    Write(1, 0, 21);
    RegisterAutoBackupNotifications();
    SavedSchedule saved;
    device().Fault("CeClearUserNotification", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(SuspendAutoBackup(saved));
    EXPECT_EQ(1u, saved.on_time);
}

TEST_F(ScheduleSuspensionTest, TheCopiesAreThereUntilTheScheduleIsBack) {
    Write(1, 0, kHalfPastNine);
    SavedSchedule saved;
    SuspendAutoBackup(saved);
    EXPECT_EQ(1u, ReadSetting(own_value::kSuspendedOnTime));
    EXPECT_EQ(0u, ReadSetting(own_value::kSuspendedOnBattery));
    EXPECT_EQ(kHalfPastNine, ReadSetting(own_value::kSuspendedWakeUpTime));
    ResumeAutoBackup(saved);
    EXPECT_FALSE(HasCopies());
}

// Whatever call is the last one of a process that ends, nothing is lost.
TEST_F(ScheduleSuspensionTest, TheCopiesAreOnTheMediumBeforeTheFirstZero) {
    Write(1, 1, 21);
    device().Command("trace on");
    SuspendAndEnd();
    device().Command("trace off");
    std::string order;
    for (const auto& call : nlohmann::json::parse(device().Command("trace show"))) {
        const std::string function = call["function"];
        if (function == "RegFlushKey") {
            order += " flush";
        } else if (function == "RegSetValueExW") {
            order += call.dump().find("OwnSuspended") != std::string::npos ? " copy" : " zero";
        }
    }
    EXPECT_EQ(" copy copy copy flush zero zero zero", order);
}

TEST_F(ScheduleSuspensionTest, WhatAnEndedProcessTookAwayIsPutBack) {
    Write(1, 1, kHalfPastNine);
    SuspendAndEnd();
    ExpectSchedule(0, 0, 0);
    EXPECT_EQ(ScheduleRecovery::kPutBack, RecoverSchedule());
    ExpectSchedule(1, 1, kHalfPastNine);
    EXPECT_EQ(4u, NotificationCount());
    EXPECT_FALSE(HasCopies());
    EXPECT_EQ(ScheduleRecovery::kNothing, RecoverSchedule());
}

// It ended before its first zero, or between two of them.
TEST_F(ScheduleSuspensionTest, SettingsThatAreUntouchedAsYetCountAsTakenAway) {
    Write(1, 1, kHalfPastNine);
    SuspendAndEnd();
    Write(1, 1, kHalfPastNine);
    EXPECT_EQ(ScheduleRecovery::kPutBack, RecoverSchedule());
    SuspendAndEnd();
    Write(0, 1, kHalfPastNine);
    EXPECT_EQ(ScheduleRecovery::kPutBack, RecoverSchedule());
    ExpectSchedule(1, 1, kHalfPastNine);
}

// A restore of a device takes its registry away first.
TEST_F(ScheduleSuspensionTest, SettingsThatAreGoneCountAsTakenAway) {
    Write(1, 0, kHalfPastNine);
    SuspendAndEnd();
    DeleteOwnValue(setting::kOnTime);
    DeleteOwnValue(setting::kWakeUpTime);
    EXPECT_EQ(ScheduleRecovery::kPutBack, RecoverSchedule());
    ExpectSchedule(1, 0, kHalfPastNine);
}

TEST_F(ScheduleSuspensionTest, AScheduleThatWasSetSinceStays) {
    Write(1, 0, kHalfPastNine);
    SuspendAndEnd();
    WriteSetting(setting::kWakeUpTime, 8);
    EXPECT_EQ(ScheduleRecovery::kDropped, RecoverSchedule());
    ExpectSchedule(0, 0, 8);
    EXPECT_FALSE(HasCopies());
    EXPECT_EQ(0u, NotificationCount());
}

TEST_F(ScheduleSuspensionTest, WhileItsProcessLivesTheScheduleStaysTakenAway) {
    Write(1, 1, kHalfPastNine);
    SavedSchedule saved;
    SuspendAutoBackup(saved);
    EXPECT_EQ(ScheduleRecovery::kNothing, RecoverSchedule());
    ExpectSchedule(0, 0, 0);
    EXPECT_TRUE(HasCopies());
    ResumeAutoBackup(saved);
    ExpectSchedule(1, 1, kHalfPastNine);
}

// The process ended while it wrote the copies, or while it dropped them.
TEST_F(ScheduleSuspensionTest, HalfOfTheCopiesAreNone) {
    Write(1, 0, kHalfPastNine);
    WriteSetting(own_value::kSuspendedOnTime, 0);
    EXPECT_EQ(ScheduleRecovery::kNothing, RecoverSchedule());
    ExpectSchedule(1, 0, kHalfPastNine);
    EXPECT_FALSE(HasCopies());
}

TEST_F(ScheduleSuspensionTest, AnotherOperationFollowsARecovery) {
    Write(1, 0, kHalfPastNine);
    SuspendAndEnd();
    RecoverSchedule();
    SavedSchedule saved;
    SuspendAutoBackup(saved);
    ResumeAutoBackup(saved);
    ExpectSchedule(1, 0, kHalfPastNine);
}

}  // namespace
}  // namespace tolvenar
