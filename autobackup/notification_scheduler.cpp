#include "autobackup/notification_scheduler.h"

#include "app/settings/settings.h"
#include "autobackup/next_occurrence.h"
#include "autobackup/notification_calls.h"
#include "autobackup/notification_reader.h"
#include "autobackup/notification_table.h"

namespace tolvenar {
namespace {

bool SameText(const wchar_t* a, const wchar_t* b) {
    return a != nullptr && b != nullptr && ::wcscmp(a, b) == 0;
}

CE_NOTIFICATION_TRIGGER MakeTrigger(const NotificationRow& row) {
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = row.trigger_type;
    trigger.dwEvent = row.event;
    trigger.lpszApplication = const_cast<wchar_t*>(kAgentProgram);
    trigger.lpszArguments = const_cast<wchar_t*>(row.arguments);
    return trigger;
}

// Sets the trigger's start to the next occurrence of an encoded time of day.
bool SetStart(CE_NOTIFICATION_TRIGGER& trigger, DWORD wake_up_time, LONG passed_seconds = 0) {
    return NextOccurrence(LOWORD(wake_up_time), HIWORD(wake_up_time), &trigger.stStartTime,
                          passed_seconds);
}

bool IsOurs(const CE_NOTIFICATION_TRIGGER& trigger) {
    for (const NotificationRow& row : kAutoBackupNotificationTable) {
        if (trigger.dwType == row.trigger_type && SameText(trigger.lpszArguments, row.arguments)) {
            return true;
        }
    }
    return false;
}

bool IsDailyNotification(const CE_NOTIFICATION_TRIGGER& trigger) {
    return SameText(trigger.lpszApplication, kAgentProgram) && trigger.dwType == CNT_TIME &&
           SameText(trigger.lpszArguments, kRunAtTime);
}

bool IsAsked(const NotificationRow& row, DWORD on_time, DWORD on_battery) {
    return (row.on_time_mask & on_time) != 0 || (row.on_battery_mask & on_battery) != 0;
}

// Never in place: the platform takes a time notification away around the start of its program, and
// with the handle that has just fired the next start would go. The old one goes last, so that there
// is one at any moment; it may be gone already.
bool SetAnew(HANDLE old, CE_NOTIFICATION_TRIGGER& trigger, CE_USER_NOTIFICATION* user) {
    if (SetNotification(nullptr, &trigger, user) == nullptr) {
        return false;
    }
    if (old != nullptr) {
        ::CeClearUserNotification(old);
    }
    return true;
}

// The stored notification's own time of day is kept, not the setting's.
bool MoveOn(HANDLE notification, NotificationReader& reader, LONG passed_seconds) {
    CE_NOTIFICATION_INFO_HEADER* record = reader.Read(notification);
    if (record == nullptr) {
        return false;
    }
    SYSTEMTIME& start = record->pcent->stStartTime;
    if (!NextOccurrence(start.wHour, start.wMinute, &start, passed_seconds)) {
        return false;
    }
    return SetAnew(notification, *record->pcent, record->pceun);
}

bool MakeDailyNotification(LONG passed_seconds) {
    const DWORD wake_up_time = ReadSetting(setting::kWakeUpTime);
    if (ReadSetting(setting::kOnTime) == kSettingAbsent || wake_up_time == kSettingAbsent) {
        return false;
    }
    constexpr NotificationRow kDaily = {CNT_TIME, NOTIFICATION_EVENT_NONE, kRunAtTime, 0, 0};
    CE_NOTIFICATION_TRIGGER trigger = MakeTrigger(kDaily);
    if (!SetStart(trigger, wake_up_time & kSettingMask, passed_seconds)) {
        return false;
    }
    return SetNotification(nullptr, &trigger, nullptr) != nullptr;
}

}  // namespace

HANDLE FindNotification(const CE_NOTIFICATION_TRIGGER& trigger) {
    const NotificationHandles handles;
    DWORD largest = 0;
    for (DWORD i = 0; i < handles.count(); ++i) {
        const DWORD size = NotificationReader::SizeOf(handles[i]);
        if (size > largest) {
            largest = size;
        }
    }
    NotificationReader reader;
    if (largest == 0 || !reader.Reserve(largest)) {
        return nullptr;
    }
    for (DWORD i = 0; i < handles.count(); ++i) {
        const CE_NOTIFICATION_INFO_HEADER* record = reader.Read(handles[i]);
        if (record == nullptr) {
            continue;
        }
        const CE_NOTIFICATION_TRIGGER& found = *record->pcent;
        if (found.dwType == trigger.dwType && found.dwEvent == trigger.dwEvent &&
            SameText(found.lpszApplication, trigger.lpszApplication) &&
            SameText(found.lpszArguments, trigger.lpszArguments)) {
            return handles[i];
        }
    }
    return nullptr;
}

bool ClearAutoBackupNotifications() {
    const NotificationHandles handles;
    NotificationReader reader;
    bool all_removed = true;
    for (DWORD i = 0; i < handles.count(); ++i) {
        const CE_NOTIFICATION_INFO_HEADER* record = reader.Read(handles[i]);
        if (record == nullptr && reader.out_of_memory()) {
            return false;
        }
        if (record == nullptr || !IsOurs(*record->pcent)) {
            continue;
        }
        all_removed = ::CeClearUserNotification(handles[i]) && all_removed;
    }
    return all_removed;
}

bool RegisterAutoBackupNotifications() {
    const DWORD on_time = ReadSetting(setting::kOnTime) & kSettingMask;
    const DWORD on_battery = ReadSetting(setting::kOnBattery) & kSettingMask;
    const DWORD wake_up_time = ReadSetting(setting::kWakeUpTime) & kSettingMask;
    if (on_time == 0 && on_battery == 0) {
        return true;
    }
    bool all_set = true;
    for (const NotificationRow& row : kAutoBackupNotificationTable) {
        // Only bit 0 counts here: a setting of 2 is on and registers nothing.
        if (!IsAsked(row, on_time, on_battery)) {
            continue;
        }
        CE_NOTIFICATION_TRIGGER trigger = MakeTrigger(row);
        if (row.trigger_type == CNT_TIME && !SetStart(trigger, wake_up_time)) {
            continue;
        }
        const HANDLE present = FindNotification(trigger);
        const bool set = row.trigger_type == CNT_TIME
                             ? SetAnew(present, trigger, nullptr)
                             : SetNotification(present, &trigger, nullptr) != nullptr;
        all_set = set && all_set;
    }
    return all_set;
}

bool RescheduleTimeNotification(LONG passed_seconds) {
    const NotificationHandles handles;
    // A device without any notification gets none here (docs/oddities.md, 27).
    if (handles.count() == 0) {
        return false;
    }
    NotificationReader reader;
    for (DWORD i = 0; i < handles.count(); ++i) {
        const CE_NOTIFICATION_INFO_HEADER* record = reader.Read(handles[i]);
        if (record == nullptr && reader.out_of_memory()) {
            return false;
        }
        if (record != nullptr && IsDailyNotification(*record->pcent)) {
            return MoveOn(handles[i], reader, passed_seconds);
        }
    }
    return MakeDailyNotification(passed_seconds);
}

}  // namespace tolvenar
