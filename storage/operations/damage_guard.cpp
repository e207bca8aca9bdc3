#include "storage/operations/damage_guard.h"

#include "snapshot/compare/data_check.h"
#include "snapshot/compare/object_name.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/records/indexed_array.h"
#include "snapshot/text/log.h"
#include "storage/objects/presence.h"
#include "storage/objects/restore_database.h"
#include "storage/operations/held_back.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"DoRestore";

// What is pending in a difference list, by the names of its objects.
class PendingByName {
public:
    explicit PendingByName(InfoSource& info) : info_(info) {}

    bool Build(ObjectList& difference) {
        if (!entries_.Reserve(difference.CountRecords())) {
            return false;
        }
        for (ObjectList::Node& node : difference) {
            InfoBlock block;
            if (IsPending(*node.record) && FetchInfo(*node.record, info_, block)) {
                entries_.Add({node.record, HashOfObject(block), nullptr});
            }
        }
        return true;
    }

    // Calls `action` with every record of an object that is called so.
    template <typename Action>
    void ForEachNamed(const InfoBlock& block, Action action) {
        const std::uint32_t hash = HashOfObject(block);
        for (Entry* entry = entries_.ChainOf(hash); entry != nullptr; entry = entry->bucket_next) {
            InfoBlock described;
            if (entry->hash == hash && FetchInfo(*entry->record, info_, described) &&
                IsOneObject(described, block)) {
                action(*entry->record);
            }
        }
    }

private:
    struct Entry {
        ObjectRecord* record;
        std::uint32_t hash;
        Entry* bucket_next;
        std::uint32_t Hash() const { return hash; }
    };

    InfoSource& info_;
    IndexedArray<Entry> entries_;
};

}  // namespace

DamageGuard::DamageGuard(Engine& engine, Descriptions& descriptions, const PairCheck& check,
                         DatabaseRestore database_restore)
    : engine_(engine),
      descriptions_(descriptions),
      check_(check),
      database_restore_(database_restore),
      difference_(*engine.storage.difference) {}

// What a restore without databases passes over is nothing to it.
bool DamageGuard::IsLookedAt(const ObjectRecord& record) const {
    return database_restore_ != DatabaseRestore::kNone || !IsOfDatabase(record);
}

bool DamageGuard::DropOlderDoubles(const ObjectList& target) {
    const bool done =
        check_.ForEachDouble(target, [this](const ObjectRecord& older, const ObjectRecord&) {
            for (ObjectList::Node& node : difference_) {
                if (IsPendingVersion(*node.record) && node.record->propOffset == older.propOffset) {
                    LogObject(u"Two versions, the older one left alone: ", *node.record,
                              descriptions_.source, kModule, kLogError);
                    node.record->flags = 0;
                }
            }
        });
    RemoveHandled(difference_);
    return done;
}

DamageCount DamageGuard::CountUntrusted() const {
    DamageCount damage{static_cast<std::uint32_t>(check_.findings_in_list()), 0};
    for (const ObjectList::Node& node : difference_) {
        const ObjectRecord& record = *node.record;
        if (IsPendingVersion(record) && IsLookedAt(record) &&
            check_.DamageOf(record) == Damage::kBlock) {
            ++damage.objects;
        }
    }
    return damage;
}

void DamageGuard::HoldBack(ObjectRecord& record, FailureReason reason) {
    tolvenar::HoldBack(record, reason, engine_.storage.failures);
}

void DamageGuard::KeepToMissing(WrittenRecords& written) {
    found_damage_ = true;
    const DatabaseCacheScope cache(engine_.databases);
    for (ObjectList::Node& node : difference_) {
        ObjectRecord& record = *node.record;
        InfoBlock block;
        if (!IsPendingVersion(record)) {
            HoldBack(record, FailureReason::kSpared);
        } else if (check_.DamageOf(record) == Damage::kBlock ||
                   !FetchInfo(record, descriptions_.source, block)) {
            HoldBack(record, FailureReason::kDamaged);
        } else if (!IsMissing(record, block, written)) {
            // A key that is there is as it is to be.
            if (record.type == ObjectType::kRegistryKey) {
                record.flags = 0;
            } else {
                HoldBack(record, FailureReason::kSpared);
            }
        }
    }
    RemoveHandled(difference_);
}

bool DamageGuard::IsMissing(const ObjectRecord& version, const InfoBlock& block,
                            WrittenRecords& written) {
    if (version.type != ObjectType::kDatabaseRecord) {
        return !IsNameTaken(engine_.databases, block);
    }
    const auto bytes = descriptions_.stored.ReadData(version.data_offset, block.head().data_bytes);
    StoredBytes data;
    data.bytes = bytes.get();
    data.length = block.head().data_bytes;
    return bytes != nullptr &&
           !WouldOverwriteRecord(engine_.databases, written, data, block, version.dwOID);
}

bool DamageGuard::HoldBackDamaged() {
    if (!check_.unclaimed().empty() && !HoldBackUnclaimed()) {
        return false;
    }
    HoldBackDamagedNames();
    HoldBackDamagedData();
    return true;
}

bool DamageGuard::MayLackObjects(const ObjectList& target, std::uint32_t state) const {
    bool lacks = false;
    for (const UnclaimedBlock& unclaimed : check_.unclaimed()) {
        InfoBlock block;
        if (unclaimed.state > state ||
            !descriptions_.stored.GetInfoFromStorage(unclaimed.offset, block) ||
            check_.HoldsNewer(target, block, unclaimed.offset)) {
            continue;
        }
        ObjectRecord record{};
        record.type = block.type();
        LogObject(u"Its record in the list may be lost: ", record, block, kModule, kLogError);
        lacks = true;
    }
    return lacks;
}

// The deletion of a stored object goes by its stored name.
void DamageGuard::HoldBackDamagedNames() {
    for (ObjectList::Node& node : difference_) {
        ObjectRecord& record = *node.record;
        if (IsPendingDeletion(record) && record.propOffset != 0 && IsLookedAt(record) &&
            check_.DamageOf(record) == Damage::kBlock) {
            LogObject(u"Its name is damaged, left alone: ", record, descriptions_.source, kModule,
                      kLogError);
            HoldBack(record, FailureReason::kDamaged);
            found_damage_ = true;
        }
    }
}

// The device may have what the lost record is of; of a record, any of its database.
bool DamageGuard::HoldBackUnclaimed() {
    PendingByName pending(descriptions_.source);
    if (!pending.Build(difference_)) {
        return false;
    }
    for (const UnclaimedBlock& unclaimed : check_.unclaimed()) {
        InfoBlock block;
        if (descriptions_.stored.GetInfoFromStorage(unclaimed.offset, block)) {
            pending.ForEachNamed(block,
                                 [&](ObjectRecord& record) { HoldBackNewest(record, block); });
        }
    }
    return true;
}

void DamageGuard::HoldBackNewest(ObjectRecord& record, const InfoBlock& block) {
    const bool has_name = record.type != ObjectType::kDatabaseRecord;
    const bool is_missing =
        has_name && IsPendingVersion(record) && !IsNameTaken(engine_.databases, block);
    if (!IsPending(record) || !IsLookedAt(record) || is_missing) {
        return;
    }
    LogObject(u"Its newest version may be lost, left alone: ", record, block, kModule, kLogError);
    HoldBack(record, FailureReason::kSpared);
    found_damage_ = true;
}

void DamageGuard::HoldBackDamagedData() {
    for (ObjectList::Node& node : difference_) {
        ObjectRecord& record = *node.record;
        InfoBlock block;
        if (!IsPendingVersion(record) || !IsLookedAt(record) ||
            !descriptions_.blocks.GetInfoFromStorage(record.propOffset, block)) {
            continue;
        }
        if (check_.DamageOf(record) == Damage::kData ||
            !DataAreSound(descriptions_.stored, record, block)) {
            HoldBackDamagedVersion(record, block);
        }
    }
}

// Few are damaged in a storage that is worth a restore: each costs a walk.
void DamageGuard::HoldBackDamagedVersion(ObjectRecord& version, const InfoBlock& block) {
    found_damage_ = true;
    LogObject(u"Damaged in the storage, left alone: ", version, block, kModule, kLogError);
    HoldBack(version, FailureReason::kDamaged);
    for (ObjectList::Node& node : difference_) {
        ObjectRecord& newer = *node.record;
        InfoBlock described;
        if (!IsPendingDeletion(newer) || newer.type != version.type) {
            continue;
        }
        const bool is_newer = version.type == ObjectType::kDatabaseRecord
                                  ? newer.dwOID == version.dwOID
                                  : FetchInfo(newer, descriptions_.source, described) &&
                                        IsOneObject(described, block);
        if (is_newer) {
            HoldBack(newer, FailureReason::kDamaged);
        }
    }
}

}  // namespace tolvenar
