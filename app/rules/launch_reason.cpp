#include "app/rules/launch_reason.h"

#include <cwchar>
#include <initializer_list>

namespace tolvenar {

bool IsBackupReason(const wchar_t* reason) {
    for (const wchar_t* text : {kReasonTime, kReasonBattery, kReasonExternalBackup}) {
        if (std::wcscmp(reason, text) == 0) {
            return true;
        }
    }
    return false;
}

bool IsRestoreReason(const wchar_t* reason) { return std::wcscmp(reason, kReasonRestoreLast) == 0; }

}  // namespace tolvenar
