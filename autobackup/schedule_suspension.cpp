#include "autobackup/schedule_suspension.h"

#include "app/settings/own_values.h"
#include "autobackup/agent_control.h"
#include "autobackup/notification_scheduler.h"
#include "platform/processes.h"

namespace tolvenar {
namespace {

constexpr wchar_t kScheduleMutex[] = L"TolvenarScheduleMutex";

struct ScheduleValue {
    const char16_t* name;
    const char16_t* copy;
    std::uint32_t SavedSchedule::*member;
};
constexpr ScheduleValue kScheduleValues[] = {
    {setting::kOnTime, own_value::kSuspendedOnTime, &SavedSchedule::on_time},
    {setting::kOnBattery, own_value::kSuspendedOnBattery, &SavedSchedule::on_battery},
    {setting::kWakeUpTime, own_value::kSuspendedWakeUpTime, &SavedSchedule::wake_up_time},
};

// On the medium before the first zero: a process that ends between the two has lost nothing.
void KeepCopies(const SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        WriteSetting(value.copy, saved.*value.member);
    }
    FlushSettings();
}

void DropCopies() {
    for (const ScheduleValue& value : kScheduleValues) {
        DeleteOwnValue(value.copy);
    }
}

bool PutBack(const SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        const std::uint32_t before = saved.*value.member;
        WriteSetting(value.name, before == kSettingAbsent ? 0 : before);
    }
    return RegisterAutoBackupNotifications();
}

// False when a copy is missing: a process that ended while it wrote them had taken nothing away,
// and one that ended while it dropped them had put everything back.
bool ReadCopies(SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        if (!ValueExists(value.copy)) {
            return false;
        }
        saved.*value.member = ReadSetting(value.copy);
    }
    return true;
}

bool HasCopy() {
    for (const ScheduleValue& value : kScheduleValues) {
        if (ValueExists(value.copy)) {
            return true;
        }
    }
    return false;
}

// Whether every setting is what the taking away leaves: zero, or untouched as yet. One that a
// restore deleted counts as zero.
bool IsAsLeft(const SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        const std::uint32_t setting = ReadSetting(value.name);
        if ((setting & kSettingMask) != 0 && setting != saved.*value.member) {
            return false;
        }
    }
    return true;
}

}  // namespace

SavedSchedule::SavedSchedule()
    : on_time(kSettingAbsent), on_battery(kSettingAbsent), wake_up_time(kSettingAbsent) {}

bool SuspendAutoBackup(SavedSchedule& saved) {
    CloseAgent();
    saved.mutex = NamedMutex(kScheduleMutex);
    for (const ScheduleValue& value : kScheduleValues) {
        saved.*value.member = ReadSetting(value.name);
    }
    KeepCopies(saved);
    for (const ScheduleValue& value : kScheduleValues) {
        WriteSetting(value.name, 0);
    }
    return ClearAutoBackupNotifications();
}

bool ResumeAutoBackup(SavedSchedule& saved) {
    const bool registered = PutBack(saved);
    if (saved.mutex) {
        DropCopies();
        saved.mutex.Reset();
    }
    return registered;
}

bool ScheduleIsSuspended() {
    const UniqueHandle mutex = NamedMutex(kScheduleMutex);
    return ::GetLastError() == ERROR_ALREADY_EXISTS;
}

ScheduleRecovery RecoverSchedule() {
    if (!HasCopy() || ScheduleIsSuspended()) {
        return ScheduleRecovery::kNothing;
    }
    SavedSchedule saved;
    const bool is_whole = ReadCopies(saved);
    const bool is_as_left = IsAsLeft(saved);
    if (is_whole && is_as_left) {
        PutBack(saved);
    }
    DropCopies();
    if (!is_whole) {
        return ScheduleRecovery::kNothing;
    }
    return is_as_left ? ScheduleRecovery::kPutBack : ScheduleRecovery::kDropped;
}

}  // namespace tolvenar
