#include "app/operations/requests.h"

#include "app/operations/window_messages.h"

namespace tolvenar {

bool IsOccupied(const Application& app) {
    return app.requestPending != 0 || app.operationBusy != 0;
}

bool PostAnswer(Application& app, UINT message, bool go_on, LPARAM lparam) {
    // A message without a window would go to this thread's own queue.
    if (app.operation_window == nullptr) {
        return false;
    }
    const bool is_request = go_on && message != WM_OPCONFIRMED_RESTORED;
    if (is_request) {
        app.requestPending = 1;
    }
    if (::PostMessageW(app.operation_window, message, go_on ? 1 : 0, lparam)) {
        return true;
    }
    if (is_request) {
        app.requestPending = 0;
    }
    return false;
}

bool TakeRequest(Application& app) {
    if (app.operationBusy != 0) {
        app.requestPending = 0;  // dropped
        return false;
    }
    // In this order, so that no moment is left in which neither is set.
    app.lists_in_use = 1;
    app.operationBusy = 1;
    app.requestPending = 0;
    return true;
}

void ReleaseLists(Application& app) { app.lists_in_use = 0; }

void EndRequest(Application& app) {
    ReleaseLists(app);
    app.operationBusy = 0;
}

bool ListsAreFree(const Application& app) {
    return app.requestPending == 0 && app.lists_in_use == 0;
}

bool HasStorage(const Application& app) {
    return app.storageStatus == StorageStatus::kOpen && app.storage.journal != nullptr;
}

}  // namespace tolvenar
