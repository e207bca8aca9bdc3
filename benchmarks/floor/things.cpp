#include "benchmarks/floor/floor.h"
#include "platform/heap.h"

namespace floor_program {
namespace {

constexpr std::size_t kSlabBytes = 0x10000;

}  // namespace

void* Things::Room(std::size_t bytes) {
    const std::size_t size = (bytes + 7) & ~std::size_t{7};
    if (slab_left_ < size) {
        slab_ = static_cast<char*>(tolvenar::HeapAllocate(0, kSlabBytes));
        slab_left_ = slab_ != nullptr ? kSlabBytes : 0;
    }
    if (slab_left_ < size) {
        ::ExitThread(1);
    }
    slab_left_ -= size;
    return slab_ + slab_left_;
}

const wchar_t* Things::Keep(const wchar_t* text) {
    if (text == nullptr) {
        return nullptr;
    }
    auto* kept = static_cast<wchar_t*>(Room((::wcslen(text) + 1) * sizeof(wchar_t)));
    ::wcscpy(kept, text);
    return kept;
}

void Things::Add(Thing thing) {
    thing.path = Keep(thing.path);
    Thing* const added = static_cast<Thing*>(Room(sizeof thing));
    *added = thing;
    (last_ != nullptr ? last_->next : first_) = added;
    last_ = added;
    last_key_ = thing.root != nullptr ? added : nullptr;
    ++count_;
}

// Its path is the key's own.
void Things::AddValue(const wchar_t* name) {
    const Thing* const key = last_key_;
    Thing* const added = static_cast<Thing*>(Room(sizeof(Thing)));
    *added = {nullptr, 0, key->root, key->path, Keep(name)};
    last_->next = added;
    last_ = added;
    ++count_;
}

}  // namespace floor_program
