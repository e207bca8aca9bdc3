// Proves the pair of a storage's files with what their format has: no restore may take anything
// away for a list that is damaged. Platform-free; docs/formats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/block_check.h"
#include "snapshot/compare/findings.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {

// The sizes of the two files, in bytes.
struct PairSizes {
    std::uint32_t journal;
    std::uint32_t storage;
    std::uint32_t storage_head;
};

class PairCheck {
public:
    // Both stay for as long as this lives; ids in the journal may change meanwhile.
    PairCheck(const ObjectList& journal, StorageReader& stored)
        : journal_(journal), stored_(stored) {}
    PairCheck(const PairCheck&) = delete;
    PairCheck& operator=(const PairCheck&) = delete;

    // Reads every block once, in the order of the file; every finding has a line in the log.
    // `watcher` may be null. False when there is no memory.
    bool Run(const PairSizes& sizes, VersionWatcher* watcher = nullptr);

    // The additions of the journal with what is wrong with each, in the order of the storage file.
    const StoredVersion* begin() const { return versions_.get(); }
    const StoredVersion* end() const { return versions_.get() + count_; }
    // Findings for which nothing in the list can be trusted.
    std::size_t findings_in_list() const { return findings_.count(); }
    // What is wrong with the stored version of a record. A record that no addition of the journal
    // is behind is damaged.
    Damage DamageOf(const ObjectRecord& record) const;
    // True when the block at `propOffset` is an addition's and was read whole and undamaged.
    bool BlockIsSound(std::uint32_t propOffset) const;
    // Whole blocks of no listed state: no record points to them, or one with a number above the
    // last state that has a record of its own. What the device has under such a name may be what a
    // state has.
    const UnclaimedBlocks& unclaimed() const { return unclaimed_; }

    // True when the list of a state holds a version of the object of `block`, stored at `offset`,
    // that was stored after it.
    bool HoldsNewer(const ObjectList& state, const InfoBlock& block, std::uint32_t offset) const;

    // Calls `found(older, newer)` for two living versions of one object in the list of a state: of
    // a file and the like, not of records, which have no name. False when there is no memory.
    template <typename Found>
    bool ForEachDouble(const ObjectList& state, Found found) const;

private:
    // A living object of a state.
    struct Living {
        ObjectRecord* record;
        const StoredVersion* version;
    };

    bool CollectVersions();
    void CheckDeletions();
    bool CollectUnlisted(std::uint16_t last_state);
    void LogDamagedBlocks() const;
    const StoredVersion* Find(std::uint32_t propOffset) const;
    bool IsOneObject(const Living& a, const Living& b) const;
    // Those of a state, by the hashes of their names and of one name the older first.
    std::unique_ptr<Living[]> SortedByName(const ObjectList& state, std::size_t& count) const;

    const ObjectList& journal_;
    StorageReader& stored_;
    std::unique_ptr<StoredVersion[]> versions_;  // in the order of the storage file
    std::size_t count_ = 0;
    Findings findings_{u"List damaged"};
    UnclaimedBlocks unclaimed_;
};

template <typename Found>
bool PairCheck::ForEachDouble(const ObjectList& state, Found found) const {
    std::size_t count = 0;
    const std::unique_ptr<Living[]> living = SortedByName(state, count);
    if (living == nullptr) {
        return false;
    }
    for (std::size_t i = 1; i < count; ++i) {
        for (std::size_t j = i;
             j-- > 0 && living[j].version->name_hash == living[i].version->name_hash;) {
            if (IsOneObject(living[j], living[i])) {
                found(*living[j].record, *living[i].record);
            }
        }
    }
    return true;
}

}  // namespace tolvenar
