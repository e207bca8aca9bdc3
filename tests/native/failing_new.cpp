#include "tests/native/failing_new.h"

#include <cstdlib>
#include <new>

namespace tolvenar {
namespace {
std::size_t fail_from;
std::size_t fail_count;
std::size_t counted;
}  // namespace

void FailAllocationsFrom(std::size_t n, std::size_t count) {
    fail_from = n;
    fail_count = count;
    counted = 0;
}
std::size_t CountedAllocations() { return counted; }

static void* Allocate(std::size_t size) {
    ++counted;
    if (fail_from != 0 && counted >= fail_from && counted - fail_from < fail_count) {
        return nullptr;
    }
    return std::malloc(size);
}

}  // namespace tolvenar

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return tolvenar::Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return tolvenar::Allocate(size);
}
void* operator new(std::size_t size) {
    void* block = std::malloc(size);
    if (block == nullptr) {
        std::abort();
    }
    return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
