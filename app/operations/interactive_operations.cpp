#include "app/operations/interactive_operations.h"

#include "app/operations/confirmation.h"
#include "app/operations/messages.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/requests.h"
#include "app/operations/restore_prompts.h"
#include "app/operations/window_messages.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/opened/journal.h"
#include "storage/operations/restore_engine.h"

namespace tolvenar {
namespace {

void BackUp(Application& app, const char16_t* description) {
    const std::uint32_t number = NextStateNumber(app.storage.journal.get());
    OperationEnd end;
    const bool succeeded = BackupDriver(app, number, Wide(description), false, end);
    // It says what the backup wrote; the page's buttons must not take it for what they prepared.
    app.storage.difference.reset();
    app.gate.ReleaseLists();
    ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 0, 0);
    ::SendMessageW(app.main_dialog, WM_RESTORE_ENDED, 0, 0);
    if (succeeded) {
        ::SendMessageW(app.main_dialog, WM_BACKUP_DONE, 0, 0);
        ::PostMessageW(app.main_dialog, WM_PAGE_SELECT, kRestorePage, 0);
    }
}

RestoreResult RestoreSelected(Application& app, std::int32_t state_number,
                              RestorePrompts& prompts) {
    if (state_number == kNoState) {
        return {ResultCode::kNoSpace};
    }
    return RunStateRestore(app, static_cast<std::uint32_t>(state_number), &prompts);
}

RestoreResult Restore(Application& app, const OperationRequest& request) {
    RestorePrompts prompts(app);
    switch (request.button) {
        case IDC_RESTORE: return RestoreSelected(app, request.state_number, prompts);
        case IDC_APPLY_CHANGES: return RunDifferenceRestore(app, true, &prompts);
        case IDC_TAKE_BACK_CHANGES: return RunDifferenceRestore(app, false, &prompts);
        default: return {ResultCode::kNotStarted};
    }
}

// After these the list is half a comparison, or one with a journal that is gone.
bool LeavesNoDifferences(ResultCode result) {
    return result == ResultCode::kNoDifferenceList || result == ResultCode::kJournalUnreadable;
}

// The text that the page shows of a result without a box (docs/oddities.md, 23); 0 for the others.
LPARAM NoticeOf(const RestoreResult& result) {
    if (result.took_older_list) {
        return 0;
    }
    switch (result.code) {
        case ResultCode::kNoDifferenceList: return IDS_RESTORE_NOT_COMPARED;
        case ResultCode::kNotStarted: return IDS_RESTORE_NOT_STARTED;
        default: return 0;
    }
}

ResultCode FindPreview(Application& app, std::int32_t state_number) {
    if (state_number == kNoState) {
        return ResultCode::kNoSpace;
    }
    return RunRestorePreview(app, static_cast<std::uint32_t>(state_number));
}

// Of what was found the page tells.
void ReportPreview(Application& app, ResultCode result) {
    if (result == ResultCode::kNoDifferenceList) {
        ShowOwnMessage(app.main_dialog, IDS_PREVIEW_FAILED, MB_ICONWARNING);
    } else if (result != ResultCode::kSuccess) {
        ReportInteractiveRestore(app.main_dialog, {result});
    }
}

}  // namespace

void RunInteractiveBackup(Application& app) {
    OperationRequest request;
    request.kind = OperationKind::kBackup;
    if (!TakeRequest(app, request)) {
        return;
    }
    // Without a chosen storage it ends silently; the page does not let it come so far.
    char16_t path[kSettingPathUnits];
    if (ReadStoragePath(path)) {
        BackUp(app, request.description);
    }
    app.gate.End();
}

void RunInteractiveRestore(Application& app, int button) {
    OperationRequest request;
    request.kind = OperationKind::kRestore;
    request.button = button;
    if (!TakeRequest(app, request)) {
        return;
    }
    app.popup.Show(app.main_dialog, kRestoreTitle, kRestoreSteps);
    const RestoreResult result = Restore(app, request);
    app.popup.CloseAndWait();
    if (LeavesNoDifferences(result.code)) {
        app.storage.difference.reset();
    }
    app.gate.ReleaseLists();
    ReportInteractiveRestore(app.main_dialog, result);
    ::SendMessageW(app.main_dialog, WM_RESTORE_ENDED, result.code == ResultCode::kFailed,
                   NoticeOf(result));
    ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 0, 0);
    if (result.code == ResultCode::kSuccess) {
        ConfirmThenEnd(app);
    }
    app.gate.End();
}

// The popup stays until the page has its tree; where there is no tree it goes here.
void PreviewRestore(Application& app) {
    OperationRequest request;
    request.kind = OperationKind::kPreview;
    request.button = IDC_PREVIEW;
    if (!TakeRequest(app, request)) {
        return;
    }
    app.popup.Show(app.main_dialog, ResourceText(app.instance, IDS_PREVIEW_TITLE).text(),
                   kPreviewSteps);
    ResultCode result = FindPreview(app, request.state_number);
    app.gate.ReleaseLists();
    if (result == ResultCode::kSuccess &&
        ::SendMessageW(app.main_dialog, WM_PREVIEW_ENDED, 1, 0) == 0) {
        result = ResultCode::kNoDifferenceList;
    }
    app.popup.CloseAndWait();
    if (result == ResultCode::kJournalUnreadable) {
        // No storage is open any more.
        ::SendMessageW(app.main_dialog, WM_RESTORE_ENDED, 0, 0);
        ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 0, 0);
    }
    ReportPreview(app, result);
    app.gate.End();
}

}  // namespace tolvenar
