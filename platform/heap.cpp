#include "platform/heap.h"

#include "platform/win32.h"

namespace tolvenar {
namespace {
constexpr DWORD kInitialHeapBytes = 5000000;
HANDLE private_heap;
}  // namespace

bool CreatePrivateHeap() {
    if (private_heap == nullptr) {
        private_heap = ::HeapCreate(0, kInitialHeapBytes, 0);
    }
    // What a heap has at first is taken at once, and a device may lack so much; it grows by itself.
    if (private_heap == nullptr) {
        private_heap = ::HeapCreate(0, 0, 0);
    }
    return private_heap != nullptr;
}

void DestroyPrivateHeap() {
    if (private_heap == nullptr) {
        return;
    }
    ::HeapDestroy(private_heap);
    private_heap = nullptr;
}

void* HeapAllocate(unsigned flags, std::size_t size) {
    // A C++ run time, where there is one, allocates before the program's entry point.
    if (!CreatePrivateHeap()) {
        return nullptr;
    }
    return ::HeapAlloc(private_heap, (flags & kHeapZeroFill) ? HEAP_ZERO_MEMORY : 0, size);
}

void HeapRelease(void* block) {
    if (block != nullptr) {
        ::HeapFree(private_heap, 0, block);
    }
}

void* PrivateHeapHandle() { return CreatePrivateHeap() ? private_heap : nullptr; }

}  // namespace tolvenar
