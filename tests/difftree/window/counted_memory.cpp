#include "tests/difftree/window/counted_memory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

enum class State : std::uint32_t {
    kPlain = 0x706C6169,
    kCounted = 0x636F756E,
    kFreed = 0x66726565
};

// Before each block; the blocks stay aligned to it.
struct alignas(std::max_align_t) Head {
    State state;
    std::size_t size;
};

bool is_counting = false;
long blocks = 0;
long bytes = 0;

void* Allocate(std::size_t size) {
    auto* const head = static_cast<Head*>(std::calloc(1, sizeof(Head) + size));
    if (head == nullptr) {
        return nullptr;
    }
    *head = {is_counting ? State::kCounted : State::kPlain, size};
    if (is_counting) {
        ++blocks;
        bytes += static_cast<long>(size);
    }
    return head + 1;
}

// A block that is freed twice ends the test.
void Free(void* block) {
    if (block == nullptr) {
        return;
    }
    Head* const head = static_cast<Head*>(block) - 1;
    if (head->state == State::kCounted) {
        --blocks;
        bytes -= static_cast<long>(head->size);
    } else if (head->state != State::kPlain) {
        std::abort();
    }
    head->state = State::kFreed;
    std::free(head);
}

void* AllocateOrThrow(std::size_t size) {
    if (void* block = Allocate(size)) {
        return block;
    }
    throw std::bad_alloc();
}

}  // namespace

namespace tests {

MemoryCount::MemoryCount() { is_counting = true; }
MemoryCount::~MemoryCount() { is_counting = false; }
long MemoryCount::Blocks() { return blocks; }
long MemoryCount::Bytes() { return bytes; }

}  // namespace tests

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
