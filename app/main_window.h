// The hidden main window: it receives WM_CLOSE and owns shutdown.
#pragma once

#include "app/application.h"

namespace tolvenar {

// Registers the window class. False when the platform refuses.
bool RegisterMainWindowClass(HINSTANCE instance);
// Creates the window and keeps it in `app`. False when it cannot be created.
bool CreateMainWindow(Application& app);

// A class of this program's hidden windows.
bool RegisterHiddenClass(HINSTANCE instance, const wchar_t* name, WNDPROC procedure);
// A hidden window of such a class, whose procedure finds `app` with ApplicationOf.
HWND CreateHiddenWindow(Application& app, const wchar_t* class_name, const wchar_t* title);
// The application of a hidden window; kept at its creation. Null before that.
Application* ApplicationOf(HWND window, UINT message, LPARAM lparam);

}  // namespace tolvenar
