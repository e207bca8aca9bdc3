// Start-up: classifies the launch, arbitrates with a running copy, and runs an unattended operation
// or the interactive program.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Everything between the making and the destroying of the private heap. Returns the program's exit
// code: 0 after the message loop, after an unattended operation and for a launch that is dropped; 1
// when start-up fails or the launch is left to a copy that runs already. The log tells of `build`.
int RunProgram(Application& app, const wchar_t* command_line, const char16_t* build);

}  // namespace tolvenar
