// Small pieces of code between the host's calls, which clean up after themselves, and the
// program's, which do not.
#pragma once

#include "simulator/guest/guest.h"

namespace sim::guest {

// A host function of four arguments that calls `enter` with `function` and where its arguments
// stand; the same one for a function each time.
using Enter = Word __cdecl(Word function, const Word (*arguments)[4]);
const void* CallableByHost(Word function, Enter* enter);

// What a program on x86 calls for a host function: there its callers clean up.
Word CallableByX86(const void* function);

}  // namespace sim::guest
