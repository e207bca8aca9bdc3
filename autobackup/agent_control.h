// The agent program and the notifications that start it.
#pragma once

namespace tolvenar {

// Starts the closing tool of the installation, which ends a running agent. False when the
// installation folder cannot be read or the tool not started.
bool CloseAgent();

// Starts the agent; a failure is of no consequence.
void StartAgent();

// Clears the notifications and registers them from the settings.
bool RefreshAutoBackup();

}  // namespace tolvenar
