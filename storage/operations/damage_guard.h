// What a restore leaves alone because the storage is damaged.
#pragma once

#include "snapshot/compare/pair_check.h"
#include "snapshot/engine/descriptions.h"
#include "storage/objects/restore_record.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

// Works on the difference list of the open storage. Everything that is held back because of damage
// has a line in the log.
class DamageGuard {
public:
    DamageGuard(Engine& engine, Descriptions& descriptions, const PairCheck& check,
                DatabaseRestore database_restore);
    DamageGuard(const DamageGuard&) = delete;
    DamageGuard& operator=(const DamageGuard&) = delete;

    // Of two living versions of one object in the state `target` the one of the higher state holds:
    // the other is not written back. False when there is no memory.
    bool DropOlderDoubles(const ObjectList& target);

    // How much there is for which the list as a whole cannot be trusted; nothing must be deleted or
    // overwritten then.
    DamageCount CountUntrusted() const;

    // Holds back everything but what is whole in the storage and missing on the device.
    void KeepToMissing(WrittenRecords& written);

    // Holds back what a whole block of no listed state may be of, versions whose data are not what
    // they were, and the newer versions of both; and deletions that would go by a damaged name.
    // False when there is no memory.
    bool HoldBackDamaged();

    // True, after a line in the log for each, when such a block may be of something that the state
    // `target` of that number had, and has no newer version of: its restore lacks it.
    bool MayLackObjects(const ObjectList& target, std::uint32_t state) const;

    // Whether anything was held back because of damage.
    bool found_damage() const { return found_damage_; }

private:
    bool IsLookedAt(const ObjectRecord& record) const;
    bool HoldBackUnclaimed();
    void HoldBackNewest(ObjectRecord& record, const InfoBlock& block);
    void HoldBack(ObjectRecord& record, FailureReason reason);
    void HoldBackDamagedNames();
    void HoldBackDamagedData();
    void HoldBackDamagedVersion(ObjectRecord& version, const InfoBlock& block);
    bool IsMissing(const ObjectRecord& version, const InfoBlock& block, WrittenRecords& written);

    Engine& engine_;
    Descriptions& descriptions_;
    const PairCheck& check_;
    const DatabaseRestore database_restore_;
    ObjectList& difference_;
    bool found_damage_ = false;
};

}  // namespace tolvenar
