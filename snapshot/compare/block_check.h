// What the blocks of a storage file must be for the records that point to them. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/findings.h"
#include "snapshot/compare/journal_check.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {

enum class Damage : std::uint8_t {
    kNone,
    kBlock,  // the object's name cannot be trusted
    kData,
};

// An addition of the journal.
struct StoredVersion {
    const ObjectRecord* record;
    std::uint32_t name_hash;  // HashOfObject of its block; 0 for a damaged one
    Damage damage;
};

// A few places in the storage file.
class Places {
public:
    static constexpr std::size_t kMost = 32;

    // False when there are too many.
    bool Add(std::uint32_t offset) {
        return count_ != kMost && (offsets_[count_++] = offset, true);
    }
    const std::uint32_t* begin() const { return offsets_; }
    const std::uint32_t* end() const { return offsets_ + count_; }

private:
    std::uint32_t offsets_[kMost];
    std::size_t count_ = 0;
};

// Data of the object of `block` are in the storage file, if only of length 0.
bool HasStoredData(const InfoBlock& block);

// Reads the blocks of `versions`, which stand in the order of the file, and finds out how they
// cover it from `begin`, the end of the head, to `end`. Enters what is found in the versions, in
// `findings` where the list itself is wrong, and in `unclaimed` the whole block of one object
// behind a backup's last one that no record points to.
void CheckBlocks(StoredVersion* versions, std::size_t count, StorageReader& stored,
                 std::uint32_t begin, std::uint32_t end, const StateTable& states,
                 Findings& findings, Places& unclaimed);

}  // namespace tolvenar
