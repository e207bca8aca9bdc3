#include "app/operations/requests.h"

#include "app/operations/window_messages.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

UINT MessageOf(OperationKind kind) {
    switch (kind) {
        case OperationKind::kBackup: return WM_OPCONFIRMED_BACKUP;
        case OperationKind::kPreview: return WM_PREVIEW_WANTED;
        default: return WM_OPCONFIRMED_RESTORE;
    }
}

// A message without a window would go to this thread's own queue.
bool Post(const Application& app, UINT message, bool go_on, LPARAM lparam) {
    return app.operation_window != nullptr &&
           ::PostMessageW(app.operation_window, message, go_on ? 1 : 0, lparam);
}

void AskPages(Application& app, OperationRequest& request) {
    if (request.kind == OperationKind::kBackup) {
        app.wanted_description = request.description;
        ::SendMessageW(app.main_dialog, WM_TAKE_DESCRIPTION, 0, 0);
        app.wanted_description = nullptr;
    } else if (request.button == IDC_RESTORE || request.button == IDC_PREVIEW) {
        request.state_number =
            static_cast<std::int32_t>(::SendMessageW(app.main_dialog, WM_SELECTED_STATE, 0, 0));
    }
}

}  // namespace

bool HasStorage(const Application& app) {
    return app.storageStatus == StorageStatus::kOpen && app.storage.journal != nullptr;
}

// Whether it is occupied comes first: the storage is the operation's then.
Refusal WhyRefused(const Application& app, Wish wish) {
    const bool is_occupied = app.gate.IsOccupied();
    return Judge(wish, {is_occupied, !is_occupied && HasStorage(app), !app.installationMissing});
}

bool PostRequest(Application& app, const OperationRequest& request) {
    const bool is_put = app.gate.Put(request);
    if (Post(app, MessageOf(request.kind), true, request.button)) {
        return true;
    }
    if (is_put) {
        app.gate.Withdraw();
    }
    return false;
}

void PostRefusal(const Application& app, const OperationRequest& request) {
    Post(app, MessageOf(request.kind), false, request.button);
}

bool PostRestoredAnswer(const Application& app, bool go_on) {
    return Post(app, WM_OPCONFIRMED_RESTORED, go_on, 0);
}

bool TakeRequest(Application& app, OperationRequest& request) {
    const Taking taking = app.gate.Take(request);
    if (taking == Taking::kDropped) {
        return false;
    }
    if (taking == Taking::kOnlyAMessage) {
        AskPages(app, request);
    }
    // The device will be another one, and the operation needs the memory.
    ::SendMessageW(app.main_dialog, WM_PREVIEW_ENDED, 0, 0);
    return true;
}

}  // namespace tolvenar
