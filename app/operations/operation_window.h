// The operation thread and its hidden window, which marks a running copy for the others and
// receives the requests for operations.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Registers the window class. False when the platform refuses.
bool RegisterOperationWindowClass(HINSTANCE instance);
// Starts the thread; it creates the window and runs its loop until the window is closed. Empty when
// the thread cannot be started.
UniqueHandle StartOperationThread(Application& app);

}  // namespace tolvenar
