// What each heap of this process holds, for the gauges; also of blocks that the simulator itself
// takes from a program's heap.
#pragma once

#include <cstddef>

namespace sim {

// A block of so many bytes was taken from `heap`, or goes back to it.
void NoteTaken(void* heap, std::size_t bytes);
void NoteFreed(void* heap, std::size_t bytes);
// The heap is gone with all its blocks.
void ForgetHeap(void* heap);

}  // namespace sim
