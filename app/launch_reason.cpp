#include "app/launch_reason.h"

#include "platform/win32.h"

#include <initializer_list>

namespace tolvenar {

bool IsBackupReason(const wchar_t* reason) {
    for (const wchar_t* text : {kReasonTime, kReasonBattery, kReasonExternalBackup}) {
        if (::wcscmp(reason, text) == 0) {
            return true;
        }
    }
    return false;
}

bool IsRestoreReason(const wchar_t* reason) { return ::wcscmp(reason, kReasonRestoreLast) == 0; }

}  // namespace tolvenar
