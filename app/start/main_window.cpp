#include "app/start/main_window.h"

#include "app/operations/hidden_window.h"
#include "app/operations/window_messages.h"
#include "autobackup/agent_control.h"

namespace tolvenar {
namespace {

LRESULT OnClose(Application& app, HWND window) {
    // The lists belong to the operation until it ends; whoever asked asks again.
    if (app.gate.IsOccupied()) {
        return 0;
    }
    RefreshAutoBackup();
    ::SendMessageW(app.main_dialog, WM_APPLY_NOW, 0, 0);
    ::PostMessageW(app.operation_window, WM_CLOSE, 0, 0);
    ReadAllSettings(SlotsOf(app.settings), app.installationMissing);
    StartAgent();
    CloseStorage(app.storage);
    return ::DefWindowProcW(window, WM_CLOSE, 0, 0);
}

LRESULT OnDestroy(Application& app) {
    app.main_window = nullptr;
    app.is_ending = true;
    ::PostQuitMessage(0);
    return 0;
}

LRESULT OnMessage(Application& app, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CLOSE: return OnClose(app, window);
        case WM_DESTROY: return OnDestroy(app);
        default: return ::DefWindowProcW(window, message, wparam, lparam);
    }
}

}  // namespace

bool RegisterMainWindowClass(HINSTANCE instance) {
    return RegisterHiddenClass(instance, kMainWindowClass, HiddenProcedure<OnMessage>);
}

bool CreateMainWindow(Application& app) {
    app.main_window = CreateHiddenWindow(app, kMainWindowClass, kProgramName);
    return app.main_window != nullptr;
}

}  // namespace tolvenar
