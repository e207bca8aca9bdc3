#include "snapshot/records/text_slabs.h"

#include <algorithm>
#include <new>
#include <utility>

namespace tolvenar {
namespace {

constexpr std::size_t kSlabUnits = 8 * 1024;

}  // namespace

const char16_t* TextSlabs::Copy(std::u16string_view text) {
    char16_t* const copy = Reserve(text.size() + 1);
    if (copy != nullptr) {
        copy[text.copy(copy, text.size())] = 0;
    }
    return copy;
}

char16_t* TextSlabs::Reserve(std::size_t units) {
    if (units > left_) {
        const std::size_t slab_units = std::max(units, kSlabUnits);
        const std::size_t bytes = offsetof(Slab, units) + slab_units * sizeof(char16_t);
        auto* const slab = static_cast<Slab*>(::operator new(bytes, std::nothrow));
        if (slab == nullptr) {
            return nullptr;
        }
        slab->before = newest_;
        newest_ = slab;
        next_ = slab->units;
        left_ = slab_units;
    }
    left_ -= units;
    return std::exchange(next_, next_ + units);
}

void TextSlabs::Clear() {
    while (newest_ != nullptr) {
        ::operator delete(std::exchange(newest_, newest_->before));
    }
    next_ = nullptr;
    left_ = 0;
}

}  // namespace tolvenar
