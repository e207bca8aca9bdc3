// The program's hidden windows, whose procedures find the application.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// A class of this program's hidden windows.
bool RegisterHiddenClass(HINSTANCE instance, const wchar_t* name, WNDPROC procedure);
// A hidden window of such a class, whose procedure finds `app` with ApplicationOf.
HWND CreateHiddenWindow(Application& app, const wchar_t* class_name, const wchar_t* title);
// The application of a hidden window; kept at its creation. Null before that.
Application* ApplicationOf(HWND window, UINT message, LPARAM lparam);

}  // namespace tolvenar
