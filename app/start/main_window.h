// The hidden main window: it receives WM_CLOSE and owns shutdown.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Registers the window class. False when the platform refuses.
bool RegisterMainWindowClass(HINSTANCE instance);
// Creates the window and keeps it in `app`. False when it cannot be created.
bool CreateMainWindow(Application& app);

}  // namespace tolvenar
