// Lets the program's allocations fail natively: it allocates by `new (std::nothrow)` alone.
#pragma once

#include <cstddef>

namespace tolvenar {

// The `n`th such allocation from now on, counted from 1, and all after it fail; 0 ends that.
void FailAllocationsFrom(std::size_t n);
// Such allocations since the last call of FailAllocationsFrom.
std::size_t CountedAllocations();

}  // namespace tolvenar
