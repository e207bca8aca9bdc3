#include "app/rules/launch_reason.h"

#include <cwchar>

namespace tolvenar {

bool IsScheduledReason(const wchar_t* reason) {
    return std::wcscmp(reason, kReasonTime) == 0 || std::wcscmp(reason, kReasonBattery) == 0;
}

bool IsBackupReason(const wchar_t* reason) {
    return IsScheduledReason(reason) || std::wcscmp(reason, kReasonExternalBackup) == 0;
}

bool IsRestoreReason(const wchar_t* reason) { return std::wcscmp(reason, kReasonRestoreLast) == 0; }

}  // namespace tolvenar
