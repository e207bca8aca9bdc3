#include "snapshot/compare/pair_check.h"

#include <algorithm>
#include <new>

#include "snapshot/compare/journal_check.h"
#include "snapshot/compare/object_name.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

bool IsAddition(const ObjectRecord& record) { return (record.flags & kAdditionFlags) != 0; }

// A deletion may stand under another collision counter than its addition: a list whose keys carry
// no state has room for one object under each.
bool Repeats(const ObjectRecord& deletion, const ObjectRecord& addition) {
    return deletion.dwOID == addition.dwOID && SameTolvOID(deletion, addition) &&
           deletion.info_checksum == addition.info_checksum &&
           deletion.content_fingerprint == addition.content_fingerprint &&
           deletion.propOffset == addition.propOffset &&
           deletion.data_offset == addition.data_offset && deletion.type == addition.type &&
           addition.state_number < deletion.state_number;
}

bool IsBefore(const StoredVersion& version, std::uint32_t propOffset) {
    return version.record->propOffset < propOffset;
}

}  // namespace

bool PairCheck::Run(const PairSizes& sizes, VersionWatcher* watcher) {
    StateTable states;
    if (!CollectVersions() || !CheckRecords(journal_, states, findings_)) {
        return false;
    }
    if (sizes.journal % sizeof(ObjectRecord) != 0) {
        findings_.Add(u"its last record is cut", 0);
    } else if (sizes.journal / sizeof(ObjectRecord) != journal_.CountRecords()) {
        findings_.Add(u"two records under one key", 0);
    }
    if (!CheckBlocks(versions_.get(), count_, stored_, sizes.storage_head, sizes.storage, states,
                     findings_, unclaimed_, watcher) ||
        !CollectUnlisted(states.LastState())) {
        return false;
    }
    CheckDeletions();
    findings_.Finish();
    LogDamagedBlocks();
    return true;
}

bool PairCheck::CollectVersions() {
    versions_.reset(new (std::nothrow) StoredVersion[journal_.CountRecords() + 1]);
    if (versions_ == nullptr) {
        return false;
    }
    for (const ObjectList::Node& node : journal_) {
        if (IsAddition(*node.record)) {
            versions_[count_++] = {node.record, 0, Damage::kNone};
        }
    }
    std::sort(versions_.get(), versions_.get() + count_,
              [](const StoredVersion& a, const StoredVersion& b) {
                  return IsBefore(a, b.record->propOffset);
              });
    return true;
}

// The state's own block failed, or the record is another state's.
bool PairCheck::CollectUnlisted(std::uint16_t last_state) {
    for (std::size_t i = 0; i < count_; ++i) {
        const ObjectRecord& record = *versions_[i].record;
        if (record.state_number > last_state && versions_[i].damage != Damage::kBlock &&
            !unclaimed_.Add({record.propOffset, last_state})) {
            return false;
        }
    }
    return true;
}

bool PairCheck::HoldsNewer(const ObjectList& state, const InfoBlock& block,
                           std::uint32_t offset) const {
    const std::uint32_t hash = HashOfObject(block);
    for (const ObjectList::Node& node : state) {
        const StoredVersion* version =
            node.record->propOffset > offset ? Find(node.record->propOffset) : nullptr;
        InfoBlock newer;
        if (version != nullptr && version->name_hash == hash &&
            node.record->type != ObjectType::kDatabaseRecord &&
            stored_.GetInfoFromStorage(node.record->propOffset, newer) &&
            tolvenar::IsOneObject(newer, block)) {
            return true;
        }
    }
    return false;
}

void PairCheck::CheckDeletions() {
    for (const ObjectList::Node& node : journal_) {
        const ObjectRecord& record = *node.record;
        if (IsAddition(record)) {
            continue;
        }
        const StoredVersion* version = Find(record.propOffset);
        if (version == nullptr || !Repeats(record, *version->record)) {
            findings_.Add(u"deletion of what was not added", record.state_number,
                          record.propOffset);
        }
    }
}

void PairCheck::LogDamagedBlocks() const {
    Findings damaged(u"Block damaged");
    for (std::size_t i = 0; i < count_; ++i) {
        if (versions_[i].damage == Damage::kBlock) {
            damaged.Add(u"its checksum", versions_[i].record->state_number,
                        versions_[i].record->propOffset);
        }
    }
    damaged.Finish();
}

const StoredVersion* PairCheck::Find(std::uint32_t propOffset) const {
    const StoredVersion* const end = versions_.get() + count_;
    const StoredVersion* const found =
        std::lower_bound<const StoredVersion*>(versions_.get(), end, propOffset, IsBefore);
    return found != end && found->record->propOffset == propOffset ? found : nullptr;
}

Damage PairCheck::DamageOf(const ObjectRecord& record) const {
    const StoredVersion* const version = Find(record.propOffset);
    return version == nullptr ? Damage::kBlock : version->damage;
}

bool PairCheck::BlockIsSound(std::uint32_t propOffset) const {
    const StoredVersion* const version = Find(propOffset);
    return version != nullptr && version->damage != Damage::kBlock;
}

bool PairCheck::IsOneObject(const Living& a, const Living& b) const {
    InfoBlock block_a;
    InfoBlock block_b;
    return stored_.GetInfoFromStorage(a.record->propOffset, block_a) &&
           stored_.GetInfoFromStorage(b.record->propOffset, block_b) &&
           tolvenar::IsOneObject(block_a, block_b);
}

std::unique_ptr<PairCheck::Living[]> PairCheck::SortedByName(const ObjectList& state,
                                                             std::size_t& count) const {
    std::unique_ptr<Living[]> living(new (std::nothrow) Living[state.CountRecords() + 1]);
    if (living == nullptr) {
        return nullptr;
    }
    for (const ObjectList::Node& node : state) {
        const StoredVersion* version = Find(node.record->propOffset);
        const bool has_name = node.record->type != ObjectType::kDatabaseRecord &&
                              node.record->type != ObjectType::kState;
        if (has_name && version != nullptr && version->damage != Damage::kBlock) {
            living[count++] = {node.record, version};
        }
    }
    std::sort(living.get(), living.get() + count, [](const Living& a, const Living& b) {
        return a.version->name_hash != b.version->name_hash
                   ? a.version->name_hash < b.version->name_hash
                   : a.record->propOffset < b.record->propOffset;
    });
    return living;
}

}  // namespace tolvenar
