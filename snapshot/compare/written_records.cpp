#include "snapshot/compare/written_records.h"

#include <new>

namespace tolvenar {

WrittenRecords::~WrittenRecords() {
    while (newest_ != nullptr) {
        delete std::exchange(newest_, newest_->next);
    }
}

bool WrittenRecords::Reserve() {
    if (!index_.ReserveOneMore()) {
        return false;
    }
    if (used_ < kBlockIds) {
        return true;
    }
    auto* block = new (std::nothrow) Block;
    if (block == nullptr) {
        return false;
    }
    block->next = newest_;
    newest_ = block;
    used_ = 0;
    return true;
}

bool WrittenRecords::Add(std::uint32_t oid) {
    if (Contains(oid)) {
        return true;
    }
    if (!Reserve()) {
        return false;
    }
    Id& id = newest_->ids[used_++];
    id.oid = oid;
    index_.Add(id);
    return true;
}

bool WrittenRecords::Contains(std::uint32_t oid) const {
    return index_.Find(MixBits(0, oid), [oid](const Id& id) { return id.oid == oid; }) != nullptr;
}

}  // namespace tolvenar
