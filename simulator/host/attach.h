// For tests that run inside one process with the program's code: the coredll.dll of this process
// holds a copy of the simulator of its own, and is moved to a device through its control exports.
#pragma once

#include <string>

namespace sim::host {

// Makes this process, its coredll.dll included, run on the device in `folder` (empty: on none).
// Handles still open in coredll.dll are closed. Throws std::runtime_error when there is no
// coredll.dll.
void AttachProcess(const std::wstring& folder);

// How many of the device's handles coredll.dll has given out and not closed yet.
int OpenHandlesOfCoredll();

// How many entries of the device's state coredll.dll has looked at or passed by in this process.
unsigned long StepsOfCoredll();

// A name that no other process, not even an ended one, and no other call has.
std::wstring UniqueName();

}  // namespace sim::host
