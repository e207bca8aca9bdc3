// The blocks that were allocated in a certain stretch of a test and not freed since.
#pragma once

#include <cstddef>

namespace tests {

// Blocks that are allocated while one lives are counted.
class MemoryCount {
public:
    MemoryCount();
    ~MemoryCount();
    MemoryCount(const MemoryCount&) = delete;
    MemoryCount& operator=(const MemoryCount&) = delete;

    static long Blocks();
    static long Bytes();
};

}  // namespace tests
