// Calls between the program and the host: those of the platform, and those back into the program's
// own procedures.
#pragma once

#include "simulator/guest/guest.h"

namespace sim::guest {

// Before anything else: the image, whose procedures `run` runs.
void BeginCalls(const Image& image, RunCode* run);

// Calls the program on this thread's stack.
Word CallProgram(Word function, const Word (&arguments)[4]);

// What the program gets for an imported name.
Word FindPlatformFunction(const char* dll, const char* name);

}  // namespace sim::guest
