// The program's one private heap. operator new and delete of the whole program go to it:
// zero-filled, and null when it is full (the program is built with -fcheck-new, so a null is seen
// by the caller).
#pragma once

#include <cstddef>

namespace tolvenar {

constexpr unsigned kHeapZeroFill = 0x40;

// Creates the heap, 5,000,000 bytes at first, or none where these are refused, and without a
// maximum. True when it exists.
bool CreatePrivateHeap();
// Gives all of it back at once; no block of it may be used afterwards.
void DestroyPrivateHeap();
// A block of `size` bytes, zero-filled when `flags` has kHeapZeroFill; null when there is no
// memory.
void* HeapAllocate(unsigned flags, std::size_t size);
// Frees a block; null is allowed and a failure is ignored.
void HeapRelease(void* block);
// The heap's platform handle, for the calls that allocate from a heap they are given.
void* PrivateHeapHandle();

}  // namespace tolvenar
