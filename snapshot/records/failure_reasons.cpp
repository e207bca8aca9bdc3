#include "snapshot/records/failure_reasons.h"

#include <new>

namespace tolvenar {
namespace {

// The records are blocks of a heap: their lowest bits are all alike.
std::uint32_t HashOf(const ObjectRecord* record) {
    return MixBits(0, static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(record) >> 3));
}

}  // namespace

std::uint32_t FailureTable::Entry::Hash() const { return HashOf(record); }

FailureTable::Entry* FailureTable::Find(const ObjectRecord& record) const {
    return index_.Find(HashOf(&record),
                       [&record](const Entry& entry) { return entry.record == &record; });
}

void FailureTable::Set(const ObjectRecord& record, FailureReason reason) {
    if (Entry* const present = Find(record)) {
        present->reason = reason;
        return;
    }
    if (!index_.ReserveOneMore()) {
        return;
    }
    auto* entry = new (std::nothrow) Entry{&record, reason, first_, nullptr};
    if (entry == nullptr) {
        return;
    }
    first_ = entry;
    index_.Add(*entry);
}

FailureReason FailureTable::Of(const ObjectRecord& record) const {
    const Entry* const entry = Find(record);
    return entry != nullptr ? entry->reason : FailureReason::kNone;
}

void FailureTable::Clear() {
    while (first_ != nullptr) {
        Entry* const entry = first_;
        first_ = entry->next;
        delete entry;
    }
    index_.Clear();
}

}  // namespace tolvenar
