#include "app/main_dialog.h"

#include "app/window_messages.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// A copy that came up beside one that would not close has no main window to shut it down.
void CloseMainWindow(Application& app) {
    if (app.main_window != nullptr) {
        ::PostMessageW(app.main_window, WM_CLOSE, 0, 0);
    } else {
        ::PostQuitMessage(0);
    }
}

INT_PTR OnCommand(Application& app, WORD command) {
    if (command != IDM_CLOSE && command != IDM_QUIT) {
        return FALSE;
    }
    if (app.operationBusy == 0) {
        CloseMainWindow(app);
    }
    return TRUE;
}

INT_PTR OnClose(Application& app, HWND dialog) {
    if (app.operationBusy != 0) {
        return TRUE;
    }
    CloseMainWindow(app);
    app.main_dialog = nullptr;
    ::DestroyWindow(dialog);
    return TRUE;
}

INT_PTR CALLBACK MainDialogProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongW(dialog, DWL_USER, lparam);
    }
    auto* app = reinterpret_cast<Application*>(::GetWindowLongW(dialog, DWL_USER));
    if (app == nullptr) {
        return FALSE;
    }
    switch (message) {
        case WM_INITDIALOG: return TRUE;
        case WM_COMMAND: return OnCommand(*app, LOWORD(wparam));
        case WM_CLOSE: return OnClose(*app, dialog);
        default: return FALSE;
    }
}

}  // namespace

bool CreateMainDialog(Application& app) {
    app.main_dialog = ::CreateDialogParamW(app.instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr,
                                           MainDialogProcedure, reinterpret_cast<LPARAM>(&app));
    if (app.main_dialog == nullptr) {
        return false;
    }
    ::ShowWindow(app.main_dialog, SW_SHOW);
    return true;
}

}  // namespace tolvenar
