// What running the program has shown, a line each in "guest.log" of the device's folder.
#pragma once

#include "simulator/guest/guest.h"

namespace sim::guest {

// At the end of a thread: the deepest that its stack was, and the instructions of all threads so
// far.
void ReportThread(Word stack_bytes, std::uint64_t instructions);

}  // namespace sim::guest
