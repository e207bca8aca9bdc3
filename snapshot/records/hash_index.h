// The one hash table of the program: entries that somebody else owns, found by hash. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace tolvenar {

// The hash of `word` behind the words that gave `hash`. The low bits choose the bucket. Every bit
// of an earlier word reaches them, of the last word the lower 20 do: what differs in upper bits
// alone comes first. Inlined always: a call for each word takes as long as the rest of a search.
[[gnu::always_inline]] constexpr std::uint32_t MixBits(std::uint32_t hash, std::uint32_t word) {
    hash = (hash ^ word) * 0x9E3779B1u;
    return hash ^ (hash >> 15);
}

// An entry has a member `Entry* bucket_next`, which is the index's, and a method `Hash()`, whose
// result stays the same while the entry is in. An entry stays where it is in memory while it is in.
// The entries of one bucket are a chain; growing keeps its order. The index allocates nothing but
// its buckets, which are a power of two.
template <typename Entry>
class HashIndex {
public:
    std::size_t count() const { return count_; }

    // Makes as many buckets as `entries`, and some even for none. False when there is no memory;
    // the index is as it was.
    bool Reserve(std::size_t entries) {
        if (bucket_count_ != 0 && entries <= bucket_count_) {
            return true;
        }
        std::size_t larger = bucket_count_ == 0 ? kFirstBucketCount : bucket_count_;
        while (larger < entries) {
            larger *= 2;
        }
        std::unique_ptr<Entry*[]> buckets(new (std::nothrow) Entry* [larger] {});
        if (buckets == nullptr) {
            return false;
        }
        std::swap(buckets_, buckets);
        const std::size_t smaller = std::exchange(bucket_count_, larger);
        for (std::size_t i = 0; i < smaller; ++i) {
            MoveChain(buckets[i]);
        }
        return true;
    }
    // Makes room for one more entry. Without memory for more buckets the chains get longer; false
    // when there are no buckets at all.
    bool ReserveOneMore() { return Reserve(count_ + 1) || bucket_count_ != 0; }

    // Puts an entry in front of its chain. Room must have been reserved.
    void Add(Entry& entry) { InsertAt(LinkOf(entry.Hash()), entry); }
    // Puts an entry behind those at the front of its chain for which `is_before` holds.
    template <typename Predicate>
    void AddBehind(Entry& entry, Predicate is_before) {
        Entry** link = &LinkOf(entry.Hash());
        while (*link != nullptr && is_before(**link)) {
            link = &(*link)->bucket_next;
        }
        InsertAt(*link, entry);
    }
    // Takes out an entry that is in.
    void Remove(const Entry& entry) {
        Entry** link = &LinkOf(entry.Hash());
        while (*link != &entry) {
            link = &(*link)->bucket_next;
        }
        RemoveAt(*link);
    }
    // Forgets the entries and frees the buckets.
    void Clear() {
        buckets_.reset();
        bucket_count_ = 0;
        count_ = 0;
    }

    // The first entry of the chain of `hash` for which `is_sought` holds, or null. Entries of other
    // hashes are asked too.
    template <typename Predicate>
    Entry* Find(std::uint32_t hash, Predicate is_sought) const {
        Entry* entry = ChainOf(hash);
        while (entry != nullptr && !is_sought(*entry)) {
            entry = entry->bucket_next;
        }
        return entry;
    }
    // The first entry of the chain of `hash`, or null. The rest follows by `bucket_next`.
    Entry* ChainOf(std::uint32_t hash) const {
        return bucket_count_ == 0 ? nullptr : buckets_[hash & (bucket_count_ - 1)];
    }
    // The place of that first entry, for a walk that takes entries out. Room must have been
    // reserved.
    Entry*& LinkOf(std::uint32_t hash) { return buckets_[hash & (bucket_count_ - 1)]; }
    // Takes out the entry that `link`, a place in a chain, leads to.
    void RemoveAt(Entry*& link) {
        link = link->bucket_next;
        --count_;
    }

private:
    static constexpr std::size_t kFirstBucketCount = 64;

    void InsertAt(Entry*& link, Entry& entry) {
        entry.bucket_next = link;
        link = &entry;
        ++count_;
    }
    // Hands the entries of an old chain over to the new buckets, the last one first. All entries of
    // a new chain come from one old chain, so their order stays.
    void MoveChain(Entry* chain) {
        Entry* reversed = nullptr;
        while (chain != nullptr) {
            Entry* const next = std::exchange(chain->bucket_next, reversed);
            reversed = std::exchange(chain, next);
        }
        while (reversed != nullptr) {
            Entry& entry = *reversed;
            Entry*& link = LinkOf(entry.Hash());
            reversed = std::exchange(entry.bucket_next, link);
            link = &entry;
        }
    }

    std::unique_ptr<Entry*[]> buckets_;
    std::size_t bucket_count_ = 0;
    std::size_t count_ = 0;
};

}  // namespace tolvenar
