#include "app/operations/interactive_operations.h"

#include "app/operations/confirmation.h"
#include "app/operations/messages.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/requests.h"
#include "app/operations/window_messages.h"
#include "res/resource.h"
#include "storage/opened/journal.h"

namespace tolvenar {
namespace {

void BackUp(Application& app) {
    wchar_t description[kDescriptionUnits] = L"";
    ::SendMessageW(app.main_dialog, WM_TAKE_DESCRIPTION, 0, reinterpret_cast<LPARAM>(description));
    const std::uint32_t number = NextStateNumber(app.storage.journal.get());
    const bool succeeded = BackupDriver(app, number, description, false);
    // It says what the backup wrote; the page's buttons must not take it for what they prepared.
    app.storage.difference.reset();
    ReleaseLists(app);
    ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 0, 0);
    ::SendMessageW(app.main_dialog, WM_RESTORE_ENDED, 0, 0);
    if (succeeded) {
        ::SendMessageW(app.main_dialog, WM_BACKUP_DONE, 0, 0);
        ::PostMessageW(app.main_dialog, WM_PAGE_SELECT, kRestorePage, 0);
    }
}

ResultCode RestoreSelected(Application& app) {
    const LRESULT number = ::SendMessageW(app.main_dialog, WM_SELECTED_STATE, 0, 0);
    return number == kNoState ? ResultCode::kNoSpace
                              : RestoreRun(app, static_cast<std::uint32_t>(number));
}

ResultCode Restore(Application& app, int button) {
    switch (button) {
        case IDC_RESTORE: return RestoreSelected(app);
        case IDC_APPLY_CHANGES: return DifferencesRun(app, true);
        case IDC_TAKE_BACK_CHANGES: return DifferencesRun(app, false);
        default: return ResultCode::kNotStarted;
    }
}

// After these the list is half a comparison, or one with a journal that is gone.
bool LeavesNoDifferences(ResultCode result) {
    return result == ResultCode::kNoDifferenceList || result == ResultCode::kJournalUnreadable;
}

}  // namespace

void RunInteractiveBackup(Application& app) {
    if (!TakeRequest(app)) {
        return;
    }
    // Without a chosen storage it ends silently; the page does not let it come so far.
    char16_t path[kSettingPathUnits];
    if (ReadStoragePath(path)) {
        BackUp(app);
    }
    EndRequest(app);
}

void RunInteractiveRestore(Application& app, int button) {
    if (!TakeRequest(app)) {
        return;
    }
    app.popup.Show(app.main_dialog, kRestoreTitle, kOperationSteps);
    const ResultCode result = Restore(app, button);
    app.popup.CloseAndWait();
    if (LeavesNoDifferences(result)) {
        app.storage.difference.reset();
    }
    ReleaseLists(app);
    ReportInteractiveRestore(app.main_dialog, result);
    ::SendMessageW(app.main_dialog, WM_RESTORE_ENDED, result == ResultCode::kFailed, 0);
    ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 0, 0);
    if (result == ResultCode::kSuccess) {
        ConfirmThenRun(app, Confirmation::kRestored, 0);
    }
    EndRequest(app);
}

}  // namespace tolvenar
