// How many blocks each heap of this process holds, for the gauge.
#pragma once

namespace sim {

// Adds to the blocks of `heap` and to the gauge; also for blocks that the simulator itself takes
// from a program's heap.
void CountBlocks(void* heap, long count);
// The heap is gone with all its blocks.
void ForgetHeap(void* heap);

}  // namespace sim
