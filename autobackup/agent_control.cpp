#include "autobackup/agent_control.h"

#include "app/settings/settings.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/notification_table.h"
#include "platform/processes.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

constexpr wchar_t kClosingTool[] = L"CloseOther.exe";
constexpr std::size_t kPathUnits = 260;
// Half of what the buffer holds: a longer path counts as absent (docs/oddities.md, 26).
constexpr std::size_t kInstallFolderBytes = 259;

struct ScheduleValue {
    const char16_t* name;
    std::uint32_t SavedSchedule::*member;
};
constexpr ScheduleValue kScheduleValues[] = {
    {setting::kOnTime, &SavedSchedule::on_time},
    {setting::kOnBattery, &SavedSchedule::on_battery},
    {setting::kWakeUpTime, &SavedSchedule::wake_up_time},
};

}  // namespace

SavedSchedule::SavedSchedule()
    : on_time(kSettingAbsent), on_battery(kSettingAbsent), wake_up_time(kSettingAbsent) {}

bool CloseAgent() {
    char16_t path[kPathUnits];
    if (!ReadText(HKEY_CURRENT_USER, kSettingsKey, setting::kInstDir, path, kPathUnits,
                  kInstallFolderBytes)) {
        return false;
    }
    wchar_t* end = Wide(path) + ::wcslen(Wide(path));
    ::wsprintfW(end, L"\\%s", kClosingTool);
    return StartProgram(Wide(path));
}

void StartAgent() { StartProgram(kAgentProgram); }

bool SuspendAutoBackup(SavedSchedule& saved) {
    CloseAgent();
    for (const ScheduleValue& value : kScheduleValues) {
        saved.*value.member = ReadSetting(value.name);
        WriteSetting(value.name, 0);
    }
    return ClearAutoBackupNotifications();
}

bool ResumeAutoBackup(const SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        const std::uint32_t before = saved.*value.member;
        WriteSetting(value.name, before == kSettingAbsent ? 0 : before);
    }
    return RegisterAutoBackupNotifications();
}

bool RefreshAutoBackup() {
    ClearAutoBackupNotifications();
    return RegisterAutoBackupNotifications();
}

}  // namespace tolvenar
