#include "snapshot/compare/written_records.h"

#include <new>

namespace tolvenar {
namespace {

constexpr std::size_t kFirstSlotCount = 64;

// The slot that holds `oid`, or the free one where it belongs. `slot_count` is a power of two and
// at least one slot is free.
std::uint32_t& SlotOf(std::uint32_t* slots, std::size_t slot_count, std::uint32_t oid) {
    std::size_t index = oid & (slot_count - 1);
    while (slots[index] != 0 && slots[index] != oid) {
        index = (index + 1) & (slot_count - 1);
    }
    return slots[index];
}

}  // namespace

bool WrittenRecords::Grow() {
    const std::size_t larger = slot_count_ == 0 ? kFirstSlotCount : slot_count_ * 2;
    std::unique_ptr<std::uint32_t[]> slots(new (std::nothrow) std::uint32_t[larger]{});
    if (slots == nullptr) {
        return false;
    }
    for (std::size_t i = 0; i < slot_count_; ++i) {
        if (slots_[i] != 0) {
            SlotOf(slots.get(), larger, slots_[i]) = slots_[i];
        }
    }
    slots_ = std::move(slots);
    slot_count_ = larger;
    return true;
}

bool WrittenRecords::Reserve() { return used_ + 1 <= slot_count_ / 2 || Grow(); }

bool WrittenRecords::Add(std::uint32_t oid) {
    if (Contains(oid)) {
        return true;
    }
    if (!Reserve()) {
        return false;
    }
    SlotOf(slots_.get(), slot_count_, oid) = oid;
    ++used_;
    return true;
}

bool WrittenRecords::Contains(std::uint32_t oid) const {
    return slot_count_ != 0 && SlotOf(slots_.get(), slot_count_, oid) == oid;
}

}  // namespace tolvenar
