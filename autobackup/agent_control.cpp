#include "autobackup/agent_control.h"

#include "app/settings.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/notification_table.h"
#include "platform/unique_resource.h"

namespace tolvenar {
namespace {

constexpr wchar_t kClosingTool[] = L"CloseOther.exe";
constexpr int kPathUnits = 260;
// Half of what the buffer holds, and so paths of more than 128 characters count as absent; on purpose.
constexpr DWORD kInstallFolderBytes = 259;

bool ReadInstallFolder(wchar_t (&folder)[kPathUnits]) {
    UniqueHkey key;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, 0, key.Put()) != ERROR_SUCCESS) {
        return false;
    }
    DWORD bytes = kInstallFolderBytes;
    DWORD type = 0;
    return ::RegQueryValueExW(key.get(), L"InstDir", nullptr, &type,
                              reinterpret_cast<BYTE*>(folder), &bytes) == ERROR_SUCCESS;
}

bool StartProgram(const wchar_t* program) {
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(program, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr,
                          &process)) {
        return false;
    }
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return true;
}

struct ScheduleValue {
    const wchar_t* name;
    DWORD SavedSchedule::*member;
};
constexpr ScheduleValue kScheduleValues[] = {
    {kSettingOnTime, &SavedSchedule::on_time},
    {kSettingOnBattery, &SavedSchedule::on_battery},
    {kSettingWakeUpTime, &SavedSchedule::wake_up_time},
};

}  // namespace

SavedSchedule::SavedSchedule()
    : on_time(kAbsentDword), on_battery(kAbsentDword), wake_up_time(kAbsentDword) {}

bool CloseAgent() {
    wchar_t path[kPathUnits] = L"";
    if (!ReadInstallFolder(path)) { return false; }
    const std::size_t length = ::wcslen(path);
    ::wsprintfW(path + length, L"\\%s", kClosingTool);
    return StartProgram(path);
}

void StartAgent() { StartProgram(kAgentProgram); }

bool SuspendAutoBackup(SavedSchedule& saved) {
    CloseAgent();
    for (const ScheduleValue& value : kScheduleValues) {
        saved.*value.member = ReadSettingDword(value.name);
        WriteSettingDword(value.name, 0);
    }
    return ClearAutoBackupNotifications();
}

bool ResumeAutoBackup(const SavedSchedule& saved) {
    for (const ScheduleValue& value : kScheduleValues) {
        const DWORD before = saved.*value.member;
        WriteSettingDword(value.name, before == kAbsentDword ? 0 : before);
    }
    return RegisterAutoBackupNotifications();
}

bool RefreshAutoBackup() {
    ClearAutoBackupNotifications();
    return RegisterAutoBackupNotifications();
}

}  // namespace tolvenar
