#include "autobackup/launch_check.h"

#include "app/settings/settings.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/notification_table.h"

namespace tolvenar {
namespace {

// The battery setting is not asked: its notifications exist only while it is on.
LaunchCheckResult TestBattery(PowerStatus& power) {
    return CheckBatteryForBackup(power) == BatteryCheckResult::kLow ? LaunchCheckResult::kBattery
                                                                    : LaunchCheckResult::kQuit;
}

// A notification that comes in another hour was held up, by a device that was off for example.
bool IsStale() {
    const DWORD wake_up_time = ReadSetting(setting::kWakeUpTime);
    if (wake_up_time == kSettingAbsent) {
        return false;
    }
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return LOWORD(wake_up_time) != now.wHour;
}

LaunchCheckResult CheckDailyLaunch(PowerStatus& power) {
    RescheduleTimeNotification();  // first, so that tomorrow's is set whatever happens next
    if (IsStale()) {
        return LaunchCheckResult::kQuit;
    }
    if ((ReadSetting(setting::kOnTime) & kSettingMask) != 0) {
        return LaunchCheckResult::kTimed;
    }
    return TestBattery(power);  // the daily notification is the daily battery check as well
}

}  // namespace

LaunchCheckResult CheckLaunchArgument(const wchar_t* command_line, PowerStatus& power) {
    if (command_line == nullptr || command_line[0] == 0) {
        return LaunchCheckResult::kInteractive;
    }
    const auto is = [command_line](const wchar_t* argument) {
        return ::wcscmp(command_line, argument) == 0;
    };
    if (is(kRunAfterTimeChange) || is(kRunAfterTzChange)) {
        RescheduleTimeNotification();
        return LaunchCheckResult::kQuit;
    }
    if (is(kRunAtTime)) {
        return CheckDailyLaunch(power);
    }
    if (is(kRunAtAcPowerOff) || is(kRunAfterWakeup)) {
        return TestBattery(power);
    }
    return LaunchCheckResult::kText;
}

}  // namespace tolvenar
