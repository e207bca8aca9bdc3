// operator new and delete of the whole program. Apart from the heap itself, which a program with
// operators of its own may use too.
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
