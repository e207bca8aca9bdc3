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

// A whole block that belongs to no state that is listed.
struct UnclaimedBlock {
    std::uint32_t offset;
    std::uint16_t state;  // the first that may have had it
};

class UnclaimedBlocks {
public:
    // Without memory it is missing; false then.
    bool Add(const UnclaimedBlock& block);
    bool empty() const { return count_ == 0; }
    const UnclaimedBlock* begin() const { return blocks_.get(); }
    const UnclaimedBlock* end() const { return blocks_.get() + count_; }

private:
    std::unique_ptr<UnclaimedBlock[]> blocks_;
    std::size_t count_ = 0;
    std::size_t room_ = 0;
};

// Is told of every version, in the order of the file.
class VersionWatcher {
public:
    // `block` is null when it is damaged.
    virtual void Meet(const ObjectRecord& record, const InfoBlock* block) = 0;

protected:
    ~VersionWatcher() = default;
};

// Data of the object of `block` are in the storage file, if only of length 0.
bool HasStoredData(const InfoBlock& block);

// Reads the blocks of `versions`, which stand in the order of the file, and finds out how they
// cover it from `begin`, the end of the head, to `end`. Enters what is found in the versions, in
// `findings` where the list itself is wrong, and in `unclaimed` the whole block of one object
// behind a backup's last one that no record points to. `watcher` may be null. False when there is
// no memory.
bool CheckBlocks(StoredVersion* versions, std::size_t count, StorageReader& stored,
                 std::uint32_t begin, std::uint32_t end, const StateTable& states,
                 Findings& findings, UnclaimedBlocks& unclaimed, VersionWatcher* watcher = nullptr);

}  // namespace tolvenar
