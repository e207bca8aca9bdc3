// Lets the program's allocations fail natively: it allocates by `new (std::nothrow)` alone.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

// The `n`th such allocation from now on, counted from 1, fails, and with it `count` in a row or all
// after it; 0 ends that.
void FailAllocationsFrom(std::size_t n, std::size_t count = SIZE_MAX);
// Such allocations since the last call of FailAllocationsFrom.
std::size_t CountedAllocations();

}  // namespace tolvenar
