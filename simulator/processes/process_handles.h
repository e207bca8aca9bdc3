// The host's calls on process handles and on named objects, for the exports, which see only Windows
// CE's headers. Each sets the host's last error as its platform call does.
#pragma once

#include "simulator/processes/processes.h"

namespace sim::processes {

void CloseStarted(const Started& started);
bool Terminate(void* process, unsigned exit_code);
bool ExitCode(void* process, unsigned long* exit_code);

// Named objects are the device's own; a null name makes an unnamed one. Null on failure; the last
// error is ERROR_ALREADY_EXISTS for a handle of an object that was there.
void* CreateNamedMutex(bool owned, const wchar_t* name);
void* CreateNamedEvent(bool manual, bool signalled, const wchar_t* name);

}  // namespace sim::processes
