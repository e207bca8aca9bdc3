#include "autobackup/launch_check.h"

#include <cstdint>

#include "app/settings/own_values.h"
#include "autobackup/next_occurrence.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/notification_table.h"

namespace tolvenar {
namespace {

// The battery setting is not asked: its notifications exist only while it is on.
LaunchCheckResult TestBattery(PowerStatus& power) {
    return CheckBatteryForBackup(power) == BatteryCheckResult::kLow ? LaunchCheckResult::kBattery
                                                                    : LaunchCheckResult::kQuit;
}

// How much too early the platform may start what is due at a time.
constexpr LONG kEarlySeconds = 60;
constexpr std::uint64_t kTicksPerMinute = 600000000;

// The local time that a start by the daily notification is for.
SYSTEMTIME TimeOfStart(DWORD wake_up_time) {
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    SYSTEMTIME soon = now;
    const bool is_early = AddSeconds(soon, kEarlySeconds) && LOWORD(wake_up_time) == soon.wHour &&
                          HIWORD(wake_up_time) == soon.wMinute;
    return is_early ? soon : now;
}

// A notification that comes in another hour was held up, by a device that was off for example.
bool IsStale(DWORD wake_up_time, const SYSTEMTIME& start) {
    return wake_up_time != kSettingAbsent && LOWORD(wake_up_time) != start.wHour;
}

// A time that came early comes again, and what is set anew within its minute may start at once.
bool IsSecondStart(const SYSTEMTIME& start) {
    FILETIME time{};
    ::SystemTimeToFileTime(&start, &time);
    const std::uint64_t ticks =
        static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    const auto minute = static_cast<std::uint32_t>(ticks / kTicksPerMinute);
    if (ReadSetting(own_value::kLastDailyStart) == minute) {
        return true;
    }
    WriteSetting(own_value::kLastDailyStart, minute);
    return false;
}

LaunchCheckResult CheckDailyLaunch(PowerStatus& power) {
    // First, so that tomorrow's is set whatever happens next.
    RescheduleTimeNotification(kEarlySeconds);
    const DWORD wake_up_time = ReadSetting(setting::kWakeUpTime);
    const SYSTEMTIME start = TimeOfStart(wake_up_time);
    if (IsStale(wake_up_time, start) || IsSecondStart(start)) {
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
