#include "app/operations/operation_window.h"

#include "app/operations/hidden_window.h"
#include "app/operations/interactive_operations.h"
#include "app/operations/window_messages.h"
#include "platform/processes.h"

namespace tolvenar {
namespace {

// The program ends after a restore, so that the user boots the device. Without an installation it
// does so whatever the answer: the schedule that was restored is not this program's.
LRESULT OnRestoredAnswer(const Application& app, WPARAM go_on) {
    if (app.main_window != nullptr && (go_on != 0 || app.installationMissing)) {
        ::PostMessageW(app.main_window, WM_CLOSE, 0, 0);
    }
    return 0;
}

LRESULT OnBackupAnswer(Application& app, WPARAM go_on) {
    if (go_on != 0) {
        RunInteractiveBackup(app);
    }
    return 0;
}

LRESULT OnRestoreAnswer(Application& app, WPARAM go_on, LPARAM button) {
    if (go_on != 0) {
        RunInteractiveRestore(app, static_cast<int>(button));
    }
    return 0;
}

LRESULT OnPreviewWanted(Application& app, WPARAM go_on) {
    if (go_on != 0) {
        PreviewRestore(app);
    }
    return 0;
}

LRESULT OnDestroy() {
    ::PostQuitMessage(0);
    return 0;
}

LRESULT OnMessage(Application& app, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_OPCONFIRMED_RESTORED: return OnRestoredAnswer(app, wparam);
        case WM_OPCONFIRMED_BACKUP: return OnBackupAnswer(app, wparam);
        case WM_OPCONFIRMED_RESTORE: return OnRestoreAnswer(app, wparam, lparam);
        case WM_PREVIEW_WANTED: return OnPreviewWanted(app, wparam);
        case WM_QUERYBUSY: return app.gate.IsBusy() ? 1 : 0;
        case WM_DESTROY: return OnDestroy();
        default: return ::DefWindowProcW(window, message, wparam, lparam);
    }
}

// Keys are not translated here: no control of this thread takes text.
DWORD WINAPI RunOperationThread(void* parameter) {
    auto& app = *static_cast<Application*>(parameter);
    app.operation_window = CreateHiddenWindow(app, kOperationWindowClass, kOperationWindowTitle);
    if (app.operation_window == nullptr) {
        return 0;
    }
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!::IsDialogMessageW(app.main_dialog, &message)) {
            ::DispatchMessageW(&message);
        }
    }
    return 0;
}

}  // namespace

bool RegisterOperationWindowClass(HINSTANCE instance) {
    return RegisterHiddenClass(instance, kOperationWindowClass, HiddenProcedure<OnMessage>);
}

UniqueHandle StartOperationThread(Application& app) {
    return StartThread(RunOperationThread, &app);
}

}  // namespace tolvenar
