#include "app/main_window.h"

#include "app/requests.h"
#include "app/window_messages.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

LRESULT OnClose(Application& app, HWND window) {
    // The lists belong to the operation until it ends; whoever asked asks again.
    if (IsOccupied(app)) {
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

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    Application* app = ApplicationOf(window, message, lparam);
    if (app == nullptr) {
        return ::DefWindowProcW(window, message, wparam, lparam);
    }
    switch (message) {
        case WM_CLOSE: return OnClose(*app, window);
        case WM_DESTROY: return OnDestroy(*app);
        default: return ::DefWindowProcW(window, message, wparam, lparam);
    }
}

}  // namespace

bool RegisterHiddenClass(HINSTANCE instance, const wchar_t* name, WNDPROC procedure) {
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = procedure;
    window_class.hInstance = instance;
    window_class.hIcon = ::LoadIconW(instance, MAKEINTRESOURCEW(IDI_TOLVENAR));
    window_class.hbrBackground = static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH));
    window_class.lpszClassName = name;
    return ::RegisterClassW(&window_class) != 0;
}

HWND CreateHiddenWindow(Application& app, const wchar_t* class_name, const wchar_t* title) {
    return ::CreateWindowExW(0, class_name, title, WS_BORDER, CW_USEDEFAULT, CW_USEDEFAULT,
                             CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, app.instance, &app);
}

Application* ApplicationOf(HWND window, UINT message, LPARAM lparam) {
    if (message == WM_CREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lparam);
        ::SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG>(creation->lpCreateParams));
    }
    return reinterpret_cast<Application*>(::GetWindowLongW(window, GWL_USERDATA));
}

bool RegisterMainWindowClass(HINSTANCE instance) {
    return RegisterHiddenClass(instance, kMainWindowClass, MainWindowProcedure);
}

bool CreateMainWindow(Application& app) {
    app.main_window = CreateHiddenWindow(app, kMainWindowClass, kProgramName);
    return app.main_window != nullptr;
}

}  // namespace tolvenar
