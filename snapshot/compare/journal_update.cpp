#include "snapshot/compare/journal_update.h"

#include <algorithm>
#include <new>

namespace tolvenar {
namespace {

constexpr std::uint16_t kPendingFlags = JF_ADD | JF_DELETE;
// Ids from here on are given to versions whose object is on no device; devices count from below.
constexpr std::uint32_t kFirstStaleId = 0xF0000000;

// A block belongs to one object version, and updating an id does not move it: what an index may be
// made from.
std::uint32_t HashOf(std::uint32_t propOffset) { return MixBits(0, propOffset); }

bool IsSameVersion(const ObjectRecord& a, const ObjectRecord& b) {
    return a.dwOID == b.dwOID && a.info_checksum == b.info_checksum &&
           a.content_fingerprint == b.content_fingerprint && a.propOffset == b.propOffset &&
           a.data_offset == b.data_offset && a.type == b.type;
}

// Takes the records of a journal in the order of a walk and changes ids as they come by.
class IdChange {
public:
    IdChange(const ObjectRecord& object, std::uint32_t newOid) : object_(object), newOid_(newOid) {}

    void Visit(ObjectRecord& record) {
        if (!IsSameVersion(record, object_)) {
            return;
        }
        if (record.state_number == object_.state_number) {
            if ((record.flags & JF_ADD) != 0 && HasObjectStoreId(record.type)) {
                record.dwOID = newOid_;
            }
            return;
        }
        if (record.state_number > object_.state_number && (record.flags & JF_DELETE) != 0 &&
            (deletion_ == nullptr || record.state_number <= deletion_->state_number)) {
            deletion_ = &record;
        }
    }

    void Finish() {
        if (deletion_ != nullptr) {
            deletion_->dwOID = newOid_;
        }
    }

private:
    const ObjectRecord object_;
    const std::uint32_t newOid_;
    ObjectRecord* deletion_ = nullptr;  // of the lowest state so far; of two, the later walked
};

}  // namespace

std::uint32_t JournalUpdater::Entry::Hash() const { return HashOf(record->propOffset); }

void JournalUpdater::BuildIndex() {
    index_tried_ = true;
    const std::size_t count = journal_->CountRecords();
    std::unique_ptr<Entry[]> entries(new (std::nothrow) Entry[count + 1]);
    if (entries == nullptr || !index_.Reserve(count)) {
        return;
    }
    std::size_t filled = 0;
    for (const ObjectList::Node& node : *journal_) {
        entries[filled++].record = node.record;
    }
    // From the back, since each is put in front of its chain.
    while (filled != 0) {
        index_.Add(entries[--filled]);
    }
    entries_ = std::move(entries);
}

void JournalUpdater::UpdateJournalOid(const ObjectRecord& record, std::uint32_t newOid) {
    if (newOid == 0 || journal_ == nullptr) {
        return;
    }
    if (!index_tried_) {
        BuildIndex();
    }
    IdChange change(record, newOid);
    if (entries_ != nullptr) {
        for (Entry* entry = index_.ChainOf(HashOf(record.propOffset)); entry != nullptr;
             entry = entry->bucket_next) {
            change.Visit(*entry->record);
        }
    } else {
        for (const ObjectList::Node& node : *journal_) {
            change.Visit(*node.record);
        }
    }
    change.Finish();
    Remember({newOid, record.propOffset});
}

void JournalUpdater::Remember(const NewId& id) {
    if (new_id_count_ == new_id_room_) {
        const std::size_t room = new_id_room_ == 0 ? 64 : 2 * new_id_room_;
        std::unique_ptr<NewId[]> grown(new (std::nothrow) NewId[room]);
        if (grown == nullptr) {
            is_complete_ = false;
            return;
        }
        std::copy_n(new_ids_.get(), new_id_count_, grown.get());
        new_ids_ = std::move(grown);
        new_id_room_ = room;
    }
    new_ids_[new_id_count_++] = id;
}

bool JournalUpdater::SeparateVersions() {
    if (!is_complete_) {
        return false;
    }
    if (new_id_count_ == 0) {
        return true;
    }
    if (entries_ == nullptr) {
        return false;
    }
    std::sort(new_ids_.get(), new_ids_.get() + new_id_count_,
              [](const NewId& a, const NewId& b) { return a.oid < b.oid; });
    std::uint32_t stale_id = LowestStaleId();
    for (const ObjectList::Node& node : *journal_) {
        const NewId* id = FindOtherVersion(*node.record);
        if (id != nullptr && HasKeyOfNewId(*node.record, *id)) {
            GiveId(*node.record, --stale_id);
        }
    }
    return true;
}

// The new id that a record has although it belongs to another version; null when there is none.
const JournalUpdater::NewId* JournalUpdater::FindOtherVersion(const ObjectRecord& record) const {
    if (!HasObjectStoreId(record.type)) {
        return nullptr;
    }
    const NewId* begin = new_ids_.get();
    const NewId* end = begin + new_id_count_;
    const NewId* id = std::lower_bound(
        begin, end, record.dwOID, [](const NewId& a, std::uint32_t oid) { return a.oid < oid; });
    const NewId* first = id != end && id->oid == record.dwOID ? id : nullptr;
    for (; id != end && id->oid == record.dwOID; ++id) {
        if (id->propOffset == record.propOffset) {
            return nullptr;
        }
    }
    return first;
}

bool JournalUpdater::HasKeyOfNewId(const ObjectRecord& record, const NewId& id) const {
    const ObjectKey key = KeyOf(record);
    return index_.Find(HashOf(id.propOffset), [&key, &id](const Entry& entry) {
        return entry.record->propOffset == id.propOffset && KeyOf(*entry.record) == key;
    }) != nullptr;
}

void JournalUpdater::GiveId(const ObjectRecord& version, std::uint32_t oid) {
    const ObjectRecord stale = version;
    for (Entry* entry = index_.ChainOf(HashOf(stale.propOffset)); entry != nullptr;
         entry = entry->bucket_next) {
        if (IsSameVersion(*entry->record, stale)) {
            entry->record->dwOID = oid;
        }
    }
}

std::uint32_t JournalUpdater::LowestStaleId() const {
    std::uint32_t lowest = 0xFFFFFFFF;
    for (const ObjectList::Node& node : *journal_) {
        if (node.record->dwOID >= kFirstStaleId) {
            lowest = std::min(lowest, node.record->dwOID);
        }
    }
    return lowest;
}

void InvertPendingFlags(ObjectList& list) {
    for (ObjectList::Node& node : list) {
        if ((node.record->flags & kPendingFlags) != 0) {
            node.record->flags ^= kPendingFlags;
        }
    }
    list.RemoveIf([](const ObjectList::Node& node) { return node.record->flags == 0; });
}

}  // namespace tolvenar
