// The interactive program: windows, threads and the message loop.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Runs until the user closes the program; its exit code. Without `with_main_window` another copy is
// still there: the window classes are then not registered and only the dialog comes up.
int RunInteractive(Application& app, bool with_main_window);

}  // namespace tolvenar
