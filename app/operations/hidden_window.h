// The program's hidden windows, which work for the application.
#pragma once

#include "app/operations/application.h"
#include "platform/window_object.h"

namespace tolvenar {

// The procedure of a hidden window: messages go to `on_message`, with the application.
template <LRESULT (*on_message)(Application&, HWND, UINT, WPARAM, LPARAM)>
LRESULT CALLBACK HiddenProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    // Once is enough: a later one is of another program.
    if (message == WM_CREATE && ObjectOf<Application>(window, GWL_USERDATA) == nullptr) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lparam);
        KeepObject(window, GWL_USERDATA, creation->lpCreateParams);
    }
    return WindowProcedure<GWL_USERDATA, Application, on_message>(window, message, wparam, lparam);
}

// A class of this program's hidden windows; `procedure`: a HiddenProcedure.
bool RegisterHiddenClass(HINSTANCE instance, const wchar_t* name, WNDPROC procedure);
// A hidden window of such a class.
HWND CreateHiddenWindow(Application& app, const wchar_t* class_name, const wchar_t* title);

}  // namespace tolvenar
