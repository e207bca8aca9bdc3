// Operations that a launch asks for and that run without the main dialog.
#pragma once

#include <optional>

#include "app/operations/application.h"

namespace tolvenar {

// Runs what `launchReason` asks for and gives the program's exit code: 0 after the operation,
// whatever it reported, 1 when the storage could not be opened or loaded. Nothing when the program
// is to start interactively: for any other reason, and for a backup while no storage is chosen.
std::optional<int> RunUnattended(Application& app);

}  // namespace tolvenar
