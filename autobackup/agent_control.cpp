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

}  // namespace

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

bool RefreshAutoBackup() {
    ClearAutoBackupNotifications();
    return RegisterAutoBackupNotifications();
}

}  // namespace tolvenar
