// operator new and delete of the whole program. Separate from heap.cpp so that a test program can
// bring its own operators.
#include <new>

#include "platform/heap.h"

using tolvenar::HeapAllocate;
using tolvenar::HeapRelease;
using tolvenar::kHeapZeroFill;

void* operator new(std::size_t size) { return HeapAllocate(kHeapZeroFill, size); }
void* operator new[](std::size_t size) { return HeapAllocate(kHeapZeroFill, size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return HeapAllocate(kHeapZeroFill, size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return HeapAllocate(kHeapZeroFill, size);
}
void operator delete(void* block) noexcept { HeapRelease(block); }
void operator delete[](void* block) noexcept { HeapRelease(block); }
void operator delete(void* block, std::size_t) noexcept { HeapRelease(block); }
void operator delete[](void* block, std::size_t) noexcept { HeapRelease(block); }
