#include "storage/journal_update.h"

#include <new>

namespace tolvenar {
namespace {

constexpr std::uint16_t kPendingFlags = JF_ADD | JF_DELETE;
constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

// A block belongs to one object version, and updating an id does not move it: what an index may be
// made from.
std::size_t BucketOf(std::uint32_t propOffset, std::size_t bucket_count) {
    const std::uint32_t mixed = propOffset * 0x9E3779B1u;
    return (mixed ^ (mixed >> 15)) & (bucket_count - 1);
}

bool IsSameVersion(const ObjectRecord& a, const ObjectRecord& b) {
    return a.dwOID == b.dwOID && a.info_checksum == b.info_checksum &&
           a.content_fingerprint == b.content_fingerprint && a.propOffset == b.propOffset &&
           a.data_offset == b.data_offset && a.type == b.type;
}

bool HasObjectId(ObjectType type) {
    return type != ObjectType::kRegistryValue && type != ObjectType::kRegistryKey &&
           type != ObjectType::kState;
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
            if ((record.flags & JF_ADD) != 0 && HasObjectId(record.type)) {
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

void JournalUpdater::BuildIndex() {
    index_tried_ = true;
    const std::size_t count = journal_->CountRecords();
    std::size_t bucket_count = 64;
    while (bucket_count < count) {
        bucket_count *= 2;
    }
    std::unique_ptr<Entry[]> entries(new (std::nothrow) Entry[count + 1]);
    std::unique_ptr<std::uint32_t[]> buckets(new (std::nothrow) std::uint32_t[bucket_count]);
    if (entries == nullptr || buckets == nullptr) {
        return;
    }

    std::uint32_t filled = 0;
    ObjectList::Cursor cursor = journal_->First();
    while (ObjectList::Next(cursor, nullptr, &entries[filled].record)) {
        ++filled;
    }
    for (std::size_t i = 0; i < bucket_count; ++i) {
        buckets[i] = kNoEntry;
    }
    // From the back, so that a bucket's first entry is the one that a walk meets first.
    for (std::uint32_t i = filled; i-- > 0;) {
        std::uint32_t& bucket = buckets[BucketOf(entries[i].record->propOffset, bucket_count)];
        entries[i].next = bucket;
        bucket = i;
    }
    entries_ = std::move(entries);
    buckets_ = std::move(buckets);
    bucket_count_ = bucket_count;
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
        for (std::uint32_t i = buckets_[BucketOf(record.propOffset, bucket_count_)]; i != kNoEntry;
             i = entries_[i].next) {
            change.Visit(*entries_[i].record);
        }
    } else {
        ObjectList::Cursor cursor = journal_->First();
        ObjectRecord* visited = nullptr;
        while (ObjectList::Next(cursor, nullptr, &visited)) {
            change.Visit(*visited);
        }
    }
    change.Finish();
}

void InvertPendingFlags(ObjectList& list) {
    ObjectList::Cursor cursor = list.First();
    while (cursor != nullptr) {
        ObjectList::Node* node = cursor;
        cursor = node->next;
        if ((node->record->flags & kPendingFlags) != 0) {
            node->record->flags ^= kPendingFlags;
        }
        if (node->record->flags == 0) {
            list.Remove(node);
        }
    }
}

}  // namespace tolvenar
