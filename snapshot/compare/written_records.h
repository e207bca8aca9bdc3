// The ids that CeWriteRecordProps has returned during one restore. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/records/hash_index.h"

namespace tolvenar {

class WrittenRecords {
public:
    WrittenRecords() = default;
    ~WrittenRecords();
    WrittenRecords(const WrittenRecords&) = delete;
    WrittenRecords& operator=(const WrittenRecords&) = delete;

    // Makes sure that the next Add succeeds; false when there is no memory.
    bool Reserve();
    // Enters an id; false when there is no memory.
    bool Add(std::uint32_t oid);
    bool Contains(std::uint32_t oid) const;

private:
    static constexpr std::size_t kBlockIds = 64;
    struct Id {
        std::uint32_t oid;
        Id* bucket_next;

        std::uint32_t Hash() const { return MixBits(0, oid); }
    };
    // Ids together, since a block of the heap for each would be larger than the id.
    struct Block {
        Id ids[kBlockIds];
        Block* next;
    };

    Block* newest_ = nullptr;
    std::size_t used_ = kBlockIds;  // ids of the newest block
    HashIndex<Id> index_;
};

}  // namespace tolvenar
