// Entries of a number that is known before, found by hash. Header only and platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "snapshot/records/hash_index.h"

namespace tolvenar {

// An entry has what HashIndex asks of it: `Entry* bucket_next` and `Hash()`.
template <typename Entry>
class IndexedArray {
public:
    // Room for as many entries, once and before the first. False when there is no memory.
    bool Reserve(std::size_t entries) {
        entries_.reset(new (std::nothrow) Entry[entries + 1]);
        return entries_ != nullptr && index_.Reserve(entries);
    }
    void Add(const Entry& entry) {
        Entry& added = entries_[count_++];
        added = entry;
        index_.Add(added);
    }
    std::size_t count() const { return count_; }

    // The first entry for which `is_sought` holds among those that may have the hash, or null.
    template <typename Predicate>
    Entry* Find(std::uint32_t hash, Predicate is_sought) const {
        return index_.Find(hash, is_sought);
    }
    // Every entry that may have the hash, by `bucket_next` from here on; null when there is none.
    Entry* ChainOf(std::uint32_t hash) const { return index_.ChainOf(hash); }

    // In the order in which they were added.
    Entry* begin() const { return entries_.get(); }
    Entry* end() const { return entries_.get() + count_; }

private:
    std::unique_ptr<Entry[]> entries_;
    std::size_t count_ = 0;
    HashIndex<Entry> index_;
};

}  // namespace tolvenar
