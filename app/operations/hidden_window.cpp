#include "app/operations/hidden_window.h"

#include "res/resource.h"

namespace tolvenar {

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

}  // namespace tolvenar
